#include "SelectRows.h"

#include <gmock/gmock.h>

#include <set>

#include "Tables.h"

namespace vl::sql {
namespace {

using jet::ColumnType;
using test::caught;
using test::column;
using test::firstColumn;
using test::MemoryTable;
using test::people;
using test::Row;
using testing::ElementsAre;

std::vector<std::string> namesBy(const std::string& rest) {
    return firstColumn(people().select("SELECT Name FROM People " + rest));
}

TEST(SqlSelect, GivesTheAskedColumns) {
    const Result result = people().select("SELECT age, People.NAME AS Who, * FROM people");
    EXPECT_TRUE(result.isQuery);
    EXPECT_EQ(result.affected, 0);
    std::vector<std::string> names;
    for (const Field& field : result.fields) {
        names.push_back(field.name);
    }
    EXPECT_THAT(names, ElementsAre("Age", "Who", "Name", "Expr1003", "Town", "Pay"));
    EXPECT_EQ(result.fields[0].type, ColumnType::Long);
    EXPECT_EQ(result.fields[5].type, ColumnType::Money);
    ASSERT_EQ(result.rows.size(), 5U);
    EXPECT_EQ(result.rows[0], (Row{30, "Ann", "Ann", 30, "Bonn", "9.5000"}));
    EXPECT_EQ(people().select("SELECT people.* FROM People").fields.size(), 4U);
}

TEST(SqlSelect, KeepsOnlyWhatIsTrue) {
    EXPECT_THAT(namesBy("WHERE Age = 30"), ElementsAre("Ann", "Dora"));
    EXPECT_THAT(namesBy("WHERE NOT Age = 30"), ElementsAre("bob", "Eve"));  // null is unknown
    EXPECT_THAT(namesBy("WHERE Town = 'kiel'"), ElementsAre("bob", "Dora"));
    EXPECT_THAT(namesBy("WHERE Age"), ElementsAre("Ann", "bob", "Dora", "Eve"));
    EXPECT_TRUE(namesBy("WHERE Null").empty());
    EXPECT_THAT(namesBy("WHERE Pay > 9.5"), ElementsAre("bob", "Dora"));
}

TEST(SqlSelect, DecodesOnlyWhatItNeeds) {
    const MemoryTable table = people();
    table.select("SELECT Name FROM People WHERE Age > 40");
    EXPECT_EQ(table.decoded, 5 + 1);  // every age, one name
}

TEST(SqlSelect, OrdersRows) {
    EXPECT_THAT(namesBy("ORDER BY Age"), ElementsAre("Cid", "bob", "Ann", "Dora", "Eve"));
    EXPECT_THAT(namesBy("ORDER BY Age DESC, Name DESC"),
                ElementsAre("Eve", "Dora", "Ann", "bob", "Cid"));
    EXPECT_THAT(namesBy("ORDER BY Name DESC"), ElementsAre("Eve", "Dora", "Cid", "bob", "Ann"));
    EXPECT_THAT(namesBy("ORDER BY Town, Name DESC"),
                ElementsAre("Cid", "Eve", "Ann", "Dora", "bob"));
    // As numbers: as texts 10 and 100 would come before 9.5.
    EXPECT_THAT(namesBy("ORDER BY Pay"), ElementsAre("Cid", "Eve", "Ann", "bob", "Dora"));
}

TEST(SqlSelect, OrdersByANameOrPlaceOfTheList) {
    EXPECT_THAT(firstColumn(people().select("SELECT Name, -Age AS Youth FROM People WHERE Age "
                                            "ORDER BY Youth, 1 DESC")),
                ElementsAre("Eve", "Dora", "Ann", "bob"));
    EXPECT_THAT(firstColumn(people().select("SELECT DISTINCT -Age AS a FROM People ORDER BY a")),
                firstColumn(people().select("SELECT DISTINCT -Age FROM People ORDER BY 1")));
    // A column of the table goes before a name of the list.
    EXPECT_THAT(firstColumn(people().select("SELECT Name, -Age AS Age FROM People WHERE Age > 0 "
                                            "ORDER BY Age, Name")),
                ElementsAre("bob", "Ann", "Dora", "Eve"));
    EXPECT_EQ(caught([] { people().select("SELECT Name AS n FROM People WHERE n = 'x'"); }).number,
              ErrNo::NotFound);
}

TEST(SqlSelect, EveryColumnOfAResultHasANameOfItsOwn) {
    const auto namesOf = [](const char* statement) {
        std::vector<std::string> names;
        for (const Field& field : people().select(statement).fields) {
            names.push_back(field.name);
        }
        return names;
    };
    EXPECT_THAT(namesOf("SELECT Name AS a, Age AS A, Town AS b FROM People"),
                ElementsAre("a", "Expr1001", "b"));
    EXPECT_THAT(namesOf("SELECT Name, Age, name FROM People"),
                ElementsAre("Name", "Age", "Expr1002"));
    EXPECT_THAT(namesOf("SELECT Age AS Expr1001, Age + 1 FROM People"),
                ElementsAre("Expr1001", "Expr1002"));
    EXPECT_THAT(namesOf("SELECT COUNT(*) AS n, MAX(Age) AS n FROM People"),
                ElementsAre("n", "Expr1001"));
    const auto twice = namesOf("SELECT *, * FROM People");
    EXPECT_EQ(std::set<std::string>(twice.begin(), twice.end()).size(), twice.size());
}

TEST(SqlSelect, NotANumberHasAPlaceInTheOrder) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const MemoryTable table{{"T", {column("x", ColumnType::Double, 8)}},
                            {{2.0}, {nan}, {1.0}, {nan}, {Null{}}}};
    const Result result = table.select("SELECT x FROM T ORDER BY x");
    EXPECT_TRUE(result.rows[0][0].isNull());
    EXPECT_EQ(result.rows[3][0], Variant(1.0));
    EXPECT_EQ(result.rows[4][0], Variant(2.0));
    EXPECT_EQ(table.select("SELECT DISTINCT x FROM T").rows.size(), 4U);
}

TEST(SqlSelect, TopCutsButNotBetweenEquals) {
    EXPECT_THAT(firstColumn(people().select("SELECT TOP 2 Name FROM People")),
                ElementsAre("Ann", "bob"));
    EXPECT_EQ(people().select("SELECT TOP 9 * FROM People").rows.size(), 5U);
    EXPECT_THAT(firstColumn(people().select("SELECT TOP 1 Name FROM People ORDER BY Age DESC")),
                ElementsAre("Eve"));
    EXPECT_THAT(firstColumn(people().select("SELECT TOP 2 Name FROM People ORDER BY Age DESC")),
                ElementsAre("Eve", "Ann", "Dora"));
}

TEST(SqlSelect, TopOfAHundredCountsPartsOfARowAsOne) {
    const auto rows = [](const char* rest) {
        return people().select(std::string("SELECT TOP ") + rest).rows.size();
    };
    EXPECT_EQ(rows("1 PERCENT * FROM People"), 1U);
    EXPECT_EQ(rows("20 PERCENT * FROM People"), 1U);
    EXPECT_EQ(rows("21 PERCENT * FROM People"), 2U);
    EXPECT_EQ(rows("100 PERCENT * FROM People"), 5U);
    EXPECT_EQ(rows("50 PERCENT * FROM People WHERE False"), 0U);
    EXPECT_EQ(rows("40 PERCENT Name FROM People ORDER BY Age DESC"), 3U) << "two of one age";
    EXPECT_EQ(rows("20 PERCENT Name FROM People ORDER BY Age DESC"), 1U);
}

TEST(SqlSelect, DistinctComparesAsComparisonsDo) {
    EXPECT_THAT(firstColumn(people().select("SELECT DISTINCT Town FROM People")),
                ElementsAre("Bonn", "KIEL", "Null"));
    EXPECT_EQ(people().select("SELECT DISTINCT Town, Age FROM People").rows.size(), 5U);
    EXPECT_THAT(firstColumn(people().select("SELECT DISTINCT TOP 1 Town FROM People ORDER BY Town "
                                            "DESC")),
                ElementsAre("KIEL"));
    EXPECT_THAT(
        caught([] { people().select("SELECT DISTINCT Town FROM People ORDER BY Age"); }).text,
        testing::StartsWith("line 1, column 43: expected a column of the DISTINCT list"));
}

TEST(SqlSelect, CountsAndFindsTheSmallestAndLargest) {
    const Result result = people().select(
        "SELECT COUNT(*), COUNT(Age) AS Known, MIN(Pay), MAX(Pay), MIN(Name), MAX(People.Town) "
        "FROM People");
    ASSERT_EQ(result.rows.size(), 1U);
    EXPECT_EQ(result.rows[0], (Row{5, 4, "-1.0000", "100.0000", "Ann", "KIEL"}));
    EXPECT_EQ(result.fields[0].name, "Expr1000");
    EXPECT_EQ(result.fields[0].type, ColumnType::Long);
    EXPECT_EQ(result.fields[1].name, "Known");
    EXPECT_EQ(result.fields[2].type, ColumnType::Money);
    EXPECT_EQ(people().select("SELECT COUNT(*), MAX(Age) FROM People WHERE False").rows[0],
              (Row{0, Null{}}));
}

TEST(SqlSelect, RefusesWhatHasNoMeaning) {
    struct Case {
        const char* text;
        ErrNo number;
        const char* message;
    };
    static constexpr Case cases[] = {
        {"SELECT Nme FROM People", ErrNo::NotFound,
         "line 1, column 8: no column Nme, expected one of table People"},
        {"SELECT Name FROM People WHERE x = 1", ErrNo::NotFound, "line 1, column 31: no column x"},
        {"SELECT Name FROM People ORDER BY x", ErrNo::NotFound, "line 1, column 34: no column x"},
        {"SELECT T.* FROM People", ErrNo::NotFound, "line 1, column 8: no table T is read here"},
        {"SELECT MAX(x) FROM People", ErrNo::NotFound, "line 1, column 12: no column x"},
        {"SELECT Name, COUNT(*) FROM People", ErrNo::Syntax, "line 1, column 8: expected COUNT"},
        {"SELECT COUNT(*), * FROM People", ErrNo::Syntax, "line 1, column 18: expected COUNT"},
        {"SELECT Name FROM People ORDER BY -1", ErrNo::Syntax,
         "line 1, column 34: expected a column or a place in the list"},
        {"SELECT Name FROM People ORDER BY Age, 'x'", ErrNo::Syntax, "line 1, column 39: expected"},
        {"SELECT Name FROM People ORDER BY 2", ErrNo::Syntax,
         "line 1, column 34: expected a place in the list from 1 to 1, found 2"},
        {"SELECT COUNT(*) FROM People ORDER BY Age", ErrNo::Syntax,
         "line 1, column 38: expected no ORDER BY"},
        {"SELECT Name FROM People WHERE Name > 5", ErrNo::TypeMismatch,
         "line 1, column 36: data type mismatch"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const auto error = caught([&] { people().select(c.text); });
        EXPECT_EQ(error.number, c.number);
        EXPECT_THAT(error.text, testing::StartsWith(c.message));
    }
}

}  // namespace
}  // namespace vl::sql
