#include "RowPages.h"

#include <cassert>

namespace vl::jet {

namespace {

// With less room than this a page does not count as one that has any.
constexpr std::size_t kWorthKeeping = 128;
// A row longer than this finds no room on most pages that have some for others.
constexpr std::size_t kLongRow = kPageSize / 2;
constexpr int kMostTries = 8;

}  // namespace

RowPages::RowPages(PageFile& file, std::uint32_t owner, RowPointer ownedPages, RowPointer freePages)
    : file_(file), space_(file), owner_(owner), owned_(ownedPages), free_(freePages) {}

// Pages on which a row of ordinary size found no room leave the map, so that those before them
// are found: what they still have is less than such a row.
RowPointer RowPages::add(ByteView row, Slot state) {
    assert(row.size() <= DataPageDraft::kLongestRow);
    PageNo below = file_.pageCount();
    for (int tries = 0; tries < kMostTries; ++tries) {
        const std::optional<PageNo> number = space_.highestBelow(free_, below);
        if (!number) {
            break;
        }
        DataPageDraft page = open(*number);
        if (row.size() <= page.room()) {
            const std::uint8_t index = page.add(row, state);
            file_.writePage(*number, page.bytes());
            return {*number, index};
        }
        if (row.size() <= kLongRow || page.room() < kWorthKeeping) {
            space_.remove(free_, *number);
        }
        below = *number;
    }
    const PageNo number = fresh();
    DataPageDraft page(owner_);
    page.add(row, state);
    file_.writePage(number, page.bytes());
    space_.add(free_, number);
    return {number, 0};
}

RowPointer RowPages::addAlone(ByteView row) {
    const PageNo number = fresh();
    DataPageDraft page(owner_);
    page.add(row, Slot::Row);
    file_.writePage(number, page.bytes());
    return {number, 0};
}

PageNo RowPages::fresh() {
    const PageNo number = space_.take();
    space_.add(owned_, number);
    return number;
}

DataPageDraft RowPages::open(PageNo number) {
    const Page page = file_.page(number);
    DataPageDraft draft(page);
    if (draft.owner() != owner_ || !space_.contains(owned_, number)) {
        page.origin().corrupt("is not a page of its owner's, but a row there is to be written");
    }
    return draft;
}

void RowPages::write(PageNo number, const DataPageDraft& page) {
    file_.writePage(number, page.bytes());
    if (page.allDeleted()) {
        space_.remove(free_, number);
        space_.remove(owned_, number);
        space_.giveBack(number);
    } else if (page.room() >= kWorthKeeping) {
        space_.add(free_, number);
    }
}

void RowPages::erase(RowPointer row) {
    DataPageDraft page = open(row.page);
    if (row.row >= page.slotCount() || page.slot(row.row) == Slot::Deleted) {
        file_.page(row.page).origin().corrupt("row " + std::to_string(row.row) +
                                              " is to be deleted, but is not there");
    }
    page.erase(row.row);
    write(row.page, page);
}

}  // namespace vl::jet
