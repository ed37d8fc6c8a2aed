#include "db/jet/RowCursor.h"

#include <cassert>
#include <cstring>
#include <optional>
#include <vector>

#include "LongValue.h"
#include "RowCursorState.h"
#include "TextCode.h"
#include "UsageMap.h"
#include "Value.h"
#include "base/ErrorState.h"
#include "base/Mix.h"

namespace vl::jet {

RowCursor::RowCursor(PageFile& file, std::shared_ptr<const TableDefinition> table)
    : state_(std::make_unique<State>(file, std::move(table))) {
    state_->pages = readUsageMap(file, state_->table->ownedPages);
}

RowCursor::RowCursor(PageFile& file, std::shared_ptr<const TableDefinition> table, std::size_t tree,
                     KeyRange range)
    : state_(std::make_unique<State>(file, std::move(table))) {
    assert(tree < state_->table->trees.size());
    state_->entries = std::make_unique<EntriesInRange>(file, state_->table->trees[tree],
                                                       state_->table->page, std::move(range));
}

RowCursor::RowCursor(PageFile& file, std::shared_ptr<const TableDefinition> table,
                     std::vector<RowId> rows)
    : state_(std::make_unique<State>(file, std::move(table))) {
    state_->list = std::move(rows);
    state_->listed = true;
}

RowCursor::RowCursor(RowCursor&&) noexcept = default;
RowCursor& RowCursor::operator=(RowCursor&&) noexcept = default;
RowCursor::~RowCursor() = default;

bool RowCursor::next() {
    if (state_->listed) {
        return nextOfList();
    }
    return state_->entries ? nextOfIndex() : nextOfTable();
}

// False: the table has no such row.
bool RowCursor::moveTo(RowId id) {
    State& s = *state_;
    if (!s.page || s.page.number() != id.page) {
        s.data = DataPage();
        s.page = s.file.page(id.page);
        s.data = DataPage(s.page);
    }
    const bool there = s.data.owner() == s.table->page && id.row < s.data.slotCount() &&
                       (s.data.slot(id.row) == DataPage::Slot::Row ||
                        s.data.slot(id.row) == DataPage::Slot::Moved);
    if (there) {
        s.place = findRow(s.file, *s.table, s.page, s.data, id.row);
        s.row = RowView(s.place.bytes, *s.table, s.place.page.origin());
        s.id = id;
    }
    return there;
}

bool RowCursor::nextOfIndex() {
    State& s = *state_;
    if (!s.entryTaken && !s.entries->next()) {
        return false;
    }
    s.entryTaken = true;
    const RowId id = s.entries->row();
    if (!moveTo(id)) {
        s.page.origin().corrupt("has no row " + std::to_string(id.row) + " of table \"" +
                                s.table->name + "\", but an index on page " +
                                std::to_string(s.entries->page()) + " says so");
    }
    s.entryTaken = false;
    return true;
}

bool RowCursor::nextOfList() {
    State& s = *state_;
    if (s.nextOfList == s.list.size()) {
        return false;
    }
    const RowId id = s.list[s.nextOfList];
    if (!moveTo(id)) {
        throw Error(ErrNo::NotFound, s.file.name() + ": table \"" + s.table->name +
                                         "\" has no row " + std::to_string(id.row) + " on page " +
                                         std::to_string(id.page));
    }
    ++s.nextOfList;
    return true;
}

bool RowCursor::nextOfTable() {
    while (!nextOnPage()) {
        if (!nextPage()) {
            return false;
        }
    }
    return true;
}

// What `next` stopped at is the page that it came to, as long as that has not been read, or else
// the row in the slot that comes next.
std::optional<RowCursor::Unreadable> RowCursor::passOver() {
    State& s = *state_;
    if (s.listed || s.entries || !s.here) {
        return std::nullopt;
    }
    if (!s.page) {
        const PageNo lost = *s.here;
        s.here.reset();
        return Unreadable{lost, std::nullopt};
    }
    if (s.nextSlot < s.data.slotCount()) {
        return Unreadable{*s.here, s.nextSlot++};
    }
    return std::nullopt;
}

// Eight bytes at a time.
static std::uint64_t mixedBytes(std::uint64_t hash, ByteView bytes) {
    std::size_t at = 0;
    const auto take = [&](std::size_t count) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + at, count);
        hash = mixed(hash, word);
        at += count;
    };
    while (bytes.size() - at >= sizeof(std::uint64_t)) {
        take(sizeof(std::uint64_t));
    }
    // Of no bytes there need not even be a place to copy them from.
    if (at < bytes.size()) {
        take(bytes.size() - at);
    }
    return (hash ^ bytes.size()) * kGolden;
}

std::uint64_t RowCursor::fingerprint() const {
    const State& s = *state_;
    std::uint64_t hash = mixedBytes(0, s.place.bytes);
    for (const Column& c : s.table->columns) {
        if (c.type == ColumnType::Memo || c.type == ColumnType::Ole) {
            if (const std::optional<ByteView> field = s.row.field(c)) {
                const LongValue value(s.file, *field, s.place.page.origin());
                hash = mixedBytes(hash, value.bytes());
            }
        }
    }
    return hash;
}

RowId RowCursor::id() const { return state_->id; }

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

RowCursor::Read RowCursor::read(std::size_t column, bool& to) const {
    const State& s = *state_;
    const Column& c = s.table->columns[column];
    if (c.type != ColumnType::Boolean) {
        return Read::Other;
    }
    to = s.row.bit(c);
    return Read::Value;
}

RowCursor::Read RowCursor::read(std::size_t column, std::int32_t& to) const {
    const State& s = *state_;
    const Column& c = s.table->columns[column];
    if (c.type != ColumnType::Long) {
        return Read::Other;
    }
    const std::optional<ByteView> field = s.row.field(c);
    if (!field) {
        return Read::Null;
    }
    to = longFrom(c, *field, s.place.page.origin());
    return Read::Value;
}

RowCursor::Read RowCursor::read(std::size_t column, DateTime& to) const {
    const State& s = *state_;
    const Column& c = s.table->columns[column];
    if (c.type != ColumnType::Date) {
        return Read::Other;
    }
    const std::optional<ByteView> field = s.row.field(c);
    if (!field) {
        return Read::Null;
    }
    to = dateFrom(c, *field, s.place.page.origin());
    return Read::Value;
}

RowCursor::Read RowCursor::read(std::size_t column, std::string& to) const {
    const State& s = *state_;
    const Column& c = s.table->columns[column];
    if (c.type != ColumnType::Text && c.type != ColumnType::Memo) {
        return Read::Other;
    }
    const std::optional<ByteView> field = s.row.field(c);
    if (!field) {
        return Read::Null;
    }
    const Origin& origin = s.place.page.origin();
    if (c.type == ColumnType::Memo) {
        to = decodeText(LongValue(s.file, *field, origin).bytes(), origin);
    } else {
        to = decodeText(*field, origin);
    }
    return Read::Value;
}

}  // namespace vl::jet
