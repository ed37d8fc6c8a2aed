// Tables that come, change and go, as we find them afterwards.
#include <functional>

#include <gtest/gtest.h>

#include "CatalogWriter.h"
#include "Made.h"
#include "db/jet/Transaction.h"
#include "support/ErrorOf.h"

namespace vl {
namespace {

using jet::ColumnType;
using jet::Database;
using jet::NewColumn;
using jet::NewIndex;
using jet::Table;
using jet::Transaction;
using test::Disk;
using test::errorOf;
using test::rowsOf;
using Changes = std::vector<Table::Change>;

NewColumn text(const char* name, std::uint16_t length = 0) {
    return {name, ColumnType::Text, length};
}
NewIndex indexOn(const char* name, std::vector<jet::IndexColumn> columns, bool unique = false) {
    NewIndex index;
    index.name = name;
    index.unique = unique;
    index.columns = std::move(columns);
    return index;
}
NewIndex primaryKey(const char* column) {
    NewIndex index = indexOn("PrimaryKey", {{column, false}});
    index.primary = true;
    return index;
}

struct JetDefine : testing::Test {
    Database open() { return test::openMemory(disk, jet::Access::ReadWrite); }
    void expectSound() {
        EXPECT_EQ(test::findingsOf(disk), "");
        Database db = test::openMemory(disk);
        for (const jet::TableInfo& info : db.tables()) {
            test::expectIndexesComplete(db.table(info.name));
        }
    }
    // Rows with a number and a text of so many characters.
    static void fill(Database& db, const char* name, int from, int to, std::size_t length = 10) {
        Transaction change(db);
        Table table = db.table(name);
        for (int i = from; i < to; ++i) {
            table.insert(Changes{{0, i}, {1, std::string(length, 'x') + std::to_string(i)}});
        }
        change.commit();
    }

