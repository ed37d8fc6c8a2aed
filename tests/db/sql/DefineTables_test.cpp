// CREATE, ALTER and DROP on a new file.
#include <gmock/gmock.h>

#include "Memory.h"
#include "db/jet/MemoryFile.h"
#include "db/sql/Sql.h"
#include "support/Support.h"

namespace vl::sql {
namespace {

using test::caught;

std::string emptyFile() {
    const vl::test::TempFolder folder;
    const std::string path = (folder / "empty.mdb").string();
    jet::Database::create(path);
    return vl::test::readFile(path);
}

class SqlDefine : public testing::Test {
protected:
    Result run(std::string_view statement) { return execute(db_, statement); }

    vl::test::Disk disk_{emptyFile()};
    jet::Database db_ = vl::test::openMemory(disk_, jet::Access::ReadWrite);
};

TEST_F(SqlDefine, MakesATableWithItsKeys) {
    EXPECT_EQ(run("CREATE TABLE T (id COUNTER PRIMARY KEY, name TEXT(5) NOT NULL, price "
                  "DECIMAL(6, 2), CONSTRAINT pair UNIQUE (name, price))")
                  .affected,
              0);
    run("INSERT INTO T (name, price) VALUES ('one', 1.25)");
    run("INSERT INTO T (name) VALUES ('two')");
    run("ALTER TABLE T ADD COLUMN [is it] YESNO");
    run("UPDATE T SET [is it] = True WHERE id = 2");
    const Result all = run("SELECT * FROM T");
    ASSERT_EQ(all.rows.size(), 2U);
    EXPECT_EQ(all.rows[0], (test::Row{1, "one", "1.25", false}));
    EXPECT_EQ(all.rows[1], (test::Row{2, "two", Null{}, true}));
    const auto table = db_.table("T");
    ASSERT_EQ(table.indexes().size(), 2U);
    EXPECT_EQ(table.indexes()[0].name, "PrimaryKey");
    EXPECT_TRUE(table.indexes()[0].primary);
    EXPECT_EQ(table.indexes()[1].name, "pair");
    EXPECT_TRUE(table.indexes()[1].unique);
}

TEST_F(SqlDefine, KeepsWhatWasAskedForOrRefuses) {
    run("CREATE TABLE T (a LONG, b TEXT(5) NOT NULL, c LONG)");
    run("CREATE UNIQUE INDEX i ON T (a DESC) WITH DISALLOW NULL");
    run("INSERT INTO T VALUES (1, 'x', 7)");
    const auto before = disk_.bytes;
    struct Case {
        const char* statement;
        ErrNo number;
        const char* message;
    };
    static constexpr Case cases[] = {
        {"INSERT INTO T VALUES (1, 'y', 8)", ErrNo::Exists, "line 1, column 15: memory: table"},
        {"INSERT INTO T VALUES (Null, 'y', 8)", ErrNo::TypeMismatch, "line 1, column 15: "},
        {"INSERT INTO T VALUES (2, Null, 8)", ErrNo::TypeMismatch, "line 1, column 15: "},
        {"INSERT INTO T SELECT a, b, c FROM T", ErrNo::Exists, "line 1, column 15: "},
        {"INSERT INTO T VALUES (2, 'too long', 8)", ErrNo::Overflow, "line 1, column 26: column b"},
        {"UPDATE T SET b = Null", ErrNo::TypeMismatch, "line 1, column 14: "},
        {"CREATE TABLE t (a LONG)", ErrNo::Exists, "line 1, column 14: "},
        {"CREATE TABLE U (a LONG, A TEXT)", ErrNo::Exists, "line 1, column 25: expected each"},
        {"CREATE TABLE U (a LONG, UNIQUE (b))", ErrNo::NotFound, "line 1, column 33: no column b"},
        {"CREATE INDEX j ON T (z)", ErrNo::NotFound, "line 1, column 22: no column z"},
        {"CREATE INDEX j ON T (U.a)", ErrNo::NotFound, "line 1, column 22: no table U"},
        {"CREATE INDEX j ON U (a)", ErrNo::NotFound, "line 1, column 19: "},
        {"CREATE INDEX i ON T (c)", ErrNo::Exists,
         "line 1, column 14: there is an index \"i\" already"},
        {"CREATE TABLE U (a LONG, [b.c] LONG)", ErrNo::Syntax,
         "line 1, column 25: \"b.c\" is no name of a column"},
        {"CREATE TABLE U (a COUNTER, b COUNTER)", ErrNo::Exists, "line 1, column 28: column"},
        {"CREATE TABLE U (a LONG, b IMAGE, UNIQUE (b))", ErrNo::Unsupported,
         "line 1, column 34: index"},
        {"CREATE TABLE U (a LONG PRIMARY KEY, b LONG CONSTRAINT two PRIMARY KEY)", ErrNo::Exists,
         "line 1, column 44: "},
        {"CREATE INDEX [i.j] ON T (c)", ErrNo::Syntax,
         "line 1, column 14: \"i.j\" is no name of an index"},
        {"ALTER TABLE T ADD b LONG", ErrNo::Exists,
         "line 1, column 19: there is a column \"b\" already"},
        {"ALTER TABLE T ADD [d!] LONG", ErrNo::Syntax, "line 1, column 19: "},
        {"ALTER TABLE T ADD d COUNTER", ErrNo::Unsupported, "line 1, column 19: "},
        {"ALTER TABLE U ADD b LONG", ErrNo::NotFound, "line 1, column 13: "},
        {"DROP TABLE U", ErrNo::NotFound, "line 1, column 12: "},
        {"DROP INDEX j ON T", ErrNo::NotFound, "line 1, column 12: "},
        {"DROP INDEX i ON U", ErrNo::NotFound, "line 1, column 17: "},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.statement);
        const auto error = caught([&] { run(c.statement); });
        EXPECT_EQ(error.number, c.number) << error.text;
        EXPECT_THAT(error.text, testing::StartsWith(c.message));
        EXPECT_TRUE(disk_.bytes == before);
    }
}

TEST_F(SqlDefine, SaysWhatWasDone) {
    EXPECT_EQ(run("CREATE TABLE T (a LONG)").done, "table T was made");
    EXPECT_EQ(run("ALTER TABLE T ADD COLUMN [b c] TEXT").done, "column b c was added to table T");
    EXPECT_EQ(run("CREATE INDEX i ON T (a)").done, "index i of table T was made");
    EXPECT_EQ(run("ALTER TABLE T ADD PRIMARY KEY (a)").done,
              "index PrimaryKey of table T was made");
    EXPECT_EQ(run("INSERT INTO T (a) VALUES (1)").done, "");
    EXPECT_EQ(run("DROP INDEX i ON T").done, "index i of table T was dropped");
    EXPECT_EQ(run("DROP TABLE T").done, "table T was dropped");
}

// The column is added, the index on it is not: neither may stay.
TEST_F(SqlDefine, AStatementOfTwoStepsDoesBothOrNone) {
    run("CREATE TABLE T (a LONG)");
    run("CREATE INDEX b ON T (a)");
    const auto before = disk_.bytes;
    EXPECT_EQ(caught([&] { run("ALTER TABLE T ADD b LONG UNIQUE"); }).number, ErrNo::Exists);
    EXPECT_TRUE(disk_.bytes == before);
    EXPECT_EQ(run("SELECT * FROM T").fields.size(), 1U);
}

TEST_F(SqlDefine, ADroppedTableIsGone) {
    run("CREATE TABLE T (a LONG)");
    run("DROP TABLE T");
    EXPECT_EQ(caught([&] { run("SELECT * FROM T"); }).number, ErrNo::NotFound);
    run("CREATE TABLE T (b TEXT)");
    EXPECT_EQ(run("SELECT * FROM T").fields.at(0).name, "b");
}

TEST_F(SqlDefine, ADroppedIndexIsGoneAndTheOthersStay) {
    run("CREATE TABLE T (a LONG PRIMARY KEY, b LONG, c LONG)");
    run("CREATE UNIQUE INDEX one ON T (b)");
    run("CREATE INDEX two ON T (c DESC)");
    run("INSERT INTO T VALUES (1, 5, 9)");
    EXPECT_EQ(caught([&] { run("INSERT INTO T VALUES (2, 5, 9)"); }).number, ErrNo::Exists);
    run("drop index ONE on t");
    EXPECT_EQ(db_.table("T").indexes().size(), 2U);
    run("INSERT INTO T VALUES (2, 5, 9)");
    EXPECT_EQ(caught([&] { run("INSERT INTO T VALUES (2, 6, 9)"); }).number, ErrNo::Exists);
    EXPECT_EQ(run("SELECT * FROM T WHERE c = 9").rows.size(), 2U);
    run("DROP INDEX PrimaryKey ON T");
    run("INSERT INTO T VALUES (2, 5, 8)");
    EXPECT_EQ(run("SELECT * FROM T WHERE c >= 8").rows.size(), 3U);
}

}  // namespace
}  // namespace vl::sql
