// Databases that are written anew: all of a whole one, and of a damaged one what can be read.
#include "db/jet/copy/Copy.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <iostream>
#include <limits>

#include <gmock/gmock.h>

#include "Bytes.h"
#include "Header.h"
#include "Rows.h"
#include "db/jet/Transaction.h"
#include "db/jet/check/Check.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using jet::Access;
using jet::Database;
using jet::Table;
using test::Disk;

std::string whatIsWrong(Database& db) {
    std::string text;
    for (const jet::Finding& finding : checkDatabase(db)) {
        text += "page " + std::to_string(finding.page) + ": " + finding.what + "\n";
    }
    return text;
}

// In no order: rows of a copy may stand in another one.
std::vector<std::string> sortedRows(const Table& table) {
    std::vector<std::string> rows;
    for (jet::RowCursor row = table.scan(); row.next();) {
        std::string& text = rows.emplace_back();
        for (std::size_t i = 0; i < table.columns().size(); ++i) {
            const Variant value = row.value(i);
            if (const auto* bytes = value.get<Bytes>()) {
                text += std::string(reinterpret_cast<const char*>(bytes->data()), bytes->size());
            } else {
                text += value.isNull() ? "null" : "'" + value.toText() + "'";
            }
            text += '|';
        }
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

// The desktop product's own, which stay behind.
bool isLeftOut(const std::string& what) { return what.find("MSysNavPane") != std::string::npos; }

// The same queries, and the same relationships.
void expectSameObjects(const Database& a, const Database& b) {
    for (const char* table : {"MSysQueries", "MSysRelationships"}) {
        std::vector<std::string> expected = sortedRows(a.table(table));
        std::erase_if(expected, isLeftOut);
        EXPECT_EQ(expected, sortedRows(b.table(table))) << table;
    }
    const auto objects = [](const Database& db) {
        const Table catalog = db.table("MSysObjects");
        const std::size_t type = test::position(catalog, "Type");
        std::vector<std::string> names;
        for (jet::RowCursor row = catalog.scan(); row.next();) {
            if (const Variant kind = row.value(type); kind.toInt32() > 3) {
                names.push_back(kind.toText() + " " +
                                row.value(test::position(catalog, "Id")).toText() + " " +
                                row.value(test::position(catalog, "Name")).toText());
            }
        }
        std::erase_if(names, isLeftOut);
        std::sort(names.begin(), names.end());
        return names;
    };
    EXPECT_EQ(objects(a), objects(b));
}

// What each index of a relationship says, the other side by its table's and its own name.
std::vector<std::string> relations(const Database& db) {
    std::vector<std::string> all;
    for (const jet::TableInfo& info : db.tables()) {
        for (const jet::Index& index : db.table(info.name).indexes()) {
            if (info.system || !index.foreign) {
                continue;
            }
            std::string& text = all.emplace_back(info.name + "." + index.name);
            text += index.referenced ? " <- " : " -> ";
            for (const jet::TableInfo& other : db.tables()) {
                if (other.definitionPage == index.otherDefinition) {
                    for (const jet::Index& far : db.table(other.name).indexes()) {
                        text += far.number == index.otherNumber ? other.name + "." + far.name : "";
                    }
                }
            }
        }
    }
    std::sort(all.begin(), all.end());
    return all;
}

void expectSameTables(const Database& a, const Database& b) {
    int tables = 0;
    for (const jet::TableInfo& info : a.tables()) {
        if (!info.system) {
            SCOPED_TRACE(info.name);
            ++tables;
            EXPECT_EQ(sortedRows(a.table(info.name)), sortedRows(b.table(info.name)));
            EXPECT_EQ(a.table(info.name).rowCount(), b.table(info.name).rowCount());
        }
    }
    EXPECT_GT(tables, 0);
}

TEST(JetCopy, EveryFileIsCopiedWithTheSameRows) {
    const test::TempFolder folder;
    std::vector<fs::path> files = {test::repoFile("data/first-light.RemindDB"),
                                   test::repoFile("tests/data/generated-reminders.RemindDB")};
    if (const fs::path shared = test::sharedFolder(); !shared.empty()) {
        for (const auto& file : fs::directory_iterator(shared / "jet4" / "samples")) {
            if (file.is_regular_file() && file.path().extension() == ".mdb") {
                files.push_back(file.path());
            }
        }
    }
    int copied = 0;
    int salvaged = 0;
    std::size_t related = 0;
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.filename());
        const fs::path path = folder / "source.mdb";
        test::writeFile(path, test::readFile(file));
        auto source = Database::open(path.string(), Access::Read);
        {
            auto target = Database::create((folder / "copy.mdb").string());
            const ErrNo error = test::errorOf([&] { copyTables(source, target); });
            EXPECT_EQ(error, ErrNo::None);
            copied += error == ErrNo::None ? 1 : 0;
            EXPECT_EQ(whatIsWrong(target), "");
            if (error == ErrNo::None && target.tables().size() > 4) {
                expectSameTables(source, target);
                expectSameObjects(source, target);
                EXPECT_EQ(relations(source), relations(target));
                related += relations(target).size();
            }
        }
        fs::remove(folder / "copy.mdb");
        {
            auto target = Database::create((folder / "saved.mdb").string());
            const jet::CopyReport report = jet::salvage(path.string(), target);
            EXPECT_EQ(whatIsWrong(target), "");
            if (report.lost.empty() && report.tables > 0) {
                expectSameTables(source, target);
                ++salvaged;
            }
        }
        fs::remove(folder / "saved.mdb");
    }
    std::cout << copied << " files copied, " << salvaged << " salvaged without a loss; " << related
              << " sides of relationships\n";
    EXPECT_EQ(copied, static_cast<int>(files.size()));
    EXPECT_GE(salvaged, 2);
}

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
    for (const double day : ordered) {
        expected.push_back(std::bit_cast<std::uint64_t>(day));
    }
    ASSERT_EQ(bitsIn(source), expected);
    const test::TempFolder folder;
    auto copy = Database::create((folder / "copy.mdb").string());
    EXPECT_EQ(copyTables(source, copy).rows, days.size());
    EXPECT_EQ(bitsIn(copy), expected);
    auto saved = Database::create((folder / "saved.mdb").string());
    EXPECT_TRUE(
        jet::salvage(std::make_unique<test::MemoryFile>(disk), "memory", saved).lost.empty());
    EXPECT_EQ(bitsIn(saved), expected);
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

        auto saved = Database::create((folder / "saved.mdb").string());
        const jet::CopyReport report =
            jet::salvage(std::make_unique<test::MemoryFile>(disk), "memory", saved);
        EXPECT_EQ(whatIsWrong(saved), "");
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
        const test::TempFolder folder;
        auto saved = Database::create((folder / "saved.mdb").string());
        const jet::CopyReport report =
            jet::salvage(std::make_unique<test::MemoryFile>(disk), "memory", saved);
        EXPECT_EQ(whatIsWrong(saved), "");
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
        const test::TempFolder folder;
        auto saved = Database::create((folder / "saved.mdb").string());
        const jet::CopyReport report =
            jet::salvage(std::make_unique<test::MemoryFile>(disk), "memory", saved);
        EXPECT_EQ(whatIsWrong(saved), "");
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

