#include "Rules.h"

#include <algorithm>

#include "DefinitionDraft.h"
#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl::jet {

namespace {

constexpr std::size_t kLongestName = 64;
constexpr std::size_t kMostColumns = 255;
constexpr std::size_t kMostIndexes = 32;
constexpr std::size_t kMostKeyColumns = 10;
constexpr std::uint8_t kUsualDigits = 18;
// The longest row that every writer of these files keeps to.
constexpr std::size_t kLongestRow = 4060;

std::string quoted(std::string_view name) { return "\"" + std::string(name) + "\""; }

[[noreturn]] void refuse(ErrNo number, const std::string& what) { throw Error(number, what); }

/// What is counted of a table while columns are added to it.
struct Sizes {
    std::size_t columns = 0;  // ever created
    std::size_t slots = 0;    // variable ones, ever created
    std::size_t fixedEnd = 0;
    bool autoNumber = false;
};

bool isKnown(ColumnType type) {
    return isLong(type) || isFixedType(type) || type == ColumnType::Text ||
           type == ColumnType::Binary;
}

void checkKind(const NewColumn& column) {
    const std::string name = "column " + quoted(column.name);
    if (!isKnown(column.type) || column.type == ColumnType::Complex) {
        refuse(ErrNo::Unsupported, name + ": columns of its type cannot be made");
    }
    if (column.autoNumber && column.type != ColumnType::Long) {
        refuse(ErrNo::Unsupported, name + ": only a long integer counts by itself");
    }
    if ((column.type == ColumnType::Text || column.type == ColumnType::Binary) &&
        column.length > kLongestField) {
        refuse(ErrNo::Overflow, name + ": is longer than 255");
    }
    if (column.type == ColumnType::Numeric && !isNumeric(column.precision, column.scale)) {
        refuse(ErrNo::Overflow, name +
                                    ": has more than 28 digits, or more behind the point than "
                                    "in all");
    }
}

void add(Sizes& sizes, const NewColumn& column) {
    checkName("column", column.name);
    checkKind(column);
    if (++sizes.columns > kMostColumns) {
        refuse(ErrNo::Overflow, "column " + quoted(column.name) +
                                    ": a table has at most 255 columns, deleted ones included");
    }
    if (column.autoNumber && std::exchange(sizes.autoNumber, true)) {
        refuse(ErrNo::Exists, "column " + quoted(column.name) +
                                  ": the table has a column that counts by itself already");
    }
    if (!isFixedType(column.type)) {
        ++sizes.slots;
    } else if (column.type != ColumnType::Boolean) {
        sizes.fixedEnd += sizeOf(column.type);
    }
    const std::size_t variable = sizes.slots == 0 ? 0 : 4 + 2 * sizes.slots;
    const std::size_t emptyRow = 2 + sizes.fixedEnd + variable + (sizes.columns + 7) / 8;
    if (emptyRow > kLongestRow) {
        refuse(ErrNo::Overflow, "column " + quoted(column.name) +
                                    ": rows of the table would be longer than " +
                                    std::to_string(kLongestRow) + " bytes");
    }
}

std::string withArticle(std::string_view what) {
    const bool vowel = std::string_view("aeiou").find(what.front()) != std::string_view::npos;
    return (vowel ? "an " : "a ") + std::string(what);
}

template <class Items>
void checkTaken(std::string_view what, const Items& items, std::string_view name) {
    for (const auto& item : items) {
        if (text::equalsNoCase(item.name, name)) {
            refuse(ErrNo::Exists,
                   "there is " + withArticle(what) + " " + quoted(name) + " already");
        }
    }
}

template <class Columns>
void checkKeyColumns(const NewIndex& index, const Columns& columns) {
    const std::string name = "index " + quoted(index.name);
    if (index.columns.empty() || index.columns.size() > kMostKeyColumns) {
        refuse(ErrNo::Overflow, name + ": has one column at least and ten at most");
    }
    for (auto part = index.columns.begin(); part != index.columns.end(); ++part) {
        const auto same = [&](const auto& other) {
            return text::equalsNoCase(other.name, part->name);
        };
        const auto column = std::find_if(columns.begin(), columns.end(), same);
        if (column == columns.end()) {
            refuse(ErrNo::NotFound, name + ": there is no column " + quoted(part->name));
        }
        if (column->type == ColumnType::Ole || column->type == ColumnType::Block ||
            column->type == ColumnType::Complex) {
            refuse(ErrNo::Unsupported,
                   name + ": column " + quoted(part->name) + " cannot be sorted");
        }
        if (std::any_of(index.columns.begin(), part, same)) {
            refuse(ErrNo::Exists, name + ": has column " + quoted(part->name) + " twice");
        }
    }
}

}  // namespace

