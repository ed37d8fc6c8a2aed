// The data pages of one owner: a table, or a memo or OLE column.
#pragma once

#include "DataPageDraft.h"
#include "Space.h"

namespace vl::jet {

/// Puts rows where there is room, on pages of the owner or on new ones, and gives back pages on
/// which nothing is left. Keeps nothing between calls. `file` must outlive it. Throws `Error`:
/// `ErrNo::Corrupt` for a page that is not the owner's, and what `Space` throws.
class RowPages {
public:
    using Slot = DataPage::Slot;

    /// `owner` is what the pages name as such; the maps are the owner's.
    RowPages(PageFile& file, std::uint32_t owner, RowPointer ownedPages, RowPointer freePages);

    /// `row` is no longer than `DataPageDraft::kLongestRow`.
    RowPointer add(ByteView row, Slot state);
    /// On a page where no other row will stand.
    RowPointer addAlone(ByteView row);

    /// A page of the owner's.
    DataPageDraft open(PageNo number);
    /// Writes a page that was opened and changed; gives it back when all its rows are deleted.
    void write(PageNo number, const DataPageDraft& page);
    void erase(RowPointer row);

private:
    PageNo fresh();

    PageFile& file_;
    Space space_;
    std::uint32_t owner_;
    RowPointer owned_;
    RowPointer free_;
};

}  // namespace vl::jet
