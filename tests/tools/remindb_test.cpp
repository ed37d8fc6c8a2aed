// remindb as its users run it.
#include <gmock/gmock.h>

#include <cstdlib>
#include <iostream>

#include "Remindb.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using test::Json;
using test::linesOf;
using test::remindb;
using testing::HasSubstr;
using testing::StartsWith;

std::string firstLight() { return test::repoFile("data/first-light.RemindDB").string(); }

TEST(Remindb, TablesTellsWhatAnotherReaderFound) {
    const auto run = remindb({"tables", firstLight(), "--json"});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.err, "");
    const auto dump = linesOf(test::readFile(
        test::repoFile("tests/data/expected/first-light.RemindDB/Reminders.a.jsonl")));
    EXPECT_THAT(linesOf(run.out), testing::ElementsAre(dump.at(0)));
}

TEST(Remindb, TablesIsReadable) {
    const auto run = remindb({"tables", firstLight()});
    EXPECT_EQ(run.code, 0);
    EXPECT_THAT(run.out, StartsWith("Reminders: 12 rows\n  columns\n"));
    EXPECT_THAT(run.out, HasSubstr("    GUID                          text(255)\n"));
    EXPECT_THAT(run.out, HasSubstr("  indexes\n    PrimaryKey  primary unique required on GUID\n"));
}

TEST(Remindb, SqlGivesTheRowsThatAnotherReaderFound) {
    const auto run = remindb({"sql", firstLight(), "SELECT * FROM Reminders", "--json"});
    EXPECT_EQ(run.code, 0);
    auto dump = linesOf(test::readFile(
        test::repoFile("tests/data/expected/first-light.RemindDB/Reminders.a.jsonl")));
    dump.erase(dump.begin());
    EXPECT_THAT(linesOf(run.out), testing::ElementsAreArray(dump));
}

TEST(Remindb, SqlGivesATableToRead) {
    const auto run = remindb({"sql", firstLight(),
                              "SELECT EventID, StartDateTime, Deleted, Dismissed FROM Reminders "
                              "WHERE EventID IN (1010, 1011) ORDER BY EventID"});
    EXPECT_EQ(run.code, 0);
    EXPECT_THAT(run.out, StartsWith("EventID\tStartDateTime\tdeleted\tDismissed\n1010\t2026-"));
    EXPECT_THAT(run.out, HasSubstr("\ttrue\t\\N\n1011\t2023-"));
    EXPECT_THAT(run.out, HasSubstr("\tfalse\t2023-05-31T09:05:12\n"));
    const auto body =
        remindb({"sql", firstLight(), "SELECT Body FROM Reminders WHERE EventID = 1002"});
    const auto nothing =
        remindb({"sql", firstLight(),
                 R"(SELECT Null AS a, "" AS b, "\N" AS c FROM Reminders WHERE EventID = 1002)"});
    EXPECT_EQ(nothing.out, "a\tb\tc\n\\N\t\t\\\\N\n");
    EXPECT_EQ(body.out, "Body\nBring the insurance card.\\r\\nX-ray pictures are already there.\n");
}

TEST(Remindb, SqlChangesTheFile) {
    const test::TempFolder folder;
    const std::string file = (folder / "copy.RemindDB").string();
    test::writeFile(file, test::readFile(firstLight()));
    EXPECT_EQ(remindb({"sql", file, "UPDATE Reminders SET Hidden = -1 WHERE EventID = 1001;"}).out,
              "1 row changed\n");
    EXPECT_EQ(
        remindb({"sql", file, "UPDATE Reminders SET Hidden = -1 WHERE EventID > 1010", "--json"})
            .out,
        "{\"affected\":2}\n");
    EXPECT_EQ(
        remindb({"--json", "sql", file, "SELECT EventID AS e FROM Reminders WHERE Hidden"}).out,
        "{\"e\":1001}\n{\"e\":1011}\n{\"e\":1012}\n");
    EXPECT_EQ(remindb({"sql", file, "SELECT Count(*) AS n FROM Reminders WHERE NOT Hidden"}).out,
              "n\n9\n");
    EXPECT_EQ(remindb({"sql", file, "DELETE * FROM Reminders WHERE Hidden"}).out,
              "3 rows changed\n");
    EXPECT_EQ(remindb({"sql", file, "INSERT INTO Reminders (GUID) VALUES ('new')", "--json"}).out,
              "{\"affected\":1}\n");
    EXPECT_EQ(remindb({"--json", "sql", file,
                       "SELECT GUID, EventID * 2 AS twice FROM Reminders WHERE GUID = 'NEW'"})
                  .out,
              "{\"GUID\":\"new\",\"twice\":null}\n");
}

