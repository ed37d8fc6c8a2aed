#include "RandomRows.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "Cells.h"
#include "Decimal.h"
#include "TableDefinition.h"
#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl::test {

namespace {

using jet::Column;
using jet::ColumnType;

// Of four kinds; none that another reader's output could not show.
std::string randomText(Random& random, std::size_t units) {
    static constexpr std::array<std::u16string_view, 4> kAlphabets = {
        u"abcdefghij KLMNOPQRST 0123456789-'", u"aouäöüßéÅñç ", u"абвгдЖЗИЙκλμ漢字", u"ab"};
    const std::u16string_view letters = kAlphabets[below(random, kAlphabets.size())];
    std::u16string text;
    for (std::size_t i = 0; i < units; ++i) {
        text += letters[below(random, letters.size())];
    }
    if (units >= 2 && below(random, 20) == 0) {
        text.replace(below(random, units - 1), 2, u"\U0001F514");
    }
    return text::fromUtf16(text);
}

// Around each border between the ways of storing, and anywhere.
std::size_t longSize(Random& random) {
    static constexpr std::array<std::size_t, 6> kBorders = {32, 64, 2036, 4070, 8140, 1024};
    switch (below(random, 8)) {
        case 0:
            return 0;
        case 1:
            return kBorders[below(random, kBorders.size())] + below(random, 9) - 4;
        case 2:
            return below(random, 9000);
        default:
            return below(random, 90);
    }
}

Bytes randomBytes(Random& random, std::size_t size) {
    Bytes bytes(size);
    for (std::byte& b : bytes) {
        b = static_cast<std::byte>(random());
    }
    return bytes;
}

std::string randomDecimal(Random& random, unsigned digits, unsigned decimals) {
    jet::Decimal value;
    const std::size_t length = below(random, digits + 1);
    std::string text;
    for (std::size_t i = 0; i < length; ++i) {
        text += static_cast<char>('0' + below(random, 10));
    }
    value = jet::parseDecimal(text.empty() ? "0" : text, 0);
    value.negative = !value.isZero() && below(random, 2) == 0;
    return jet::formatDecimal(value, decimals);
}

std::int32_t whole(Random& random, std::int64_t least, std::int64_t most) {
    if (below(random, 3) == 0) {
        least = std::max<std::int64_t>(least, -3);
        most = std::min<std::int64_t>(most, 3);
    }
    const auto span = static_cast<std::uint64_t>(most - least + 1);
    return static_cast<std::int32_t>(least + static_cast<std::int64_t>(random() % span));
}

}  // namespace

std::size_t below(Random& random, std::size_t n) { return static_cast<std::size_t>(random() % n); }

Variant randomValue(Random& random, const Column& column) {
    if (column.type != ColumnType::Boolean && below(random, 8) == 0) {
        return Null{};
    }
    switch (column.type) {
        case ColumnType::Boolean:
            return below(random, 2) == 0;
        case ColumnType::Byte:
            return whole(random, 0, 255);
        case ColumnType::Integer:
            return whole(random, -32768, 32767);
        case ColumnType::Long:
            return whole(random, INT32_MIN, INT32_MAX);
        case ColumnType::Money:
            return randomDecimal(random, 18, 4);
        case ColumnType::Single:
            return static_cast<double>(static_cast<float>(whole(random, -100000, 100000)) / 16);
        case ColumnType::Double:
            return whole(random, INT32_MIN, INT32_MAX) / 1024.0;
        case ColumnType::Date:
            return DateTime::fromCivil(1900 + static_cast<int>(below(random, 200)), 1, 1)
                .addSeconds(whole(random, 0, 86400 * 365))
                .wholeSeconds();
        case ColumnType::Binary:
            return randomBytes(random,
                               column.fixed ? column.length : below(random, column.length + 1U));
        case ColumnType::Block:
            return randomBytes(random, column.length);
        case ColumnType::Text: {
            const std::size_t units = column.length / 2U;
            if (column.fixed) {
                std::string text = randomText(random, std::min<std::size_t>(units, 2));
                return text + std::string(units - text::utf16Length(text), ' ');
            }
            return randomText(random,
                              below(random, (below(random, 3) == 0 ? units : units / 8) + 1));
        }
        case ColumnType::Memo:
            return randomText(random, longSize(random));
        case ColumnType::Ole:
            return randomBytes(random, longSize(random));
        case ColumnType::Guid:
            return "{0000000" + std::to_string(below(random, 10)) + "-CE55-4151-ABE1-A1ACE100751" +
                   std::to_string(below(random, 10)) + "}";
        case ColumnType::Numeric:
            return randomDecimal(random, column.precision, column.scale);
        default:
            return Null{};
    }
}

