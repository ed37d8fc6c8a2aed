#include "events/CalEvents.h"

#include "DueBook.h"
#include "RowReader.h"
#include "app/TimeZone.h"
#include "base/ErrorState.h"

namespace vl {

namespace {

std::string quoted(std::string_view value) { return "\"" + std::string(value) + "\""; }

}  // namespace

CalEvents::CalEvents(DBRemindUtils& db, const Clock& clock, std::string defaultReminders)
    : db_(db),
      clock_(clock),
      defaultReminders_(std::move(defaultReminders)),
      noLedger_(std::make_unique<Ledger>(clock)),
      ledger_(noLedger_.get()),
      book_(std::make_unique<DueBook>()) {}

CalEvents::~CalEvents() = default;

void CalEvents::Add(const std::shared_ptr<calEvent>& event, std::string_view sKey) {
    if (!mCol) {
        mCol = std::make_shared<GenCollection>();
    }
    mCol->Add(Variant(event), sKey);
}

int CalEvents::ReadDB(bool Reload, bool IncludeAllDone, std::optional<bool> Dismissed) {
    const ErrScope scope;
    if (!mCol || Reload) {
        mCol = std::make_shared<GenCollection>();
        dLastRead = DateTime();
    }
    int result = 0;
    const auto rows = db_.OpenRS(ReadStatement(IncludeAllDone, Dismissed, dLastRead));
    if (rows && rows->isOpen() && !rows->EOF_()) {
        result = 1;
        const TimeZone local = TimeZone::local();
        const RowReader reader(*rows, local);
        for (rows->MoveFirst(); !rows->EOF_(); rows->MoveNext()) {
            attempt([&] {
                const auto event = readEvent(reader);
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

std::string CalEvents::ReadStatement(bool IncludeAllDone, std::optional<bool> Dismissed,
                                     DateTime dLastRead) {
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

std::shared_ptr<calEvent> CalEvents::readEvent(const RowReader& row) const {
    auto event = std::make_shared<calEvent>();
    row.fill(*event);
    event->SetRemindersCol(defaultReminders_);
    return event;
}

void CalEvents::FillEvent(const RecordSet& row, calEvent& event) {
    const ErrScope scope;
    RowReader(row, TimeZone::local()).fill(event);
}

std::shared_ptr<calEvent> CalEvents::firstOf(const std::string& statement) const {
    const ErrScope scope;
    std::shared_ptr<calEvent> event;
    attempt([&] {
        const auto rows = db_.OpenRS(statement);
        if (rows && rows->isOpen() && !rows->EOF_()) {
            const TimeZone local = TimeZone::local();
            event = readEvent(RowReader(*rows, local));
            rows->Close();
        }
    });
    db_.CloseDB();
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
