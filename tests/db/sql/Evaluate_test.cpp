#include "Evaluate.h"

#include <gmock/gmock.h>

#include "Tables.h"

namespace vl::sql {
namespace {

using jet::ColumnType;
using test::caught;
using test::column;
using test::MemoryTable;

// The value of an expression over the first row: what an UPDATE would evaluate.
Variant valueOf(const std::string& expression, std::span<const Parameter> parameters = {}) {
    const MemoryTable table = test::kinds();
    Statement statement = parse("UPDATE T SET t = " + expression);
    auto& update = std::get<Update>(statement);
    Expr& expr = *update.assignments[0].value;
    Scope(table.shape(), update.table, parameters).bind(&expr);
    const auto rows = table.scan();
    rows->next();
    return evaluate(expr, *rows);
}

TEST(SqlLogic, FollowsTheTruthTablesOfThreeValues) {
    static constexpr const char* kNames[] = {"False", "Null", "True"};  // 0, 1, 2
    static constexpr int kAnd[3][3] = {{0, 0, 0}, {0, 1, 1}, {0, 1, 2}};
    static constexpr int kOr[3][3] = {{0, 1, 2}, {1, 1, 2}, {2, 2, 2}};
    const Variant values[] = {false, Null{}, true};
    for (int a = 0; a < 3; ++a) {
        SCOPED_TRACE(kNames[a]);
        EXPECT_EQ(valueOf(std::string("NOT ") + kNames[a]), values[2 - a]);
        for (int b = 0; b < 3; ++b) {
            SCOPED_TRACE(kNames[b]);
            EXPECT_EQ(valueOf(std::string(kNames[a]) + " AND " + kNames[b]), values[kAnd[a][b]]);
            EXPECT_EQ(valueOf(std::string(kNames[a]) + " OR " + kNames[b]), values[kOr[a][b]]);
        }
    }
}

TEST(SqlLogic, AnyComparisonWithNullIsUnknown) {
    for (const char* expression :
         {"nothing = 1", "1 <> nothing", "nothing = nothing", "nothing <> Null", "nothing < \"a\"",
          "d >= nothing", "nothing LIKE \"*\"", "t LIKE nothing", "nothing IN (1, 2)",
          "n IN (1, Null)", "n NOT IN (1, Null)", "nothing BETWEEN 1 AND 2", "n BETWEEN 1 AND Null",
          "NOT nothing", "nothing + 1", "1 - nothing", "-nothing", "nothing & Null", "Null"}) {
        SCOPED_TRACE(expression);
        EXPECT_EQ(valueOf(expression), Variant(Null{}));
    }
}

struct Case {
    const char* expression;
    Variant value;
};

void expectValues(std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.expression);
        EXPECT_EQ(valueOf(c.expression), c.value);
    }
}

TEST(SqlArithmetic, DividesWholeNumbersAndRaisesThem) {
    expectValues({{"7 \\ 2", 3},
                  {"-7 \\ 2", -3},
                  {"7 MOD 3", 1},
                  {"-7 MOD 3", -1},
                  {"7 mod -3", 1},
                  {"7.5 \\ 2.5", 4},  // 8 and 2: halves go to the even neighbour
                  {"6.5 MOD 4", 2},
                  {"n \\ \"2\"", 3},
                  {"-2147483648 MOD -1", 0},
                  {"True \\ 1", -1},
                  {"2 ^ 10", 1024.0},
                  {"2 ^ -1", 0.5},
                  {"-2 ^ 2", -4.0},
                  {"(-2) ^ 2", 4.0},
                  {"2 ^ 3 ^ 2", 64.0},
                  {"4 ^ 0.5", 2.0},
                  {"nothing ^ 2", Null{}},
                  {"7 MOD nothing", Null{}},
                  {"nothing \\ 0", Null{}}});
}

