// Which starts of series exceptions have taken over.
#include <algorithm>
#include <vector>

#include "DueBook.h"

namespace vl {

namespace {

// Of exceptions that are read no more the ledger knows which starts they have taken over.
void sayKept(ReplacedStarts& starts, const Ledger& ledger, std::string_view database) {
    for (const Ledger::Replaced& kept : ledger.allReplaced(database)) {
        for (const Noted& start : kept.starts) {
            starts.say(kept.series, start);
        }
    }
}

}  // namespace

bool DueBook::replacesOne(const calEvent& event) {
    return event.IsException() && !event.recurringEventId.empty() &&
           !event.RExceptionStartTimeOrig.isZero();
}

void DueBook::findReplaced(const Ledger& ledger, std::string_view database) {
    ReplacedStarts now;
    std::vector<const calEvent*> series;
    std::vector<std::size_t> places;  // of these
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        const calEvent* event = slots_[i].event.get();
        if (event != nullptr && replacesOne(*event)) {
            now.say(seriesOf(*event), {event->RExceptionStartTimeOrig, {}});
        }
        if (event != nullptr && event->IsRepeating()) {
            series.push_back(event);
            places.push_back(i);
        }
    }
    sayKept(now, ledger, database);
    for (const Left& left : left_) {
        now.say(left.series, {left.replaced, {}});
    }
    if (now.empty() && replaced_.empty()) {
        return;
    }
    now.settle(series, *zone_);
    for (std::size_t i = 0; i < series.size(); ++i) {
        if (!std::ranges::equal(now.of(*series[i]), replaced_.of(*series[i]))) {
            lookAt(places[i]);
        }
    }
    replaced_ = std::move(now);
}

void DueBook::learnReplaced(const GenCollection& events, const Ledger& ledger,
                            std::string_view database) {
    ReplacedStarts now;
    std::vector<const calEvent*> series;
    for (const Variant& item : events) {
        const auto event = objectIn<calEvent>(item);
        if (event && replacesOne(*event)) {
            now.say(seriesOf(*event), {event->RExceptionStartTimeOrig, {}});
        }
        if (event && event->IsRepeating()) {
            series.push_back(event.get());
        }
    }
    sayKept(now, ledger, database);
    now.settle(series, TimeZone::local());
    replaced_ = std::move(now);
}

}  // namespace vl
