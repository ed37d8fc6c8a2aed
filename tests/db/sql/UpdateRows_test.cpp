#include "UpdateRows.h"

#include <gmock/gmock.h>

#include "Memory.h"

namespace vl::sql {
namespace {

using jet::ColumnType;
using test::caught;
using test::column;
using test::MemoryTable;

MemoryTable sample() {
    jet::Column id = column("ID", ColumnType::Long, 4);
    id.autoNumber = true;
    return {
        {"T",
         {id, column("Flag", ColumnType::Boolean, 1), column("B", ColumnType::Byte, 1),
          column("I", ColumnType::Integer, 2), column("L", ColumnType::Long, 4),
          column("S", ColumnType::Single, 4), column("X", ColumnType::Double, 8),
          column("D", ColumnType::Date, 8), column("T", ColumnType::Text, 10),
          column("M", ColumnType::Memo), column("Pay", ColumnType::Money, 8),
          column("Raw", ColumnType::Binary, 20), column("Odd", ColumnType::Complex, 4)}},
        {{1, true, 1, 2, 3, 4.0, 5.0, DateTime(6.0), "seven", "eight", "9.0000", Bytes{}, Null{}},
         {2, false, 1, 2, 30, 4.0, 5.0, DateTime(6.0), "seven", "eight", "9.0000", Bytes{},
          Null{}}}};
}

Variant stored(const std::string& assignment) {
    const auto changes = sample().changes("UPDATE T SET " + assignment + " WHERE ID = 1");
    return changes.at(0).second.at(0).second;
}

TEST(SqlUpdate, ComputesNewValuesFromTheOldRow) {
    const auto changes =
        sample().changes("UPDATE T SET L = L + I, T.I = L, T = \"now\" & I WHERE L > 5");
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].first, 1U);  // the second row
    const Changes expected = {{4, 32}, {3, 30}, {8, "now2"}};
    EXPECT_EQ(changes[0].second, expected);
    EXPECT_EQ(sample().changes("UPDATE T SET L = 0").size(), 2U);
    EXPECT_TRUE(sample().changes("UPDATE T SET L = 0 WHERE False").empty());
}

TEST(SqlUpdate, ConvertsToTheColumnsType) {
    struct Case {
        const char* assignment;
        Variant value;
    };
    const Case cases[] = {
        {"Flag = 0", false},
        {"Flag = -1", true},
        {"Flag = \"False\"", false},
        {"B = 255", 255},
        {"I = 2.5", 2},
        {"I = 3.5", 4},
        {"L = \"12\"", 12},
        {"L = True", -1},
        {"S = 1", 1.0},
        {"X = \"1.5\"", 1.5},
        {"D = #2026-11-15 14:30:00#", DateTime::fromCivil(2026, 11, 15, 14, 30)},
        {"D = \"2026-11-15\"", DateTime::fromCivil(2026, 11, 15)},
        {"D = 0", DateTime()},
        {"T = 12.5", "12.5"},
        {"T = \"12345\"", "12345"},
        {"T = \"\"", ""},
        {"M = \"a long text for a memo\"", "a long text for a memo"},
        {"Pay = 12.5", "12.5"},
        {"Pay = \"922337203685477.5807\"", "922337203685477.5807"},
        {"Pay = 1e15", "1000000000000000"},
        {"Raw = Raw", Bytes{}},
        {"D = Null", Null{}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.assignment);
        EXPECT_EQ(stored(c.assignment), c.value);
    }
}

TEST(SqlUpdate, RefusesWhatDoesNotFitTheColumn) {
    struct Case {
        const char* assignment;
        ErrNo number;
        const char* message;
    };
    static constexpr Case cases[] = {
        {"B = 256", ErrNo::Overflow, "line 1, column 18: column B: 256 is not between 0 and 255"},
        {"B = -1", ErrNo::Overflow, "line 1, column 18: column B: -1 is not"},
        {"I = 32768", ErrNo::Overflow, "line 1, column 18: column I: 32768"},
        {"L = 2147483648", ErrNo::Overflow, "line 1, column 18: column L"},
        {"S = 1e39", ErrNo::Overflow, "line 1, column 18: column S"},
        {"D = 1e9", ErrNo::Overflow, "line 1, column 18: column D"},
        {"D = \"soon\"", ErrNo::TypeMismatch, "line 1, column 18: column D: expected a date"},
        {"L = \"x\"", ErrNo::TypeMismatch, "line 1, column 18: column L: expected a number"},
        {"Flag = \"x\"", ErrNo::TypeMismatch, "line 1, column 21: column Flag: expected True"},
        {"Pay = \"x\"", ErrNo::TypeMismatch, "line 1, column 20: column Pay: expected a number"},
        {"Pay = 1e30", ErrNo::Overflow, "line 1, column 20: column Pay"},
        {"T = \"123456\"", ErrNo::Overflow,
         "line 1, column 18: column T: a text of 6 characters, expected at most 5"},
        {"T = \"1234\xF0\x9F\x94\x94\"", ErrNo::Overflow,
         "line 1, column 18: column T: a text of 6"},
        {"Raw = \"x\"", ErrNo::TypeMismatch, "line 1, column 20: column Raw: expected bytes"},
        {"Odd = 1", ErrNo::Unsupported, "line 1, column 20: column Odd"},
        {"ID = 5", ErrNo::ReadOnly, "line 1, column 14: column ID numbers its rows itself"},
        {"L = 1, l = 2", ErrNo::Syntax, "line 1, column 21: expected each column once"},
        {"Z = 1", ErrNo::NotFound, "line 1, column 14: no column Z"},
        {"L = Z", ErrNo::NotFound, "line 1, column 18: no column Z"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.assignment);
        const auto error = caught([&] { stored(c.assignment); });
        EXPECT_EQ(error.number, c.number);
        EXPECT_THAT(error.text, testing::StartsWith(c.message));
    }
}

}  // namespace
}  // namespace vl::sql
