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

DateTime lastModified(const GenCollection& events) {
    DateTime last;
    for (const Variant& item : events) {
        const auto* object = item.get<ObjectRef>();
        if (const auto* event =
                object != nullptr ? dynamic_cast<const calEvent*>(object->get()) : nullptr) {
            last = std::max(last, event->Modified);
        }
    }
    return last;
}

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

bool CalEvents::isUnchanged(const Source& now) const {
    return mCol && (source_.full || !now.full) && source_.filled.lock() == mCol &&
           source_.look.same(now.look) && source_.IncludeAllDone == now.IncludeAllDone &&
           source_.Dismissed == now.Dismissed && db_.ReadTrouble().number == ErrNo::None;
}

int CalEvents::ReadDB(bool Reload, bool IncludeAllDone, std::optional<bool> Dismissed) {
    const ErrScope scope;
    remindedNow_ = 0;
    // Looked at first: what is written while the rows are read counts as changed since.
    Source now{db_.TakeLook(), IncludeAllDone, Dismissed, Reload || !mCol, 0, {}, {}};
    if (Reload && clock_.now() < dLastRead) {
        // What was over by a clock that was ahead may not be.
        source_ = Source();
        fullRead_->forgetPassedOver();
    }
    if (isUnchanged(now)) {
        if (Reload) {
            index_->forgetQueries(*mCol);
        }
        db_.CloseDB();
        // A host whose clock is ahead writes rows that every such query gives.
        const bool gives = Reload ? source_.result != 0 : source_.modified > dLastRead;
        dLastRead = clock_.now();
        isRead_ = true;
        return gives ? 1 : 0;
    }
    source_ = Source();
    isRead_ = false;
    if (now.full) {
        dLastRead = DateTime();
    }
    const std::string statement = ReadStatement(IncludeAllDone, Dismissed, dLastRead);
    isRead_ = now.full ? readAll(statement, now) : readChanged(statement, now);
    if (isRead_) {
        now.filled = mCol;
        source_ = now;
    } else {
        fullRead_->forget();
    }
    db_.CloseDB();
    dLastRead = clock_.now();
    return now.result;
}

bool CalEvents::readAll(const std::string& statement, Source& source) {
    const GenCollection before = mCol ? *mCol : GenCollection();
    mCol = std::make_shared<GenCollection>();
    const bool takesBack =
        ledger_ != noLedger_.get() && !source.IncludeAllDone && !source.Dismissed;
    fullRead_->takeBack(takesBack ? [this](const calEvent& event) { return isOpenAgain(event); }
                                  : FullRead::IsOpenAgain());
    const auto all =
        fullRead_->read(db_, statement, before, clock_.now(),
                        [this](const FullRead::Fill& fill) { return readEvent(fill); });
    if (!all) {
        return false;
    }
    keepPassedOver();
    writeTakenBack();
    index_->forgetQueries(before);
    mCol = all;
    damage_ = fullRead_->damage();
    adopted_ = false;
    source.result = all->Count() > 0 ? 1 : 0;
    source.modified = lastModified(*all);
    return true;
}

bool CalEvents::readChanged(const std::string& statement, Source& source) {
    const auto rows = db_.OpenRS(statement);
    if (!rows || !rows->isOpen()) {
        return db_.ReadTrouble().number == ErrNo::Corrupt && readChangedDamaged(statement, source);
    }
    bool complete = true;
    const TimeZone local = TimeZone::local();
    const RowReader reader(rows->fields(), local, fullRead_->pool());
    for (; !rows->EOF_(); rows->MoveNext()) {
        complete &= attempt([&] {
            const auto event = readEvent([&](calEvent& e) { reader.fill(e, *rows); });
            source.modified = std::max(source.modified, event->Modified);
            takeChanged(event);
        });
    }
    source.result = rows->RecordCount() > 0 ? 1 : 0;
    rows->Close();
    return complete;
}

void CalEvents::takeChanged(std::shared_ptr<calEvent> event) {
    if (const auto known = objectAt<calEvent>(*mCol, event->GUID)) {
        event = stillValid(known, event);
        if (event == known && !adopted_) {
            forgetQuery(*event);
        }
    }
    mCol->Remove(event->GUID);
    Add(event, event->GUID);
}

// A statement gives all rows that it finds or none; row by row those come that can be read.
bool CalEvents::readChangedDamaged(const std::string& statement, Source& source) {
    FullRead once;
    const auto changed = once.read(db_, statement, *mCol, clock_.now(),
                                   [this](const FullRead::Fill& fill) { return readEvent(fill); });
    if (!changed) {
        return false;
    }
    for (const Variant& item : *changed) {
        if (const auto event = objectIn<calEvent>(item)) {
            source.modified = std::max(source.modified, event->Modified);
            attempt([&] { takeChanged(event); });
        }
    }
    const Damage& damage = once.damage();
    damage_.inPart.insert(damage.inPart.begin(), damage.inPart.end());
    source.result = changed->Count() > 0 ? 1 : 0;
    return true;
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

// Most events are the same objects in both. Of a list from which one was taken, or into which one
// was put, the others follow one place on.
void CalEvents::carryLastReminders(const GenCollection& full) const {
    auto other = full.begin();
    const auto at = [&] { return other == full.end() ? nullptr : other->get<ObjectRef>(); };
    for (const Variant& item : *mCol) {
        const auto* mine = item.get<ObjectRef>();
        if (mine == nullptr) {
            continue;
        }
        if (const auto* there = at(); there != nullptr && *there != *mine) {
            auto next = other;
            ++next;
            if (next != full.end() && next->get<ObjectRef>() != nullptr &&
                *next->get<ObjectRef>() == *mine) {
                other = next;
            }
        }
        if (const auto* there = at(); there != nullptr && *there == *mine) {
            ++other;
            continue;
        }
        const auto* event = dynamic_cast<const calEvent*>(mine->get());
        if (event != nullptr && !event->dLastReminder.isZero()) {
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