TEST(Remindb, SqlSaysWhatWasMadeAndDropped) {
    const test::TempFolder folder;
    const std::string file = (folder / "new.RemindDB").string();
    ASSERT_EQ(remindb({"new", file}).code, 0);
    EXPECT_EQ(remindb({"sql", file, "CREATE TABLE T (a LONG, b BINARY(4))"}).out,
              "table T was made\n");
    EXPECT_EQ(remindb({"sql", file, "CREATE INDEX i ON T (a)", "--json"}).out,
              "{\"done\":\"index i of table T was made\"}\n");
    EXPECT_EQ(remindb({"sql", file, "INSERT INTO T VALUES (7 MOD 4, 0x0aFF)"}).out,
              "1 row changed\n");
    EXPECT_EQ(remindb({"sql", file, "SELECT * FROM T WHERE b = 0x0AFF"}).out,
              "a\tb\n3\thex:0aff\n");
    const auto system = remindb({"sql", file, "DROP TABLE MSysObjects"});
    EXPECT_EQ(system.code, 1);
    EXPECT_THAT(system.err,
                HasSubstr("line 1, column 12: table MSysObjects belongs to the engine"));
    EXPECT_EQ(remindb({"sql", file, "DROP TABLE T"}).out, "table T was dropped\n");
}

// So long a one fits into no argument.
TEST(Remindb, SqlReadsTheStatementFromItsInput) {
    const test::TempFolder folder;
    const std::string file = (folder / "new.RemindDB").string();
    ASSERT_EQ(remindb({"new", file}).code, 0);
    const std::string body(300'000, 'x');
    EXPECT_EQ(remindb({"sql", file, "-"},
                      "INSERT INTO Reminders (GUID, Body)\nVALUES ('a', '" + body + "');\n")
                  .out,
              "1 row changed\n");
    EXPECT_EQ(remindb({"sql", file, "-", "--json"}, "SELECT Body FROM Reminders\n").out,
              "{\"Body\":\"" + body + "\"}\n");
    const auto wrong = remindb({"sql", file, "-"}, "SELECT *\nFRO Reminders");
    EXPECT_EQ(wrong.code, 1);
    EXPECT_THAT(wrong.err, HasSubstr("line 2, column 1: expected \",\" or FROM, found FRO"));
    EXPECT_EQ(remindb({"sql", file, "-"}).code, 1);
}

// The rows are there all the same; where they were looked for is not kept a secret.
TEST(Remindb, SqlPassesADamagedIndexOverAndTracesIt) {
    const test::TempFolder folder;
    const std::string file = (folder / "damaged.RemindDB").string();
    const std::string trace = (folder / "trace").string();
    std::string bytes = test::readFile(firstLight());
    int leaves = 0;
    for (std::size_t page = 3; page < bytes.size() / 4096; ++page) {
        if (bytes[page * 4096] == 4) {  // of an index
            bytes[page * 4096] = 9;
            ++leaves;
        }
    }
    ASSERT_GT(leaves, 0);
    test::writeFile(file, bytes);
    const std::string statement =
        "SELECT EventID FROM Reminders WHERE GUID = '{437FED06-B0D4-4C70-8AC9-99114CC7B46A}'";
    setenv("VL_TRACE", trace.c_str(), 1);
    const auto found = remindb({"sql", file, statement});
    unsetenv("VL_TRACE");
    EXPECT_EQ(found.out, remindb({"sql", firstLight(), statement}).out);
    EXPECT_THAT(found.out, StartsWith("EventID\n10"));
    EXPECT_THAT(test::readFile(trace), HasSubstr("an index that is damaged is passed over: "));
    EXPECT_EQ(remindb({"check", file}).code, 1);
}

TEST(Remindb, SqlLosesNoColumnOfTheSameName) {
    EXPECT_EQ(remindb({"sql", firstLight(),
                       "SELECT EventID AS a, EventID + 1 AS a FROM Reminders WHERE EventID = 1001",
                       "--json"})
                  .out,
              "{\"a\":1001,\"Expr1001\":1002}\n");
}

TEST(Remindb, NewMakesADatabaseThatTheProgramCanUse) {
    const test::TempFolder folder;
    const std::string file = (folder / "new.RemindDB").string();
    const auto made = remindb({"new", file});
    EXPECT_EQ(made.code, 0) << made.err;
    EXPECT_EQ(made.out, "");
    EXPECT_EQ(remindb({"sql", file, "SELECT * FROM Reminders", "--json"}).out, "");
    const auto tables = linesOf(remindb({"tables", file, "--json"}).out);
    const auto sample = linesOf(remindb({"tables", firstLight(), "--json"}).out);
    ASSERT_EQ(tables.size(), 1U);
    EXPECT_EQ(tables[0]["table"], "Reminders");
    EXPECT_EQ(tables[0]["rows"], 0);
    EXPECT_EQ(tables[0]["columns"], sample[0]["columns"]);
    EXPECT_EQ(tables[0]["indexes"][0], sample[0]["indexes"][0]);
    EXPECT_EQ(tables[0]["indexes"].size(), 4U);
    EXPECT_THAT(remindb({"tables", file}).out, HasSubstr("    Modified    on Modified\n"));

    const std::string before = test::readFile(file);
    const auto again = remindb({"new", file});
    EXPECT_EQ(again.code, 1);
    EXPECT_THAT(again.err, HasSubstr("new.RemindDB"));
    EXPECT_EQ(test::readFile(file), before);
    EXPECT_EQ(remindb({"new", (folder / "none/new.RemindDB").string()}).code, 1);
}

TEST(Remindb, SaysWhatFailed) {
    const std::string file = firstLight();
    struct Case {
        std::vector<std::string> arguments;
        int code;
        const char* message;
    };
    const Case cases[] = {
        {{}, 2, "expected a command: new, tables, sql, "},
        {{"--json"}, 2, "expected a command"},
        {{"tidy", file}, 2, "unknown command tidy"},
        {{"tables"}, 2, "tables expects a file"},
        {{"tables", file, file}, 2, "tables expects a file"},
        {{"sql", file}, 2, "sql expects a file and one statement"},
        {{"sql", file, "SELECT", "*"}, 2, "sql expects a file and one statement"},
        {{"tables", file, "--xml"}, 2, "unknown option --xml"},
        {{"tables", file + "x"}, 1, "first-light.RemindDBx"},
        {{"tables", VL_REMINDB}, 1, "remindb"},
        {{"sql", file, "SELEKT"}, 1, "line 1, column 1: expected SELECT, INSERT, UPDATE, DELETE, "},
        {{"sql", file, "SELECT a FROM Reminders"}, 1, "line 1, column 8: no column a"},
        {{"sql", file, "SELECT * FROM T"}, 1, "line 1, column 15: "},
        {{"sql", file, "DELETE * FROM Reminder"}, 1, "line 1, column 15: "},
        {{"sql", file, "DELETE * Reminders"}, 1, "line 1, column 10: expected FROM"},
    };
    const std::string before = test::readFile(file);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.message);
        const auto run = remindb(c.arguments);
        EXPECT_EQ(run.code, c.code);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err, StartsWith("remindb: "));
        EXPECT_THAT(run.err, HasSubstr(c.message));
    }
    EXPECT_TRUE(test::readFile(file) == before) << "the file was changed";
}

