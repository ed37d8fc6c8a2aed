#include <gmock/gmock.h>

#include "Tables.h"

namespace vl::sql {
namespace {

using jet::ColumnType;
using test::caught;
using test::kinds;
using test::MemoryTable;
using test::Row;

// What a column of the first row holds after an assignment.
Variant stored(const std::string& assignment, std::span<const Parameter> parameters = {}) {
    MemoryTable table = kinds();
    EXPECT_EQ(table.run("UPDATE T SET " + assignment + " WHERE No = 1", parameters), 1);
    const std::string column = assignment.substr(0, assignment.find(' '));
    return table.select("SELECT " + column + " FROM T WHERE No = 1").rows.at(0).at(0);
}

TEST(SqlUpdate, ComputesNewValuesFromTheOldRow) {
    MemoryTable table = kinds();
    EXPECT_EQ(table.run("UPDATE T SET L = L + I, T.I = L, T = \"now\" & I WHERE L > 5"), 1);
    const Result result = table.select("SELECT L, I, T FROM T");
    EXPECT_EQ(result.rows[0], (Row{3, 2, "Abc "}));
    EXPECT_EQ(result.rows[1], (Row{32, 30, "now2"}));
    EXPECT_EQ(table.run("UPDATE T AS a SET L = a.L * 2"), 2);
    EXPECT_EQ(table.select("SELECT MAX(L) FROM T").rows[0][0], Variant(64));
    EXPECT_EQ(table.run("UPDATE T SET L = 0 WHERE False"), 0);
}

TEST(SqlUpdate, WritesNothingWhenARowCannotBeComputed) {
    MemoryTable table = kinds();
    EXPECT_EQ(caught([&] { table.run("UPDATE T SET L = 1 / (L - 30)"); }).number, ErrNo::Overflow);
    EXPECT_EQ(caught([&] { table.run("UPDATE T SET T = L & \"abcd\""); }).number, ErrNo::Overflow);
    EXPECT_EQ(table.writes, 0);
    EXPECT_EQ(table.content(), kinds().content());
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
        {"Pay = 9e14", "900000000000000"},
        {"Raw = 0x0aFF", Bytes{std::byte{10}, std::byte{255}}},
        {"Id = \"{E9EDD90C-CE55-4151-ABE1-A1ACE1007515}\"",
         "{E9EDD90C-CE55-4151-ABE1-A1ACE1007515}"},
        {"Raw = Raw", Bytes{std::byte{1}, std::byte{2}}},
        {"D = Null", Null{}},
        {"Flag = Null", false},
        {"Pay = Pay", "10.5000"},  // the exact digits
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
        {"Raw = 0x000102030405060708090a0b0c0d0e0f1011121314", ErrNo::Overflow,
         "line 1, column 20: column Raw: 21 bytes, expected at most 20"},
        {"Pay = 1e15", ErrNo::Overflow, "line 1, column 20: column Pay: "},
        {"Pay = \"922337203685477.5808\"", ErrNo::Overflow, "line 1, column 20: column Pay: "},
        {"Id = \"nobody\"", ErrNo::TypeMismatch, "line 1, column 19: column Id: "},
        {"Odd = 1", ErrNo::Unsupported, "line 1, column 20: column Odd"},
        {"No = 5", ErrNo::ReadOnly, "line 1, column 14: column No numbers its rows itself"},
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
