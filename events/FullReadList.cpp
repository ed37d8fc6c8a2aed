// The list that a full read gives: the last one with what has changed, or all anew.
#include <algorithm>
#include <utility>
#include <vector>

#include "FullRead.h"

namespace vl {

namespace {

using Events = std::vector<std::shared_ptr<calEvent>>;

// Whether these can take the others' places one by one, each under the same key.
bool haveSameKeys(const Events& some, const Events& others) {
    return std::equal(some.begin(), some.end(), others.begin(), others.end(),
                      [](const auto& a, const auto& b) { return a->GUID == b->GUID; });
}

bool haveKeys(const Events& events) {
    return std::none_of(events.begin(), events.end(),
                        [](const auto& event) { return event->GUID.empty(); });
}

// False: one of them is there already.
bool insert(GenCollection& collection, const Events& events, std::size_t position) {
    for (const auto& event : events) {
        const std::size_t count = collection.Count();
        collection.Add(Variant(event), event->GUID,
                       position <= count ? static_cast<std::int64_t>(position) : 0);
        if (collection.Count() == count) {
            return false;
        }
        ++position;
    }
    return true;
}

}  // namespace

// What was held, with what the changed pages have now; null when it cannot be told from that.
std::shared_ptr<GenCollection> FullRead::changed(const Changes& changes,
                                                 const GenCollection& before) const {
    if (!changes.noted) {
        return nullptr;
    }
    static const Events kNone;
    const auto eventsBefore = [](const ChangedPage& change) -> const Events& {
        return change.before ? change.before->events : kNone;
    };
    auto collection = std::make_shared<GenCollection>(before);
    std::vector<const ChangedPage*> others;
    for (const ChangedPage& change : changes.pages) {
        const Events& now = pages_[change.page].rows->events;
        const Events& was = eventsBefore(change);
        if (!haveKeys(now) || !haveKeys(was)) {
            return nullptr;
        }
        if (!haveSameKeys(now, was)) {
            others.push_back(&change);
            continue;
        }
        for (std::size_t i = 0; i < now.size(); ++i) {
            if (now[i] != was[i]) {
                collection->UpdateItem(now[i]->GUID, Variant(now[i]));
            }
        }
    }
    for (const ChangedPage* change : others) {
        for (const auto& event : eventsBefore(*change)) {
            collection->Remove(event->GUID);
        }
    }
    std::size_t position = 1;
    std::size_t page = 0;
    for (const ChangedPage* change : others) {
        for (; page < change->page; ++page) {
            position += pages_[page].count;
        }
        if (!insert(*collection, pages_[page].rows->events, position)) {
            return nullptr;
        }
    }
    return collection;
}

void FullRead::expectIn(const GenCollection& collection, const PageRows& page) noexcept {
    for (const auto& event : page.events) {
        collection.Expect(event->GUID);
    }
}

void FullRead::addTo(GenCollection& collection, const PageRows& page) {
    std::vector<GenCollection::Keyed> values;
    values.reserve(page.events.size());
    for (const auto& event : page.events) {
        values.push_back({Variant(event), event->GUID});
    }
    collection.AddLatest(std::move(values));
}

std::shared_ptr<GenCollection> FullRead::collected(const Pages& pages) {
    auto collection = std::make_shared<GenCollection>();
    for (const Page& page : pages) {
        addTo(*collection, *page.rows);
    }
    return collection;
}

}  // namespace vl
