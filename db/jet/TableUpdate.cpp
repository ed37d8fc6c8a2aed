#include <algorithm>
#include <cassert>
#include <optional>

#include "FixedValue.h"
#include "RowPlace.h"
#include "base/ErrorState.h"
#include "db/jet/Table.h"
#include "db/jet/Transaction.h"

namespace vl::jet {

namespace {

/// A change whose value is known to fit.
struct Patch {
    const Column& column;
    bool bit = false;              // the column's bit of the null mask
    std::vector<std::byte> bytes;  // of a fixed-size column
};

Patch patchFor(const Column& column, const Variant& value) {
    Patch patch{column, false, {}};
    if (column.autoNumber || column.indexed ||
        (column.type != ColumnType::Boolean && !isFixedValue(column))) {
        throw Error(ErrNo::Unsupported,
                    "only yes/no and fixed-size columns without an index are written in place");
    }
    if (column.type == ColumnType::Boolean) {
        patch.bit = value.toBool();
        return patch;
    }
    patch.bytes.resize(column.length);
    if (!value.isNull()) {
        patch.bit = true;
        encodeFixed(column, value, patch.bytes);
    }
    return patch;
}

RowPlace placeOf(PageFile& file, const TableDefinition& table, RowId id) {
    if (id.page < file.pageCount()) {
        const Page page = file.page(id.page);
        const DataPage data(page);
        if (data.owner() == table.page && id.row < data.slotCount() &&
            (data.slot(id.row) == DataPage::Slot::Row ||
             data.slot(id.row) == DataPage::Slot::Moved)) {
            return findRow(file, table, page, data, id.row);
        }
    }
    throw Error(ErrNo::NotFound, file.name() + ": table \"" + table.name + "\" has no row " +
                                     std::to_string(id.row) + " on page " +
                                     std::to_string(id.page));
}

void apply(const Patch& patch, const RowView& row, std::span<std::byte> bytes) {
    std::byte& mask = bytes[row.maskAt(patch.column)];
    const auto bit = static_cast<std::byte>(1U << (patch.column.number % 8U));
    mask = patch.bit ? mask | bit : mask & ~bit;
    if (!patch.bytes.empty()) {
        std::copy(patch.bytes.begin(), patch.bytes.end(),
                  bytes.begin() + static_cast<std::ptrdiff_t>(row.fixedAt(patch.column)));
    }
}

}  // namespace

void Table::updateInPlace(RowId id, std::span<const Change> changes) {
    const TableDefinition& table = *definition_;
    if (!file_->writable()) {
        throw Error(ErrNo::ReadOnly, file_->name() + ": is open for reading only");
    }
    std::vector<Patch> patches;
    for (const auto& [position, value] : changes) {
        assert(position < table.columns.size());
        const Column& column = table.columns[position];
        try {
            patches.push_back(patchFor(column, value));
        } catch (const Error& e) {
            throw Error(e.number(), file_->name() + ": column \"" + column.name + "\" of table \"" +
                                        table.name + "\": " + e.what());
        }
    }
    std::optional<Transaction> own;
    if (!file_->inTransaction()) {
        own.emplace(*file_);
    }
    const RowPlace place = placeOf(*file_, table, id);
    const RowView row(place.bytes, table, place.page.origin());
    Page::Bytes page{};
    std::copy(place.page.bytes().begin(), place.page.bytes().end(), page.begin());
    for (const Patch& patch : patches) {
        if (!row.knows(patch.column)) {
            throw Error(ErrNo::Unsupported, file_->name() + ": the row is older than column \"" +
                                                patch.column.name + "\" of table \"" + table.name +
                                                "\"");
        }
        apply(patch, row, std::span(page).subspan(place.offset, place.bytes.size()));
    }
    if (std::equal(page.begin(), page.end(), place.page.bytes().begin())) {
        return;
    }
    file_->writePage(place.page.number(), page);
    if (own) {
        own->commit();
    }
}

}  // namespace vl::jet