TEST(SqlArithmetic, BindsAsTheDialectSays) {
    expectValues({{"2 * 3 ^ 2", 18.0},
                  {"12 \\ 2 * 3", 2},    // 12 \ 6
                  {"13 MOD 7 \\ 2", 1},  // 13 MOD 3
                  {"1 + 7 MOD 4", 4},
                  {"10 - 2 MOD 2 & \"\"", "10"},
                  {"7 MOD 4 = 3", true}});
}

TEST(SqlArithmetic, RefusesWhatHasNoResult) {
    for (const char* expression : {"1 \\ 0", "1 MOD 0", "1 MOD 0.4", "3e9 \\ 1", "1 MOD 3e9",
                                   "-2147483648 \\ -1", "10 ^ 400", "(-8) ^ 0.5", "0 ^ -1"}) {
        SCOPED_TRACE(expression);
        const auto error = caught([&] { valueOf(expression); });
        EXPECT_EQ(error.number, ErrNo::Overflow);
        EXPECT_THAT(error.text, testing::StartsWith("line 1, column "));
    }
    EXPECT_EQ(caught([] { valueOf("t MOD 2"); }).number, ErrNo::TypeMismatch);
    EXPECT_EQ(caught([] { valueOf("raw ^ 2"); }).number, ErrNo::TypeMismatch);
}

TEST(SqlComparison, BytesCompareWithBytes) {
    expectValues({{"raw = 0x0102", true},
                  {"raw < 0x0103", true},
                  {"raw > 0x01", true},
                  {"raw IN (0x, 0x0102)", true}});
}

TEST(SqlComparison, ComparesNumbersAndYesNoWithEachOther) {
    expectValues({{"flag = True", true},
                  {"flag = -1", true},
                  {"flag = 1", false},
                  {"flag = 0", false},
                  {"flag <> 0", true},
                  {"flag = \"true\"", true},
                  {"n = 7", true},
                  {"n = 7.0", true},
                  {"n < 7.5", true},
                  {"x > n", false},
                  {"x = \"2.5\"", true},
                  {"n = \" 7 \"", true},
                  {"pay = 10.5", true},
                  {"pay < 9", false},
                  {"pay > \"9\"", true},
                  {"2147483648 > 2147483647", true}});
}

TEST(SqlComparison, TextsCompareWithoutCaseAndBlanksAtTheEnd) {
    expectValues({{"t = \"abc\"", true},
                  {"t = \"ABC   \"", true},
                  {"t = \" abc\"", false},
                  {"\"\" = \"  \"", true},
                  {"\"\xC3\x84\" = \"\xC3\xA4\"", true},
                  {"\"a\" < \"B\"", true},
                  {"\"10\" < \"9\"", true},
                  {"id = \"{00000000-0000-0000-0000-00000000000a}\"", true}});
}

TEST(SqlComparison, TextsSortAsTheDatabaseDoes) {
    expectValues({{"'co-op' > 'coop'", true},  // hyphens count last
                  {"'co-op' < 'coor'", true},
                  {"'co-op' <> 'coop'", true},
                  {"'\xC3\xA9' > 'e'", true},  // accents before them
                  {"'\xC3\xA9z' < 'f'", true},
                  {"'Stra\xC3\x9F' & 'e' = 'strasse'", true},
                  {"'\xEF\xBC\xA1' = 'a'", true},  // width does not count
                  {"'_' < '1'", true},
                  {"'~' BETWEEN ' ' AND '0'", true},
                  {"'\xC3\xA4' IN ('a', '\xC3\x84')", true}});
}

