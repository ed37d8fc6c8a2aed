// How a set is brought up to date.
#include <algorithm>
#include <utility>
#include <vector>

#include "FullRead.h"
#include "RowReader.h"
#include "app/TimeZone.h"
#include "base/ErrorState.h"
#include "events/CalEvents.h"
#include "events/EventIndex.h"
#include "events/Ledger.h"

namespace vl {

bool CalEvents::isUnchanged(const Source& now) const {
    return mCol && (source_.full || !now.full) && source_.filled.lock() == mCol &&
           source_.look.same(now.look) && source_.IncludeAllDone == now.IncludeAllDone &&
           source_.Dismissed == now.Dismissed && db_.ReadTrouble().number == ErrNo::None;
}

int CalEvents::ReadDB(bool Reload, bool IncludeAllDone, std::optional<bool> Dismissed) {
    const ErrScope scope;
    remindedNow_ = 0;
    lookForStillOpen();
    // Looked at first: what is written while the rows are read counts as changed since.
    Source now{db_.TakeLook(), IncludeAllDone, Dismissed, Reload || !mCol, 0, {}, {}};
    if (Reload && clock_.now() < dLastRead) {
        // What was over by a clock that was ahead may not be.
        readPassedOverAnew();
    }
    if (isUnchanged(now)) {
        if (Reload) {
            index_->forgetQueries(*mCol);
            writeTakenBack();
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
        if (now.full) {
            writeTakenBack();
        }
    } else {
        fullRead_->forget();
    }
    db_.CloseDB();
    dLastRead = clock_.now();
    return now.result;
}

// All rows, null where they could not be read to their end.
std::shared_ptr<GenCollection> CalEvents::readTable(const std::string& statement, bool takesBack,
                                                    const GenCollection& before) {
    fullRead_->takeBack(takesBack && ledger_ != noLedger_.get()
                            ? [this](const calEvent& event) { return isOpenAgain(event); }
                            : FullRead::IsOpenAgain(),
                        stillOpen_.all);
    auto all = fullRead_->read(db_, statement, before, takesBackFrom(),
                               [this](const FullRead::Fill& fill) { return readEvent(fill); });
    if (all) {
        keepPassedOver();
        const auto taken = fullRead_->takeTakenBack();
        takenBack_.insert(takenBack_.end(), taken.begin(), taken.end());
    }
    return all;
}

bool CalEvents::readAll(const std::string& statement, Source& source) {
    const GenCollection before = mCol ? *mCol : GenCollection();
    mCol = std::make_shared<GenCollection>();
    const bool isPlain = !source.IncludeAllDone && !source.Dismissed;
    const Ahead ahead = std::exchange(ahead_, Ahead());
    const bool isThere =
        ahead.events && isPlain && ahead.look.same(source.look) && fullRead_->wouldGiveTheSame();
    const auto all = isThere ? ahead.events
                             : readTable(statement, isPlain, ahead.events ? *ahead.events : before);
    if (!all) {
        return false;
    }
    index_->forgetQueries(before);
    mCol = all;
    damage_ = fullRead_->damage();
    adopted_ = false;
    source.result = all->Count() > 0 ? 1 : 0;
    source.modified = fullRead_->lastModified();
    return true;
}

// What a reload would find now. Looked at first, as for every read.
std::shared_ptr<GenCollection> CalEvents::readAhead() {
    const DBRemindUtils::Look look = db_.TakeLook();
    lookForStillOpen();
    const GenCollection before = ahead_.events ? *ahead_.events : mCol ? *mCol : GenCollection();
    ahead_ = {look, readTable(ReadStatement(false, {}, {}), true, before)};
    return ahead_.events;
}

bool CalEvents::readChanged(const std::string& statement, Source& source) {
    if (full_ != nullptr && !source.IncludeAllDone && !source.Dismissed) {
        if (const auto all = full_->readAhead()) {
            takeChangedOf(*all, source);
            return true;
        }
        if (full_->db_.ReadTrouble().number != ErrNo::Corrupt) {
            return false;
        }
    }
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

// Of all that there is what the question for changed rows would give, but for rows that it has
// given before: the events of both sets are the same objects as long as their rows are the same.
void CalEvents::takeChangedOf(const GenCollection& all, Source& source) {
    std::vector<GenCollection::Keyed> changed;
    for (const auto place : all.PlacesThatDiffer(*mCol)) {
        if (place >= all.PlaceCount()) {
            break;
        }
        auto event = objectIn<calEvent>(all.AtPlace(place));
        if (!event || event->Modified <= dLastRead) {
            continue;
        }
        const auto known = objectAt<calEvent>(*mCol, event->GUID);
        if (known) {
            event = stillValid(known, event);
        }
        if (event != known) {
            changed.push_back({Variant(event), event->GUID});
        }
    }
    adopted_ = adopted_ || !changed.empty();
    mCol->AddLatest(std::move(changed));
    source.modified = full_->fullRead_->lastModified();
    source.result = source.modified > dLastRead ? 1 : 0;
    const Damage& damage = full_->fullRead_->damage();
    damage_.inPart.insert(damage.inPart.begin(), damage.inPart.end());
}

void CalEvents::DropGone() {
    const ErrScope scope;
    if (!mCol || full_ == nullptr || !full_->ahead_.events) {
        return;
    }
    const GenCollection& all = *full_->ahead_.events;
    std::vector<std::string> gone;
    for (const auto place : mCol->PlacesThatDiffer(all)) {
        const auto event = place < mCol->PlaceCount() ? objectIn<calEvent>(mCol->AtPlace(place))
                                                      : std::shared_ptr<calEvent>();
        if (event && !all.Exists(event->GUID)) {
            gone.push_back(event->GUID);
        }
    }
    for (const std::string& GUID : gone) {
        mCol->Remove(GUID);
    }
    adopted_ = adopted_ || !gone.empty();
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

}  // namespace vl
