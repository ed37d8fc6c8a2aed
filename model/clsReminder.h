// One reminder of an event: how the user is reminded, and how long before the start.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/Variant.h"

namespace vl {

class clsReminder : public Object {
public:
    /// "popup" or "email".
    std::string Method = "popup";

    /// Minutes before the instance start: 0 at the start, negative after it.
    std::int32_t Minutes = 0;

    /// Reads the short form a user types: a count and a unit (m, h, d, w), "(e)" for e-mail. The
    /// count is rounded to whole, halves to even, before the unit multiplies it: "2.5h" is 120.
    /// The unit is the very last character, so "3h " (with a space) means 3 minutes; only a text
    /// that held "(e)" is trimmed. A text without a number means 0.
    /// Throws `Error` (`ErrNo::Overflow`) when the product leaves the 32-bit range; `Minutes` is
    /// then as before, `Method` is not.
    void FromText(std::string_view sText);

    /// A count with its unit: "5m" when `bShort`, else "5 minutes", "1 hour", "Event start" for 0.
    /// Only counts above 1 get their "s": -15 gives "-15 minute".
    static std::string getText(std::int32_t iNb, std::string_view sDur, bool bShort);

    /// The reminder in words ("2 days (email)") or, with `bShort`, as typed ("2d (e)"); empty
    /// unless `bScheduled`. Weeks, days and hours are rounded one after the other and what a stage
    /// leaves over may be negative; of offsets up to two hours that leftover is what is shown: 45
    /// minutes read "-15 minute", 75 read "15 minutes". Never throws.
    std::string ToText(bool bScheduled, bool bShort) const;
};

}  // namespace vl
