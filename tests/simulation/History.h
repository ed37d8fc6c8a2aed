// A course of things: what host, user and machine do, one step after the other.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <random>
#include <string>
#include <vector>

namespace vl::simulation {

enum class Do {
    Wait,       ///< a: seconds; checks go on every ten seconds, or as the machine allows
    Check,      ///< ten seconds later
    Sleep,      ///< a: seconds in which nothing happens
    AddSingle,  ///< a: minutes from now to the start, b: reminders, c: length in minutes
    AddSeries,  ///< a: as above, b: reminders, c: every so many days, and the zone
    Move,       ///< a: which, b: minutes
    Touch,      ///< a: which: another subject
    Except,     ///< a: which series, b: which occurrence from now on, c: minutes
    Cancel,     ///< a, b as above
    Exclude,    ///< a, b as above
    Delete,     ///< a: which
    HostClock,  ///< a: seconds that the host's clock is off
    TurnClock,  ///< a: seconds
    Restart,    ///< the program ends and starts
    HideFile,   ///< it cannot be read
    ShowFile,
    Snooze,   ///< a: which row, b: minutes
    Dismiss,  ///< a: which row, b: how
    kCount
};

struct Step {
    Do what = Do::Check;
    int a = 0;
    int b = 0;
    int c = 0;
};

/// As it can stand in a test: "{Do::Wait, 20, 0, 0}".
std::ostream& operator<<(std::ostream& out, const Step& step);

struct History {
    int year = 2026;
    int month = 11;
    int day = 20;
    int minute = 0;  ///< of the day
    std::vector<Step> steps;
};
std::ostream& operator<<(std::ostream& out, const History& history);

/// The same seed gives the same history.
History randomHistory(std::uint64_t seed);

struct Outcome {
    std::string wrong;  ///< empty: everything as it must be
    std::uint64_t decisions = 0;
    std::uint64_t acts = 0;
};

/// Lives through it in a folder of its own.
Outcome live(const History& history);

/// The same failure with as few steps as leaving steps out can give.
History shortened(History history);

}  // namespace vl::simulation
