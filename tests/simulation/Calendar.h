// What the host keeps: events as they are meant, without anything of the program's.
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Zones.h"
#include "model/calEvent.h"

namespace vl::simulation {

/// The clock of the computer is Berlin's.
constexpr Zone kHere = Zone::Berlin;

DateTime dateTime(Seconds seconds);
Seconds seconds(DateTime time);

/// One occurrence of an event, local times. `key` stays the same wherever clocks are, and for a
/// single event also when it is moved.
struct Occurrence {
    Seconds key = 0;
    Seconds start = 0;
    Seconds end = 0;
};

/// An event as the host has it at one time.
struct Plan {
    Seconds start = 0;  ///< wall clock of `zone`
    Seconds length = 0;
    Zone zone = kHere;
    int everyDays = 0;  ///< 0: once
    int count = 0;      ///< of a series; 0: endless
    std::vector<int> reminders;
    std::set<Seconds> excluded;       ///< wall clock of `zone`
    std::optional<Seconds> replaces;  ///< local start in the series `master`
    std::string master;               ///< its id
    bool cancelled = false;           ///< an exception that takes its occurrence away

    bool isSeries() const { return everyDays > 0; }
    bool sameTimes(const Plan& other) const;
    /// All that start in [`from`, `to`], local times.
    std::vector<Occurrence> occurrences(Seconds from, Seconds to) const;
    std::optional<Occurrence> last() const;  ///< none: endless, or there is none
};

/// The row as the host writes it.
std::shared_ptr<calEvent> rowOf(const Plan& plan, const std::string& GUID, const std::string& id,
                                Seconds modified);

}  // namespace vl::simulation
