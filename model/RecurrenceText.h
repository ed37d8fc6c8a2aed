// What the lines of a recurrence say, before they are laid on an event's start.
#pragma once

#include <memory>
#include <string_view>

#include "base/SharedText.h"

namespace vl {

namespace recurrence {
struct TextParts;
}  // namespace recurrence

/// The lines, read. Events with the same lines can share it, whenever they start and in whatever
/// zone: reading takes longer than laying a rule on a start. Never changes.
class RecurrenceText {
public:
    /// The lines as `Recurrence::Source` has them. What cannot be read is skipped.
    explicit RecurrenceText(std::string_view lines);
    RecurrenceText(RecurrenceText&&) noexcept;
    ~RecurrenceText();

    /// Of the column `recurrence`: it holds a JSON array, or nothing that is a recurrence.
    static RecurrenceText ofColumn(std::string_view column);

    /// The value of the RRULE line, also of a rejected one; several are joined by a line break.
    const SharedText& RRULE() const noexcept { return RRULE_; }
    /// Another block with an equal text may take its place.
    void shareRRULE(const SharedText& equal) noexcept { RRULE_ = equal; }

    const recurrence::TextParts& parts() const noexcept { return *parts_; }

private:
    SharedText RRULE_;
    std::unique_ptr<recurrence::TextParts> parts_;  // never null
};

}  // namespace vl
