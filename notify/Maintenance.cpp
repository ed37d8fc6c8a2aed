#include "notify/Maintenance.h"

#include "base/ErrorState.h"
#include "notify/ReadAgain.h"

namespace vl {

namespace {

/// Who asked for something to be removed waits longer for others than a tick does.
class Patient {
public:
    explicit Patient(DBRemindUtils& db) : db_(db), before_(db.Patience) {
        db_.Patience = jet::OpenOptions().patience;
        db_.CloseDB();
    }
    ~Patient() { db_.Patience = before_; }
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

void Maintenance::CleanUp() {
    const ErrScope scope;
    const std::int64_t events = db_.DelDeletedVLBases(false);
    if (events < 1) {
        boxes_.ShowBox({kCompleted, "Nothing to clean up. All events can be located"});
        return;
    }
    const std::size_t files = db_.DeletedVLBasesCol()->Count();
    db_.CloseDB();  // the host needs the file while the user thinks
    const BoxRequest question{"Clean up database...", cleanUpQuestion(events, files),
                              BoxButtons::YesNoCancel, BoxIcon::Question};
    if (boxes_.ShowBox(question) != BoxAnswer::Yes) {
        return;
    }
    std::int64_t removed = 0;
    {
        const Patient command(db_);
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
            const Patient command(db_);
            db_.DeleteAll();
        }
        readAndShow();
    }
}

void Maintenance::readAndShow() {
    for (CalEvents* set : {&reminders_, &period_}) {
        readAgain(*set, db_, true, false);
    }
    forgetRemoved();
    attempt([&] { screen_.DoPeriod(); });
    db_.CloseDB();
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
