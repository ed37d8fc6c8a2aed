// remindb check, repair and compact, as their users run them.
#include <gmock/gmock.h>
#include <algorithm>

#include "Remindb.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using test::linesOf;
using test::remindb;
using testing::EndsWith;
using testing::HasSubstr;

struct RemindbWhole : testing::Test {
    test::TempFolder folder;
    std::string file = (folder / "copy.RemindDB").string();
    std::string target = (folder / "made.RemindDB").string();
    std::string bytes = test::readFile(test::repoFile("data/first-light.RemindDB"));

    void SetUp() override { test::writeFile(file, bytes); }
    void damage(std::size_t at, char with) {
        bytes[at] = with;
        test::writeFile(file, bytes);
    }
    static std::string rowsOf(const std::string& path) {
        return remindb({"sql", path, "SELECT * FROM Reminders ORDER BY GUID", "--json"}).out;
    }
    static std::string tablesOf(const std::string& path) {
        return remindb({"tables", path, "--json"}).out;
    }
};

TEST_F(RemindbWhole, CheckSaysThatNothingIsWrong) {
    const auto run = remindb({"check", file});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.out, file + ": nothing is wrong\n");
    EXPECT_EQ(remindb({"check", file, "--json"}).out, "");
}

TEST_F(RemindbWhole, CheckSaysWhatIsWrongAndWhere) {
    damage(16 * 4096 + 0x10, 77);  // the number of rows
    const auto run = remindb({"check", file});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.out, "page 16: says table \"Reminders\" has 77 rows, but it has 12\n");
    EXPECT_EQ(linesOf(remindb({"check", file, "--json"}).out).at(0).at("page"), 16);
}

TEST_F(RemindbWhole, CheckOfAnotherFileFails) {
    test::writeFile(file, "no database");
    const auto run = remindb({"check", file});
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.err, "");
}

TEST_F(RemindbWhole, RepairKeepsAllOfAFileThatIsWhole) {
    const auto run = remindb({"repair", file, target});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.out, target + ": 1 table, 12 rows\n");
    EXPECT_EQ(rowsOf(target), rowsOf(file));
    EXPECT_EQ(tablesOf(target), tablesOf(file));
    EXPECT_EQ(remindb({"check", target}).code, 0);
    EXPECT_EQ(test::readFile(file), bytes);
}

TEST_F(RemindbWhole, RepairReplacesNothing) {
    test::writeFile(target, "mine");
    const auto run = remindb({"repair", file, target});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(test::readFile(target), "mine");
}

TEST_F(RemindbWhole, RepairSavesTheRowsOfFilesDamagedInAnyPlace) {
    const std::string whole = rowsOf(file);
    struct Case {
        const char* what;
        std::size_t at;
        char with;
    };
    const Case cases[] = {
        {"the header", 5, 'X'},
        {"the map of free pages", 4096, 9},
        {"the catalog's definition", 2 * 4096, 9},
        {"the catalog's index", 7 * 4096, 9},
        {"the number of rows", 16 * 4096 + 0x10, 77},
        {"the map of the table's pages", 17 * 4096, 9},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        std::string damaged = bytes;
        damaged[c.at] = c.with;
        test::writeFile(file, damaged);
        fs::remove(target);
        const auto run = remindb({"repair", file, target});
        ASSERT_EQ(run.code, 0) << run.err;
        EXPECT_THAT(run.out, EndsWith(": 1 table, 12 rows\n"));
        EXPECT_EQ(remindb({"check", target}).code, 0);
        if (tablesOf(target).find("\"Reminders\"") != std::string::npos) {
            EXPECT_EQ(rowsOf(target), whole);
        } else {
            EXPECT_THAT(run.out, HasSubstr("a table that the catalog has lost"));
            EXPECT_THAT(tablesOf(target), HasSubstr("Table16"));
        }
    }
}

TEST_F(RemindbWhole, RepairTellsWhatIsLost) {
    // Every page that holds long values.
    for (std::size_t page = 3; page < bytes.size() / 4096; ++page) {
        if (bytes.compare(page * 4096 + 4, 4, "LVAL") == 0) {
            bytes[page * 4096] = 9;
        }
    }
    test::writeFile(file, bytes);
    const auto run = remindb({"repair", file, target});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("loses column"));
    EXPECT_THAT(run.out, EndsWith(": 1 table, 12 rows\n"));
    EXPECT_EQ(remindb({"check", target}).code, 0);
}

TEST_F(RemindbWhole, CompactWritesTheSameInLessRoom) {
    test::writeFile(file,
                    test::readFile(test::repoFile("tests/data/generated-reminders.RemindDB")));
    const std::string rows = rowsOf(file);
    const std::string tables = tablesOf(file);
    ASSERT_EQ(remindb({"compact", file, target}).code, 0);
    EXPECT_EQ(rowsOf(target), rows);
    EXPECT_EQ(tablesOf(target), tables);
    EXPECT_EQ(remindb({"check", target}).code, 0);
    const auto run = remindb({"compact", file});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("of the desktop product is left out"));
    EXPECT_THAT(run.out, HasSubstr(file + ": 1 table, 500 rows"));
    EXPECT_EQ(rowsOf(file), rows);
    EXPECT_EQ(remindb({"check", file}).code, 0);
    EXPECT_EQ(fs::file_size(file), fs::file_size(target));
    EXPECT_FALSE(fs::exists(file + ".compact"));
}

TEST_F(RemindbWhole, CompactRefusesADamagedFileAndKeepsQueries) {
    damage(16 * 4096 + 0x10, 77);
    const auto run = remindb({"compact", file});
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("is damaged"));
    EXPECT_EQ(test::readFile(file), bytes);
    EXPECT_FALSE(fs::exists(file + ".compact"));
    if (const fs::path shared = test::sharedFolder(); !shared.empty()) {
        const std::string other = (shared / "jet4" / "samples" / "queryTestV2000.mdb").string();
        EXPECT_EQ(remindb({"compact", other, target}).code, 0);
        const std::string queries =
            "SELECT * FROM MSysQueries ORDER BY ObjectId, Attribute, [Order]";
        const auto copied = remindb({"sql", target, queries});
        const auto original = remindb({"sql", other, queries});
        EXPECT_EQ(copied.code, 0) << copied.err;
        EXPECT_EQ(original.code, 0) << original.err;
        EXPECT_EQ(copied.out, original.out);
        EXPECT_GT(std::count(original.out.begin(), original.out.end(), '\n'), 10);
    } else {
        std::cout << "no sample file beside this checkout: no file with queries compacted\n";
    }
}

}  // namespace
}  // namespace vl
