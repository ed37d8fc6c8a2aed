#include "Value.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "Decimal.h"
#include "FixedValue.h"
#include "Pages.h"

namespace vl {
namespace {

using jet::Column;
using jet::ColumnType;

const jet::Origin kOrigin{"memory", 7};

Column column(ColumnType type, std::uint16_t length = 0, unsigned precision = 18,
              unsigned scale = 0) {
    Column c;
    c.name = "c";
    c.type = type;
    c.fixed = true;
    c.length = length;
    c.precision = static_cast<std::uint8_t>(precision);
    c.scale = static_cast<std::uint8_t>(scale);
    return c;
}

Variant decoded(const Column& c, const char* bytes) {
    return jet::decodeValue(c, test::hexBytes(bytes), kOrigin);
}

// The bytes of `value`, written into a field that held something else.
std::vector<std::byte> encoded(const Column& c, const Variant& value) {
    std::vector<std::byte> field = test::filled(c.length, 0xAA);
    jet::encodeFixed(c, value, field);
    return field;
}

TEST(JetValue, ReadsAndWritesEveryFixedType) {
    struct Case {
        Column column;
        const char* bytes;
        Variant value;
    };
    const Case cases[] = {
        {column(ColumnType::Byte, 1), "00", 0},
        {column(ColumnType::Byte, 1), "ff", 255},
        {column(ColumnType::Integer, 2), "de 00", 222},
        {column(ColumnType::Integer, 2), "ff 7f", 32767},
        {column(ColumnType::Integer, 2), "00 80", -32768},
        {column(ColumnType::Long, 4), "55 43 de 13", 333333333},
        {column(ColumnType::Long, 4), "ff ff ff 7f", 2147483647},
        {column(ColumnType::Long, 4), "00 00 00 80", std::numeric_limits<std::int32_t>::min()},
        {column(ColumnType::Money, 8), "b8 88 00 00 00 00 00 00", "3.5000"},
        {column(ColumnType::Money, 8), "ff ff ff ff ff ff ff ff", "-0.0001"},
        {column(ColumnType::Money, 8), "ff ff ff ff ff ff ff 7f", "922337203685477.5807"},
        {column(ColumnType::Money, 8), "00 00 00 00 00 00 00 80", "-922337203685477.5808"},
        {column(ColumnType::Single, 4), "00 00 c0 3f", 1.5},
        {column(ColumnType::Double, 8), "7b 14 ae 47 e1 c8 7b 40", 444.555},
        {column(ColumnType::Date, 8), "00 00 00 00 40 a7 da 40", DateTime::fromCivil(1974, 9, 21)},
        {column(ColumnType::Guid, 16), "0c d9 ed e9 55 ce 51 41 ab e1 a1 ac e1 00 75 15",
         "{E9EDD90C-CE55-4151-ABE1-A1ACE1007515}"},
        {column(ColumnType::Numeric, 17), "80 00000000 00000000 00000000 01000000", "-1"},
        {column(ColumnType::Numeric, 17, 18, 2), "00 00000000 00000000 00000000 05000000", "0.05"},
        {column(ColumnType::Numeric, 17, 28, 0), "00 00000000 00000000 01000000 00000000",
         "4294967296"},
        {column(ColumnType::Numeric, 17, 28, 0), "00 00000000 5ece4f20 6102253e ffffff0f",
         "9999999999999999999999999999"},
        {column(ColumnType::Text, 6), "61 00 20 00 20 00", "a  "},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << static_cast<int>(c.column.type) << ": " << c.bytes);
        const Variant value = decoded(c.column, c.bytes);
        EXPECT_EQ(value, c.value);
        EXPECT_EQ(encoded(c.column, value), test::hexBytes(c.bytes));
    }
}

TEST(JetValue, ReadsWhatIsNotWrittenInPlace) {
    EXPECT_EQ(decoded(column(ColumnType::Complex, 4), "07 00 00 00"), Variant(7));
    EXPECT_EQ(decoded(column(ColumnType::Binary), "01 02"), Variant(test::hexBytes("01 02")));
    EXPECT_EQ(decoded(column(ColumnType::Block, 2), "01 02"), Variant(test::hexBytes("01 02")));
    EXPECT_EQ(decoded(column(ColumnType::Ole), ""), Variant(Bytes()));
    EXPECT_EQ(decoded(column(ColumnType::Memo), "ff fe 61"), Variant("a"));
    // Nothing is the negative of nothing.
    EXPECT_EQ(decoded(column(ColumnType::Numeric, 17), "80 00000000 00000000 00000000 00000000"),
              Variant("0"));
}

TEST(JetValue, AWrongSizeOrADateThatIsNoNumberIsDamage) {
    const auto number = [](ColumnType type, const char* bytes) {
        return test::errorOf([&] { decoded(column(type), bytes); });
    };
    EXPECT_EQ(number(ColumnType::Long, "01 02 03"), ErrNo::Corrupt);
    EXPECT_EQ(number(ColumnType::Byte, ""), ErrNo::Corrupt);
    EXPECT_EQ(number(ColumnType::Guid, "01 02 03 04"), ErrNo::Corrupt);
    EXPECT_EQ(number(ColumnType::Date, "00 00 00 00 00 00 f8 7f"), ErrNo::Corrupt);
    EXPECT_EQ(number(ColumnType::Date, "00 00 00 00 00 00 f0 7f"), ErrNo::Corrupt);
}

TEST(JetDate, TheFractionCountsForwardBelowZero) {
    const Column c = column(ColumnType::Date, 8);
    const Variant value = decoded(c, "00 00 00 00 00 00 f4 bf");  // -1.25
    EXPECT_EQ(value.toDateTime(), DateTime::fromCivil(1899, 12, 29, 6));
    EXPECT_EQ(encoded(c, value), test::hexBytes("00 00 00 00 00 00 f4 bf"));
}

TEST(JetDate, TheSameInstantHasTheSameBits) {
    const Column c = column(ColumnType::Date, 8);
    for (const int second : {1, 59, 3599, 34200, 36000, 86399}) {
        const double expected = 46346 + second / 86400.0;
        const DateTime noisy(std::nextafter(std::nextafter(expected, 1e9), 1e9));
        const auto bytes = encoded(c, noisy);
        EXPECT_EQ(jet::f64(bytes, 0), expected) << second;
    }
    // Parts of a second are not kept.
    EXPECT_EQ(jet::f64(encoded(c, DateTime(46346 + 10.75 / 86400.0)), 0), 46346 + 10 / 86400.0);
    EXPECT_EQ(encoded(c, "2026-11-20 09:30:00"),
              encoded(c, DateTime::fromCivil(2026, 11, 20, 9, 30)));
    EXPECT_EQ(encoded(c, 0), test::hexBytes("00 00 00 00 00 00 00 00"));
}

TEST(JetEncode, ConvertsOrRefuses) {
    struct Case {
        Column column;
        Variant value;
        ErrNo error;
    };
    const Case cases[] = {
        {column(ColumnType::Byte, 1), 256, ErrNo::Overflow},
        {column(ColumnType::Byte, 1), -1, ErrNo::Overflow},
        {column(ColumnType::Byte, 1), 255.5, ErrNo::Overflow},
        {column(ColumnType::Byte, 1), 254.5, ErrNo::None},
        {column(ColumnType::Integer, 2), 32768, ErrNo::Overflow},
        {column(ColumnType::Integer, 2), -32769, ErrNo::Overflow},
        {column(ColumnType::Long, 4), 2147483648.0, ErrNo::Overflow},
        {column(ColumnType::Long, 4), std::int64_t{1} << 40, ErrNo::Overflow},
        {column(ColumnType::Long, 4), "12", ErrNo::None},
        {column(ColumnType::Long, 4), "twelve", ErrNo::TypeMismatch},
        {column(ColumnType::Long, 4), Bytes(4), ErrNo::TypeMismatch},
        {column(ColumnType::Long, 4), Null{}, ErrNo::TypeMismatch},
        {column(ColumnType::Single, 4), 3.5e38, ErrNo::Overflow},
        {column(ColumnType::Single, 4), -3.4e38, ErrNo::None},
        {column(ColumnType::Double, 8), std::nan(""), ErrNo::Overflow},
        {column(ColumnType::Date, 8), DateTime::fromCivil(100, 1, 1), ErrNo::None},
        {column(ColumnType::Date, 8), DateTime::fromCivil(99, 12, 31), ErrNo::Overflow},
        {column(ColumnType::Date, 8), DateTime::fromCivil(9999, 12, 31, 23, 59, 59), ErrNo::None},
        {column(ColumnType::Date, 8), DateTime::fromCivil(10000, 1, 1), ErrNo::Overflow},
        {column(ColumnType::Date, 8), DateTime(std::nan("")), ErrNo::Overflow},
        {column(ColumnType::Date, 8), "someday", ErrNo::TypeMismatch},
        {column(ColumnType::Money, 8), "922337203685477.5808", ErrNo::Overflow},
        {column(ColumnType::Money, 8), "-922337203685477.5809", ErrNo::Overflow},
        {column(ColumnType::Money, 8), "12 EUR", ErrNo::TypeMismatch},
        {column(ColumnType::Numeric, 17, 3, 1), "99.9", ErrNo::None},
        {column(ColumnType::Numeric, 17, 3, 1), "99.96", ErrNo::Overflow},
        {column(ColumnType::Numeric, 17, 3, 1), "-100", ErrNo::Overflow},
        {column(ColumnType::Guid, 16), "E9EDD90C-CE55-4151-ABE1-A1ACE1007515", ErrNo::None},
        {column(ColumnType::Guid, 16), "{E9EDD90C-CE55-4151-ABE1-A1ACE100751}",
         ErrNo::TypeMismatch},
        {column(ColumnType::Guid, 16), "{E9EDD90C-CE55-4151-ABE1-A1ACE100751G}",
         ErrNo::TypeMismatch},
        {column(ColumnType::Guid, 16), "{E9EDD90C+CE55-4151-ABE1-A1ACE1007515}",
         ErrNo::TypeMismatch},
        {column(ColumnType::Text, 4), "ab", ErrNo::None},
        {column(ColumnType::Text, 4), "abc", ErrNo::Overflow},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << static_cast<int>(c.column.type) << " #" << &c - cases);
        EXPECT_EQ(test::errorOf([&] { encoded(c.column, c.value); }), c.error);
    }
}

