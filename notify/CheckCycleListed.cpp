// What is due comes into the list of new reminders, and is told.
#include "app/HtmlText.h"
#include "app/TimeText.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "notify/CheckCycle.h"

namespace vl {

namespace {

// Summary and reminder line.
std::shared_ptr<ValueList> lineOf(const calEvent& event) {
    std::string text;
    attempt([&] { text = event.ReminderText(); });
    auto list = std::make_shared<ValueList>();
    list->items = {Variant(event.Summary().str()),
                   Variant(" " + text + " (" + shortTimeText(event.RecordedReminderD()) + ")")};
    return list;
}

}  // namespace

// The rows of the list show local times, and acts are on what they show.
void CheckCycle::refillListed() {
    const GenCollection listed = *state_.NewReminders;
    for (const Variant& item : listed) {
        const auto row = objectIn<calEvent>(item);
        const auto held = row && reminders_.mCol && reminders_.mCol->Exists(row->GUID)
                              ? objectAt<calEvent>(*reminders_.mCol, row->GUID)
                              : nullptr;
        if (!held || !held->HasOwnZone()) {
            continue;
        }
        // A copy: what is listed is none of the sets'.
        const auto event = std::make_shared<calEvent>(*held);
        if (reminders_.RecordListed(*event)) {
            state_.NewReminders->Add(Variant(event), event->GUID, 0, 0, true);
            lines_.Add(Variant(lineOf(*event)), event->GUID, 0, 0, true);
            attempt([&] { screen_.UpdateItemR(event, kNewRemindersGrid); });
        }
    }
}

void CheckCycle::takeIn(const GenCollection& due, std::string& message) {
    state_.EvCol = std::make_shared<GenCollection>();
    std::vector<std::shared_ptr<calEvent>> taken;
    for (const Variant& item : due) {
        const auto event = objectIn<calEvent>(item);
        if (event && !state_.LastEventsReminded->Exists(event->GUID)) {
            takeIn(event, message);
            taken.push_back(event);
        }
    }
    reminders_.NoteListed(taken);
}

void CheckCycle::takeIn(const std::shared_ptr<calEvent>& event, std::string& message) {
    const auto entry = lineOf(*event);
    message += entry->items[0].toText() + entry->items[1].toText() + "\r\n";
    state_.EvCol->Add(Variant(entry), event->GUID);
    lines_.Add(Variant(entry), event->GUID, 0, 0, true);
    event->dLastReminder = event->RecordedReminderD();
    state_.NewReminders->Add(Variant(event), event->GUID, 0, 0, true);
    attempt([&] { screen_.AddItemR(event, kNewRemindersGrid); });
    attempt([&] { screen_.UpdateItemR(event, kAllRemindersGrid); });
    state_.dLastReminder = clock_.now();
}

void CheckCycle::rebuildIndex() {
    state_.LastEventsReminded = std::make_shared<GenCollection>(*state_.NewReminders);
    if (lines_.Count() <= state_.NewReminders->Count()) {
        return;
    }
    // Most of what was listed once is not any more.
    const GenCollection listed = lines_;
    lines_ = GenCollection();
    for (const Variant& item : *state_.NewReminders) {
        if (const auto event = objectIn<calEvent>(item); event && listed.Exists(event->GUID)) {
            lines_.Add(listed.Item(event->GUID), event->GUID);
        }
    }
}

void CheckCycle::notify(const std::string& message) {
    if (state_.NewReminders->Count() == 0 || state_.bMuted) {
        return;
    }
    if (!state_.bSilent) {
        attempt([&] { screen_.PlayReminderSound(); });
    }
    std::string heading;
    attempt([&] { heading = title(); });
    attempt([&] { deliver(heading, message); });
}

std::string CheckCycle::title() const {
    const std::size_t listed = state_.NewReminders->Count();
    if (listed > 1) {
        return std::to_string(listed) + " new reminders";
    }
    const auto event = objectAt<calEvent>(*state_.NewReminders, 1);
    return event ? period_.ReminderMSG(htmlToText(event->Summary())) : std::string();
}

void CheckCycle::deliver(const std::string& title, const std::string& message) {
    const auto is = [&](const char* type) { return text::equalsNoCase(state_.sNotifType, type); };
    if (is("D")) {
        const auto& shown = state_.EvCol->Count() > 0 ? *state_.EvCol : *state_.NewReminders;
        screen_.ShowNewReminders(shown.Key(1));
    } else if (is("E")) {
        screen_.ShowPopUp({"Email notifications...",
                           "This feature is not yet implemented, but will send email reminders",
                           5000, false, 250, 100, 100});
    } else if (is("T")) {
        // The tray icon is set at the end of every check.
    } else if (is("P")) {
        fillWithListed();
        screen_.ShowPopUp({title, "", -1, false, 300, 100, 100});
    } else if (is("S:")) {
        // The menu stores "S": a check never shows the system's balloon.
        screen_.ShowSystem(title, message, 5000);
    }
}

// The toast of a check that took in nothing new shows every listed reminder, never an empty body.
void CheckCycle::fillWithListed() {
    if (state_.EvCol->Count() > 0) {
        return;
    }
    for (const Variant& item : *state_.NewReminders) {
        if (const auto event = objectIn<calEvent>(item)) {
            state_.EvCol->Add(lines_.Item(event->GUID), event->GUID);
        }
    }
}

}  // namespace vl
