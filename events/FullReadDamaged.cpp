// What a full read gets out of a table that is damaged.
#include <algorithm>
#include <iterator>

#include "FullRead.h"
#include "PageReader.h"
#include "base/ErrorState.h"

namespace vl {

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

}  // namespace vl
