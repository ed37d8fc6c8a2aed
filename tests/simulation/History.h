// A course of things: what host, user and machine do, one step after the other.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "Zones.h"

namespace vl::simulation {

enum class Do {
    Wait,       ///< a: seconds; checks go on all the while
    Check,      ///< ten seconds later
    Sleep,      ///< a: seconds in which nothing happens
    AddSingle,  ///< a: minutes from now to the start, b: reminders, c: length in minutes, and more
    AddSeries,  ///< a: as above, b: reminders, c: every so many days, and more
    Move,       ///< a: which, b: minutes
    Retime,     ///< a: which series, b: minutes, c: also another rule
    Remind,     ///< a: which, b: other reminders
    Touch,      ///< a: which: written again, with the same times
    Except,     ///< a: which series, b: which occurrence from now on, c: minutes
    Cancel,     ///< a, b as above
    Exclude,    ///< a, b as above
    Delete,     ///< a: which
    During,     ///< the host's next step comes inside the next check, a: after so many looks at the
                ///< clock
    HostClock,  ///< a: seconds that the host's clock is off
    TurnClock,  ///< a: seconds
    WrongClock,  ///< a: days that it is off; 0: it is right again
    Copy,        ///< a second copy of the program starts; with one, a: the user turns to the other
                 ///< of the two, or with some that ends which he does not use
    LoseLedger,  ///< somebody removes it; a: while the program runs, or is off
    TearLedger,  ///< the last line of what an act or a check adds reaches the disk in part, and the
                 ///< program is killed; a: which row or event, b: which act, c: how much of it
    Travel,      ///< a: to which zone; the host writes local times anew, or with some c leaves its
                 ///< rows as they are
    Restart,     ///< the program ends and starts
    Kill,        ///< a, b: an act as in `Dismiss` whose row is not written any more
    KillAct,     ///< a: which row or event, b: which act, c: how much of it still reaches the disk
    KillCheck,   ///< a: nothing of the next check reaches the disk after so many looks at the clock
    HideFile,    ///< it is not there
    ShowFile,
    Protect,  ///< it cannot be written by the program
    Release,
    Hold,  ///< somebody else is in the middle of a change
    LetGo,
    Snooze,      ///< a: which row, b: minutes
    Dismiss,     ///< a: which row, b: how, c: also as done
    ViewSnooze,  ///< a: which event, b: minutes, c: which occurrence: a row of another grid
    ViewDismiss,
    Reactivate,  ///< a: which event
    HideEvent,   ///< a: which event
    DeleteItem,  ///< a: which event
    Foreign,     ///< a: which event, b: minutes, c: another program snoozes or dismisses it
    kCount
};

struct Step {
    Do what = Do::Check;
    int a = 0;
    int b = 0;
    int c = 0;
};

std::ostream& operator<<(std::ostream& out, const Step& step);

/// The text of a history: "2026 11 20 714 Europe/Berlin", the day, the minute and the zone in which
/// it begins, then a step a line: "Move 675 292 0". Lines that begin with "#" are remarks.
struct History {
    int year = 2026;
    int month = 11;
    int day = 20;
    int minute = 0;  ///< of the day
    Zone zone = Zone::Berlin;
    std::vector<Step> steps;
};
std::ostream& operator<<(std::ostream& out, const History& history);
/// Throws `std::runtime_error` for a text that is none, naming the line.
History readHistory(std::istream& text);

/// What is added to a history: too much for every one.
enum class Trouble { None, Copies, Ledger, Clock };

/// The same seed gives the same history; with a trouble some steps more.
History randomHistory(std::uint64_t seed, Trouble trouble = Trouble::None);

struct Outcome {
    std::string wrong;  ///< empty: everything as it must be
    std::uint64_t decisions = 0;
    std::uint64_t acts = 0;
    std::uint64_t copies = 0;  ///< checks of a second copy
    std::uint64_t lost = 0;    ///< ledgers that were removed
    std::uint64_t torn = 0;    ///< lines of which only a part was there
    std::uint64_t clocks = 0;  ///< checks by a clock that was days wrong
};

/// Lives through it in a folder of its own. With `trace` it says what it does.
Outcome live(const History& history, std::ostream* trace = nullptr);

/// The same failure with as few steps as leaving steps out can give.
History shortened(History history);

}  // namespace vl::simulation
