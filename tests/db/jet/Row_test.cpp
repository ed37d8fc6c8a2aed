#include "Row.h"

#include <gtest/gtest.h>

#include "Pages.h"

namespace vl {
namespace {

using jet::Column;
using jet::ColumnType;
using jet::TableDefinition;
using test::hexBytes;

const jet::Origin kOrigin{"memory", 27};

Column fixedColumn(std::uint16_t number, ColumnType type, std::uint16_t offset) {
    Column c;
    c.name = "fixed";
    c.number = number;
    c.type = type;
    c.fixed = true;
    c.fixedOffset = offset;
    c.length = jet::sizeOf(type);
    return c;
}

Column variableColumn(std::uint16_t number, std::uint16_t index) {
    Column c;
    c.name = "variable";
    c.number = number;
    c.type = ColumnType::Text;
    c.variableIndex = index;
    c.length = 100;
    return c;
}

TableDefinition nineColumns() {
    TableDefinition table;
    table.name = "Table1";
    table.maxColumns = 9;
    table.variableSlots = 2;
    table.firstVariableColumns = 1;
    return table;
}

// Two texts, six fixed columns, a yes/no.
const char* const kRow =
    "09 00 | 02 | de 00 | 55 43 de 13 | 7b 14 ae 47 e1 c8 7b 40 | 00 00 00 00 40 a7 da 40"
    "| b8 88 00 00 00 00 00 00 | ff fe 61 62 63 64 65 66 67"
    "| 68 00 69 00 6a 00 6b 00 6c 00 6d 00 6e 00 6f 00 70 00 | 3c 00 | 2a 00 21 00 | 02 00 | ff 01";

std::vector<std::byte> bytesOf(std::optional<jet::ByteView> field) {
    return field ? std::vector<std::byte>(field->begin(), field->end()) : hexBytes("ee ee ee");
}

TEST(JetRow, TellsItsColumnsApart) {
    const std::vector<std::byte> bytes = hexBytes(kRow);
    const TableDefinition table = nineColumns();
    const jet::RowView row(bytes, table, kOrigin);
    EXPECT_EQ(bytesOf(row.field(variableColumn(0, 0))), hexBytes("ff fe 61 62 63 64 65 66 67"));
    EXPECT_EQ(row.field(variableColumn(1, 1))->size(), 18U);
    EXPECT_EQ(bytesOf(row.field(fixedColumn(2, ColumnType::Byte, 0))), hexBytes("02"));
    EXPECT_EQ(bytesOf(row.field(fixedColumn(3, ColumnType::Integer, 1))), hexBytes("de 00"));
    EXPECT_EQ(bytesOf(row.field(fixedColumn(7, ColumnType::Money, 23))),
              hexBytes("b8 88 00 00 00 00 00 00"));
    EXPECT_TRUE(row.bit(fixedColumn(8, ColumnType::Boolean, 0)));
    // Added later.
    EXPECT_FALSE(row.knows(fixedColumn(9, ColumnType::Long, 31)));
    EXPECT_FALSE(row.field(fixedColumn(9, ColumnType::Long, 31)));
    EXPECT_FALSE(row.bit(fixedColumn(9, ColumnType::Boolean, 0)));
    EXPECT_FALSE(row.field(variableColumn(8, 2)));
}

TEST(JetRow, AnEmptySlotIsAnEmptyValueAndNotNull) {
    TableDefinition table = nineColumns();
    table.maxColumns = 10;
    table.variableSlots = 4;
    // Three of three columns were there; the second is null, the third empty.
    const auto bytes = hexBytes("03 00 | 61 00 | 04 00 04 00 04 00 02 00 | 03 00 | 05");
    const jet::RowView row(bytes, table, kOrigin);
    EXPECT_EQ(bytesOf(row.field(variableColumn(0, 0))), hexBytes("61 00"));
    EXPECT_FALSE(row.field(variableColumn(1, 1)));
    EXPECT_EQ(bytesOf(row.field(variableColumn(2, 2))), hexBytes(""));
    EXPECT_FALSE(row.field(variableColumn(3, 3)));
}

TEST(JetRow, TheEndFieldIsTheEndOfTheLastValue) {
    TableDefinition table = nineColumns();
    table.maxColumns = 1;
    table.variableSlots = 1;
    // Four unused bytes stand between the value and the end field.
    const auto bytes = hexBytes("01 00 | 61 00 | ff ff ff ff | 04 00 02 00 | 01 00 | 01");
    const jet::RowView row(bytes, table, kOrigin);
    EXPECT_EQ(bytesOf(row.field(variableColumn(0, 0))), hexBytes("61 00"));
}

TEST(JetRow, HasNoVariablePartWhenTheTableHadNone) {
    TableDefinition table = nineColumns();
    table.maxColumns = 1;
    table.variableSlots = 0;
    const auto bytes = hexBytes("01 00 | 07 00 00 00 | 01");
    EXPECT_EQ(
        bytesOf(jet::RowView(bytes, table, kOrigin).field(fixedColumn(0, ColumnType::Long, 0))),
        hexBytes("07 00 00 00"));
    // The same row after a text column was added to the table.
    table.maxColumns = 2;
    table.variableSlots = 1;
    table.firstVariableColumns = 2;
    const jet::RowView row(bytes, table, kOrigin);
    EXPECT_EQ(bytesOf(row.field(fixedColumn(0, ColumnType::Long, 0))), hexBytes("07 00 00 00"));
    EXPECT_FALSE(row.field(variableColumn(1, 0)));
}

TEST(JetRow, WhatDoesNotFitIntoTheRowIsDamage) {
    const TableDefinition table = nineColumns();
    const auto open = [&](const char* bytes) {
        return test::errorOf([&] { jet::RowView(hexBytes(bytes), table, kOrigin); });
    };
    EXPECT_EQ(open(""), ErrNo::Corrupt);
    EXPECT_EQ(open("01"), ErrNo::Corrupt);
    EXPECT_EQ(open("0a 00 00 00 00 00 00 00 00 00"), ErrNo::Corrupt);  // ten columns of nine
    EXPECT_EQ(open("09 00 00"), ErrNo::Corrupt);                       // no room for the mask
    EXPECT_EQ(open("09 00 00 00"), ErrNo::Corrupt);                    // nor the slot count
    EXPECT_EQ(open("09 00 02 00 03 00 00 00"), ErrNo::Corrupt);        // three slots of two
    EXPECT_EQ(open("09 00 02 00 02 00 00 00"), ErrNo::Corrupt);        // two without offsets

    const auto field = [&](const char* bytes, const Column& column) {
        const std::vector<std::byte> row = hexBytes(bytes);
        return test::errorOf([&] { jet::RowView(row, table, kOrigin).field(column); });
    };
    // One value at 2..4: its end, its start.
    EXPECT_EQ(field("09 00 61 00 04 00 02 00 01 00 ff 01", variableColumn(0, 0)), ErrNo::None);
    EXPECT_EQ(field("09 00 61 00 05 00 02 00 01 00 ff 01", variableColumn(0, 0)), ErrNo::Corrupt);
    EXPECT_EQ(field("09 00 61 00 04 00 05 00 01 00 ff 01", variableColumn(0, 0)), ErrNo::Corrupt);
    EXPECT_EQ(field("09 00 61 00 04 00 01 00 01 00 ff 01", variableColumn(0, 0)), ErrNo::Corrupt);
    EXPECT_EQ(field("09 00 61 00 04 00 02 00 01 00 ff 01", fixedColumn(2, ColumnType::Long, 0)),
              ErrNo::Corrupt);
    EXPECT_EQ(
        field("09 00 61 00 04 00 02 00 01 00 ff 01", fixedColumn(2, ColumnType::Byte, 0xFFFF)),
        ErrNo::Corrupt);
}

}  // namespace
}  // namespace vl
