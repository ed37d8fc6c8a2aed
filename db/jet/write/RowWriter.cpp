#include "RowWriter.h"

#include <algorithm>
#include <cassert>
#include <random>

#include "Bytes.h"
#include "LongValueStore.h"
#include "TableLabel.h"
#include "define/DefinitionBlocks.h"

namespace vl::jet {

namespace {

constexpr std::size_t kCountersEnd = 0x1C;

// Apart from what each row changes.
bool sameDefinition(ByteView a, ByteView b, std::size_t trees) {
    const std::size_t keysEnd = kDefinitionHeader + 12 * trees;
    return a.size() == b.size() && a.size() >= keysEnd &&
           std::equal(a.begin() + kCountersEnd, a.begin() + kDefinitionHeader,
                      b.begin() + kCountersEnd) &&
           std::equal(a.begin() + static_cast<std::ptrdiff_t>(keysEnd), a.end(),
                      b.begin() + static_cast<std::ptrdiff_t>(keysEnd));
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

}  // namespace

RowWriter::RowWriter(PageFile& file, const TableDefinition& table)
    : file_(file), table_(table), counters_(file, table.page) {
    if (!file.inTransaction()) {
        throw Error(ErrNo::Unexpected, tableLabel(file, table) + ": written outside a transaction");
    }
    if (!sameDefinition(definitionBytes(file, table.page), table.bytes, table.trees.size())) {
        throw Error(ErrNo::Unexpected,
                    tableLabel(file, table) + " has been changed since it was asked for");
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
            throw Error(ErrNo::Unsupported, tableLabel(file_, table_) + ": column \"" +
                                                column.name +
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
    throw Error(ErrNo::NotFound, tableLabel(file_, table_) + " has no row " +
                                     std::to_string(id.row) + " on page " +
                                     std::to_string(id.page));
}

void RowWriter::assign(Fields& fields, std::span<const Table::Change> changes, Dates dates) {
    for (const auto& [position, value] : changes) {
        assert(position < fields.size());
        const Column& column = table_.columns[position];
        labelled([&] { return tableLabel(file_, table_) + ", column \"" + column.name + "\""; },
                 [&, &v = value, at = position] { fields[at] = fieldOf(column, v, dates); });
    }
}

void RowWriter::checkRule(std::size_t position, const Field& field, const ColumnRules& rules) {
    const Column& column = table_.columns[position];
    const auto refuse = [&](const char* what) {
        throw Error(ErrNo::TypeMismatch,
                    tableLabel(file_, table_) + ", column \"" + column.name + "\": " + what);
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

}  // namespace vl::jet
