#include "db/jet/RowCursor.h"

#include <cassert>
#include <vector>

#include "LongValue.h"
#include "RowPlace.h"
#include "UsageMap.h"
#include "Value.h"

namespace vl::jet {

struct RowCursor::State {
    PageFile& file;
    std::shared_ptr<const TableDefinition> table;
    std::vector<PageNo> pages;  // the table's, ascending
    std::size_t nextPage = 0;
    Page page;  // the one that slots are taken from
    DataPage data;
    std::uint16_t nextSlot = 0;
    RowPlace place;  // of the current row
    RowView row;
};

RowCursor::RowCursor(PageFile& file, std::shared_ptr<const TableDefinition> table)
    : state_(new State{file, std::move(table), {}, 0, {}, {}, 0, {}, {}}) {
    state_->pages = readUsageMap(file, state_->table->ownedPages);
}

RowCursor::RowCursor(RowCursor&&) noexcept = default;
RowCursor& RowCursor::operator=(RowCursor&&) noexcept = default;
RowCursor::~RowCursor() = default;

bool RowCursor::next() {
    State& s = *state_;
    for (;;) {
        while (s.nextSlot < s.data.slotCount()) {
            const DataPage::Slot slot = s.data.slot(s.nextSlot);
            if (slot == DataPage::Slot::Row || slot == DataPage::Slot::Moved) {
                s.place = findRow(s.file, *s.table, s.page, s.data, s.nextSlot);
                s.row = RowView(s.place.bytes, *s.table, s.place.page.origin());
                ++s.nextSlot;
                return true;
            }
            ++s.nextSlot;
        }
        if (s.nextPage == s.pages.size()) {
            return false;
        }
        s.page = s.file.page(s.pages[s.nextPage]);
        s.data = DataPage();
        const DataPage data(s.page);
        // A page that meanwhile belongs to somebody else holds no rows of this table.
        s.data = data.owner() == s.table->page ? data : DataPage();
        s.nextSlot = 0;
        ++s.nextPage;
    }
}

RowId RowCursor::id() const {
    return {state_->page.number(), static_cast<std::uint16_t>(state_->nextSlot - 1)};
}

Variant RowCursor::value(std::size_t column) const {
    const State& s = *state_;
    assert(column < s.table->columns.size());
    const Column& c = s.table->columns[column];
    if (c.type == ColumnType::Boolean) {
        return s.row.bit(c);
    }
    const std::optional<ByteView> field = s.row.field(c);
    if (!field) {
        return Null{};
    }
    const Origin& origin = s.place.page.origin();
    if (c.type == ColumnType::Memo || c.type == ColumnType::Ole) {
        const LongValue value(s.file, *field, origin);
        return decodeValue(c, value.bytes(), origin);
    }
    return decodeValue(c, *field, origin);
}

}  // namespace vl::jet