TEST(Remindb, ExplainsItself) {
    const auto help = remindb({"--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_THAT(help.out, StartsWith("usage: remindb new FILE\n"));
    EXPECT_EQ(help.err, "");
    const auto version = remindb({"--version"});
    EXPECT_EQ(version.code, 0);
    EXPECT_THAT(version.out, testing::MatchesRegex("remindb [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(Remindb, BacksADatabaseUp) {
    const test::TempFolder folder;
    const std::string copy = (folder / "copy.mdb").string();
    ASSERT_EQ(remindb({"backup", firstLight(), copy}).code, 0);
    EXPECT_TRUE(test::readFile(copy) == test::readFile(firstLight()));
    EXPECT_EQ(remindb({"backup", copy, copy}).code, 1);
    EXPECT_EQ(remindb({"backup", firstLight(), (folder / "none" / "copy.mdb").string()}).code, 1);
}

TEST(Remindb, SaysWhenItCannotWrite) {
    EXPECT_EQ(remindb({"tables", firstLight()}, {}, "/dev/full").code, 1);
}

// Every table of the files that others made, against what another reader found in them. Without
// the shared folder there is nothing to compare.
TEST(RemindbSamples, AgreesWithAnotherReader) {
    int tables = 0;
    std::size_t rows = 0;
    const fs::path shared = test::sharedFolder();
    if (!shared.empty()) {
        const fs::path samples = shared / "jet4" / "samples";
        for (const auto& entry : fs::recursive_directory_iterator(samples / "dumps")) {
            const std::string name = entry.path().filename().string();
            const std::size_t suffix = name.find(".a.jsonl");
            if (suffix == std::string::npos) {
                continue;
            }
            SCOPED_TRACE(entry.path());
            const fs::path file = samples / entry.path().parent_path().filename();
            const std::string table = name.substr(0, suffix);
            const auto run =
                remindb({"sql", file.string(), "SELECT * FROM [" + table + "]", "--json"});
            ASSERT_EQ(run.code, 0) << run.err;
            auto expected = linesOf(test::readFile(entry.path()));
            expected.erase(expected.begin());
            ASSERT_EQ(linesOf(run.out), expected);
            ++tables;
            rows += expected.size();
        }
        EXPECT_GT(tables, 0);
    }
    std::cout << "compared " << tables << " tables, " << rows << " rows"
              << (shared.empty() ? " (no shared folder)" : "") << '\n';
}

}  // namespace
}  // namespace vl
