#include "Oracle.h"

namespace vl::simulation {

// ---- what the host does

void Oracle::written(const std::string& GUID, const std::string& id, const Plan& plan,
                     Seconds modified) {
    Event& event = events_[GUID];
    if (event.gone) {
        return;
    }
    const bool isNew = event.id.empty();
    const bool retimed = isNew || !event.plan.sameTimes(plan);
    if (retimed) {
        event.isListedAsIs = false;
        event.stamp = modified;
        event.metBelow = kNone;
    }
    if (!isNew && !event.isSure) {
        event.between.push_back(event.plan);
    }
    // What has fallen due since it was listed may be shown by its new schedule.
    if (retimed && plan.start == event.plan.start) {
        event.openSince = event.listedSince;
    }
    event.modified = modified;
    event.hasTravelled = event.hasTravelled || event.mayBeFinished;  // met anew, if it was finished
    event.mayBeFinished = false;
    // The host may clear its status; what its user has done stays so, if the ledger knows that.
    // A single occurrence that is done is so whatever reminders it has.
    const bool isMoved = isNew || (plan.isSeries() ? retimed : plan.start != event.plan.start);
    const bool isOpenAgain =
        isMoved || (event.isDoneByRow && event.word && modified > event.word->dismissed);
    event.isSure = event.isSure && !retimed && !isOpenAgain;
    event.isDone = event.isDone && !isOpenAgain;
    event.isWritten = true;
    noteDone(event, plan);
    event.id = id;
    event.plan = plan;
}

// A row that by now is at another moment stays done as long as it says the same time, or its status
// says so, which the host clears when it writes it.
void Oracle::noteDone(Event& event, const Plan& plan) const {
    const bool isSame = event.doneRow == plan.toLocal(plan.start, here_);
    event.isDone = event.isDone && (isSame || !(event.isWritten && event.isElsewhere));
}

void Oracle::deleted(const std::string& GUID) {
    events_.at(GUID).gone = true;
    events_.at(GUID).must.clear();
}

void Oracle::travelled(Zone here) {
    here_ = here;
    hasTravelled_ = true;
    for (auto& [GUID, event] : events_) {
        event.hasTravelled = event.plan.zone.has_value();
        for (auto& [key, mark] : event.marks) {
            leaveClock(mark);
        }
    }
}

// What clocks have skipped there, those here have not.
void Oracle::leaveClock(Mark& mark) {
    for (Until* until : {&mark.handled, &mark.handledLast, &mark.shown}) {
        until->local = Until().local;
    }
    if (mark.was) {
        Mark was = *mark.was;
        leaveClock(was);
        mark.was = std::make_shared<const Mark>(was);
    }
}

void Oracle::keptAsWritten(Zone there) {
    for (auto& [GUID, event] : events_) {
        for (auto& [key, mark] : event.marks) {
            mark.wasTaken = mark.wasTaken || isReplaced(event, key, false);
        }
    }
    for (auto& [GUID, event] : events_) {
        if (event.goneIsKnown) {
            continue;  // what it replaced was noted there
        }
        const bool isDoneRow = event.doneRow == event.plan.toLocal(event.plan.start, there);
        event.plan = event.plan.asWrittenIn(there, here_);
        if (isDoneRow) {  // as it is said here, where clocks may skip that time
            event.doneRow = event.plan.toLocal(event.plan.start, here_);
        }
        for (std::vector<Plan>* plans : {&event.held, &event.between}) {
            for (Plan& one : *plans) {
                one = one.asWrittenIn(there, here_);
            }
        }
        event.openSince = event.listedSince;
        event.isElsewhere = event.isElsewhere || (event.plan.zone && !event.plan.isSeries());
        noteDone(event, event.plan);
        if (event.plan.zone) {
            event.metAt.reset();  // it may have been asked for already, as what it was then
        }
        // A single event's row stands in the list for what it is now.
        for (const auto& [key, minutes] : event.open) {
            if (!event.plan.isSeries()) {
                event.may.insert({event.plan.start, minutes});
            }
        }
    }
}

void Oracle::clockTurned(Seconds by) {
    if (by > -kDay) {
        return;
    }
    wentBack_ = true;
    for (auto& [GUID, event] : events_) {
        event.isSure = false;
        event.hasTravelled = true;
        if (event.metAt) {  // on another day
            event.metAt.reset();
            event.stamp.reset();
        }
    }
}

// ---- what the program knows

void Oracle::started(Seconds now, bool readable) {
    for (auto& [GUID, event] : events_) {
        // What any copy has listed and nobody acted upon is listed again.
        for (const Seconds key : event.byOther) {
            if (const auto listed = event.open.find(key); listed != event.open.end()) {
                event.must.insert(*listed);
            }
        }
        event.byOther.clear();
        event.leaves = false;
        event.isSure = readable;
        event.missedSince.reset();
        event.held = readable ? std::vector{event.plan} : std::vector<Plan>();
        event.mayBeHeld = false;
        event.isKnown |= readable;
        event.modifiedKnown = readable ? event.modified : event.modifiedKnown;
        if (event.word) {
            event.word->isKnown |= readable;
            if (readable) {
                event.wordBefore.reset();
            }
        }
        event.between.clear();
        // By its stamp the program tells what it has not met before.
        const bool isNewer = event.stamp && lastRead_ && *event.stamp >= earlierOf(*lastRead_);
        event.metAt = readable && isNewer ? std::optional(now) : std::nullopt;
        event.stamp = isNewer ? event.stamp : std::nullopt;
    }
    lastCheck_.reset();
    unseenSince_.reset();
    isFirst_ = true;
    looked_.reset();
    goneOn_ = 0;
}

void Oracle::checkedByOther(const Check& check, const Oracle& other) {
    now_ = check.now;
    if (other.turn_) {
        noteClock(*other.turn_);
    }
    lastRead_ = other.lastRead_;
    if (lastRead_) {
        reads_.push_back(*lastRead_);
    }
    for (const Listing& row : check.taken) {
        Event& event = events_.at(row.GUID);
        const Seconds key = keyAt(event, row.start);
        event.open[key] = static_cast<int>((row.start - row.reminder) / kMinute);
        event.ahead[key] = row.start - row.reminder;
        event.byOther.insert(key);
        event.leaves = false;  // it stands there again
    }
}

void Oracle::mayHaveListed(const Check& check) {
    now_ = check.now;
    for (auto& [GUID, event] : events_) {
        settle(event);
        event.forEachPlan([&, &event = event](const Plan& plan) { gatherMay(event, plan, check); });
        event.perhaps.insert(event.may.begin(), event.may.end());
    }
}

void Oracle::wasActedByOther(const std::string& GUID) {
    Event& event = events_.at(GUID);
    event.leaves = event.open.empty() && event.may.empty();
}

void Oracle::ledgerLost(const std::function<RowSays(const std::string&)>& rowOf) {
    lastRead_.reset();
    reads_.clear();
    hasTravelled_ = false;
    for (auto& [GUID, event] : events_) {
        const RowSays says = rowOf(GUID);
        Event fresh;
        fresh.id = event.id;
        fresh.plan = event.plan;
        fresh.held = event.held;
        fresh.modified = event.modified;
        fresh.modifiedKnown = event.modifiedKnown;
        fresh.gone = event.gone;
        fresh.goneIsKnown = event.goneIsKnown;
        fresh.isKnown = event.isKnown;
        fresh.mayBeFinished = event.mayBeFinished || event.isDone;
        fresh.isFinished = says.isAllDone;
        // Done is what says so and has not been written since.
        fresh.isDone = event.isDone && says.isAllDone && event.modified <= says.dismissed;
        fresh.isDoneByRow = fresh.isDone;
        fresh.isForgotten = event.isForgotten || !says.isThere;
        if (says.next > 0 || says.dismissed > 0) {
            fresh.word = Word{says.next, says.dismissed};
        }
        event = std::move(fresh);
    }
}

void Oracle::mayHaveRead() {
    for (auto& [GUID, event] : events_) {
        event.mayBeHeld = true;
    }
}

void Oracle::read(const Check& check) {
    const Seconds from = askedFrom(check.now);
    lastCheck_ = momentOf(check.now);
    if (!check.readable) {
        unseenSince_ = unseenSince_ ? unseenSince_ : momentOf(from);
        return;
    }
    lastRead_ = lastCheck_;
    reads_.push_back(*lastRead_);
    if (isFirst_) {
        starts_.insert(lastRead_->utc);
    }
    unseenSince_.reset();
    isFirst_ = false;
    hasTravelled_ = false;
    for (auto& [GUID, event] : events_) {
        if (check.disturbed) {
            // Which of the two it has read, only the next check shows.
            if (!event.isSure) {
                event.held.push_back(event.plan);
            }
            continue;
        }
        event.goneIsKnown = event.gone;
        event.modifiedKnown = event.modified;
        if (event.word) {
            event.word->isKnown = true;
            event.wordBefore.reset();
        }
        event.hasTravelled = false;
        noteFinished(event, check.now);
        if (event.isSure && !event.metAt) {
            event.stamp.reset();
        }
        if (!event.isSure) {
            event.held = {event.plan};
            event.between.clear();
            event.isSure = true;
            event.isFinished = false;
            if (!event.missedSince || event.modified > earlierOf(*event.missedSince)) {
                event.missedSince = momentOf(from);
            }
            event.isKnown = true;
            event.metAt = event.stamp ? std::optional(check.now) : event.metAt;
        }
    }
}

// ---- which occurrence a row is on

std::optional<Seconds> Oracle::keyIn(const Plan& plan, Seconds start) const {
    const auto at = plan.occurrences(start, start, here_);
    return at.empty() ? std::nullopt : std::optional(at.front().key);
}

Seconds Oracle::keyAt(const Event& event, Seconds start) const {
    std::optional<Seconds> key = keyIn(event.plan, start);
    event.forEachPlan([&](const Plan& plan) { key = key ? key : keyIn(plan, start); });
    return key ? *key : event.plan.toOwn(start, here_);
}

}  // namespace vl::simulation