/// Another engine writes to it in the middle of being read.
class Disturbed : public test::MemoryFile {
public:
    explicit Disturbed(Disk& disk) : MemoryFile(disk), disk_(disk) {}
    void read(std::uint64_t offset, std::span<std::byte> bytes) const override {
        MemoryFile::read(offset, bytes);
        if (reads > 0 && --reads == 0) {
            disk_.bytes[0xE04] ^= std::byte{1};
        }
    }
    mutable int reads = 0;  // until it writes; 0 never

private:
    Disk& disk_;
};

TEST(JetCopy, IsOfOneMomentOrNone) {
    for (const int reads : {0, 12, 16}) {
        SCOPED_TRACE(reads);
        Disk disk(test::firstLight());
        auto file = std::make_unique<Disturbed>(disk);
        Disturbed& engine = *file;
        auto source = Database::open(std::move(file), "memory", Access::Read);
        const test::TempFolder folder;
        auto target = Database::create((folder / "copy.mdb").string());
        engine.reads = reads;
        EXPECT_EQ(test::errorOf([&] { copyTables(source, target); }),
                  reads == 0 ? ErrNo::None : ErrNo::Locked);
        EXPECT_EQ(engine.reads, 0) << "it wrote";
    }
}

// What the original refuses to lose, the copy refuses to lose.
TEST(JetCopy, RelationshipsHoldInTheCopy) {
    const fs::path shared = test::sharedFolder();
    if (shared.empty()) {
        std::cout << "no sample files beside this checkout: 0 files copied\n";
        return;
    }
    const test::TempFolder folder;
    const fs::path path = folder / "source.mdb";
    test::writeFile(path, test::readFile(shared / "jet4" / "samples" / "indexTestV2000.mdb"));
    auto source = Database::open(path.string(), Access::Read);
    auto target = Database::create((folder / "copy.mdb").string());
    copyTables(source, target);
    const auto refusals = [](Database& db) {
        std::vector<ErrNo> errors;
        for (const jet::TableInfo& info : db.tables()) {
            if (info.system) {
                continue;
            }
            Table table = db.table(info.name);
            for (const jet::RowId id : test::rowsOf(table).ids) {
                const jet::Transaction change(db);
                errors.push_back(test::errorOf([&] { table.remove(id); }));
            }
        }
        return errors;
    };
    auto original = Database::open(path.string(), Access::ReadWrite);
    const std::vector<ErrNo> expected = refusals(original);
    EXPECT_THAT(expected, testing::Contains(ErrNo::Exists));
    EXPECT_EQ(refusals(target), expected);
    std::cout << "1 file copied\n";
}