    Disk disk{test::emptyDatabase()};
};

TEST_F(JetDefine, ATableHasTheColumnsThatItWasGiven) {
    const std::vector<NewColumn> columns = {
        {"Yes", ColumnType::Boolean},    {"Byte", ColumnType::Byte},
        {"Short", ColumnType::Integer},  {"Number", ColumnType::Long, 0, true},
        {"Price", ColumnType::Money},    {"Single", ColumnType::Single},
        {"Double", ColumnType::Double},  {"Date", ColumnType::Date},
        {"Bin", ColumnType::Binary, 20}, {"Text", ColumnType::Text, 50},
        {"Picture", ColumnType::Ole},    {"Memo", ColumnType::Memo},
        {"Guid", ColumnType::Guid},      {"Exact", ColumnType::Numeric, 0, false, 10, 3},
    };
    Database db = open();
    db.createTable("All types", columns, std::vector{primaryKey("Number")});
    const Table table = db.table("ALL TYPES");
    EXPECT_EQ(table.name(), "All types");
    EXPECT_EQ(table.rowCount(), 0U);
    ASSERT_EQ(table.columns().size(), columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const jet::Column& made = table.columns()[i];
        SCOPED_TRACE(columns[i].name);
        EXPECT_EQ(made.name, columns[i].name);
        EXPECT_EQ(made.type, columns[i].type);
        EXPECT_EQ(made.autoNumber, columns[i].autoNumber);
        EXPECT_EQ(made.number, i);
    }
    EXPECT_EQ(table.columns()[8].length, 20);
    EXPECT_EQ(table.columns()[9].length, 100) << "two bytes a character";
    EXPECT_EQ(table.columns()[13].precision, 10);
    EXPECT_EQ(table.columns()[13].scale, 3);
    ASSERT_EQ(table.indexes().size(), 1U);
    EXPECT_TRUE(table.indexes()[0].primary);
    EXPECT_TRUE(table.indexes()[0].unique);
    EXPECT_TRUE(table.indexes()[0].required);
    expectSound();
}

TEST_F(JetDefine, RowsOfANewTableAreFoundAgain) {
    Database db = open();
    db.createTable("T", std::vector{NewColumn{"n", ColumnType::Long}, text("t")},
                   std::vector{primaryKey("n"), indexOn("byText", {{"t", true}})});
    fill(db, "T", 0, 1000, 100);
    EXPECT_EQ(rowsOf(db.table("T")).ids.size(), 1000U);
    Transaction change(db);
    Table table = db.table("T");
    EXPECT_EQ(errorOf([&] { table.insert(Changes{{0, 17}}); }), ErrNo::Exists);
    change.commit();
    expectSound();
}

TEST_F(JetDefine, IndexesStandInTheOrderOfTheirMakingAndTheirNames) {
    Database db = open();
    db.createTable("T", std::vector{text("a"), text("b")},
                   std::vector{indexOn("zeta", {{"a", false}, {"b", true}}, true),
                               indexOn("alpha", {{"B", false}})});
    const Table table = db.table("T");
    ASSERT_EQ(table.indexes().size(), 2U);
    EXPECT_EQ(table.indexes()[0].name, "zeta");
    EXPECT_TRUE(table.indexes()[0].unique);
    ASSERT_EQ(table.indexes()[0].columns.size(), 2U);
    EXPECT_TRUE(table.indexes()[0].columns[1].descending);
    EXPECT_EQ(table.indexes()[1].name, "alpha");
    ASSERT_EQ(table.indexes()[1].columns.size(), 1U);
    EXPECT_EQ(table.indexes()[1].columns[0].name, "b") << "as the table spells it";
}

TEST_F(JetDefine, TheCatalogSaysWhoMayDoWhatWithATable) {
    Database db = open();
    db.createTable("T", std::vector{text("a")});
    const auto rowsWith = [&](const char* name, const char* column, std::int32_t value) {
        std::vector<test::Row> found;
        const Table table = db.table(name);
        for (const test::Row& row : rowsOf(table).values) {
            if (row[test::position(table, column)] == Variant(value)) {
                found.push_back(row);
            }
        }
        return found;
    };
    std::uint32_t page = 0;
    for (const jet::TableInfo& info : db.tables()) {
        page = info.name == "T" ? info.definitionPage : page;
    }
    const auto objects = rowsWith("MSysObjects", "Id", static_cast<std::int32_t>(page));
    ASSERT_EQ(objects.size(), 1U);
    const Table catalog = db.table("MSysObjects");
    EXPECT_EQ(objects[0][test::position(catalog, "Type")], Variant(1));
    EXPECT_EQ(objects[0][test::position(catalog, "Flags")], Variant(0));
    EXPECT_EQ(objects[0][test::position(catalog, "ParentId")], Variant(0x0F000001));
    const Bytes admin = {std::byte{0x64}, std::byte{0x8B}};
    EXPECT_EQ(objects[0][test::position(catalog, "Owner")], Variant(admin));

    // What the container hands on: all to the owner, nearly all to the users.
    const Table aces = db.table("MSysACEs");
    const auto permissions = rowsWith("MSysACEs", "ObjectId", static_cast<std::int32_t>(page));
    ASSERT_EQ(permissions.size(), 2U);
    EXPECT_EQ(permissions[0][test::position(aces, "SID")], Variant(admin));
    EXPECT_EQ(permissions[0][test::position(aces, "ACM")], Variant(0xF00FE));
    EXPECT_EQ(permissions[1][test::position(aces, "ACM")], Variant(0xFFEFF));
    EXPECT_EQ(permissions[1][test::position(aces, "FInheritable")], Variant(false));
    EXPECT_EQ(db.table("MSysObjects").rowCount(), 9U);
    EXPECT_EQ(db.table("MSysACEs").rowCount(), 18U);
}

TEST_F(JetDefine, WhatColumnsDemandIsKept) {
    Database db = open();
    NewColumn strict = text("strict");
    strict.required = true;
    strict.allowZeroLength = false;
    db.createTable("T", std::vector{strict, text("free")});
    NewColumn later = {"later", ColumnType::Long};
    later.required = true;
    db.addColumn("T", later);
    const jet::PageNo page = db.tables().back().definitionPage;
    jet::PageFile file(std::make_unique<test::MemoryFile>(disk), "memory", jet::Access::Read);
    const jet::Properties properties = jet::CatalogWriter(file).properties(page);
    EXPECT_TRUE(properties.flag("strict", jet::kRequired, false));
    EXPECT_FALSE(properties.flag("strict", jet::kAllowZeroLength, true));
    EXPECT_FALSE(properties.flag("free", jet::kRequired, true));
    EXPECT_TRUE(properties.flag("free", jet::kAllowZeroLength, false));
    EXPECT_TRUE(properties.flag("later", jet::kRequired, false));
}

TEST_F(JetDefine, AColumnIsAddedToATableWithRows) {
    Database db = open();
    db.createTable("T", std::vector{NewColumn{"n", ColumnType::Long}, text("t")},
                   std::vector{primaryKey("n")});
    fill(db, "T", 0, 300);
    db.addColumn("t", text("late"));
    db.addColumn("T", {"memo", ColumnType::Memo});
    db.addColumn("T", {"yes", ColumnType::Boolean});
    db.addColumn("T", {"when", ColumnType::Date});
    {
        Transaction change(db);
        Table table = db.table("T");
        const auto ids = rowsOf(table).ids;
        table.update(ids[5], Changes{{2, "now"}, {3, std::string(5000, 'm')}, {4, true}, {5, 7.0}});
        table.insert(Changes{{0, 1000}, {3, "short"}});
        change.commit();
    }
    const Table table = db.table("T");
    ASSERT_EQ(table.columns().size(), 6U);
    const auto rows = rowsOf(table).values;
    ASSERT_EQ(rows.size(), 301U);
    EXPECT_EQ(rows[4][2], Variant(Null{}));
    EXPECT_EQ(rows[4][3], Variant(Null{}));
    EXPECT_EQ(rows[4][4], Variant(false));
    EXPECT_EQ(rows[5][2], Variant("now"));
    EXPECT_EQ(rows[5][3], Variant(std::string(5000, 'm')));
    EXPECT_EQ(rows[5][4], Variant(true));
    EXPECT_EQ(rows[5][5], Variant(DateTime(7.0)));
    EXPECT_EQ(rows[300][3], Variant("short"));
    expectSound();
}

TEST_F(JetDefine, ADefinitionGrowsOverManyPagesAndIsGivenBack) {
    Database db = open();
    std::vector<NewColumn> columns = {{"n", ColumnType::Long}};
    for (int i = 0; i < 200; ++i) {
        columns.push_back({"a column with a long name, number " + std::to_string(i),
                           i % 3 == 0 ? ColumnType::Memo : ColumnType::Text});
    }
    const std::size_t before = disk.bytes.size();
    db.createTable("Wide", columns, std::vector{primaryKey("n")});
    for (int i = 0; i < 54; ++i) {
        db.addColumn("Wide", {"late " + std::to_string(i), ColumnType::Long});
    }
    EXPECT_EQ(db.table("Wide").columns().size(), 255U);
    EXPECT_EQ(errorOf([&] { db.addColumn("Wide", text("one more")); }), ErrNo::Overflow);
    {
        Transaction change(db);
        db.table("Wide").insert(Changes{{0, 1}, {199, std::string(100, 'z')}, {254, 5}});
        change.commit();
    }
    expectSound();
    const auto rows = rowsOf(db.table("Wide")).values;
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0][199], Variant(std::string(100, 'z')));
    EXPECT_EQ(rows[0][254], Variant(5));
    db.dropTable("Wide");
    expectSound();
    EXPECT_GT(disk.bytes.size(), before);
    EXPECT_EQ(test::usedPages(disk), before / jet::kPageSize) << "all of it is free again";
}

