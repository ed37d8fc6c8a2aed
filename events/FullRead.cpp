#include "FullRead.h"

#include <algorithm>

#include "FoundPages.h"
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
    for (Page& page : pages_) {
        if (page.rows->passesOver) {
            page.mark.digest = 0;
            std::erase_if(page.rows->passedOver, [](const PassedRow& row) { return !row.event; });
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
void FullRead::stream(sql::RowStream& stream, const GenCollection& before, const Make& make,
                      Changes& changes, FoundPages& found) {
    PageReader reader(*this, stream, before, make);
    auto known = pages_.begin();
    const PageRows* waiting = nullptr;  // to be put into the list while the next page is read
    const auto addToAll = [&](const PageRows* rows) {
        if (rows != nullptr) {
            expectIn(*changes.all, *rows);
        }
        if (waiting != nullptr) {
            addTo(*changes.all, *waiting);
        }
        waiting = rows;
    };
    const auto noteChange = [&](std::shared_ptr<const PageRows> was) {
        changes.noted = changes.noted && changes.pages.size() < kMostChangedPages;
        if (changes.noted) {
            changes.pages.push_back({found.count(), std::move(was)});
        } else if (!changes.all) {
            changes.all = collected(found.pages());
        }
    };
    while (stream.nextPage()) {
        for (; known != pages_.end() && known->mark.page < stream.page(); ++known) {
            changes.noted = changes.noted && known->count == 0;
        }
        const bool isThere = known != pages_.end() && known->mark.page == stream.page();
        const PageRows* rows = nullptr;
        if (isThere && mayPassBy_ && !isTouched(*known->rows) && stream.holds(known->mark)) {
            rows = known->rows.get();
            found.keep(*known);
        } else {
            Page page = reader.read(isThere ? known->rows.get() : nullptr);
            rows = page.rows.get();
            if (!isThere || rows->events != known->rows->events) {
                noteChange(isThere ? known->rows : nullptr);
            }
            found.put(std::move(page));
        }
        // Now that its events have just been made: later they would have to be fetched again.
        if (changes.all) {
            addToAll(rows);
        }
        known += isThere ? 1 : 0;
    }
    if (changes.all) {
        addToAll(nullptr);
    }
    for (; known != pages_.end(); ++known) {
        changes.noted = changes.noted && known->count == 0;
    }
}

// Of the pages as the read has found them.
void FullRead::take(FoundPages& found) {
    found.moveTo(pages_);
    count_ = 0;
    lastModified_ = DateTime();
    for (const Page& page : pages_) {
        count_ += page.count;
        lastModified_ = std::max(lastModified_, page.lastModified);
    }
}

std::shared_ptr<GenCollection> FullRead::read(DBRemindUtils& db, const std::string& statement,
                                              const GenCollection& before, DateTime openFrom,
                                              const Make& make) {
    if (statement != statement_) {
        forget();
        statement_ = statement;
    }
    openFrom_ = openFrom;
    std::sort(touched_.begin(), touched_.end());
    Changes changes;
    FoundPages found(pages_);
    int readings = 0;
    const bool isRead = db.ForRows(statement, [&](sql::RowStream& rowStream) {
        if (++readings > 1) {
            lookAtAll();  // what was seen while others wrote may not belong together
        }
        changes = {};
        changes.noted = stamp_ != 0 && before.Stamp() == stamp_ && before.Count() == count_;
        changes.all = changes.noted ? nullptr : std::make_shared<GenCollection>();
        found = FoundPages(pages_);
        stream(rowStream, before, make, changes, found);
    });
    if (isRead) {
        damage_ = Damage();
    } else {
        changes = {};
        if (db.LastError() != ErrNo::Corrupt || !readDamaged(db, before, make, found)) {
            forget();
            return nullptr;
        }
    }
    touched_.clear();
    take(found);
    auto collection = changes.all ? changes.all : changed(changes, before);
    if (!collection) {
        collection = collected(pages_);
    }
    stamp_ = collection->Stamp();
    mayPassBy_ = true;
    if (readings > 1) {
        lookAtAll();
    }
    return collection;
}

}  // namespace vl
