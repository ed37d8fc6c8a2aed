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

DateTime dateTime(Seconds seconds);
Seconds seconds(DateTime time);

/// One occurrence of an event. `key` is its start on the event's own wall clock and stays the same
/// wherever the computer is; the others are local times.
struct Occurrence {
    Seconds key = 0;
    Seconds start = 0;
    Seconds end = 0;
};

/// An event as the host has it at one time.
struct Plan {
    Seconds start = 0;         ///< wall clock of `zone`
    Seconds length = 0;        ///< of an all-day event whole days
    std::optional<Zone> zone;  ///< none: the computer's clock, wherever it is
    bool allDay = false;
    int everyDays = 0;  ///< 0: once
    int count = 0;      ///< of a series; 0: endless
    std::vector<int> reminders;
    std::set<Seconds> excluded;       ///< keys
    std::optional<Seconds> replaces;  ///< key in the series `master`
    std::string master;               ///< its id
    bool cancelled = false;           ///< an exception that takes its occurrence away

    bool isSeries() const { return everyDays > 0; }
    bool sameTimes(const Plan& other) const;
    /// From a time of the event's own clock to the computer's, which is in `here`, and back.
    Seconds toLocal(Seconds wall, Zone here) const {
        return isSeries() || zone ? toWall(here, toUtc(zone.value_or(here), wall)) : wall;
    }
    Seconds toOwn(Seconds local, Zone here) const {
        return between(here, zone.value_or(here), local);
    }
    /// The same for times of reminders: in UTC where it has a zone.
    Seconds toMoment(Seconds local, Zone here) const {
        return zone ? toUtcInOrder(here, local) : local;
    }
    /// What its row says on a computer in `here` that was written in `there`.
    Plan asWrittenIn(Zone there, Zone here) const;
    /// All that start in [`from`, `to`], local times.
    std::vector<Occurrence> occurrences(Seconds from, Seconds to, Zone here) const;
    std::optional<Occurrence> occurrenceOf(Seconds key, Zone here) const;
    /// The key of the last one; none: endless, or there is none.
    std::optional<Seconds> lastKey() const;
};

/// The row as the host writes it on a computer in `here`.
std::shared_ptr<calEvent> rowOf(const Plan& plan, const std::string& GUID, const std::string& id,
                                Seconds modified, Zone here);

}  // namespace vl::simulation