TEST_F(JetDefine, AnIndexIsFilledWithTheRowsThatAreThere) {
    Database db = open();
    db.createTable("T", std::vector{NewColumn{"n", ColumnType::Long}, text("t")});
    fill(db, "T", 0, 2000);
    db.createIndex("T", indexOn("byText", {{"t", false}}));
    db.createIndex("T", indexOn("down", {{"n", true}}, true));
    db.createIndex("T", primaryKey("n"));
    expectSound();
    const Table table = db.table("T");
    ASSERT_EQ(table.indexes().size(), 3U);
    std::int32_t last = 2000;
    for (jet::RowCursor row = table.indexScan(1); row.next();) {
        EXPECT_EQ(row.value(0), Variant(--last));
    }
    EXPECT_EQ(last, 0);
}

TEST_F(JetDefine, AnIndexThatRowsContradictIsRefusedAndNothingIsChanged) {
    Database db = open();
    db.createTable("T", std::vector{NewColumn{"n", ColumnType::Long}, text("t")});
    {
        Transaction change(db);
        Table table = db.table("T");
        table.insert(Changes{{0, 1}, {1, "a"}});
        table.insert(Changes{{0, 2}, {1, "A"}});
        table.insert(Changes{{1, "b"}});
        table.insert(Changes{{1, "c"}});
        change.commit();
    }
    const auto before = disk.bytes;
    EXPECT_EQ(errorOf([&] {
                  db.createIndex("T", indexOn("u", {{"t", false}}, true));
              }),
              ErrNo::Exists)
        << "a and A are the same to an index";
    EXPECT_EQ(errorOf([&] { db.createIndex("T", primaryKey("n")); }), ErrNo::TypeMismatch);
    EXPECT_TRUE(disk.bytes == before);
    {
        // In an open transaction, too, nothing is left behind.
        Transaction change(db);
        EXPECT_EQ(errorOf([&] {
                      db.createIndex("T", indexOn("u", {{"t", false}}, true));
                  }),
                  ErrNo::Exists);
        change.commit();
    }
    EXPECT_TRUE(disk.bytes == before);
    db.createIndex("T", indexOn("nulls", {{"n", false}}, true));
    expectSound();
    NewIndex sparse = indexOn("sparse", {{"n", false}});
    sparse.ignoreNulls = true;
    db.createIndex("T", sparse);
    int entries = 0;
    const Table table = db.table("T");
    for (jet::RowCursor row = table.indexScan(1); row.next();) {
        ++entries;
    }
    EXPECT_EQ(entries, 2);
}

