#include "RowWriter.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <random>

#include "Bytes.h"
#include "IndexPages.h"
#include "LongValueStore.h"
#include "Relations.h"
#include "base/ErrorState.h"
#include "index/IndexTree.h"

namespace vl::jet {

namespace {

// Without what long values have outside of it.
constexpr std::size_t kLongestRow = 4060;
constexpr std::size_t kCountersEnd = 0x1C;
constexpr std::size_t kTreesAt = 0x3F;

// Apart from what each row changes.
bool sameDefinition(ByteView a, ByteView b, std::size_t trees) {
    const std::size_t keysEnd = kTreesAt + 12 * trees;
    return a.size() == b.size() && a.size() >= keysEnd &&
           std::equal(a.begin() + kCountersEnd, a.begin() + kTreesAt, b.begin() + kCountersEnd) &&
           std::equal(a.begin() + static_cast<std::ptrdiff_t>(keysEnd), a.end(),
                      b.begin() + static_cast<std::ptrdiff_t>(keysEnd));
}

std::array<std::byte, 4> pointerBytes(RowPointer pointer) {
    std::array<std::byte, 4> bytes{};
    store(std::span<std::byte>(bytes), 0, (pointer.page << 8) | pointer.row);
    return bytes;
}

// Version 4 of the standard's; it stands in the high half of the third group, stored lowest first.
std::vector<std::byte> randomGuid() {
    std::random_device random;
    std::vector<std::byte> bytes(16);
    for (std::byte& b : bytes) {
        b = static_cast<std::byte>(random());
    }
    bytes[7] = (bytes[7] & std::byte{0x0F}) | std::byte{0x40};
    bytes[8] = (bytes[8] & std::byte{0x3F}) | std::byte{0x80};
    return bytes;
}

RowPointer pointerOf(RowId id) { return {id.page, static_cast<std::uint8_t>(id.row)}; }

std::string labelOf(const PageFile& file, const TableDefinition& table) {
    return file.name() + ": table \"" + table.name + "\"";
}

/// Runs `step`; an error that is not damage gets what `where` gives before its text.
template <class Where, class Step>
auto named(Where&& where, Step&& step) {
    try {
        return step();
    } catch (const Error& e) {
        if (e.number() == ErrNo::Corrupt || e.number() == ErrNo::Io) {
            throw;
        }
        throw Error(e.number(), where() + ": " + e.what());
    }
}

}  // namespace

RowWriter::RowWriter(PageFile& file, const TableDefinition& table)
    : file_(file), table_(table), counters_(file, table.page) {
    if (!file.inTransaction()) {
        throw Error(ErrNo::Unexpected, labelOf(file, table) + ": written outside a transaction");
    }
    if (!sameDefinition(definitionBytes(file, table.page), table.bytes, table.trees.size())) {
        throw Error(ErrNo::Unexpected,
                    labelOf(file, table) + " has been changed since it was asked for");
    }
}

RowPages RowWriter::pages() { return {file_, table_.page, table_.ownedPages, table_.freePages}; }

RowId RowWriter::insert(std::span<const Table::Change> changes, const ColumnRules& rules,
                        Dates dates) {
    Fields fields(table_.columns.size());
    assign(fields, changes, dates);
    number(fields);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        checkRule(i, fields[i], rules);
    }
    std::vector<KeyChange> keys;
    for (std::size_t i = 0; i < table_.trees.size(); ++i) {
        planKey(keys, i, nullptr, &fields, {});
    }
    makeFit(fields);

    const RowPointer place = pages().add(settle(fields), DataPage::Slot::Row);
    const RowId id{place.page, place.row};
    writeKeys(keys, id);
    counters_.addRow();
    counters_.write();
    return id;
}

void RowWriter::update(RowId id, std::span<const Table::Change> changes, const ColumnRules& rules) {
    const Stored row = read(id);
    const Origin& origin = row.place.page.origin();
    Fields fields = row.fields;
    assign(fields, changes, Dates::WholeSeconds);
    bool changed = false;
    std::vector<bool> affected(fields.size());
    for (const auto& [position, value] : changes) {
        Field& field = fields[position];
        const Field& old = row.fields[position];
        const Column& column = table_.columns[position];
        const bool same = field.bit == old.bit && valueOf(file_, column, field, origin) ==
                                                      valueOf(file_, column, old, origin);
        if (same) {
            field = old;
            continue;
        }
        if (column.autoNumber) {
            throw Error(ErrNo::Unsupported, labelOf(file_, table_) + ": column \"" + column.name +
                                                "\" numbers the rows and is not changed");
        }
        checkRule(position, field, rules);
        affected[position] = true;
        changed = true;
    }
    if (!changed) {
        return;
    }
    std::vector<KeyChange> keys;
    for (std::size_t i = 0; i < table_.trees.size(); ++i) {
        const auto& columns = table_.trees[i].columns;
        if (std::any_of(columns.begin(), columns.end(),
                        [&](const KeyColumn& c) { return affected[c.position]; })) {
            planKey(keys, i, &row.fields, &fields, id);
        }
    }
    makeFit(fields);

    rewrite(row, settle(fields));
    writeKeys(keys, id);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Field& old = row.fields[i];
        if (isLong(table_.columns[i].type) && old.bit && old.bytes != fields[i].bytes &&
            !isInline(old.bytes)) {
            LongValueStore(file_, table_, table_.columns[i]).erase(old.bytes, origin);
        }
    }
    counters_.write();
}

