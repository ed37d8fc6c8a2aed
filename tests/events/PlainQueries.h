// What the two questions give, found the plain way: every event, every occurrence, no memory.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "base/DateTime.h"
#include "model/calEvent.h"

namespace vl::test {

/// What a query left in an event that it found.
struct Answered {
    std::string GUID;
    DateTime InstanceStart;
    DateTime reminder;  ///< of `RemindCol`
    std::int32_t iRemMinutes = 0;
    std::int32_t iRemMinutesNext = 0;
    friend bool operator==(const Answered&, const Answered&) = default;
};
std::ostream& operator<<(std::ostream& out, const Answered& answered);

using Events = std::vector<std::shared_ptr<calEvent>>;

/// `events` are changed as the queries of a set change theirs.
std::vector<Answered> plainRemindCol(const Events& events, DateTime FromTime, DateTime ToTime);
std::vector<Answered> plainEventCol(const Events& events, DateTime FromDate, DateTime ToDate);

}  // namespace vl::test