TEST_F(JetDefine, ATableThatGoesLeavesNothingBehind) {
    Database db = open();
    db.createTable("Stays", std::vector{text("a")});
    const std::size_t used = test::usedPages(disk);
    const auto objects = rowsOf(db.table("MSysObjects")).values;
    db.createTable(
        "Goes",
        std::vector{NewColumn{"n", ColumnType::Long}, text("t"),
                    NewColumn{"memo", ColumnType::Memo}, NewColumn{"ole", ColumnType::Ole}},
        std::vector{primaryKey("n"), indexOn("byText", {{"t", false}})});
    fill(db, "Goes", 0, 500, 100);
    {
        Transaction change(db);
        Table table = db.table("Goes");
        for (int i = 1000; i < 1040; ++i) {
            table.insert(Changes{{0, i}, {2, std::string(6000, 'm')}, {3, Bytes(9000)}});
        }
        change.commit();
    }
    expectSound();
    const std::size_t size = disk.bytes.size();
    db.dropTable("goes");
    expectSound();
    EXPECT_EQ(test::usedPages(disk), used);
    EXPECT_EQ(rowsOf(db.table("MSysObjects")).values, objects);
    EXPECT_EQ(errorOf([&] { db.table("Goes"); }), ErrNo::NotFound);

    // Its pages, its name and its catalog rows are there for others.
    db.createTable("Goes", std::vector{NewColumn{"n", ColumnType::Long}, text("t")});
    fill(db, "Goes", 0, 500, 100);
    EXPECT_EQ(disk.bytes.size(), size);
    expectSound();
}

