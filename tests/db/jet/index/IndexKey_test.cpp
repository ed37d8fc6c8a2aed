// Keys by table: each type, ascending and descending.
#include <limits>

#include <gtest/gtest.h>

#include "Hex.h"
#include "IndexKey.h"
#include "MemoryFile.h"

namespace vl {
namespace {

using jet::ColumnType;

jet::KeyColumn partOf(ColumnType type, bool descending) {
    jet::KeyColumn part;
    part.column.name = "c";
    part.column.type = type;
    part.column.scale = 2;
    part.column.precision = 28;
    part.descending = descending;
    return part;
}

std::string keyOf(ColumnType type, bool descending, const Variant& value) {
    jet::IndexDefinition index;
    index.columns = {partOf(type, descending)};
    return test::hex(indexKey(index, std::vector<Variant>{value}).bytes);
}

Bytes counted(std::size_t size) {
    Bytes bytes;
    for (std::size_t i = 1; i <= size; ++i) {
        bytes.push_back(static_cast<std::byte>(i));
    }
    return bytes;
}

TEST(IndexKey, OfEachTypeInBothDirections) {
    struct Case {
        ColumnType type;
        Variant value;
        const char* ascending;
        const char* descending;
    };
    const Case cases[] = {
        {ColumnType::Long, Null{}, "00", "ff"},
        {ColumnType::Text, Null{}, "00", "ff"},
        {ColumnType::Boolean, true, "7f 00", "80 ff"},
        {ColumnType::Boolean, false, "7f ff", "80 00"},
        {ColumnType::Boolean, Null{}, "7f ff", "80 00"},
        {ColumnType::Byte, 0, "7f 00", "80 ff"},
        {ColumnType::Byte, 255, "7f ff", "80 00"},
        {ColumnType::Integer, 1, "7f 80 01", "80 7f fe"},
        {ColumnType::Integer, -32768, "7f 00 00", "80 ff ff"},
        {ColumnType::Long, 251658240, "7f 8f 00 00 00", "80 70 ff ff ff"},
        {ColumnType::Long, 1, "7f 80 00 00 01", "80 7f ff ff fe"},
        {ColumnType::Long, -1, "7f 7f ff ff ff", "80 80 00 00 00"},
        {ColumnType::Long, 19, "7f 80 00 00 13", "80 7f ff ff ec"},
        {ColumnType::Complex, 19, "7f 80 00 00 13", "80 7f ff ff ec"},
        {ColumnType::Money, "3.5", "7f 80 00 00 00 00 00 88 b8", "80 7f ff ff ff ff ff 77 47"},
        {ColumnType::Money, "-0.0001", "7f 7f ff ff ff ff ff ff ff", "80 80 00 00 00 00 00 00 00"},
        {ColumnType::Single, 1.0, "7f bf 80 00 00", "80 40 7f ff ff"},
        {ColumnType::Single, -1.0, "7f 40 7f ff ff", "80 bf 80 00 00"},
        {ColumnType::Double, 0.0, "7f 80 00 00 00 00 00 00 00", "80 7f ff ff ff ff ff ff ff"},
        {ColumnType::Double, -0.0, "7f 7f ff ff ff ff ff ff ff", "80 80 00 00 00 00 00 00 00"},
        {ColumnType::Double, -2.0, "7f 3f ff ff ff ff ff ff ff", "80 c0 00 00 00 00 00 00 00"},
        {ColumnType::Date, DateTime(1.0), "7f bf f0 00 00 00 00 00 00",
         "80 40 0f ff ff ff ff ff ff"},
        {ColumnType::Numeric, "1.00", "7f ff 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 64",
         "80 ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff 9b"},
        {ColumnType::Numeric, "-1", "7f 00 ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff 9b",
         "80 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 64"},
        {ColumnType::Guid, "{E9EDD90C-CE55-4151-ABE1-A1ACE1007515}",
         "7f e9 ed d9 0c ce 55 41 51 09 ab e1 a1 ac e1 00 75 15 08",
         "80 16 12 26 f3 31 aa be ae 09 54 1e 5e 53 1e ff 8a ea f7"},
        {ColumnType::Binary, Bytes{}, "7f", "80"},
        {ColumnType::Binary, counted(1), "7f 01 00 00 00 00 00 00 00 01",
         "80 fe ff ff ff ff ff ff ff fe"},
        {ColumnType::Binary, counted(8), "7f 01 02 03 04 05 06 07 08 08",
         "80 fe fd fc fb fa f9 f8 f7 f7"},
        {ColumnType::Binary, counted(9), "7f 01 02 03 04 05 06 07 08 09 09 00 00 00 00 00 00 00 01",
         "80 fe fd fc fb fa f9 f8 f7 09 f6 ff ff ff ff ff ff ff fe"},
        {ColumnType::Text, "", "7f 01 00", "80 fe ff 00"},
        {ColumnType::Text, "abc", "7f 4a 4c 4d 01 00", "80 b5 b3 b2 fe ff 00"},
        {ColumnType::Memo, "ABC", "7f 4a 4c 4d 01 00", "80 b5 b3 b2 fe ff 00"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message()
                     << "type " << static_cast<int>(c.type) << ", " << c.ascending);
        EXPECT_EQ(keyOf(c.type, false, c.value), c.ascending);
        EXPECT_EQ(keyOf(c.type, true, c.value), c.descending);
    }
}

TEST(IndexKey, SortsNumbersByTheirValue) {
    static constexpr double kAscending[] = {-1e300, -2.5, -1.0, -1e-300, 0.0, 1e-300, 0.5, 3.0};
    for (std::size_t i = 1; i < std::size(kAscending); ++i) {
        SCOPED_TRACE(kAscending[i]);
        EXPECT_LT(keyOf(ColumnType::Double, false, kAscending[i - 1]),
                  keyOf(ColumnType::Double, false, kAscending[i]));
        EXPECT_GT(keyOf(ColumnType::Double, true, kAscending[i - 1]),
                  keyOf(ColumnType::Double, true, kAscending[i]));
    }
}

TEST(IndexKey, IsItsColumnsOneAfterTheOther) {
    jet::IndexDefinition index;
    index.columns = {partOf(ColumnType::Long, false), partOf(ColumnType::Text, true)};
    const auto key = [&](std::vector<Variant> values) { return indexKey(index, values); };

    EXPECT_EQ(test::hex(key({1, "a"}).bytes), "7f 80 00 00 01 80 b5 fe ff 00");
    EXPECT_EQ(test::hex(key({1}).bytes), "7f 80 00 00 01");
    EXPECT_TRUE(key({Null{}, Null{}}).isAllNull);
    EXPECT_TRUE(key({1, Null{}}).hasNull);
    EXPECT_FALSE(key({1, Null{}}).isAllNull);
    EXPECT_FALSE(key({1, ""}).hasNull);
}

TEST(IndexKey, RefusesWhatTheColumnCannotHold) {
    const double huge = std::numeric_limits<double>::max();
    EXPECT_EQ(test::errorOf([&] { keyOf(ColumnType::Byte, false, 256); }), ErrNo::Overflow);
    EXPECT_EQ(test::errorOf([&] { keyOf(ColumnType::Single, false, huge); }), ErrNo::Overflow);
    EXPECT_EQ(test::errorOf([&] { keyOf(ColumnType::Binary, false, 1); }), ErrNo::TypeMismatch);
    EXPECT_EQ(test::errorOf([&] { keyOf(ColumnType::Guid, false, "x"); }), ErrNo::TypeMismatch);
    EXPECT_EQ(test::errorOf([&] { keyOf(ColumnType::Ole, false, Bytes{}); }), ErrNo::Unsupported);

    jet::IndexDefinition index;
    index.columns = {partOf(ColumnType::Text, false)};
    index.columns[0].column.sortOrder = 0x0407;
    EXPECT_EQ(test::errorOf([&] { indexKey(index, std::vector<Variant>{"a"}); }),
              ErrNo::Unsupported);
}

}  // namespace
}  // namespace vl