Model::Model(const jet::Table& table, jet::ColumnRules rules)
    : table_(&table), rules_(std::move(rules)), unique_(table.indexes().size()) {
    jet::RowCursor cursor = table.scan();
    while (cursor.next()) {
        Row row;
        for (std::size_t i = 0; i < table.columns().size(); ++i) {
            row.push_back(cursor.value(i));
        }
        put(cursor.id(), std::move(row));
    }
}

jet::RowId Model::anyRow(Random& random) const {
    const auto row =
        std::next(rows_.begin(), static_cast<std::ptrdiff_t>(below(random, rows_.size())));
    return {row->first.first, row->first.second};
}

Model::Row Model::changed(const Row& row, std::span<const jet::Table::Change> changes) const {
    Row result = row;
    for (const auto& [position, value] : changes) {
        result[position] = value;
    }
    return result;
}

std::size_t Model::column(const jet::IndexColumn& part) const {
    const auto& columns = table_->columns();
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [&](const Column& c) { return c.name == part.name; });
    return static_cast<std::size_t>(found - columns.begin());
}

jet::KeyBytes Model::key(std::size_t index, const Row& row) const {
    std::vector<Variant> values;
    for (const jet::IndexColumn& part : table_->indexes()[index].columns) {
        values.push_back(row[column(part)]);
    }
    return table_->indexKey(index, values);
}

bool Model::allNull(std::size_t index, const Row& row) const {
    const auto& parts = table_->indexes()[index].columns;
    return std::all_of(parts.begin(), parts.end(),
                       [&](const auto& part) { return row[column(part)].isNull(); });
}

bool Model::anyNull(std::size_t index, const Row& row) const {
    const auto& parts = table_->indexes()[index].columns;
    return std::any_of(parts.begin(), parts.end(),
                       [&](const auto& part) { return row[column(part)].isNull(); });
}

bool Model::breaksRules(const Row& row, const Row* before) const {
    for (std::size_t i = 0; i < row.size(); ++i) {
        const bool broken =
            (rules_.required[i] && row[i].isNull()) || (rules_.noEmpty[i] && row[i] == Variant(""));
        if (broken && !(before && row[i] == (*before)[i])) {
            return true;
        }
    }
    return false;
}

bool Model::refuses(const Row& row, const Row* before) const {
    if (breaksRules(row, before)) {
        return true;
    }
    for (std::size_t i = 0; i < table_->indexes().size(); ++i) {
        const jet::Index& index = table_->indexes()[i];
        const jet::KeyBytes own = key(i, row);
        if (before && key(i, *before) == own) {
            continue;
        }
        if (index.required && anyNull(i, row)) {
            return true;
        }
        if (index.unique && !allNull(i, row) && unique_[i].contains(own)) {
            return true;
        }
    }
    return false;
}

void Model::put(jet::RowId id, Row row) {
    remove(id);
    for (std::size_t i = 0; i < table_->indexes().size(); ++i) {
        ++unique_[i][key(i, row)];
    }
    rows_[{id.page, id.row}] = std::move(row);
}

void Model::remove(jet::RowId id) {
    const auto row = rows_.find({id.page, id.row});
    if (row == rows_.end()) {
        return;
    }
    for (std::size_t i = 0; i < table_->indexes().size(); ++i) {
        const auto entry = unique_[i].find(key(i, row->second));
        if (--entry->second == 0) {
            unique_[i].erase(entry);
        }
    }
    rows_.erase(row);
}

void Model::expectSame() const {
    auto next = rows_.begin();
    jet::RowCursor cursor = table_->scan();
    jet::RowCells cells;
    while (cursor.next()) {
        ASSERT_NE(next, rows_.end());
        ASSERT_EQ(cursor.id(), (jet::RowId{next->first.first, next->first.second}));
        ASSERT_NO_FATAL_FAILURE(expectCells(cursor, table_->columns(), cells));
        for (std::size_t i = 0; i < table_->columns().size(); ++i) {
            ASSERT_EQ(cursor.value(i), next->second[i]) << table_->columns()[i].name;
        }
        ++next;
    }
    ASSERT_EQ(next, rows_.end());
    for (std::size_t i = 0; i < table_->indexes().size(); ++i) {
        std::vector<std::pair<jet::KeyBytes, std::pair<jet::PageNo, std::uint16_t>>> expected;
        for (const auto& [id, row] : rows_) {
            if (!table_->indexes()[i].ignoreNulls || !allNull(i, row)) {
                expected.emplace_back(key(i, row), id);
            }
        }
        std::sort(expected.begin(), expected.end());
        auto entry = expected.begin();
        jet::RowCursor sorted = table_->indexScan(i);
        while (sorted.next()) {
            ASSERT_NE(entry, expected.end());
            ASSERT_EQ(sorted.id(), (jet::RowId{entry->second.first, entry->second.second}));
            ++entry;
        }
        ASSERT_EQ(entry, expected.end());
    }
}

}  // namespace vl::test