TEST(JetDropIndex, AnIndexThatGoesGivesItsPagesBack) {
    for (const std::string& sound : {test::firstLight(), test::generated()}) {
        test::Disk disk(sound);
        auto db = test::openMemory(disk, jet::Access::ReadWrite);
        const std::size_t before = test::usedPages(disk);
        const std::size_t indexes = db.table("Reminders").indexes().size();
        db.createIndex("Reminders", {.name = "more", .columns = {{"Subject"}, {"EventID", true}}});
        EXPECT_GT(test::usedPages(disk), before);
        db.dropIndex("reminders", "MORE");
        EXPECT_EQ(test::usedPages(disk), before);
        EXPECT_EQ(db.table("Reminders").indexes().size(), indexes);
        EXPECT_EQ(test::findingsOf(disk), "");
        const std::vector<jet::Index> all = db.table("Reminders").indexes();
        for (const jet::Index& index : all) {
            db.dropIndex("Reminders", index.name);
            EXPECT_EQ(test::findingsOf(disk), "") << index.name;
            test::expectIndexesComplete(db.table("Reminders"));
        }
        EXPECT_TRUE(db.table("Reminders").indexes().empty());
        EXPECT_EQ(test::errorOf([&] { db.dropIndex("Reminders", "more"); }), ErrNo::NotFound);
        EXPECT_EQ(test::errorOf([&] { db.dropIndex("Nothing", "more"); }), ErrNo::NotFound);
        EXPECT_EQ(test::errorOf([&] { db.dropIndex("MSysObjects", "Id"); }), ErrNo::Unsupported);
    }
}

TEST_F(JetDefine, WhatIsRefusedChangesNothing) {
    Database db = open();
    db.createTable("T", std::vector{NewColumn{"n", ColumnType::Long, 0, true}, text("t")},
                   std::vector{primaryKey("n")});
    const std::vector<NewColumn> one = {text("a")};
    const std::vector<NewColumn> twice = {text("a"), text("A")};
    std::vector<NewColumn> many;
    std::vector<NewColumn> wide;
    std::vector<NewIndex> indexes;
    std::vector<jet::IndexColumn> eleven;
    for (int i = 0; i < 256; ++i) {
        many.push_back({"c" + std::to_string(i), ColumnType::Boolean});
        wide.push_back({"c" + std::to_string(i), ColumnType::Numeric});
        if (i < 33) {
            indexes.push_back(indexOn(("i" + std::to_string(i)).c_str(), {{"a", false}}));
        }
        if (i < 11) {
            eleven.push_back({"c" + std::to_string(i), false});
        }
    }
    wide.pop_back();
    const std::string longest(64, 'n');
    struct Case {
        const char* what;
        std::function<void()> step;
        ErrNo expected;
    };
    const Case cases[] = {
        {"a table's name taken", [&] { db.createTable("t", one); }, ErrNo::Exists},
        {"a system table's name", [&] { db.createTable("msysobjects", one); }, ErrNo::Exists},
        {"no name", [&] { db.createTable("", one); }, ErrNo::Syntax},
        {"a full stop", [&] { db.createTable("a.b", one); }, ErrNo::Syntax},
        {"a leading blank", [&] { db.createTable(" a", one); }, ErrNo::Syntax},
        {"a control character", [&] { db.createTable("a\tb", one); }, ErrNo::Syntax},
        {"no UTF-8", [&] { db.createTable("a\xC1", one); }, ErrNo::Syntax},
        {"a bracket", [&] { db.addColumn("T", text("a[b")); }, ErrNo::Syntax},
        {"a long name", [&] { db.createTable(longest + "n", one); }, ErrNo::Overflow},
        {"no columns", [&] { db.createTable("U", {}); }, ErrNo::Unsupported},
        {"a column twice", [&] { db.createTable("U", twice); }, ErrNo::Exists},
        {"256 columns", [&] { db.createTable("U", many); }, ErrNo::Overflow},
        {"rows too long", [&] { db.createTable("U", wide); }, ErrNo::Overflow},
        {"33 indexes", [&] { db.createTable("U", one, indexes); }, ErrNo::Overflow},
        {"eleven key columns",
         [&] { db.createTable("U", std::span(many).first(20), std::vector{indexOn("i", eleven)}); },
         ErrNo::Overflow},
        {"no key columns", [&] { db.createIndex("T", indexOn("i", {})); }, ErrNo::Overflow},
        {"a key column twice",
         [&] {
             db.createIndex("T", indexOn("i", {{"t", false}, {"T", true}}));
         },
         ErrNo::Exists},
        {"a key column that is not there",
         [&] {
             db.createIndex("T", indexOn("i", {{"x", false}}));
         },
         ErrNo::NotFound},
        {"an index's name taken",
         [&] {
             db.createIndex("T", indexOn("primarykey", {{"t", false}}));
         },
         ErrNo::Exists},
        {"a second primary key",
         [&] {
             NewIndex second = primaryKey("t");
             second.name = "other";
             db.createIndex("T", second);
         },
         ErrNo::Exists},
        {"a column's name taken", [&] { db.addColumn("T", text("N")); }, ErrNo::Exists},
        {"a second autonumber",
         [&] {
             db.addColumn("T", {"m", ColumnType::Long, 0, true});
         },
         ErrNo::Exists},
        {"an autonumber of texts",
         [&] {
             db.addColumn("T", {"m", ColumnType::Text, 0, true});
         },
         ErrNo::Unsupported},
        {"a type of later files",
         [&] {
             db.addColumn("T", {"m", ColumnType::Complex});
         },
         ErrNo::Unsupported},
        {"a text too long", [&] { db.addColumn("T", text("m", 256)); }, ErrNo::Overflow},
        {"too many digits",
         [&] {
             db.addColumn("T", {"m", ColumnType::Numeric, 0, false, 29, 0});
         },
         ErrNo::Overflow},
        {"no such table", [&] { db.addColumn("U", text("m")); }, ErrNo::NotFound},
        {"no such table to drop", [&] { db.dropTable("U"); }, ErrNo::NotFound},
        {"a system table to drop", [&] { db.dropTable("MSysACEs"); }, ErrNo::Unsupported},
        {"a system table's column", [&] { db.addColumn("MSysACEs", text("m")); },
         ErrNo::Unsupported},
    };
    const auto before = disk.bytes;
    for (const Case& c : cases) {
        EXPECT_EQ(errorOf(c.step), c.expected) << c.what;
        EXPECT_TRUE(disk.bytes == before) << c.what;
        Transaction change(db);
        EXPECT_EQ(errorOf(c.step), c.expected) << c.what;
        change.commit();
        EXPECT_TRUE(disk.bytes == before) << c.what << ", in a transaction";
    }
    db.createTable(longest, one);
    EXPECT_EQ(db.table(longest).columns().size(), 1U);
}

