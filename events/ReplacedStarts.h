// Which starts of series exceptions have taken over.
#pragma once

#include <map>
#include <set>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/TimeZone.h"
#include "events/LedgerState.h"
#include "model/calEvent.h"

namespace vl {

/// First all is said, then settled for the series that are there, then asked.
///
/// An exception speaks of the series in its own host's database. Where that has none with the id
/// (any more: the host's database may have been moved), or where it is not known which it is, the
/// exception speaks of every series with the id.
class ReplacedStarts {
public:
    void say(const SeriesName& series, const Noted& start);

    /// `series` are all that there are, `here` is the computer's zone. Once.
    void settle(std::span<const calEvent* const> series, const TimeZone& here);

    /// Local times, ascending; none of what is no series. Good as long as this is not changed.
    std::span<const DateTime> of(const calEvent& event) const;

    bool empty() const noexcept { return ids_.empty(); }

private:
    struct Said {
        std::string base;  // case folded
        Noted start;
    };
    struct OfId {
        std::vector<Said> said;
        std::set<std::string> bases;  // that have such a series; case folded
        std::map<std::string, std::vector<DateTime>> starts;  // by base
    };
    std::unordered_map<std::string, OfId> ids_;  // by case-folded id
};

}  // namespace vl
