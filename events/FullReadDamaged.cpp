// What a full read gets out of a table that is damaged.
#include <algorithm>
#include <iterator>

#include "FoundPages.h"
#include "FullRead.h"
#include "PageReader.h"
#include "base/ErrorState.h"

namespace vl {

const FullRead::PageRows* FullRead::knownOf(jet::PageNo page) const {
    const auto known = std::lower_bound(
        pages_.begin(), pages_.end(), page,
        [](const Page& one, jet::PageNo wanted) { return one.mark.page < wanted; });
    return known != pages_.end() && known->mark.page == page ? known->rows.get() : nullptr;
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
    jet::PageNo last = 0;
    std::shared_ptr<PageRows> rows;  // of the page that is read
    const auto close = [&] {
        if (rows) {
            pages.emplace_back(jet::PageMark{last, 0, {}}, std::move(rows));
        }
    };
    const auto at = [&](jet::PageNo number) -> PageRows& {
        if (!rows || last != number) {
            close();
            last = number;
            rows = std::make_shared<PageRows>();
        }
        return *rows;
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
    close();
    return pages;
}

// Not where somebody writes: what looks damaged then is only torn.
bool FullRead::readDamaged(DBRemindUtils& db, const GenCollection& before, const Make& make,
                           FoundPages& found) {
    const DBRemindUtils::Look look = db.TakeLook();
    const Damage known = std::exchange(damage_, Damage());
    const bool isRead = db.ForRows(statement_, [&](sql::RowStream& rowStream) {
        damage_ = Damage();
        damage_.inPart = known.inPart;  // which of those that are held are no whole ones
        found = FoundPages(streamDamaged(rowStream, before, make));
    });
    if (!isRead || !look.same(db.TakeLook())) {
        damage_ = known;
        return false;
    }
    return true;
}

}  // namespace vl
