#include "ExactHistory.h"

#include <algorithm>

namespace vl::exact {

namespace {

constexpr int kSteps = 250;
// As many lines as tell a failure.
constexpr std::size_t kLinesTold = 30;

// Most on quiet days, others where clocks in Berlin go back, or forward.
DateTime beginOf(unsigned seed) {
    switch (seed % 5) {
        case 3:
            return DateTime::fromCivil(2026, 10, 23, 8, 0, 0);
        case 4:
            return DateTime::fromCivil(2027, 3, 26, 8, 0, 0);
        default:
            return DateTime::fromCivil(2026, 11, 20, 8, 0, 0);
    }
}

std::string say(const Reminder& reminder) {
    return formatDateTime(reminder.time) + " of " + formatDateTime(reminder.start);
}

std::string say(const std::vector<Reminder>& reminders) {
    std::string text;
    for (const Reminder& one : reminders) {
        text += (text.empty() ? "" : " or ") + say(one);
    }
    return text.empty() ? "nothing" : text;
}

std::string masterOf(const std::string& GUID) { return GUID.substr(GUID.size() - 1); }

}  // namespace

ExactHistory::ExactHistory(unsigned seed, Tried& tried)
    : dice_(seed), tried_(tried), now_(beginOf(seed)), lastCheck_(now_), firstOfDay_(now_) {
    desk_.check(now_);
    isFirst_ = false;
}

std::string ExactHistory::live() {
    for (int i = 0; i < kSteps && wrong_.empty(); ++i) {
        step();
    }
    ++tried_.histories;
    return wrong_;
}

void ExactHistory::step() {
    turnClock();
    if (dice_.oneIn(8)) {
        hostWrites();
    } else if (dice_.oneIn(9)) {
        restart();
    } else if (dice_.oneIn(40)) {
        beOff();
    }
    check();
    if (wrong_.empty()) {
        userActs();
    }
}

// A check every some minutes, and sleeps. None while clocks change: in an hour that comes twice
// now is not one time.
void ExactHistory::turnClock() {
    now_ = now_.addMinutes(1 + dice_.below(25));
    if (dice_.oneIn(30)) {
        now_ = now_.addMinutes(dice_.below(900));
    }
    const DateTime midnight = now_.date();
    if (now_ >= midnight.addMinutes(100) && now_ < midnight.addMinutes(190)) {
        now_ = midnight.addMinutes(190).addSeconds(dice_.below(60));
    }
    desk_.clock.time = now_;
}

// ---- the host

void ExactHistory::hostWrites() {
    const std::string GUID(1, static_cast<char>('A' + dice_.below(4)));
    if (!desk_.rows.contains(GUID)) {
        desk_.put(host_.enter(GUID, now_));
        rules_[GUID].entered(*desk_.rows.at(GUID));
        note(GUID, "entered: " + ExactHost::say(*desk_.rows.at(GUID)));
    } else if (dice_.oneIn(7)) {
        hostExcepts(GUID);
    } else {
        const std::string exception = "x" + GUID;
        hostChanges(desk_.rows.contains(exception) && dice_.oneIn(5) ? exception : GUID, now_);
    }
}

void ExactHistory::hostChanges(const std::string& GUID, DateTime when) {
    const calEvent before = *desk_.rows.at(GUID);
    bool isChanged = false;
    desk_.change(GUID, [&](calEvent& event) { isChanged = host_.change(event, when); });
    const calEvent& event = *desk_.rows.at(GUID);
    rules_[GUID].written(before, event);
    note(GUID, (isChanged ? "changed: " : "written: ") + ExactHost::say(event));
}

void ExactHistory::hostExcepts(const std::string& GUID) {
    const std::string exception = "x" + GUID;
    const auto row = desk_.rows.contains(exception)
                         ? nullptr
                         : host_.except(exception, *desk_.rows.at(GUID), now_);
    if (row) {
        desk_.put(row);
        rules_[exception].entered(*row);
        replaced_[desk_.rows.at(GUID)->id].insert(row->RExceptionStartTimeOrig);
        note(exception, "entered: " + ExactHost::say(*row));
    }
}

// ---- the program

void ExactHistory::restart() {
    desk_.start();
    isFirst_ = true;
    for (auto& [GUID, rule] : rules_) {
        rule.ended();
    }
    note("", "restart");
}

// The program is off for hours or days, and the host goes on.
void ExactHistory::beOff() {
    desk_.stop();
    const int minutes = 30 + dice_.below(2400);
    for (int n = dice_.below(3); n > 0; --n) {
        const std::string GUID(1, static_cast<char>('A' + dice_.below(4)));
        if (desk_.rows.contains(GUID)) {
            hostChanges(GUID, now_.addMinutes(dice_.below(minutes)));
        }
    }
    now_ = now_.addMinutes(minutes);
    turnClock();
    restart();
}

std::optional<Reminder> ExactHistory::shown(const std::string& GUID) const {
    if (!desk_.program->state.NewReminders->Exists(GUID)) {
        return std::nullopt;
    }
    const ActRow& row = desk_.listed.at(GUID);
    return Reminder{row.InstanceStart, row.reminder};
}

void ExactHistory::check() {
    desk_.check(now_);
    ++tried_.checks;
    mustRing_ = mayRing_ = false;
    for (const auto& [GUID, row] : desk_.rows) {
        if (wrong_.empty()) {
            compare(GUID, *row);
        }
    }
    if (wrong_.empty() && (desk_.rang() ? !mayRing_ : mustRing_)) {
        fail("", std::string("the sound was ") + (desk_.rang() ? "" : "not ") + "played");
    }
    if (lastCheck_.date() != now_.date()) {
        firstOfDay_ = now_;
    }
    lastCheck_ = now_;
    isFirst_ = false;
}

void ExactHistory::compare(const std::string& GUID, const calEvent& event) {
    ExactRule& rule = rules_[GUID];
    const DateTime from = isFirst_ ? std::min(lastCheck_, now_.date()) : lastCheck_;
    const DateTime mayFrom = isFirst_ ? std::min(firstOfDay_, from) : from;
    const Answer answer =
        rule.ask(event, replacedOf(event), {from, now_.addSeconds(10), now_, mayFrom});
    const auto taken = shown(GUID);
    ++tried_.decisions;
    if (rule.isListed()) {
        mustRing_ = mustRing_ || answer.isDueAgain;
        mayRing_ = mayRing_ || answer.mayBeDueAgain;
        if (!taken) {
            fail(GUID, "has left the list");
        }
        return;
    }
    if (!answer.allows(taken)) {
        std::string wanted = say(answer.first);
        if (!answer.orFirst.empty()) {
            wanted += " (or " + say(answer.orFirst) + ")";
        }
        fail(GUID, "takes " + (taken ? say(*taken) : "nothing") + ", not " + wanted);
    } else if (taken) {
        rule.taken(event, *taken);
        note(GUID, "takes " + say(*taken));
        ++tried_.taken;
        mustRing_ = mayRing_ = true;
    }
    tried_.either += answer.orFirst.empty() ? 0U : 1U;
}

// ---- what is told

void ExactHistory::note(const std::string& GUID, const std::string& text) {
    lines_.push_back({GUID, formatDateTime(now_) + " " + GUID + " " + text});
}

void ExactHistory::fail(const std::string& GUID, const std::string& text) {
    note(GUID, text);
    wrong_ = told(GUID);
}

// The last lines about the event, its exceptions and its series.
std::string ExactHistory::told(const std::string& GUID) const {
    std::vector<std::string> texts;
    for (const Line& line : lines_) {
        if (line.GUID.empty() || GUID.empty() || masterOf(line.GUID) == masterOf(GUID)) {
            texts.push_back(line.text);
        }
    }
    std::string text;
    for (std::size_t i = texts.size() - std::min(texts.size(), kLinesTold); i < texts.size(); ++i) {
        text += "  " + texts[i] + "\n";
    }
    return text;
}

}  // namespace vl::exact
