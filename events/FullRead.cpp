#include "FullRead.h"

#include <algorithm>
#include <iterator>

#include "PageReader.h"

namespace vl {

namespace {

// Where more pages have changed the collection is rather filled anew.
constexpr std::size_t kMostChangedPages = 64;
// Where more events were touched all rows are rather read again.
constexpr std::size_t kMostTouched = 1000;

}  // namespace

std::shared_ptr<calEvent> stillValid(const std::shared_ptr<calEvent>& known,
                                     const std::shared_ptr<calEvent>& fresh) {
    if (!known->sameRow(*fresh)) {
        fresh->dLastReminder = known->dLastReminder;
        return fresh;
    }
    return known;
}

void FullRead::forget() {
    pages_.clear();
    lookAtAll();
}

void FullRead::lookAtAll() {
    mayPassBy_ = false;
    touched_.clear();
    stamp_ = 0;
}

void FullRead::look(const calEvent& event) {
    if (touched_.size() >= kMostTouched) {
        lookAtAll();
    }
    touched_.push_back(&event);
}

void FullRead::forgetPassedOver() {
    for (const auto& page : pages_) {
        if (page->passesOver) {
            page->mark.digest = 0;
            std::erase_if(page->passedOver, [](const PassedRow& row) { return !row.event; });
        }
    }
    stamp_ = 0;
}

bool FullRead::isTouched(const PageRows& page) const {
    return !touched_.empty() &&
           std::any_of(page.events.begin(), page.events.end(), [this](const auto& event) {
               return std::binary_search(touched_.begin(), touched_.end(), event.get());
           });
}

// Both the pages that come and those that are known are in the order of their numbers.
FullRead::Pages FullRead::stream(sql::RowStream& stream, const GenCollection& before,
                                 const Make& make, Changes& changes) {
    PageReader reader(*this, stream, before, make);
    Pages pages;
    pages.reserve(pages_.size());
    auto known = pages_.begin();
    const auto noteChange = [&](std::shared_ptr<const PageRows> was) {
        changes.noted = changes.noted && changes.pages.size() < kMostChangedPages;
        if (changes.noted) {
            changes.pages.push_back({pages.size(), std::move(was)});
        }
    };
    while (stream.nextPage()) {
        for (; known != pages_.end() && (*known)->mark.page < stream.page(); ++known) {
            changes.noted = changes.noted && (*known)->events.empty();
        }
        const bool isThere = known != pages_.end() && (*known)->mark.page == stream.page();
        if (isThere && mayPassBy_ && !isTouched(**known) && stream.holds((*known)->mark)) {
            pages.push_back(*known);
        } else {
            auto page = reader.read(isThere ? known->get() : nullptr);
            if (!isThere || page->events != (*known)->events) {
                noteChange(isThere ? *known : nullptr);
            }
            pages.push_back(std::move(page));
        }
        // Now that its events have just been made: later they would have to be fetched again.
        if (changes.all) {
            addTo(*changes.all, *pages.back());
        }
        known += isThere ? 1 : 0;
    }
    for (; known != pages_.end(); ++known) {
        changes.noted = changes.noted && (*known)->events.empty();
    }
    return pages;
}

const FullRead::PageRows* FullRead::knownOf(jet::PageNo page) const {
    const auto known = std::lower_bound(
        pages_.begin(), pages_.end(), page,
        [](const auto& rows, jet::PageNo wanted) { return rows->mark.page < wanted; });
    return known != pages_.end() && (*known)->mark.page == page ? known->get() : nullptr;
}

// What cannot be read any more counts as it was.
void FullRead::keepLost(const jet::RowCursor::Unreadable& lost, PageRows& page) const {
    const PageRows* known = knownOf(lost.page);
    if (known == nullptr) {
        return;
    }
    page.passesOver = page.passesOver || known->passesOver;
    for (std::size_t i = 0; i < known->events.size(); ++i) {
        if (lost.row && *lost.row != known->slots[i]) {
            continue;
        }
        const auto& event = known->events[i];
        PageReader::add(page, event, known->slots[i]);
        std::copy_if(known->passedOver.begin(), known->passedOver.end(),
                     std::back_inserter(page.passedOver),
                     [&](const PassedRow& row) { return row.event == event; });
    }
}

// No page has a mark then: each is read again.
FullRead::Pages FullRead::streamDamaged(sql::RowStream& stream, const GenCollection& before,
                                        const Make& make) {
    PageReader reader(*this, stream, before, make);
    Pages pages;
    const auto at = [&](jet::PageNo number) -> PageRows& {
        if (pages.empty() || pages.back()->mark.page != number) {
            pages.push_back(std::make_shared<PageRows>());
            pages.back()->mark.page = number;
        }
        return *pages.back();
    };
    for (bool more = true; more;) {
        if (isReadable([&] { more = stream.next(); })) {
            if (more) {
                const jet::PageNo page = stream.id().page;
                reader.readDamaged(knownOf(page), at(page));
            }
            continue;
        }
        const auto lost = stream.passOver();
        if (!lost) {
            throw Error(ErrNo::Corrupt, "the rows cannot be passed over");
        }
        ++damage_.rows;
        keepLost(*lost, at(lost->page));
    }
    return pages;
}

// Not where somebody writes: what looks damaged then is only torn.
bool FullRead::readDamaged(DBRemindUtils& db, const GenCollection& before, const Make& make,
                           Pages& pages) {
    const DBRemindUtils::Look look = db.TakeLook();
    const Damage known = std::exchange(damage_, Damage());
    const bool isRead = db.ForRows(statement_, [&](sql::RowStream& rowStream) {
        damage_ = Damage();
        damage_.inPart = known.inPart;  // which of those that are held are no whole ones
        pages = streamDamaged(rowStream, before, make);
    });
    if (!isRead || !look.same(db.TakeLook())) {
        damage_ = known;
        return false;
    }
    return true;
}

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
        const Events& now = pages_[change.page]->events;
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
            position += pages_[page]->events.size();
        }
        if (!insert(*collection, pages_[page]->events, position)) {
            return nullptr;
        }
    }
    return collection;
}

