// What the host has marked as deleted leaves grids, sets and file.
#include "base/ErrorState.h"
#include "base/Text.h"
#include "notify/CheckCycle.h"

namespace vl {

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
        state_.releaseCurrent();
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
        "SELECT * FROM Reminders WHERE Deleted=True AND RecurrenceState=3 AND "
        "RExceptionStartTimeOrig is not Null;");
    const auto textOf = [&](const char* column) {
        const Variant& value = rows->value(column);
        return value.isNull() ? std::string() : value.toText();
    };
    std::vector<EventHistory::Replaced> starts;
    for (; !rows->EOF_(); rows->MoveNext()) {
        attempt([&] {
            SeriesName series{textOf("recurringEventId")};
            attempt([&] { series.VLBase = textOf("VLBase"); });  // not every file has it
            starts.push_back({series, rows->value("RExceptionStartTimeOrig").toDateTime()});
        });
    }
    history_.keepReplaced(starts);
    // A file without these columns has no exceptions.
    return rows->isOpen() || db_.LastError() == ErrNo::NotFound;
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