// It is hidden behind the day on which a file was made, which is another one in the copy.
TEST(JetCopy, ThePasswordIsThatOfTheOriginal) {
    const test::TempFolder folder;
    const auto copied = [&](const std::string& source) {
        test::Disk disk(source);
        auto from = test::openMemory(disk);
        const std::string path = (folder / "copy.mdb").string();
        {
            auto to = Database::create(path);
            copyTables(from, to);
            EXPECT_EQ(whatIsWrong(to), "");
        }
        const std::string bytes = test::readFile(path);
        fs::remove(path);
        return bytes.substr(0x42, 40);
    };
    // As if it had been made on another day.
    std::string open = test::firstLight();
    const std::span<std::byte> page = std::as_writable_bytes(std::span(open)).first(jet::kPageSize);
    jet::maskHeader(page);
    jet::store(page, 0x72, std::bit_cast<std::uint64_t>(40000.75));
    for (std::size_t at = 0x42; at < 0x6A; at += 4) {
        jet::store(page, at, std::uint32_t{40000});
    }
    jet::maskHeader(page);
    std::string closed = open;
    const std::string password("s\0e\0c\0r\0e\0t\0", 12);
    for (std::size_t i = 0; i < password.size(); ++i) {
        closed[0x42 + i] = static_cast<char>(closed[0x42 + i] ^ password[i]);
    }
    std::string expected = copied(open);
    EXPECT_NE(expected, open.substr(0x42, 40)) << "another day";
    for (std::size_t i = 0; i < password.size(); ++i) {
        expected[i] = static_cast<char>(expected[i] ^ password[i]);
    }
    EXPECT_EQ(copied(closed), expected);
}

TEST(JetCopy, NumbersGoOnWhereTheyAre) {
    const test::TempFolder folder;
    auto source = Database::create((folder / "source.mdb").string());
    std::vector<jet::NewColumn> columns(2);
    columns[0].name = "Id";
    columns[0].type = jet::ColumnType::Long;
    columns[0].autoNumber = true;
    columns[1].name = "Name";
    columns[1].allowZeroLength = false;
    source.createTable("Things", columns);
    {
        jet::Transaction change(source);
        Table table = source.table("Things");
        for (int i = 0; i < 5; ++i) {
            const jet::RowId id = table.insert({});
            if (i > 2) {
                table.remove(id);
            }
        }
        change.commit();
    }
    auto target = Database::create((folder / "target.mdb").string());
    const jet::CopyReport report = copyTables(source, target);
    EXPECT_EQ(report.tables, 1U);
    EXPECT_EQ(report.rows, 3U);
    jet::Transaction change(target);
    Table table = target.table("Things");
    const jet::RowId id = table.insert({});
    jet::RowCursor row = table.scan();
    while (row.next() && row.id() != id) {
    }
    EXPECT_EQ(row.value(0), Variant(6));
    EXPECT_EQ(test::errorOf([&] {
                  table.insert(std::vector<Table::Change>{{1, ""}});
              }),
              ErrNo::TypeMismatch)
        << "the rules come with it";
}

}  // namespace
}  // namespace vl
