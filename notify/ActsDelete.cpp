// Deletions: of the item in the host's file, then of its row.
#include <algorithm>

#include "ActParts.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "notify/Acts.h"

namespace vl {

calEvent::Deletion Acts::DeleteItem(const ActRow& row) {
    const ErrScope scope;
    auto result = calEvent::Deletion::Failed;
    attempt([&] {
        const calEvent& event = *row.event;
        if (event.IsException() && !event.RExceptionStartTimeOrig.isZero()) {
            // No check may have seen it yet, and its row is the last that knows.
            ledger_.keepReplaced(db_.DBFullName, seriesOf(event), event.RExceptionStartTimeOrig);
        }
        // Not acted upon: a deletion that fails leaves all as it was.
        ledger_.change(db_.DBFullName, event.GUID, "delete",
                       [](EventState& state) { state.deleting = true; });
        result = deleteNow(event);
        if (result == calEvent::Deletion::Waits) {
            enqueueDeletion(event);
            countWaiting();
        }
    });
    if (result != calEvent::Deletion::Failed) {
        leaveSets(row.event->GUID);
        LeaveNewList(row.event->GUID);
    }
    return result;
}

// The row goes when the host's item is gone: else the host would make it anew.
calEvent::Deletion Acts::deleteNow(const calEvent& event) {
    auto result = event.DeleteItem();
    if (result == calEvent::Deletion::Gone) {
        db_.DeleteDB(event.GUID);
        trouble_ = db_.LastErrorText();
        if (db_.LastError() != ErrNo::None) {
            result = passes(db_) ? calEvent::Deletion::Waits : calEvent::Deletion::Failed;
        }
    }
    if (result != calEvent::Deletion::Waits) {
        ledger_.change(db_.DBFullName, event.GUID, "deleted",
                       [](EventState& state) { state.deleting = false; });
    }
    return result;
}

// A host's file that is held by others is not tried for each of its items.
void Acts::deleteWaiting() {
    std::vector<std::string> held;
    std::erase_if(deletions_, [&](const Deletion& one) {
        if (std::find(held.begin(), held.end(), one.VLBase) != held.end()) {
            return false;
        }
        calEvent carrier;
        carrier.GUID = one.GUID;
        carrier.VLBase = one.VLBase;
        const auto result = deleteNow(carrier);
        if (result == calEvent::Deletion::Waits) {
            held.push_back(one.VLBase);
            return false;
        }
        if (result == calEvent::Deletion::Failed) {
            for (CalEvents* set : {&period_, &reminders_}) {
                set->ReadAnew();  // both have done without it
            }
        }
        return true;
    });
}

void Acts::enqueueDeletion(const calEvent& event) {
    const auto same = std::find_if(deletions_.begin(), deletions_.end(), [&](const Deletion& one) {
        return text::equalsNoCase(one.GUID, event.GUID);
    });
    if (same == deletions_.end()) {
        deletions_.push_back({event.GUID, event.VLBase});
    }
}

}  // namespace vl
