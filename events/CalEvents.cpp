#include "events/CalEvents.h"

#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl {

namespace {

// Type codes of the record set whose nulls read as 0; all others read as an empty text.
constexpr int kTypeInteger = 3;
constexpr int kTypeDate = 7;

constexpr std::size_t kSubjectUnits = 50;

constexpr int kMaster = 1;

std::string quoted(std::string_view value) { return "\"" + std::string(value) + "\""; }

void clearExceptionFields(calEvent& master) {
    master.RExceptionStartTimeOrig = DateTime();
    master.RExceptionEndTimeOrig = DateTime();
    master.BeforeMoveStartDateTime = DateTime();
    master.ISRecurrenceExceptionDeleted = 0;
    master.recurringEventId.clear();
}

}  // namespace

CalEvents::CalEvents(DBRemindUtils& db, const Clock& clock, std::string defaultReminders)
    : db_(db), clock_(clock), defaultReminders_(std::move(defaultReminders)) {}

void CalEvents::Add(const std::shared_ptr<calEvent>& event, std::string_view sKey) {
    if (!mCol) {
        mCol = std::make_shared<GenCollection>();
    }
    mCol->Add(Variant(ObjectRef(event)), sKey);
}

int CalEvents::ReadDB(bool Reload, bool IncludeAllDone, std::optional<bool> Dismissed) {
    const ErrScope scope;
    if (!mCol || Reload) {
        mCol = std::make_shared<GenCollection>();
        dLastRead = DateTime();
    }
    int result = 0;
    const auto rows = db_.OpenRS(query(IncludeAllDone, Dismissed));
    if (rows && rows->isOpen() && !rows->EOF_()) {
        result = 1;
        for (rows->MoveFirst(); !rows->EOF_(); rows->MoveNext()) {
            attempt([&] {
                const auto event = readEvent(*rows);
                mCol->Remove(event->GUID);
                Add(event, event->GUID);
            });
        }
        rows->Close();
    }
    db_.CloseDB();
    dLastRead = clock_.now();
    return result;
}

std::string CalEvents::query(bool IncludeAllDone, std::optional<bool> Dismissed) const {
    std::string text = "SELECT * FROM Reminders WHERE Deleted=0";
    if (!IncludeAllDone) {
        text += " AND Status <> \"AllDone\"";
    }
    if (Dismissed) {
        text += *Dismissed ? " AND Dismissed is not Null" : " AND Dismissed is Null";
    }
    if (dLastRead > DateTime()) {
        text += " AND Modified > " + DBRemindUtils::ToSQLDateTime(dLastRead, true);
    }
    return text;
}

std::shared_ptr<calEvent> CalEvents::readEvent(const RecordSet& row) const {
    auto event = std::make_shared<calEvent>();
    FillEvent(row, *event);
    event->SetRemindersCol(defaultReminders_);
    return event;
}

void CalEvents::FillEvent(const RecordSet& row, calEvent& event) {
    const ErrScope scope;
    for (std::size_t i = 0; i < row.fields().size(); ++i) {
        const auto& field = row.fields()[i];
        attempt([&] {
            const Variant& value = row.value(i);
            if (!value.isNull()) {
                event.setProperty(field.name, value);
            } else if (field.type == kTypeInteger || field.type == kTypeDate) {
                event.setProperty(field.name, Variant(0));
            } else {
                event.setProperty(field.name, Variant(""));
            }
        });
    }
    if (!event.recurrence.empty()) {
        attempt([&] { event.LoadRecurrence(); });
        event.RecurrenceState = kMaster;
    }
    if (event.RecurrenceState == kMaster) {
        clearExceptionFields(event);
    }
    const auto cut = text::leftUtf16(event.Subject, kSubjectUnits);
    event.Subject.resize(cut.size());
}

std::shared_ptr<calEvent> CalEvents::at(std::size_t position) const {
    return mCol ? objectAt<calEvent>(*mCol, position) : nullptr;
}

std::shared_ptr<calEvent> CalEvents::firstOf(const std::string& statement) const {
    const ErrScope scope;
    std::shared_ptr<calEvent> event;
    attempt([&] {
        const auto rows = db_.OpenRS(statement);
        if (rows && rows->isOpen() && !rows->EOF_()) {
            rows->MoveFirst();
            event = readEvent(*rows);
            rows->Close();
        }
    });
    return event;
}

std::shared_ptr<calEvent> CalEvents::EventByID(std::string_view id) const {
    return firstOf("SELECT * FROM Reminders WHERE id=" + quoted(id));
}

std::shared_ptr<calEvent> CalEvents::EventByGUID(std::string_view GUID) const {
    return firstOf("SELECT * FROM Reminders WHERE GUID=" + quoted(GUID));
}

std::string CalEvents::ReminderMSG(std::string_view message) {
    GenCollection parts;
    parts.LoadFromList(message, " || ");
    if (parts.Count() < 2) {
        return std::string(message);
    }
    return parts.Item(1).toText() + " (" + parts.Item(2).toText() + ")";
}

}  // namespace vl