void RowWriter::remove(RowId id) {
    const Stored row = read(id);
    const Origin& origin = row.place.page.origin();
    std::vector<KeyChange> keys;
    for (std::size_t i = 0; i < table_.trees.size(); ++i) {
        planKey(keys, i, &row.fields, nullptr, id);
    }

    writeKeys(keys, id);
    if (row.body != row.home) {
        pages().erase(row.body);
    }
    pages().erase(row.home);
    for (std::size_t i = 0; i < row.fields.size(); ++i) {
        const Field& field = row.fields[i];
        if (isLong(table_.columns[i].type) && field.bit && !isInline(field.bytes)) {
            LongValueStore(file_, table_, table_.columns[i]).erase(field.bytes, origin);
        }
    }
    counters_.removeRow();
    counters_.write();
}

RowWriter::Stored RowWriter::read(RowId id) {
    if (id.page < file_.pageCount()) {
        const Page page = file_.page(id.page);
        if (u8(page.bytes(), 0) == 1 && u32(page.bytes(), 4) == table_.page) {
            const DataPage data(page);
            const bool there =
                id.row < data.slotCount() && (data.slot(id.row) == DataPage::Slot::Row ||
                                              data.slot(id.row) == DataPage::Slot::Moved);
            if (there) {
                Stored row;
                row.place = findRow(file_, table_, page, data, id.row);
                row.home = pointerOf(id);
                row.body = data.slot(id.row) == DataPage::Slot::Row
                               ? row.home
                               : RowPointer::read(data.row(id.row), 0);
                const Page body = file_.page(row.body.page);
                if (DataPage(body).row(row.body.row).data() != row.place.bytes.data()) {
                    page.origin().corrupt("row " + std::to_string(id.row) + " moved twice");
                }
                const RowView view(row.place.bytes, table_, row.place.page.origin());
                row.fields = fieldsOf(view, table_);
                return row;
            }
        }
    }
    throw Error(ErrNo::NotFound, labelOf(file_, table_) + " has no row " + std::to_string(id.row) +
                                     " on page " + std::to_string(id.page));
}

void RowWriter::assign(Fields& fields, std::span<const Table::Change> changes, Dates dates) {
    for (const auto& [position, value] : changes) {
        assert(position < fields.size());
        const Column& column = table_.columns[position];
        named([&] { return labelOf(file_, table_) + ", column \"" + column.name + "\""; },
              [&, &v = value, at = position] { fields[at] = fieldOf(column, v, dates); });
    }
}

void RowWriter::checkRule(std::size_t position, const Field& field, const ColumnRules& rules) {
    const Column& column = table_.columns[position];
    const auto refuse = [&](const char* what) {
        throw Error(ErrNo::TypeMismatch,
                    labelOf(file_, table_) + ", column \"" + column.name + "\": " + what);
    };
    if (rules.required[position] && !field.bit && column.type != ColumnType::Boolean) {
        refuse("null is not allowed");
    }
    if (rules.noEmpty[position] && field.bit && field.bytes.empty()) {
        refuse("an empty text is not allowed");
    }
}

// Rows that come without a number get the next one; a number that is given is not given again.
void RowWriter::number(Fields& fields) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Column& column = table_.columns[i];
        if (!column.autoNumber) {
            continue;
        }
        if (column.type == ColumnType::Guid && !fields[i].bit) {
            fields[i] = {true, randomGuid(), false};
        } else if (column.type == ColumnType::Long) {
            if (!fields[i].bit) {
                fields[i] = fieldOf(column, counters_.nextNumber());
            }
            counters_.noteNumber(static_cast<std::int32_t>(u32(fields[i].bytes, 0)));
        }
    }
}

std::vector<Variant> RowWriter::partsOf(std::size_t tree, const Fields& fields,
                                        const Origin& origin) {
    std::vector<Variant> values;
    for (const KeyColumn& part : table_.trees[tree].columns) {
        values.push_back(valueOf(file_, part.column, fields[part.position], origin));
    }
    return values;
}

