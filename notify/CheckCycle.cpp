#include "notify/CheckCycle.h"

#include <algorithm>

#include "app/HtmlText.h"
#include "app/TimeText.h"
#include "app/platform/Memory.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "notify/PopUpMarkup.h"
#include "notify/ReadAgain.h"

namespace vl {

namespace {

// Days that the program can have been off without missing a reminder.
constexpr int kLongestOff = 30;

/// Sets a flag for the time of a scope.
class Raised {
public:
    explicit Raised(bool& flag) noexcept : flag_(flag) { flag_ = true; }
    ~Raised() { flag_ = false; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

private:
    bool& flag_;
};

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

CheckCycle::CheckCycle(CalEvents& reminders, CalEvents& period, DBRemindUtils& db,
                       const Clock& clock, ReminderState& state, ReminderScreen& screen,
                       Ledger& ledger, Acts& acts)
    : reminders_(reminders),
      period_(period),
      db_(db),
      clock_(clock),
      state_(state),
      screen_(screen),
      ledger_(ledger),
      acts_(acts),
      history_(ledger, db,
               [&state](std::string_view GUID) { return state.NewReminders->Exists(GUID); }) {
    reminders_.UseLedger(ledger_, [&listed = state_](std::string_view GUID) {
        return listed.LastEventsReminded->Exists(GUID);
    });
    period_.UseLedger(ledger_, {});
}

void CheckCycle::ReadAtStart() {
    // However long ago the last check was: so far ahead the clock may be wrong for once, and what
    // is finished is read no more.
    const DateTime last = ledger_.lastCheck(db_.DBFullName);
    history_.uncheckedSince = last.isZero() ? UncheckedSince() : std::min(UncheckedSince(), last);
    history_.isMet = [last](const calEvent& event) {
        return last.isZero() || event.Modified < last;
    };
    readAtStart(reminders_, period_, db_, &history_);
    history_.uncheckedSince = DateTime();
    history_.isMet = [this](const calEvent& event) {
        return reminders_.mCol && objectAt<calEvent>(*reminders_.mCol, event.GUID).get() == &event;
    };
}

void CheckCycle::Tick(int interval) {
    const ErrScope scope;
    if (state_.bInTimerCheck) {
        return;
    }
    const bool isFirst = state_.dLastUpdated.isZero();
    {
        const Raised running(state_.bInTimerCheck);
        check(interval);
    }
    attempt([&] { screen_.SetIcon(); });
    attempt([&] { db_.CloseDB(); });
    if (isFirst) {  // what the start has needed is no use to a program that waits
        platform::giveBackMemory();
    }
}

void CheckCycle::check(int interval) {
    const DateTime since = UncheckedSince();
    bool isRead = readSets();
    const DateTime upTo = clock_.now().addSeconds(interval / 1000);
    const auto due = askForDue(upTo);
    if (due->Count() > 0) {
        std::string message;
        takeIn(*due, message);
        attempt([&] { screen_.FirstNewRowCurrent(); });
        rebuildIndex();
        notify(message);
    }
    changeDay();
    isRead = refreshPeriod() && isRead;
    // Now, not the upper bound: what was taken early is found once more, and heard again. But
    // never later than what was asked for: the machine may have slept inside the check.
    state_.dLastUpdated = std::min(clock_.now(), upTo);
    noteAsked(isRead, since);
}

// What nobody could read is still to be asked for. Without a database there is nothing to read.
void CheckCycle::noteAsked(bool isRead, DateTime since) {
    asked_ = notedNow(state_.dLastUpdated);
    if (isRead || db_.DBFullName.empty()) {
        unseen_.reset();
        ledger_.noteCheck(db_.DBFullName, state_.dLastUpdated);
    } else if (!unseen_) {
        unseen_ = notedNow(since);
    }
}

// True when the file could be read.
bool CheckCycle::readSets() {
    ledger_.ReadAgain();
    if (purgeWaits_) {
        deletedLook_ = DBRemindUtils::Look();
    }
    DoRemoveDeleted();
    takeZone();
    const bool isRead = readAgain(reminders_, db_, false, false);
    acts_.RestoreWaiting();
    acts_.WriteWaiting();
    removeDealtWith();
    return isRead;
}

// In another zone the host writes local times anew, and stamps them with local times: the question
// since the last read would pass them over.
void CheckCycle::takeZone() {
    const TimeZone here = TimeZone::local();
    if (zone_ && !zone_->same(here)) {
        if (readAgain(period_, db_, true, false)) {
            reminders_.Adopt(period_);
        }
        period_.TakeZone(here);
        reminders_.TakeZone(here);
        refillListed();
    }
    zone_ = here;
}

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

DateTime CheckCycle::UncheckedSince() const {
    const DateTime last = lastAsked();
    return unseen_ ? std::min(last, earlierOf(*unseen_, TimeZone::local())) : last;
}

DateTime CheckCycle::lastAsked() const {
    if (!state_.dLastUpdated.isZero()) {
        return asked_ && asked_->local == state_.dLastUpdated
                   ? earlierOf(*asked_, TimeZone::local())
                   : state_.dLastUpdated;
    }
    const DateTime today = clock_.today();
    const DateTime last = ledger_.lastCheck(db_.DBFullName);
    return last.isZero() ? today : std::min(today, std::max(last, today.addDays(-kLongestOff)));
}

// What another copy of the program, or a command, has dealt with leaves the list here, too.
void CheckCycle::removeDealtWith() {
    if (dealtVersion_ == ledger_.version() && dealtList_ == state_.NewReminders->Stamp()) {
        return;
    }
    dealtVersion_ = ledger_.version();
    for (const Variant& item : *state_.NewReminders) {
        const auto event = objectIn<calEvent>(item);
        const EventState* known = event ? ledger_.find(db_.DBFullName, event->GUID) : nullptr;
        const bool listed =
            known == nullptr ||
            std::any_of(known->occurrences.begin(), known->occurrences.end(),
                        [](const OccurrenceState& one) { return !one.listed.isZero(); });
        if (!listed) {
            attempt([&] { screen_.RemoveGUID(event->GUID, kNewRemindersGrid); });
            acts_.LeaveNewList(event->GUID);
        }
    }
    dealtList_ = state_.NewReminders->Stamp();
}

std::shared_ptr<GenCollection> CheckCycle::askForDue(DateTime upTo) {
    state_.dLastUpdated = UncheckedSince();
    // A clock turned back leaves the last check ahead of now.
    const DateTime from = std::min(state_.dLastUpdated, clock_.now());
    auto due = std::make_shared<GenCollection>();
    attempt([&] { due = reminders_.RemindCol(from, upTo, true); });
    return due;
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
    state_.LastEventsReminded = std::make_shared<GenCollection>();
    for (const Variant& item : *state_.NewReminders) {
        if (const auto event = objectIn<calEvent>(item)) {
            state_.LastEventsReminded->Add(Variant(event), event->GUID);
        }
    }
    // Most of what was listed once is not any more.
    auto listed = std::move(lines_);
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

bool CheckCycle::refreshPeriod() {
    const bool isRead = readAgain(period_, db_, true, false);
    if (isRead) {
        reminders_.Adopt(period_);
        acts_.RestoreWaiting();
        countWithoutStatus();
        state_.damagedRows = static_cast<int>(period_.DamagedRows());
    }
    if (period_.mCol && period_.mCol->Count() > 0) {
        attempt([&] { screen_.DoPeriod(); });
    }
    return isRead;
}

// The query wants a status, and a null is none: nobody would see such rows.
void CheckCycle::countWithoutStatus() {
    const DBRemindUtils::Look look = db_.TakeLook();
    if (look.same(statusLook_)) {
        return;
    }
    attempt([&] {
        const auto rows = db_.OpenRSAgain(
            "SELECT COUNT(*) AS Missed FROM Reminders WHERE Deleted=0 AND Status is Null");
        state_.rowsWithoutStatus = rows->EOF_() ? 0 : rows->value("Missed").toInt32();
    });
    statusLook_ = look;
}

void CheckCycle::DoRemoveDeleted() {
    const ErrScope scope;
    const DBRemindUtils::Look look = db_.TakeLook();
    if (look.same(deletedLook_)) {
        return;  // the update timer asks every second
    }
    auto deleted = std::make_shared<GenCollection>();
    attempt([&] { deleted = db_.GetDeletedCol(); });
    deletedLook_ = db_.LastError() == ErrNo::None ? look : DBRemindUtils::Look();
    for (const Variant& item : *deleted) {
        attempt([&] { removeEvent(item.toText()); });
    }
    purgeWaits_ = false;
    if (deleted->Count() > 0) {
        purge();
    }
    // The host may put another file in this one's place: hold it no longer than a look takes.
    attempt([&] { db_.CloseDB(); });
}

void CheckCycle::removeEvent(const std::string& GUID) {
    RemoveGUIDAll(GUID);
    for (CalEvents* set : {&period_, &reminders_}) {
        if (set->mCol) {
            set->mCol->Remove(GUID);
        }
    }
    if (state_.curEvent && text::equalsNoCase(state_.curEvent->GUID, GUID)) {
        state_.curEvent.reset();
    }
}

// The rows stay where the file is held by somebody else. Our own attempt is no reason to look again
// every second.
void CheckCycle::purge() {
    purgeWaits_ = !keepReplacedStarts();
    if (!purgeWaits_) {
        db_.DeleteAllDeleted();
        purgeWaits_ = db_.LastError() != ErrNo::None;
    }
    deletedLook_ = db_.TakeLook();
}

// What a deleted exception has replaced does not ring again, and its row is the last that knows of
// it. True when nothing is left to keep.
bool CheckCycle::keepReplacedStarts() {
    const auto rows = db_.OpenRS(
        "SELECT recurringEventId, RExceptionStartTimeOrig FROM Reminders WHERE Deleted=True AND "
        "RecurrenceState=3 AND RExceptionStartTimeOrig is not Null;");
    std::vector<EventHistory::Replaced> starts;
    for (; !rows->EOF_(); rows->MoveNext()) {
        attempt([&] {
            const Variant& master = rows->value("recurringEventId");
            if (!master.isNull()) {
                starts.push_back(
                    {master.toText(), rows->value("RExceptionStartTimeOrig").toDateTime()});
            }
        });
    }
    history_.keepReplaced(starts);
    // A file without these columns has no exceptions.
    return rows->isOpen() || db_.LastError() == ErrNo::NotFound;
}

// The day stays that of the first check: from the next day on this is done with every check.
void CheckCycle::changeDay() {
    if (state_.CheckDay.isZero()) {
        state_.CheckDay = clock_.today();
    }
    if (clock_.today() != state_.CheckDay) {
        // What the host has moved meanwhile is not finished: the set is of the last check.
        // What is new in it, the next check asks for first.
        readAgain(period_, db_, true, false);
        acts_.RestoreWaiting();
        attempt([&] { period_.UpdateAllDone(&history_); });
        attempt([&] { reminders_.RemoveAllDoneOf(period_); });
    }
}

void CheckCycle::RemoveGUIDAll(std::string_view GUID) {
    const ErrScope scope;
    for (int grid = 0; grid < kGridCount; ++grid) {
        attempt([&] { screen_.RemoveGUID(GUID, grid); });
    }
    // What is not listed any more may come again at once.
    for (GenCollection* list :
         {state_.NewReminders.get(), state_.LastEventsReminded.get(), &lines_}) {
        list->Remove(GUID);
    }
}

}  // namespace vl
