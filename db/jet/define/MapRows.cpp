#include "MapRows.h"

#include <array>

#include "write/DataPageDraft.h"

namespace vl::jet {

namespace {

constexpr std::uint32_t kNobody = 0;
// An inline map without pages, of the length that all writers use: 512 pages.
constexpr std::array<std::byte, 69> kEmptyMap{};

}  // namespace

RowPointer MapRows::add() {
    if (page_ != 0) {
        DataPageDraft draft(file_.page(page_));
        if (draft.owner() == kNobody && kEmptyMap.size() <= draft.room()) {
            const std::uint8_t row = draft.add(kEmptyMap, DataPage::Slot::Row);
            file_.writePage(page_, draft.bytes());
            return {page_, row};
        }
    }
    page_ = space_.take();
    DataPageDraft draft(kNobody);
    const std::uint8_t row = draft.add(kEmptyMap, DataPage::Slot::Row);
    file_.writePage(page_, draft.bytes());
    return {page_, row};
}

void MapRows::remove(RowPointer map) {
    space_.clear(map);
    DataPageDraft draft(file_.page(map.page));
    draft.erase(map.row);
    file_.writePage(map.page, draft.bytes());
    if (draft.owner() == kNobody && draft.allDeleted()) {
        space_.giveBack(map.page);
    }
}

}  // namespace vl::jet
