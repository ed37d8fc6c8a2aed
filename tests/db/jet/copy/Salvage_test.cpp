// Of a damaged database what can be read is saved, and of a whole one everything.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

#include <gmock/gmock.h>

#include "SameDatabase.h"
#include "db/jet/Transaction.h"
#include "db/jet/copy/Copy.h"

namespace vl {
namespace {

using jet::Access;
using jet::Database;
using jet::Table;
using test::Disk;
using test::expectSameTables;
using test::sortedRows;
using test::whatIsWrong;

/// What is found in a file once, and what is to stand there instead.
using Patches = std::vector<std::pair<std::string, std::string>>;

/// A file whose only table is "Things", patched.
std::string patchedFile(const std::vector<jet::NewColumn>& columns,
                        const std::vector<jet::NewIndex>& indexes,
                        const std::vector<test::Row>& rows, const Patches& patches) {
    const test::TempFolder folder;
    const std::string path = (folder / "source.mdb").string();
    {
        auto db = Database::create(path);
        db.createTable("Things", columns, indexes);
        jet::Transaction change(db);
        Table table = db.table("Things");
        for (const test::Row& row : rows) {
            std::vector<Table::Change> values;
            for (const Variant& value : row) {
                values.emplace_back(values.size(), value);
            }
            table.insert(values);
        }
        change.commit();
    }
    std::string file = test::readFile(path);
    for (const auto& [from, to] : patches) {
        const std::size_t at = file.find(from);
        EXPECT_NE(at, std::string::npos);
        EXPECT_EQ(file.find(from, at + 1), std::string::npos);
        if (at != std::string::npos) {
            file.replace(at, to.size(), to);
        }
    }
    return file;
}

/// What can be read of a file, in a database of its own, which is sound.
struct Saved {
    explicit Saved(Disk& disk)
        : report(jet::salvage(std::make_unique<test::MemoryFile>(disk), "memory", db)) {
        EXPECT_EQ(whatIsWrong(db), "");
    }

