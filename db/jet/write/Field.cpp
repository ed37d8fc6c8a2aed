#include "Field.h"

#include <algorithm>

#include "Bytes.h"
#include "LongValue.h"
#include "TextCode.h"
#include "Value.h"
#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl::jet {

namespace {

constexpr std::size_t kFixedArea = 2;

std::vector<std::byte> textBytes(const Column& column, const Variant& value) {
    const std::u16string units = text::toUtf16(value.toText());
    if (column.type == ColumnType::Text && 2 * units.size() > column.length) {
        throw Error(ErrNo::Overflow,
                    "a text of " + std::to_string(units.size()) + " characters is too long");
    }
    return encodeText(units, column.compressed);
}

std::vector<std::byte> binaryBytes(const Column& column, const Variant& value) {
    const Bytes* bytes = value.get<Bytes>();
    if (!bytes) {
        throw Error(ErrNo::TypeMismatch, "the column holds bytes");
    }
    std::vector<std::byte> out = *bytes;
    if (column.type != ColumnType::Ole && out.size() > column.length) {
        throw Error(ErrNo::Overflow, std::to_string(out.size()) + " bytes are too many");
    }
    if (column.fixed) {
        out.resize(column.length);
    }
    return out;
}

std::vector<std::byte> sizedBytes(const Column& column, const Variant& value, Dates dates) {
    Column stored = column;
    if (column.type == ColumnType::Complex) {
        stored.type = ColumnType::Long;
    }
    std::vector<std::byte> bytes(column.length);
    encodeFixed(stored, value, bytes, dates);
    return bytes;
}

std::size_t fixedEnd(const TableDefinition& table) {
    std::size_t end = kFixedArea;
    for (const Column& column : table.columns) {
        if (column.fixed && column.type != ColumnType::Boolean) {
            end = std::max(end, kFixedArea + column.fixedOffset + column.length);
        }
    }
    return end;
}

// Of each slot the bytes that it holds; slots of deleted columns hold none.
std::vector<ByteView> slotsOf(const TableDefinition& table, const Fields& fields) {
    std::vector<ByteView> slots(table.variableSlots);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Column& column = table.columns[i];
        if (!column.fixed && column.type != ColumnType::Boolean && fields[i].bit) {
            slots[column.variableIndex] = fields[i].bytes;
        }
    }
    return slots;
}

void append16(std::vector<std::byte>& bytes, std::size_t value) {
    bytes.resize(bytes.size() + 2);
    store(std::span(bytes), bytes.size() - 2, static_cast<std::uint16_t>(value));
}

void appendVariable(std::vector<std::byte>& row, const std::vector<ByteView>& slots) {
    std::vector<std::size_t> starts;
    for (const ByteView slot : slots) {
        starts.push_back(row.size());
        row.insert(row.end(), slot.begin(), slot.end());
    }
    append16(row, row.size());
    for (std::size_t i = starts.size(); i-- > 0;) {
        append16(row, starts[i]);
    }
    append16(row, slots.size());
}

}  // namespace

Field fieldOf(const Column& column, const Variant& value, Dates dates) {
    if (column.type == ColumnType::Boolean) {
        return {!value.isNull() && value.toBool(), {}, false};
    }
    if (value.isNull()) {
        return {};
    }
    switch (column.type) {
        case ColumnType::Memo:
            return {true, textBytes(column, value), true};
        case ColumnType::Ole:
            return {true, binaryBytes(column, value), true};
        case ColumnType::Binary:
        case ColumnType::Block:
            return {true, binaryBytes(column, value), false};
        case ColumnType::Text:
            if (!column.fixed) {
                return {true, textBytes(column, value), false};
            }
            [[fallthrough]];
        default:
            return {true, sizedBytes(column, value, dates), false};
    }
}

std::string whyUnstorable(const Column& column, const Variant& value) {
    switch (column.type) {
        // Whatever their bytes are, they are one of the type's values.
        case ColumnType::Boolean:
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
        case ColumnType::Complex:
        case ColumnType::Money:
        case ColumnType::Guid:
        case ColumnType::Ole:
            return {};
        default:
            break;
    }
    try {
        fieldOf(column, value, Dates::AsTheyAre);
    } catch (const Error& e) {
        return e.what();
    }
    return {};
}

Fields fieldsOf(const RowView& row, const TableDefinition& table) {
    Fields fields(table.columns.size());
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Column& column = table.columns[i];
        if (column.type == ColumnType::Boolean) {
            fields[i].bit = row.bit(column);
        } else if (const auto bytes = row.field(column)) {
            fields[i] = {true, {bytes->begin(), bytes->end()}, false};
        }
    }
    return fields;
}

Variant valueOf(PageFile& file, const Column& column, const Field& field, const Origin& origin) {
    if (column.type == ColumnType::Boolean) {
        return field.bit;
    }
    if (!field.bit) {
        return Null{};
    }
    if (isLong(column.type) && !field.isLoose) {
        const LongValue value(file, field.bytes, origin);
        return decodeValue(column, value.bytes(), origin);
    }
    return decodeValue(column, field.bytes, origin);
}

std::vector<std::byte> encodeRow(const TableDefinition& table, const Fields& fields) {
    std::vector<std::byte> row(fixedEnd(table));
    store(std::span(row), 0, table.maxColumns);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Column& column = table.columns[i];
        if (column.fixed && column.type != ColumnType::Boolean && fields[i].bit) {
            std::copy(fields[i].bytes.begin(), fields[i].bytes.end(),
                      row.begin() + static_cast<std::ptrdiff_t>(kFixedArea + column.fixedOffset));
        }
    }
    if (table.variableSlots > 0) {
        appendVariable(row, slotsOf(table, fields));
    }
    const std::size_t mask = row.size();
    row.resize(mask + (table.maxColumns + 7U) / 8);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].bit) {
            const std::uint16_t number = table.columns[i].number;
            row[mask + number / 8U] |= static_cast<std::byte>(1U << (number % 8U));
        }
    }
    return row;
}

}  // namespace vl::jet