// What becomes of a tree's entry when a row that was `before` (null: is new) will be `after` (null:
// goes); refused here if it may not.
void RowWriter::planKey(std::vector<KeyChange>& plan, std::size_t tree, const Fields* before,
                        const Fields* after, std::optional<RowId> own) {
    const IndexDefinition& index = table_.trees[tree];
    const auto label = [&] { return indexLabel(tree); };
    const Origin origin{file_.name(), own ? own->page : table_.page};
    KeyChange change{tree, {}, {}};
    std::vector<Variant> oldParts;
    std::vector<Variant> newParts;
    IndexKey newKey;
    if (before) {
        oldParts = partsOf(tree, *before, origin);
        IndexKey key = named(label, [&] { return indexKey(index, oldParts); });
        if (!(index.ignoreNulls && key.isAllNull)) {
            change.before = std::move(key.bytes);
        }
    }
    if (after) {
        newParts = partsOf(tree, *after, origin);
        newKey = named(label, [&] { return indexKey(index, newParts); });
        if (!(index.ignoreNulls && newKey.isAllNull)) {
            change.after = newKey.bytes;
        }
    }
    if (change.before == change.after) {
        return;
    }
    named(label, [&] {
        IndexPages pages(file_);
        Relations relations(file_, table_);
        if (before) {
            relations.checkOld(tree, oldParts);
        }
        if (after) {
            relations.checkNew(tree, newParts);
        }
        if (change.after) {
            IndexTree(pages, index, table_.page).checkKey(newKey, own);
        }
    });
    plan.push_back(std::move(change));
}

std::string RowWriter::indexLabel(std::size_t tree) const {
    const auto index = std::find_if(table_.indexes.begin(), table_.indexes.end(),
                                    [&](const Index& i) { return i.tree == tree; });
    return labelOf(file_, table_) +
           (index == table_.indexes.end() ? ", an index" : ", index \"" + index->name + "\"");
}

void RowWriter::writeKeys(const std::vector<KeyChange>& plan, RowId id) {
    IndexPages pages(file_);
    for (const KeyChange& change : plan) {
        IndexTree tree(pages, table_.trees[change.tree], table_.page);
        if (change.before) {
            tree.remove(*change.before, id);
        }
        if (change.after && tree.insert(*change.after, id)) {
            counters_.addKey(change.tree);
        }
    }
}

// Decides which of the new long values stand in the row: short ones, unless the row gets too long.
void RowWriter::makeFit(Fields& fields) {
    const std::vector<std::byte> outside(12);
    Fields trial = fields;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].isLoose) {
            const bool stays = fields[i].bytes.size() <= kLongestInline;
            trial[i].bytes = stays ? inlineLongValue(fields[i].bytes) : outside;
        }
    }
    std::size_t size = encodeRow(table_, trial).size();
    while (size > kLongestRow) {
        std::size_t longest = fields.size();
        for (std::size_t i = 0; i < trial.size(); ++i) {
            if (isLong(table_.columns[i].type) && trial[i].bytes.size() > outside.size() &&
                (longest == fields.size() || trial[i].bytes.size() > trial[longest].bytes.size())) {
                longest = i;
            }
        }
        if (longest == fields.size()) {
            throw Error(ErrNo::Overflow, labelOf(file_, table_) + ": a row of " +
                                             std::to_string(size) + " bytes is too long");
        }
        if (!fields[longest].isLoose) {
            fields[longest].bytes = inlineValue(fields[longest].bytes);
            fields[longest].isLoose = true;
        }
        size -= trial[longest].bytes.size() - outside.size();
        trial[longest].bytes = outside;
    }
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].isLoose && trial[i].bytes != outside) {
            fields[i] = trial[i];
            fields[i].isLoose = false;
        }
    }
}

// Writes the long values that stand outside their row, and gives the row.
std::vector<std::byte> RowWriter::settle(Fields& fields) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].isLoose) {
            fields[i].bytes = LongValueStore(file_, table_, table_.columns[i]).put(fields[i].bytes);
            fields[i].isLoose = false;
        }
    }
    return encodeRow(table_, fields);
}

// Where it stands, if there is room; else on another page of the table, and its first place names
// that one.
void RowWriter::rewrite(const Stored& row, ByteView bytes) {
    RowPages pages = this->pages();
    DataPageDraft page = pages.open(row.body.page);
    const bool isHome = row.body == row.home;
    if (page.fits(row.body.row, bytes.size())) {
        page.replace(row.body.row, bytes, isHome ? DataPage::Slot::Row : DataPage::Slot::Body);
        pages.write(row.body.page, page);
        return;
    }
    const std::array<std::byte, 4> pointer = pointerBytes(pages.add(bytes, DataPage::Slot::Body));
    if (!isHome) {
        pages.erase(row.body);
    }
    DataPageDraft home = pages.open(row.home.page);
    if (!home.fits(row.home.row, pointer.size())) {
        file_.page(row.home.page).origin().corrupt("has no room for a pointer to a row");
    }
    home.replace(row.home.row, pointer, DataPage::Slot::Moved);
    pages.write(row.home.page, home);
}

}  // namespace vl::jet