    test::TempFolder folder;
    Database db = Database::create((folder / "saved.mdb").string());
    jet::CopyReport report;
};

template <class Number>
std::string bytesOf(Number number) {
    std::string bytes(sizeof number, '\0');
    std::memcpy(bytes.data(), &number, sizeof number);
    return bytes;
}

// Other programs keep parts of a second, and what comes out of a sum of doubles.
TEST(JetCopy, DatesKeepEveryBitAlsoInUniqueIndexes) {
    const double second = 1.0 / 86400;
    const double nine = 46346 + 34200 * second;
    const std::vector<double> days = {nine,
                                      nine + 0.3 * second,
                                      nine + 0.9999 * second,
                                      std::nextafter(nine, 50000.0),
                                      -1.25 - 0.4 * second,
                                      -0.0,
                                      2958465.5 + 0.7 * second};
    std::vector<test::Row> rows;
    Patches patches;
    for (std::size_t i = 0; i < days.size(); ++i) {
        const auto other = DateTime::fromCivil(2031, 3, 1 + static_cast<int>(i), 7, 11, 13);
        rows.push_back({other});
        patches.emplace_back(bytesOf(other.days()), bytesOf(days[i]));
    }
    Disk disk(patchedFile({{.name = "At", .type = jet::ColumnType::Date}}, {}, rows, patches));
    auto source = test::openMemory(disk, Access::ReadWrite);
    source.createIndex("Things", {.name = "ByAt", .unique = true, .columns = {{"At"}}});
    ASSERT_EQ(whatIsWrong(source), "");

    const auto bitsIn = [](Database& db) {
        std::vector<std::uint64_t> bits;
        const Table table = db.table("Things");
        EXPECT_TRUE(table.indexes().at(0).unique);
        for (jet::RowCursor row = table.indexScan(0); row.next();) {
            bits.push_back(std::bit_cast<std::uint64_t>(row.value(0).toDateTime().days()));
        }
        EXPECT_EQ(whatIsWrong(db), "");
        return bits;
    };
    std::vector<double> ordered = days;
    std::sort(ordered.begin(), ordered.end());
    std::vector<std::uint64_t> expected;
    expected.reserve(ordered.size());
    for (const double day : ordered) {
        expected.push_back(std::bit_cast<std::uint64_t>(day));
    }
    ASSERT_EQ(bitsIn(source), expected);
    const test::TempFolder folder;
    auto copy = Database::create((folder / "copy.mdb").string());
    EXPECT_EQ(copyTables(source, copy).rows, days.size());
    EXPECT_EQ(bitsIn(copy), expected);
    Saved saved(disk);
    EXPECT_TRUE(saved.report.lost.empty());
    EXPECT_EQ(bitsIn(saved.db), expected);
}

// As numeric columns keep a number of hundredths.
std::string hundredths(std::uint32_t number) { return std::string(13, '\0') + bytesOf(number); }

// The last of what the definition says of its last column, and how the first one begins.
std::string lengthOf(std::uint16_t bytes) { return bytesOf(bytes) + std::string("\6\0K\0", 4); }

// A copy would have to change it, so that only what saves the rest goes on.
TEST(JetCopy, AValueThatNoColumnHoldsIsLostAloneWhereRowsAreSaved) {
    using jet::ColumnType;
    using Doubles = std::numeric_limits<double>;
    using Singles = std::numeric_limits<float>;
    const jet::NewColumn date{.name = "A", .type = ColumnType::Date};
    const jet::NewColumn single{.name = "A", .type = ColumnType::Single};
    const jet::NewColumn number{.name = "A", .type = ColumnType::Double};
    const jet::NewColumn numeric{
        .name = "A", .type = ColumnType::Numeric, .precision = 5, .scale = 2};
    const jet::NewColumn shortText{.name = "A", .type = ColumnType::Text, .length = 77};
    const jet::NewColumn binary{.name = "A", .type = ColumnType::Binary, .length = 77};
    const DateTime day = DateTime::fromCivil(2031, 3, 1, 7, 11, 13);
    const std::string was = bytesOf(day.days());
    const std::string text = std::string(35, 'x');
    const vl::Bytes bytes(35, std::byte{7});
    struct Case {
        const char* what;
        jet::NewColumn column;
        Variant value;
        std::string from;
        std::string to;
        ErrNo copying;
    };
    const Case cases[] = {
        {"a date long ago", date, day, was, bytesOf(-5.5e303), ErrNo::Overflow},
        {"a date of the year 10000", date, day, was, bytesOf(2958466.0), ErrNo::Overflow},
        {"the last date", date, day, was, bytesOf(2958465.75), ErrNo::None},
        {"a date of the year 99", date, day, was, bytesOf(-657435.0), ErrNo::Overflow},
        {"the first date", date, day, was, bytesOf(-657434.0), ErrNo::None},
        {"a date that is no number", date, day, was, bytesOf(Doubles::quiet_NaN()), ErrNo::Corrupt},
        {"an infinite date", date, day, was, bytesOf(Doubles::infinity()), ErrNo::Corrupt},
        {"no single", single, 1234.5, bytesOf(1234.5F), bytesOf(Singles::quiet_NaN()),
         ErrNo::Overflow},
        {"an infinite single", single, 1234.5, bytesOf(1234.5F), bytesOf(Singles::infinity()),
         ErrNo::Overflow},
        {"the largest single", single, 1234.5, bytesOf(1234.5F), bytesOf(Singles::max()),
         ErrNo::None},
        {"no double", number, 1234.567, bytesOf(1234.567), bytesOf(Doubles::quiet_NaN()),
         ErrNo::Overflow},
        {"a double below all", number, 1234.567, bytesOf(1234.567), bytesOf(-Doubles::infinity()),
         ErrNo::Overflow},
        {"the largest double", number, 1234.567, bytesOf(1234.567), bytesOf(Doubles::max()),
         ErrNo::None},
        {"a numeric of six digits", numeric, "123.45", hundredths(12345), hundredths(100000),
         ErrNo::Overflow},
        {"a numeric of five digits", numeric, "123.45", hundredths(12345), hundredths(99999),
         ErrNo::None},
        {"a text longer than its column", shortText, text, lengthOf(154), lengthOf(68),
         ErrNo::Overflow},
        {"a text as long as its column", shortText, text, lengthOf(154), lengthOf(70), ErrNo::None},
        {"bytes longer than their column", binary, bytes, lengthOf(77), lengthOf(34),
         ErrNo::Overflow},
        {"bytes as long as their column", binary, bytes, lengthOf(77), lengthOf(35), ErrNo::None},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const jet::NewColumn key{.name = "Key", .type = ColumnType::Long};
        Disk disk(patchedFile({key, c.column}, {}, {{1, c.value}, {2, Null{}}}, {{c.from, c.to}}));
        auto source = test::openMemory(disk);
        const bool holds = c.copying == ErrNo::None;
        EXPECT_EQ(whatIsWrong(source).empty(), holds);
        EXPECT_THAT(whatIsWrong(source), testing::HasSubstr(holds ? "" : "\"A\""));
        const test::TempFolder folder;
        auto copy = Database::create((folder / "copy.mdb").string());
        EXPECT_EQ(test::errorOf([&] { copyTables(source, copy); }), c.copying);

        const auto& [home, saved, report] = Saved(disk);
        if (holds) {
            EXPECT_TRUE(report.lost.empty());
            expectSameTables(source, copy);
            expectSameTables(source, saved);
            continue;
        }
        ASSERT_EQ(report.lost.size(), 1U);
        EXPECT_THAT(report.lost[0].what,
                    testing::StartsWith("row 0 of table \"Things\" loses column \"A\": "));
        const std::vector<test::Row> expected = {{1, Null{}}, {2, Null{}}};
        EXPECT_EQ(test::rowsOf(saved.table("Things")).values, expected);
    }
}

// As definitions keep names.
std::string named(const std::string& name) {
    std::string bytes = bytesOf(static_cast<std::uint16_t>(2 * name.size()));
    for (const char c : name) {
        bytes += {c, '\0'};
    }
    return bytes;
}

// Rows do not depend on it.
TEST(JetCopy, WhatNoTableCanHaveIsMendedWhereRowsAreSaved) {
    using jet::ColumnType;
    const std::vector<jet::NewColumn> columns = {
        {.name = "Key", .type = ColumnType::Long},
        {.name = "Omega", .type = ColumnType::Long, .autoNumber = true},
        {.name = "Alpha", .type = ColumnType::Text, .length = 77}};
    const std::vector<jet::NewIndex> indexes = {{.name = "I", .columns = {{"Alpha"}, {"Key"}}}};
    const std::vector<test::Row> rows = {{7, 1, "x"}, {8, 2, std::string(77, 'y')}};
    const std::string alpha = named("Omega") + named("Alpha");
    const auto alphaAs = [](const std::string& name) { return named("Omega") + named(name); };
    struct Case {
        const char* what;
        std::pair<std::string, std::string> patch;
        std::vector<std::string> columns;
        std::string table;
        std::string said;
    };
    const std::vector<std::string> third = {"Key", "Omega", "Column2"};
    const Case cases[] = {
        {"a bracket", {alpha, alphaAs("Al[ha")}, third, "Things", "is named \"Column2\""},
        {"no character",
         {alpha, alphaAs(std::string("Al\0ha", 5))},
         third,
         "Things",
         "is named \"Column2\""},
        {"a blank before it", {alpha, alphaAs(" lpha")}, third, "Things", "is named \"Column2\""},
        {"a name that is taken",
         {alpha, alphaAs("oMEGA")},
         third,
         "Things",
         "is named \"Column2\""},
        {"a text of 32767 characters",
         {lengthOf(154), lengthOf(0xFFFE)},
         {"Key", "Omega", "Alpha"},
         "Things",
         "column \"Alpha\" of table \"Things\" is made"},
        {"a table's name",
         {named("Things").substr(2), named("Thi[gs").substr(2)},
         {"Key", "Omega", "Alpha"},
         "Table",
         "table \"Thi[gs\" is named \"Table"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Disk disk(patchedFile(columns, indexes, rows, {c.patch}));
        auto source = test::openMemory(disk);
        EXPECT_NE(whatIsWrong(source), "");
        const auto& [home, saved, report] = Saved(disk);
        ASSERT_EQ(report.lost.size(), 1U);
        EXPECT_THAT(report.lost[0].what, testing::HasSubstr(c.said));
        const std::string name = saved.tables().back().name;
        EXPECT_THAT(name, testing::StartsWith(c.table));
        const Table table = saved.table(name);
        std::vector<std::string> names;
        for (const jet::Column& column : table.columns()) {
            names.push_back(column.name);
        }
        EXPECT_EQ(names, c.columns);
        EXPECT_TRUE(table.columns()[1].autoNumber);
        EXPECT_EQ(test::rowsOf(table).values, rows);
        ASSERT_EQ(table.indexes().size(), 1U);
        EXPECT_EQ(table.indexes()[0].columns.at(0).name, c.columns[2]);
        EXPECT_EQ(table.indexRows(0).size(), 2U);
    }
}

// What the rows are against.
TEST(JetCopy, AnIndexGoesBeforeARowDoesWhereRowsAreSaved) {
    const std::vector<jet::NewColumn> columns = {{.name = "Key", .type = jet::ColumnType::Long},
                                                 {.name = "At", .type = jet::ColumnType::Double}};
    const auto index = [](bool primary, bool unique, bool required) {
        return jet::NewIndex{"I", primary, unique, false, required, {{"Key"}, {"At"}}};
    };
    const std::int32_t one = 0x11223344;
    const std::int32_t two = 0x55667701;
    const std::pair<std::string, std::string> sameKey{bytesOf(two), bytesOf(one)};
    const std::pair<std::string, std::string> sameTime{bytesOf(2.625), bytesOf(1.375)};
    const std::string noNumber = bytesOf(std::numeric_limits<double>::quiet_NaN());
    const std::pair<std::string, std::string> firstNull{bytesOf(1.375), noNumber};
    const std::pair<std::string, std::string> secondNull{bytesOf(2.625), noNumber};
    struct Case {
        const char* what;
        jet::NewIndex index;
        Patches patches;
        bool staysAsItIs;
        std::size_t lost;
    };
    const Case cases[] = {
        {"a key twice", index(false, true, false), {sameKey, sameTime}, false, 1},
        {"a primary key twice", index(true, true, true), {sameKey, sameTime}, false, 1},
        {"a key that differs", index(true, true, true), {sameKey}, true, 0},
        {"a plain index", index(false, false, false), {sameKey, sameTime}, true, 0},
        {"null where a value is required", index(false, false, true), {firstNull}, false, 2},
        {"null in a primary key", index(true, true, true), {firstNull}, false, 2},
        {"null in a unique index", index(false, true, false), {firstNull}, true, 1},
        {"both", index(true, true, true), {sameKey, firstNull, secondNull}, false, 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Disk disk(patchedFile(columns, {c.index}, {{one, 1.375}, {two, 2.625}}, c.patches));
        const auto& [home, saved, report] = Saved(disk);
        EXPECT_EQ(report.rows, 2U);
        const Table table = saved.table("Things");
        EXPECT_EQ(sortedRows(table).size(), 2U);
        ASSERT_EQ(table.indexes().size(), 1U);
        const jet::Index& made = table.indexes()[0];
        EXPECT_EQ(made.primary, c.staysAsItIs && c.index.primary);
        EXPECT_EQ(made.unique, c.staysAsItIs && c.index.unique);
        EXPECT_EQ(made.required, c.staysAsItIs && c.index.required);
        EXPECT_EQ(table.indexRows(0).size(), 2U);
        EXPECT_EQ(report.lost.size(), c.lost);
        if (!c.staysAsItIs) {
            ASSERT_FALSE(report.lost.empty());
            EXPECT_THAT(
                report.lost.back().what,
                testing::StartsWith("index \"I\" of table \"Things\" is made a plain one: "));
        }
    }
}

}  // namespace
}  // namespace vl
