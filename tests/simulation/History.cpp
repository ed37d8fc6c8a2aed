#include "History.h"

#include <algorithm>
#include <array>
#include <istream>
#include <ostream>
#include <random>
#include <sstream>
#include <stdexcept>

namespace vl::simulation {

namespace {

/// Its name in a text, and how often it comes, in two hundred or so.
struct Kind {
    Do what;
    const char* name;
    int weight;
};
constexpr std::array<Kind, static_cast<std::size_t>(Do::kCount)> kKinds = {{
    {Do::Wait, "Wait", 28},
    {Do::Check, "Check", 50},
    {Do::Sleep, "Sleep", 12},
    {Do::AddSingle, "AddSingle", 18},
    {Do::AddSeries, "AddSeries", 10},
    {Do::Move, "Move", 8},
    {Do::Retime, "Retime", 3},
    {Do::Remind, "Remind", 3},
    {Do::Touch, "Touch", 4},
    {Do::Except, "Except", 6},
    {Do::Cancel, "Cancel", 2},
    {Do::Exclude, "Exclude", 2},
    {Do::Delete, "Delete", 3},
    {Do::During, "During", 5},
    {Do::HostClock, "HostClock", 3},
    {Do::TurnClock, "TurnClock", 2},
    {Do::WrongClock, "WrongClock", 0},  // these come in some histories only, see `Trouble`
    {Do::Copy, "Copy", 0},
    {Do::LoseLedger, "LoseLedger", 0},
    {Do::TearLedger, "TearLedger", 0},
    {Do::Travel, "Travel", 1},
    {Do::Restart, "Restart", 6},
    {Do::Kill, "Kill", 2},
    {Do::KillAct, "KillAct", 4},
    {Do::KillCheck, "KillCheck", 2},
    {Do::HideFile, "HideFile", 1},
    {Do::ShowFile, "ShowFile", 4},
    {Do::Protect, "Protect", 1},
    {Do::Release, "Release", 4},
    {Do::Hold, "Hold", 1},
    {Do::LetGo, "LetGo", 4},
    {Do::Snooze, "Snooze", 14},
    {Do::Dismiss, "Dismiss", 18},
    {Do::ViewSnooze, "ViewSnooze", 2},
    {Do::ViewDismiss, "ViewDismiss", 3},
    {Do::Reactivate, "Reactivate", 2},
    {Do::HideEvent, "HideEvent", 1},
    {Do::DeleteItem, "DeleteItem", 1},
    {Do::Foreign, "Foreign", 3},
}};

/// Near some of these clocks change, here or in New York.
struct Day {
    int year;
    int month;
    int day;
};
constexpr std::array<Day, 5> kDays = {
    {{2026, 11, 20}, {2026, 10, 31}, {2027, 3, 13}, {2026, 10, 24}, {2027, 3, 27}}};

class Dice {
public:
    explicit Dice(std::uint64_t seed) : random_(seed) {}
    int upTo(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    bool one(int of) { return upTo(of) == 0; }
    Do step() {
        int sum = 0;
        for (const Kind& kind : kKinds) {
            sum += kind.weight;
        }
        int at = upTo(sum);
        for (const Kind& kind : kKinds) {
            if ((at -= kind.weight) < 0) {
                return kind.what;
            }
        }
        return Do::Check;
    }

private:
    std::mt19937_64 random_;
};

int snoozeMinutes(Dice& dice) {
    constexpr int kDayMinutes = 1440;
    if (dice.one(8)) {
        return 1 + dice.upTo(14 * kDayMinutes);
    }
    return 1 + dice.upTo(dice.one(3) ? kDayMinutes : 30);
}

Step stepOf(Do what, Dice& dice) {
    Step step{what, dice.upTo(1000), dice.upTo(1000), dice.upTo(1000)};
    switch (what) {
        case Do::Wait:
            step.a = 1 + dice.upTo(dice.one(3) ? 7200 : 300);
            break;
        case Do::Sleep:
            step.a = 60 + dice.upTo(dice.one(4) ? 3 * 86400 : 14400);
            break;
        case Do::AddSingle:
        case Do::AddSeries:
            step.a = dice.upTo(dice.one(3) ? 4320 : 240) - 60;
            break;
        case Do::Move:
        case Do::Retime:
            step.b = dice.upTo(600) - 200;
            break;
        case Do::Except:
            step.c = dice.upTo(600) - 300;
            break;
        case Do::During:
        case Do::KillCheck:
            step.a = dice.upTo(12);
            break;
        case Do::HostClock:
            step.a = dice.one(3) ? 0 : dice.upTo(600) - 300;
            break;
        case Do::TurnClock:
            step.a = dice.upTo(14400) - 7200;
            break;
        case Do::WrongClock:
            step.a = dice.one(2) ? 0 : dice.upTo(41) - 20;
            break;
        case Do::Snooze:
        case Do::ViewSnooze:
        case Do::Foreign:
            step.b = snoozeMinutes(dice);
            break;
        default:
            break;
    }
    return step;
}

// Anywhere in it.
void add(Trouble trouble, History& history, std::uint64_t seed) {
    constexpr std::uint64_t kOther = 0x9E3779B97F4A7C15U;
    static constexpr std::array<std::array<Do, 2>, 4> kSteps = {{{Do::Check, Do::Check},
                                                                 {Do::Copy, Do::Copy},
                                                                 {Do::LoseLedger, Do::TearLedger},
                                                                 {Do::WrongClock, Do::WrongClock}}};
    if (trouble == Trouble::None) {
        return;
    }
    Dice dice(seed ^ kOther);
    for (int left = 1 + dice.upTo(8); left > 0; --left) {
        const int at = dice.upTo(static_cast<int>(history.steps.size()));
        const auto which = static_cast<std::size_t>(dice.upTo(2));
        const Do what = kSteps.at(static_cast<std::size_t>(trouble)).at(which);
        history.steps.insert(history.steps.begin() + at, stepOf(what, dice));
    }
}

Zone zoneNamed(const std::string& name) {
    for (const Zone zone : kAllZones) {
        if (name == nameOf(zone)) {
            return zone;
        }
    }
    throw std::runtime_error("no zone of a history: " + name);
}

Step stepIn(const std::string& line) {
    std::istringstream words(line);
    std::string name;
    Step step;
    words >> name >> step.a >> step.b >> step.c;
    const auto kind = std::find_if(kKinds.begin(), kKinds.end(),
                                   [&](const Kind& one) { return name == one.name; });
    if (!words || kind == kKinds.end()) {
        throw std::runtime_error("no step of a history: " + line);
    }
    step.what = kind->what;
    return step;
}

// The first thing that is wrong, without its times and numbers.
std::string kindOf(const std::string& wrong) {
    std::string kind = wrong.substr(0, wrong.find('\n'));
    std::erase_if(kind, [](char c) { return (c >= '0' && c <= '9') || c == ' '; });
    return kind;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Step& step) {
    return out << kKinds.at(static_cast<std::size_t>(step.what)).name << ' ' << step.a << ' '
               << step.b << ' ' << step.c << '\n';
}

std::ostream& operator<<(std::ostream& out, const History& history) {
    out << history.year << ' ' << history.month << ' ' << history.day << ' ' << history.minute
        << ' ' << nameOf(history.zone) << '\n';
    for (const Step& step : history.steps) {
        out << step;
    }
    return out;
}

History readHistory(std::istream& text) {
    History history;
    bool begun = false;
    for (std::string line; std::getline(text, line);) {
        if (line.empty() || line.front() == '#') {
            continue;
        }
        if (begun) {
            history.steps.push_back(stepIn(line));
            continue;
        }
        std::istringstream words(line);
        std::string zone;
        if (!(words >> history.year >> history.month >> history.day >> history.minute >> zone)) {
            throw std::runtime_error("no begin of a history: " + line);
        }
        history.zone = zoneNamed(zone);
        begun = true;
    }
    return history;
}

History randomHistory(std::uint64_t seed, Trouble trouble) {
    Dice dice(seed);
    const Day day = kDays[static_cast<std::size_t>(dice.upTo(kDays.size()))];
    History history{day.year, day.month, day.day, dice.upTo(1440), Zone::Berlin, {}};
    if (dice.one(6)) {
        history.zone = kAllZones[static_cast<std::size_t>(dice.upTo(kAllZones.size()))];
    }
    const int steps = 10 + dice.upTo(110);
    for (int i = 0; i < steps; ++i) {
        history.steps.push_back(stepOf(dice.step(), dice));
    }
    add(trouble, history, seed);
    return history;
}

// Leaves out ever smaller pieces as long as it still goes wrong in the same way.
History shortened(History history) {
    const std::string kind = kindOf(live(history).wrong);
    for (std::size_t piece = history.steps.size() / 2; piece > 0; piece /= 2) {
        for (std::size_t at = 0; at + piece <= history.steps.size();) {
            History shorter = history;
            const auto begin = shorter.steps.begin() + static_cast<std::ptrdiff_t>(at);
            shorter.steps.erase(begin, begin + static_cast<std::ptrdiff_t>(piece));
            if (kindOf(live(shorter).wrong) != kind) {
                at += piece;
            } else {
                history = std::move(shorter);
            }
        }
    }
    return history;
}

}  // namespace vl::simulation