TEST(JetDecimal, RoundsHalvesToEvenAndKeepsEveryDigit) {
    struct Case {
        const char* text;
        unsigned decimals;
        const char* result;
    };
    static constexpr Case cases[] = {
        {"0", 0, "0"},
        {"-0", 2, "0.00"},
        {"1.5", 0, "2"},
        {"2.5", 0, "2"},
        {"2.51", 0, "3"},
        {"-2.5", 0, "-2"},
        {"-3.5", 0, "-4"},
        {".5", 0, "0"},
        {".50001", 0, "1"},
        {"0.00005", 4, "0.0000"},
        {"0.00015", 4, "0.0002"},
        {"12", 4, "12.0000"},
        {"1e3", 1, "1000.0"},
        {"1.25e-1", 2, "0.12"},
        {"+7.", 0, "7"},
        {"1e-40", 4, "0.0000"},
        {"99999999999999999999999999999999999999", 0, "99999999999999999999999999999999999999"},
        {"340282366920938463463374607431768211455", 0, "340282366920938463463374607431768211455"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(jet::formatDecimal(jet::parseDecimal(c.text, c.decimals), c.decimals), c.result);
    }
    for (const char* text : {"", "-", ".", "1e", "1e+", "1,5", "1.2.3", "0x10", "1 2"}) {
        EXPECT_EQ(test::errorOf([&] { jet::parseDecimal(text, 2); }), ErrNo::TypeMismatch) << text;
    }
    for (const char* text : {"340282366920938463463374607431768211456", "1e39", "1e9999999999"}) {
        EXPECT_EQ(test::errorOf([&] { jet::parseDecimal(text, 0); }), ErrNo::Overflow) << text;
    }
}

}  // namespace
}  // namespace vl