void FullRead::addTo(GenCollection& collection, const PageRows& page) {
    for (const auto& event : page.events) {
        const std::size_t count = collection.Count();
        collection.Add(Variant(event), event->GUID);
        if (collection.Count() == count) {
            collection.Remove(event->GUID);
            collection.Add(Variant(event), event->GUID);
        }
    }
}

std::shared_ptr<GenCollection> FullRead::collected() const {
    auto collection = std::make_shared<GenCollection>();
    for (const auto& page : pages_) {
        addTo(*collection, *page);
    }
    return collection;
}

std::shared_ptr<GenCollection> FullRead::read(DBRemindUtils& db, const std::string& statement,
                                              const GenCollection& before, DateTime now,
                                              const Make& make) {
    if (statement != statement_) {
        forget();
        statement_ = statement;
    }
    now_ = now;
    std::sort(touched_.begin(), touched_.end());
    Changes changes;
    Pages pages;
    int readings = 0;
    const bool isRead = db.ForRows(statement, [&](sql::RowStream& rowStream) {
        if (++readings > 1) {
            lookAtAll();  // what was seen while others wrote may not belong together
        }
        changes = {};
        changes.noted = stamp_ != 0 && before.Stamp() == stamp_ && before.Count() == count_;
        changes.all = changes.noted ? nullptr : std::make_shared<GenCollection>();
        pages = stream(rowStream, before, make, changes);
    });
    if (isRead) {
        damage_ = Damage();
    } else {
        changes = {};
        if (db.LastError() != ErrNo::Corrupt || !readDamaged(db, before, make, pages)) {
            forget();
            return nullptr;
        }
    }
    touched_.clear();
    pages_ = std::move(pages);
    auto collection = changes.all ? changes.all : changed(changes, before);
    if (!collection) {
        collection = collected();
    }
    stamp_ = collection->Stamp();
    count_ = 0;
    for (const auto& page : pages_) {
        count_ += page->events.size();
    }
    mayPassBy_ = true;
    if (readings > 1) {
        lookAtAll();
    }
    return collection;
}

}  // namespace vl