TEST_F(JetDefine, IsPartOfTheOpenTransaction) {
    Database db = open();
    const auto before = disk.bytes;
    {
        const Transaction change(db);
        db.createTable("T", std::vector{text("a")});
        db.table("T").insert(Changes{{0, "x"}});
        db.addColumn("T", text("b"));
        EXPECT_EQ(db.table("T").columns().size(), 2U);
        EXPECT_EQ(rowsOf(db.table("T")).values.size(), 1U);
    }
    EXPECT_TRUE(disk.bytes == before) << "it was not committed";
    EXPECT_EQ(errorOf([&] { db.table("T"); }), ErrNo::NotFound);
    Database reader = test::openMemory(disk);
    EXPECT_EQ(errorOf([&] { reader.createTable("T", std::vector{text("a")}); }), ErrNo::ReadOnly);
}

// The map of free pages cannot speak of more than 512 pages until it refers to others.
TEST_F(JetDefine, AFileGrowsBeyondTheFirstMap) {
    Database db = open();
    db.createTable(
        "T",
        std::vector{NewColumn{"n", ColumnType::Long}, text("t"), NewColumn{"m", ColumnType::Memo}},
        std::vector{primaryKey("n")});
    {
        Transaction change(db);
        Table table = db.table("T");
        for (int i = 0; i < 600; ++i) {
            table.insert(Changes{{0, i}, {2, std::string(4500, 'm')}});
        }
        change.commit();
    }
    EXPECT_GT(disk.bytes.size() / jet::kPageSize, 1200U);
    expectSound();
    db.createTable("U", std::vector{text("a")}, std::vector{indexOn("i", {{"a", false}})});
    db.dropTable("T");
    expectSound();
}

}  // namespace
}  // namespace vl
