#include "History.h"

#include <array>
#include <ostream>

namespace vl::simulation {

namespace {

constexpr std::array kNames = {"Wait",     "Check",     "Sleep",     "AddSingle", "AddSeries",
                               "Move",     "Touch",     "Except",    "Cancel",    "Exclude",
                               "Delete",   "HostClock", "TurnClock", "Restart",   "HideFile",
                               "ShowFile", "Snooze",    "Dismiss"};
static_assert(kNames.size() == static_cast<std::size_t>(Do::kCount));

/// How often each step comes, in a hundred or so.
struct Chance {
    Do what;
    int weight;
};
constexpr std::array<Chance, 18> kChances = {{
    {Do::Wait, 14},
    {Do::Check, 30},
    {Do::Sleep, 6},
    {Do::AddSingle, 9},
    {Do::AddSeries, 5},
    {Do::Move, 5},
    {Do::Touch, 2},
    {Do::Except, 3},
    {Do::Cancel, 1},
    {Do::Exclude, 1},
    {Do::Delete, 2},
    {Do::HostClock, 2},
    {Do::TurnClock, 1},
    {Do::Restart, 3},
    {Do::HideFile, 1},
    {Do::ShowFile, 3},
    {Do::Snooze, 7},
    {Do::Dismiss, 9},
}};

/// Near some of these the clocks of New York change, and those here do not.
struct Day {
    int year;
    int month;
    int day;
};
constexpr std::array<Day, 3> kDays = {{{2026, 11, 20}, {2026, 10, 31}, {2027, 3, 13}}};

class Dice {
public:
    explicit Dice(std::uint64_t seed) : random_(seed) {}
    int upTo(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    Do step() {
        int sum = 0;
        for (const Chance& chance : kChances) {
            sum += chance.weight;
        }
        int at = upTo(sum);
        for (const Chance& chance : kChances) {
            if ((at -= chance.weight) < 0) {
                return chance.what;
            }
        }
        return Do::Check;
    }

private:
    std::mt19937_64 random_;
};

Step stepOf(Do what, Dice& dice) {
    Step step{what, dice.upTo(1000), dice.upTo(1000), dice.upTo(1000)};
    switch (what) {
        case Do::Wait:
            step.a = 1 + dice.upTo(dice.upTo(3) == 0 ? 7200 : 300);
            break;
        case Do::Sleep:
            step.a = 60 + dice.upTo(dice.upTo(4) == 0 ? 3 * 86400 : 14400);
            break;
        case Do::AddSingle:
        case Do::AddSeries:
            step.a = dice.upTo(dice.upTo(3) == 0 ? 4320 : 240) - 60;
            break;
        case Do::Move:
            step.b = dice.upTo(600) - 200;
            break;
        case Do::Except:
            step.c = dice.upTo(600) - 300;
            break;
        case Do::HostClock:
            step.a = dice.upTo(600) - 300;
            break;
        case Do::TurnClock:
            step.a = dice.upTo(14400) - 7200;
            break;
        case Do::Snooze:
            step.b = 1 + dice.upTo(dice.upTo(3) == 0 ? 1440 : 30);
            break;
        default:
            break;
    }
    return step;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Step& step) {
    return out << "{Do::" << kNames.at(static_cast<std::size_t>(step.what)) << ", " << step.a
               << ", " << step.b << ", " << step.c << "}";
}

std::ostream& operator<<(std::ostream& out, const History& history) {
    out << "{" << history.year << ", " << history.month << ", " << history.day << ", "
        << history.minute << ",\n {";
    const char* between = "";
    for (const Step& step : history.steps) {
        out << between << step;
        between = ",\n  ";
    }
    return out << "}}";
}

History randomHistory(std::uint64_t seed) {
    Dice dice(seed);
    const Day day = kDays[static_cast<std::size_t>(dice.upTo(kDays.size()))];
    History history{day.year, day.month, day.day, dice.upTo(1440), {}};
    const int steps = 10 + dice.upTo(110);
    for (int i = 0; i < steps; ++i) {
        history.steps.push_back(stepOf(dice.step(), dice));
    }
    return history;
}

// Leaves out ever smaller pieces as long as it still goes wrong.
History shortened(History history) {
    for (std::size_t piece = history.steps.size() / 2; piece > 0; piece /= 2) {
        for (std::size_t at = 0; at + piece <= history.steps.size();) {
            History shorter = history;
            const auto begin = shorter.steps.begin() + static_cast<std::ptrdiff_t>(at);
            shorter.steps.erase(begin, begin + static_cast<std::ptrdiff_t>(piece));
            if (live(shorter).wrong.empty()) {
                at += piece;
            } else {
                history = std::move(shorter);
            }
        }
    }
    return history;
}

}  // namespace vl::simulation
