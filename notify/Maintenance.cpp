#include "notify/Maintenance.h"

#include <utility>

#include "base/ErrorState.h"
#include "notify/ReadAgain.h"

namespace vl {

namespace {

/// Who has asked for something waits longer for others than a tick does. What is open is opened
/// anew, before and after: a connection keeps the patience that it was opened with.
class Patient {
public:
    Patient(DBRemindUtils& db, std::chrono::milliseconds patience)
        : db_(db), before_(std::exchange(db.Patience, patience)) {
        db_.CloseDB();
    }
    ~Patient() {
        db_.CloseDB();
        db_.Patience = before_;
    }
    Patient(const Patient&) = delete;
    Patient& operator=(const Patient&) = delete;

private:
    DBRemindUtils& db_;
    std::chrono::milliseconds before_;
};

constexpr const char* kCompleted = "Clean up completed";

std::string cleanUpQuestion(std::int64_t events, std::size_t files) {
    const std::string n = std::to_string(events);
    return n + " events in " + std::to_string(files) +
           " files could not be located\r\n(e.g. Files were moved, renamed or deleted)\r\r"
           "Clean up will remove these " +
           n + " events\rClean up database? \r";
}

}  // namespace

Maintenance::Waste Maintenance::findWaste() {
    const Patient command(db_, Patience);
    Waste waste;
    waste.events = db_.DelDeletedVLBases(false);
    if (waste.events > 0) {
        waste.files = db_.DeletedVLBasesCol()->Count();
    }
    return waste;  // the host needs the file while the user thinks
}

void Maintenance::CleanUp() {
    const ErrScope scope;
    const Waste waste = findWaste();
    if (waste.events < 1) {
        boxes_.ShowBox({kCompleted, "Nothing to clean up. All events can be located"});
        return;
    }
    const BoxRequest question{"Clean up database...", cleanUpQuestion(waste.events, waste.files),
                              BoxButtons::YesNoCancel, BoxIcon::Question};
    if (boxes_.ShowBox(question) != BoxAnswer::Yes) {
        return;
    }
    std::int64_t removed = 0;
    {
        const Patient command(db_, Patience);
        removed = db_.DelDeletedVLBases(true);
    }
    boxes_.ShowBox({kCompleted, std::to_string(removed) + " events were removed"});
    readAndShow();
}

void Maintenance::DeleteAll() {
    const ErrScope scope;
    const BoxRequest question{"Reminders database management...",
                              "Delete all reminders? \rReminders can be re-enabled in Velmora\r"
                              "(Tools > Reminders > Reminder Options)\r",
                              BoxButtons::YesNoCancel, BoxIcon::Question};
    if (boxes_.ShowBox(question) == BoxAnswer::Yes) {
        {
            const Patient command(db_, Patience);
            db_.DeleteAll();
        }
        readAndShow();
    }
}

void Maintenance::readAndShow() {
    const Patient command(db_, Patience);
    for (CalEvents* set : {&reminders_, &period_}) {
        readAgain(*set, true, false);
    }
    forgetRemoved();
    attempt([&] { screen_.DoPeriod(); });
}

// A reminder whose event was just removed has nothing left to open or to snooze.
void Maintenance::forgetRemoved() {
    for (const Variant& item : *state_.NewReminders) {
        const auto event = objectIn<calEvent>(item);
        if (event && !reminders_.EventByGUID(event->GUID) &&
            db_.ReadTrouble().number == ErrNo::None) {
            check_.RemoveGUIDAll(event->GUID);
        }
    }
}

}  // namespace vl