TEST(SqlComparison, ColumnsOfAnotherLanguageGoByFoldedCharacters) {
    jet::Column german = column("g", ColumnType::Text, 100);
    german.sortOrder = 0x0407;
    const MemoryTable table{{"T", {german}}, {{"co-op"}, {"coop"}, {"co_op"}, {"CO-OP "}}};
    const auto matching = [&](const char* rest) {
        return table.select(std::string("SELECT g FROM T ") + rest).rows.size();
    };
    EXPECT_EQ(matching("WHERE g < 'coop'"), 3U);  // all but coop, as the codes of - and _ are
    EXPECT_EQ(matching("WHERE g = 'co-op'"), 2U);
    EXPECT_EQ(matching("WHERE 'co-op' IN (g, 'x')"), 2U);
    EXPECT_EQ(matching("WHERE g BETWEEN 'co-' AND 'coop'"), 4U);
    EXPECT_EQ(table.select("SELECT DISTINCT g FROM T").rows.size(), 3U);
    EXPECT_EQ(table.select("SELECT g FROM T ORDER BY g").rows.back()[0], Variant("coop"));
    EXPECT_EQ(table.select("SELECT MAX(g) FROM T").rows[0][0], Variant("coop"));
}

TEST(SqlComparison, DatesCompareByWholeMilliseconds) {
    expectValues({{"d = #2026-11-15 14:30:00#", true},
                  {"d > #2026-11-15#", true},
                  {"d < #2026-11-15 14:30:01#", true},
                  {"d = \"2026-11-15 14:30:00\"", true},
                  {"d > 46341", true},
                  {"d > 0", true},
                  {"#2026-11-15 09:30# + 0.0208333333333 = #2026-11-15 10:00#", true},
                  {"#1899-12-30# = 0", true}});
}

TEST(SqlComparison, OtherTypesDoNotCompare) {
    for (const char* expression :
         {"t = 1", "1 < t", "d = \"soon\"", "t > d", "raw = 1", "raw = \"a\"", "raw < d",
          "n BETWEEN 1 AND \"x\"", "n IN (1, \"x\")", "flag = \"maybe\"", "t AND True",
          "raw LIKE \"*\"", "raw & \"\"", "t + 1", "raw + raw", "-t"}) {
        SCOPED_TRACE(expression);
        const auto error = caught([&] { valueOf(expression); });
        EXPECT_EQ(error.number, ErrNo::TypeMismatch);
        EXPECT_THAT(error.text, testing::StartsWith("line 1, column "));
        EXPECT_THAT(error.text, testing::HasSubstr("data type mismatch"));
    }
}

TEST(SqlComparison, NamesThePlaceOfTheOperator) {
    EXPECT_THAT(caught([] { valueOf("flag AND\n t > 5"); }).text,
                testing::StartsWith("line 2, column 4: data type mismatch"));
}

TEST(SqlTests, InBetweenIsNullLike) {
    expectValues({{"n IN (1, 7)", true},
                  {"n IN (Null, 7)", true},
                  {"n NOT IN (1, 7)", false},
                  {"t IN (\"x\", \"ABC\")", true},
                  {"n BETWEEN 7 AND 9", true},
                  {"n BETWEEN 5 AND 7", true},
                  {"n BETWEEN 8 AND 9", false},
                  {"n BETWEEN 9 AND 5", false},
                  {"n BETWEEN 8 AND Null", false},
                  {"n NOT BETWEEN Null AND 6", true},
                  {"d BETWEEN #2026-11-15# AND #2026-11-16#", true},
                  {"raw = raw", true},
                  {"nothing IS NULL", true},
                  {"nothing IS NOT NULL", false},
                  {"n IS NULL", false},
                  {"t LIKE \"a*\"", true},
                  {"t LIKE \"abc\"", false},
                  {"t NOT LIKE \"b*\"", true},
                  {"n LIKE \"#\"", true},
                  {"d LIKE \"2026-11-*\"", true}});
}

TEST(SqlArithmetic, KeepsWholeNumbersWholeWhileTheyFit) {
    expectValues({{"1 + 2 * 3", 7},
                  {"7 / 2", 3.5},
                  {"6 / 2", 3.0},
                  {"-n", -7},
                  {"- -n", 7},
                  {"2147483647 + 1", 2147483648.0},
                  {"-2147483647 - 1", std::int32_t{-2147483647 - 1}},
                  {"65536 * 65536", 4294967296.0},
                  {"n + x", 9.5},
                  {"\"2\" * 3", 6.0},
                  {"pay * 2", 21.0},
                  {"True + 0", -1},
                  {"(n = 7) * 5", -5},
                  {"\"2\" + \"3\"", "23"}});
    EXPECT_EQ(caught([] { valueOf("n / 0"); }).number, ErrNo::Overflow);
    EXPECT_EQ(caught([] { valueOf("1e308 * 10"); }).number, ErrNo::Overflow);
}

