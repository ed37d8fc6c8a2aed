// What the user does.
#include <array>

#include "ExactHistory.h"

namespace vl::exact {

void ExactHistory::userActs() {
    for (auto& [GUID, rule] : rules_) {
        const auto& row = desk_.rows.at(GUID);
        if (wrong_.empty() && row->status != "AllDone" && dice_.oneIn(rule.isListed() ? 5 : 60)) {
            now_ = now_.addSeconds(7);
            desk_.clock.time = now_;
            act(GUID, *row);
        }
    }
}

// Some occurrence that a view shows, by one of its reminders. What is finished has left the sets:
// without a file nobody reads it again.
bool ExactHistory::chooseInView(const std::string& GUID, const calEvent& event) {
    const auto starts = event.ICalRecEvents(now_.addDays(-3), now_.addDays(5));
    if (!desk_.program->reminders.mCol->Exists(GUID) || starts.empty() ||
        event.RemindersCol->Count() == 0) {
        return false;
    }
    const DateTime start =
        starts.at(static_cast<std::size_t>(dice_.below(static_cast<int>(starts.size()))));
    if (event.IsRepeating() && replacedOf(event).contains(start)) {
        return false;
    }
    const int minutes =
        -(dice_.oneIn(2) ? event.RemindersMinOffsetMin : event.RemindersMaxOffsetMin);
    const auto object = objectAt<calEvent>(*desk_.program->period.mCol, GUID);
    desk_.listed[GUID] = {object, start, start.addMinutes(minutes)};
    return true;
}

void ExactHistory::act(const std::string& GUID, const calEvent& event) {
    ExactRule& rule = rules_[GUID];
    const bool isInView = !rule.isListed() || dice_.oneIn(5);
    if (isInView && !chooseInView(GUID, event)) {
        return;
    }
    static constexpr std::array kActs = {Act::Snooze,      Act::Snooze, Act::This, Act::This,
                                         Act::AllButAfter, Act::All,    Act::Done, Act::Reactivate};
    static constexpr std::array kNames = {"snoozed",       "snoozed", "this", "this",
                                          "all but after", "all",     "done", "reactivated"};
    const auto which = static_cast<std::size_t>(dice_.below(kActs.size()));
    const Act act = kActs.at(which);
    const DateTime start = desk_.listed.at(GUID).InstanceStart;
    DateTime until;
    if (act == Act::Snooze) {
        const int minutes = 1 + dice_.below(3) * dice_.below(900) + dice_.below(60);
        until = now_.addMinutes(minutes);
        desk_.snooze(GUID, minutes);
    } else if (act == Act::Reactivate) {
        desk_.reactivate(GUID);
    } else {
        const DismissMode mode = act == Act::AllButAfter ? DismissMode::AllButAfter
                                 : act == Act::All       ? DismissMode::All
                                                         : DismissMode::This;
        desk_.dismiss(GUID, mode, act == Act::Done);
    }
    rule.acted(event, act, start, now_, until);
    ++tried_.acts;
    note(GUID, std::string(kNames.at(which)) + (isInView ? " in a view" : "") + " on " +
                   formatDateTime(start) +
                   (until.isZero() ? "" : " until " + formatDateTime(until)));
    compareStatus(GUID, event);
}

void ExactHistory::compareStatus(const std::string& GUID, const calEvent& event) {
    if (event.status == "AllDone" && rules_[GUID].isAnyLeft(event, replacedOf(event), now_)) {
        fail(GUID, "is all done, but something of it is left");
    }
}

}  // namespace vl::exact