bool isNumeric(std::uint8_t precision, std::uint8_t scale) noexcept {
    const std::uint8_t digits = precision == 0 ? kUsualDigits : precision;
    return digits <= kMostDigits && scale <= digits;
}

void checkName(std::string_view what, std::string_view name) {
    const auto allowed = [](unsigned char c) {
        return c >= 0x20 && c != 0x7F && c != '.' && c != '!' && c != '`' && c != '[' && c != ']';
    };
    // One that is no text would be another one when it is read back.
    const bool isText = text::fromUtf16(text::toUtf16(name)) == name;
    if (name.empty() || name.front() == ' ' || !isText ||
        !std::all_of(name.begin(), name.end(), allowed)) {
        refuse(ErrNo::Syntax, quoted(name) + " is no name of " + withArticle(what));
    }
    if (text::utf16Length(name) > kLongestName) {
        refuse(ErrNo::Overflow, "the name of " + std::string(what) + " " + quoted(name) +
                                    " is longer than 64 characters");
    }
}

void checkNewTable(std::string_view name, std::span<const NewColumn> columns,
                   std::span<const NewIndex> indexes) {
    checkName("table", name);
    if (columns.empty()) {
        refuse(ErrNo::Unsupported, "table " + quoted(name) + ": has no columns");
    }
    Sizes sizes;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        checkTaken("column", columns.first(i), columns[i].name);
        add(sizes, columns[i]);
    }
    if (indexes.size() > kMostIndexes) {
        refuse(ErrNo::Overflow, "table " + quoted(name) + ": has more than 32 indexes");
    }
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        checkName("index", indexes[i].name);
        checkTaken("index", indexes.first(i), indexes[i].name);
        checkKeyColumns(indexes[i], columns);
    }
    if (std::count_if(indexes.begin(), indexes.end(), [](auto& i) { return i.primary; }) > 1) {
        refuse(ErrNo::Exists, "table " + quoted(name) + ": has two primary keys");
    }
}

void checkNewColumn(const TableDefinition& table, const NewColumn& column) {
    checkTaken("column", table.columns, column.name);
    Sizes sizes{table.maxColumns, table.variableSlots, 0, false};
    for (const Column& other : table.columns) {
        sizes.autoNumber = sizes.autoNumber || other.autoNumber;
        if (other.fixed && other.type != ColumnType::Boolean) {
            sizes.fixedEnd =
                std::max<std::size_t>(sizes.fixedEnd, other.fixedOffset + other.length);
        }
    }
    add(sizes, column);
}

void checkNewIndex(const TableDefinition& table, const NewIndex& index) {
    checkName("index", index.name);
    checkTaken("index", table.indexes, index.name);
    checkKeyColumns(index, table.columns);
    if (std::max(table.indexes.size(), table.trees.size()) >= kMostIndexes) {
        refuse(ErrNo::Overflow, "table " + quoted(table.name) + ": has 32 indexes already");
    }
    if (index.primary && std::any_of(table.indexes.begin(), table.indexes.end(),
                                     [](auto& i) { return i.primary; })) {
        refuse(ErrNo::Exists, "table " + quoted(table.name) + ": has a primary key already");
    }
}

}  // namespace vl::jet