TEST(SqlArithmetic, DatesMoveByDays) {
    expectValues({{"d + 1", DateTime::fromCivil(2026, 11, 16, 14, 30)},
                  {"1 + d", DateTime::fromCivil(2026, 11, 16, 14, 30)},
                  {"d - 0.5", DateTime::fromCivil(2026, 11, 15, 2, 30)},
                  {"#1899-12-29 06:00:00# + 1", DateTime::fromCivil(1899, 12, 30, 6)},
                  {"#1899-12-30# - 1.25", DateTime::fromCivil(1899, 12, 28, 18)},
                  {"d - #2026-11-15#", 14.5 / 24}});
    for (const char* expression : {"d + 1e300", "d - 1e6", "d + 3000000"}) {
        EXPECT_EQ(caught([&] { valueOf(expression); }).number, ErrNo::Overflow) << expression;
    }
}

TEST(SqlArithmetic, ConcatenatesTexts) {
    expectValues({{"\"a\" & \"b\"", "ab"},
                  {"\"a\" & Null", "a"},
                  {"Null & \"a\"", "a"},
                  {"n & x", "72.5"},
                  {"flag & \"\"", "-1"},
                  {"d & \"\"", "2026-11-15 14:30:00"},
                  {"t & \"|\"", "Abc |"}});
}

TEST(SqlParameters, StandWhereNamesOrQuestionMarksStand) {
    const Parameter given[] = {
        {"Limit", 5},    {"", "first"}, {"@when", DateTime(3.0)},       {"two words", "x"},
        {"", Variant()}, {"N", 1},      {"big", std::int64_t{1} << 40}, {"small", std::int64_t{9}}};
    const auto value = [&](const char* expression) { return valueOf(expression, given); };
    EXPECT_EQ(value("n > limit"), Variant(true));
    EXPECT_EQ(value("[LIMIT] + 1"), Variant(6));
    EXPECT_EQ(value("@limit"), Variant(5));
    EXPECT_EQ(value("[when]"), Variant(DateTime(3.0)));
    EXPECT_EQ(value("[two words] & ?"), Variant("xfirst"));
    EXPECT_EQ(value("? IS NULL"), Variant(false));
    EXPECT_EQ(value("(? & 'a') & ?"), Variant("firsta"));  // the second is null
    EXPECT_EQ(value("n"), Variant(7));                     // a column comes first
    EXPECT_EQ(value("big"), Variant(1099511627776.0));
    EXPECT_EQ(value("small"), Variant(9));
    EXPECT_EQ(caught([&] { value("? & ? & ?"); }).text,
              "line 1, column 26: expected a value for the parameter number 3");
    EXPECT_EQ(caught([&] { value("T.limit"); }).text,
              "line 1, column 18: no column limit, expected one of table T");
    class Thing final : public Object {};
    const Parameter object[] = {{"o", std::make_shared<Thing>()}};
    EXPECT_EQ(caught([&] { valueOf("o", object); }).number, ErrNo::TypeMismatch);
}

TEST(SqlNames, AreFoundWithoutRegardToCase) {
    expectValues({{"N = 7", true}, {"t.n = 7", true}, {"[T].[N]", 7}});
    const auto column = caught([] { valueOf("1 + missing"); });
    EXPECT_EQ(column.number, ErrNo::NotFound);
    EXPECT_EQ(column.text, "line 1, column 22: no column missing, expected one of table T");
    const auto table = caught([] { valueOf("Other.n"); });
    EXPECT_EQ(table.number, ErrNo::NotFound);
    EXPECT_EQ(table.text, "line 1, column 18: no table Other is read here, expected T");
}

}  // namespace
}  // namespace vl::sql
