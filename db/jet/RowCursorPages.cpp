// Page by page over a table: which pages hold what they held before.
#include <algorithm>
#include <cassert>

#include "LongValue.h"
#include "PageDigests.h"
#include "RowCursorState.h"
#include "base/ErrorState.h"

namespace vl::jet {

namespace {

// What the bytes of a row mean, and of which file they are: never 0.
std::uint64_t layoutOf(const File& file, const TableDefinition& table) {
    const FileIdentity identity = file.identity();
    std::uint64_t hash = 1;
    for (const std::uint64_t number :
         {identity.volume, identity.number, std::uint64_t{table.page},
          std::uint64_t{table.maxColumns}, std::uint64_t{table.variableSlots},
          std::uint64_t{table.firstVariableColumns}, std::uint64_t{table.columns.size()}}) {
        hash = mixedWith(hash, number);
    }
    for (const Column& c : table.columns) {
        for (const char letter : c.name) {
            hash = mixedWith(hash, static_cast<unsigned char>(letter));
        }
        for (const unsigned number :
             {static_cast<unsigned>(c.type), unsigned{c.number}, unsigned{c.length},
              unsigned{c.fixed}, unsigned{c.precision}, unsigned{c.scale}, c.sortOrder,
              unsigned{c.variableIndex}, unsigned{c.fixedOffset}}) {
            hash = mixedWith(hash, number);
        }
    }
    return hash != 0 ? hash : 1;
}

}  // namespace

bool RowCursor::nextPage() {
    State& s = *state_;
    assert(!s.entries && !s.listed);
    s.data = DataPage();
    s.page = Page();
    s.nextSlot = 0;
    if (s.nextPage == s.pages.size()) {
        s.here.reset();
        return false;
    }
    s.here = s.pages[s.nextPage];
    ++s.nextPage;
    return true;
}

bool RowCursor::nextOnPage() {
    State& s = *state_;
    if (!s.here) {
        return false;
    }
    openPage();
    for (; s.nextSlot < s.data.slotCount(); ++s.nextSlot) {
        const DataPage::Slot slot = s.data.slot(s.nextSlot);
        if (slot == DataPage::Slot::Row || slot == DataPage::Slot::Moved) {
            s.place = findRow(s.file, *s.table, s.page, s.data, s.nextSlot);
            s.row = RowView(s.place.bytes, *s.table, s.place.page.origin());
            s.id = {s.page.number(), s.nextSlot};
            ++s.nextSlot;
            return true;
        }
    }
    return false;
}

PageNo RowCursor::page() const {
    assert(state_->here);
    return *state_->here;
}

void RowCursor::openPage() {
    State& s = *state_;
    if (s.page) {
        return;
    }
    Page page = s.file.page(*s.here);
    const DataPage data(page);
    // A page that meanwhile belongs to somebody else holds no rows of this table.
    s.data = data.owner() == s.table->page ? data : DataPage();
    s.page = std::move(page);
}

// 0 when there are no such pages any more.
std::uint64_t RowCursor::digestWith(std::uint64_t own, const std::vector<PageNo>& elsewhere) const {
    State& s = *state_;
    if (s.layout == 0) {
        s.layout = layoutOf(s.file.file(), *s.table);
    }
    std::uint64_t digest = mixedWith(s.layout, own);
    for (const PageNo page : elsewhere) {
        if (page >= s.file.pageCount()) {
            return 0;
        }
        digest = mixedWith(digest, s.file.digest(page));
    }
    return digest;
}

bool RowCursor::holds(const PageMark& mark) const {
    return mark.digest != 0 && mark.page == page() &&
           mark.digest == digestWith(state_->file.digest(mark.page), mark.elsewhere);
}

// The digest is of the bytes at hand, whatever else is known of the page.
PageMark RowCursor::mark() {
    State& s = *state_;
    PageMark mark{page(), 0, {}};
    try {
        openPage();
        for (std::uint16_t slot = 0; slot < s.data.slotCount(); ++slot) {
            addElsewhere(slot, mark.elsewhere);
        }
        std::sort(mark.elsewhere.begin(), mark.elsewhere.end());
        mark.elsewhere.erase(std::unique(mark.elsewhere.begin(), mark.elsewhere.end()),
                             mark.elsewhere.end());
        mark.elsewhere.shrink_to_fit();
        mark.digest = digestWith(digestOf(s.page.bytes().first<kPageSize>()), mark.elsewhere);
    } catch (const Error&) {
        mark = {page(), 0, {}};  // who reads its rows hears of it
    }
    return mark;
}

void RowCursor::addElsewhere(std::uint16_t slot, std::vector<PageNo>& pages) const {
    const State& s = *state_;
    const DataPage::Slot kind = s.data.slot(slot);
    if (kind != DataPage::Slot::Row && kind != DataPage::Slot::Moved) {
        return;
    }
    const RowPlace place = findRow(s.file, *s.table, s.page, s.data, slot, &pages);
    const RowView row(place.bytes, *s.table, place.page.origin());
    for (const Column* c : s.longColumns) {
        if (const std::optional<ByteView> field = row.field(*c)) {
            for (const RowPointer piece : LongValue::pieces(s.file, *field, place.page.origin())) {
                if (pages.empty() || pages.back() != piece.page) {
                    pages.push_back(piece.page);
                }
            }
        }
    }
}

}  // namespace vl::jet
