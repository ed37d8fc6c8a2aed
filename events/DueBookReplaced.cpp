// Which starts of series exceptions have taken over.
#include <algorithm>
#include <vector>

#include "DueBook.h"

namespace vl {

bool DueBook::replacesOne(const calEvent& event) {
    return event.IsException() && !event.recurringEventId.empty() &&
           !event.RExceptionStartTimeOrig.isZero();
}

void DueBook::findReplaced(const Ledger& ledger, std::string_view database) {
    ReplacedStarts now;
    for (const Slot& slot : slots_) {
        if (slot.event && replacesOne(*slot.event)) {
            now.say(seriesOf(*slot.event), {slot.event->RExceptionStartTimeOrig, {}});
        }
    }
    // Of exceptions that are read no more the ledger knows which starts they have taken over.
    for (const Ledger::Replaced& kept : ledger.allReplaced(database)) {
        for (const Noted& start : kept.starts) {
            now.say(kept.series, start);
        }
    }
    for (const Left& left : left_) {
        now.say(left.series, {left.replaced, {}});
    }
    if (now.empty() && replaced_.empty()) {
        return;
    }
    std::vector<const calEvent*> series;
    for (const Slot& slot : slots_) {
        if (slot.event && slot.event->IsRepeating()) {
            series.push_back(slot.event.get());
        }
    }
    now.settle(series, *zone_);
    for (Slot& slot : slots_) {
        slot.look = slot.look || (slot.event && !std::ranges::equal(now.of(*slot.event),
                                                                    replaced_.of(*slot.event)));
    }
    replaced_ = std::move(now);
}

}  // namespace vl
