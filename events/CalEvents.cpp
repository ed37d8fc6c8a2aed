#include "events/CalEvents.h"

#include <algorithm>

#include "AnswerMemo.h"
#include "DonePass.h"
#include "DueBook.h"
#include "FullRead.h"
#include "RowReader.h"
#include "SharedReminders.h"
#include "app/TimeZone.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "events/EventIndex.h"

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
      book_(std::make_unique<DueBook>()),
      index_(std::make_unique<EventIndex>()),
      done_(std::make_unique<DonePass>()),
      reminded_(std::make_unique<AnswerMemo>()),
      started_(std::make_unique<AnswerMemo>()),
      fullRead_(std::make_unique<FullRead>()),
      reminders_(std::make_unique<SharedReminders>()) {}

CalEvents::~CalEvents() = default;

void CalEvents::Add(const std::shared_ptr<calEvent>& event, std::string_view sKey) {
    if (!mCol) {
        mCol = std::make_shared<GenCollection>();
    }
    mCol->Add(Variant(event), sKey);
}

bool CalEvents::IsReadInPart(std::string_view GUID) const {
    return !damage_.inPart.empty() && damage_.inPart.contains(text::foldCase(GUID));
}

// What one set leaves in its events is nothing to the other.
void CalEvents::separate() {
    if (!adopted_ || !mCol) {
        return;
    }
    auto own = std::make_shared<GenCollection>(*mCol);
    for (const Variant& item : *mCol) {
        if (const auto event = objectIn<calEvent>(item)) {
            own->UpdateItem(event->GUID, Variant(std::make_shared<calEvent>(*event)));
        }
    }
    *mCol = *own;
    adopted_ = false;
}

void CalEvents::carryLastReminders(const GenCollection& full) const {
    for (const auto place : mCol->PlacesThatDiffer(full)) {
        if (place >= mCol->PlaceCount()) {
            break;
        }
        const auto event = objectIn<calEvent>(mCol->AtPlace(place));
        if (event && !event->dLastReminder.isZero()) {
            if (const auto adopted = objectAt<calEvent>(full, event->GUID)) {
                adopted->dLastReminder = event->dLastReminder;
            }
        }
    }
}

void CalEvents::TakeZone(const TimeZone& here) {
    const ErrScope scope;
    index_->bring(mCol ? *mCol : GenCollection());
    for (calEvent* event : index_->events()) {
        if (event != nullptr && !event->recurrence.empty()) {
            attempt([&] { event->LoadRecurrence(here); });
            index_->look(event->GUID);
        }
    }
}

void CalEvents::Adopt(const CalEvents& full) {
    const ErrScope scope;
    if (!full.mCol || (mCol && mCol->Stamp() == full.mCol->Stamp())) {
        return;
    }
    if (mCol) {
        carryLastReminders(*full.mCol);
        *mCol = *full.mCol;
    } else {
        mCol = std::make_shared<GenCollection>(*full.mCol);
        dLastRead = full.dLastRead;
    }
    adopted_ = true;
    damage_ = full.damage_;
    source_ = full.source_;
    source_.filled = mCol;
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

std::shared_ptr<calEvent> CalEvents::readEvent(const std::function<void(calEvent&)>& fill) const {
    auto event = std::make_shared<calEvent>();
    fill(*event);
    reminders_->set(*event, defaultReminders_);
    return event;
}

void CalEvents::FillEvent(const RecordSet& row, calEvent& event) {
    const ErrScope scope;
    const TimeZone local = TimeZone::local();
    TextPool pool;
    RowReader(row.fields(), local, pool).fill(event, row);
}

std::shared_ptr<calEvent> CalEvents::firstOf(const std::string& statement) const {
    const ErrScope scope;
    std::shared_ptr<calEvent> event;
    attempt([&] {
        const auto rows = db_.OpenRS(statement);
        if (rows && rows->isOpen() && !rows->EOF_()) {
            const TimeZone local = TimeZone::local();
            const RowReader reader(rows->fields(), local, fullRead_->pool());
            event = readEvent([&](calEvent& e) { reader.fill(e, *rows); });
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
