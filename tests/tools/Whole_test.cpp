// remindb check, repair and compact, as their users run them.
#include <algorithm>
#include <atomic>
#include <thread>

#include <gmock/gmock.h>

#include "Remindb.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using test::linesOf;
using test::remindb;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

struct RemindbWhole : testing::Test {
    test::TempFolder folder;
    std::string file = (folder / "copy.RemindDB").string();
    std::string target = (folder / "made.RemindDB").string();
    /// What stands in the folder, by name.
    std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const auto& entry : fs::directory_iterator(folder.path())) {
            all.push_back(entry.path().filename().string());
        }
        std::sort(all.begin(), all.end());
        return all;
    }

    std::string bytes = test::readFile(test::repoFile("data/first-light.RemindDB"));

    void SetUp() override { test::writeFile(file, bytes); }
    void damage(std::size_t at, char with) {
        bytes[at] = with;
        test::writeFile(file, bytes);
    }
    static std::string repoGenerated() {
        return test::repoFile("tests/data/generated-reminders.RemindDB").string();
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
    fs::rename(target, file);
    const auto size = fs::file_size(file);
    ASSERT_EQ(remindb({"sql", file, "DELETE FROM Reminders WHERE EventID > 250"}).code, 0);
    const std::string fewer = rowsOf(file);
    ASSERT_NE(fewer, rows);
    const auto run = remindb({"compact", file});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr(file + ": 1 table, "));
    EXPECT_EQ(rowsOf(file), fewer);
    EXPECT_EQ(remindb({"check", file}).code, 0);
    EXPECT_LT(fs::file_size(file), size);
    EXPECT_THAT(names(), ElementsAre("copy.RemindDB"));
}

// Forms, reports and the like are somebody's work, though no table of his.
TEST_F(RemindbWhole, CompactInPlaceKeepsAFileOfWhichSomethingWouldBeLeftOut) {
    bytes = test::readFile(test::repoFile("tests/data/generated-reminders.RemindDB"));
    test::writeFile(file, bytes);
    const auto refused = remindb({"compact", file});
    EXPECT_EQ(refused.code, 1);
    EXPECT_THAT(refused.err, HasSubstr("of the desktop product is left out"));
    EXPECT_THAT(refused.err, HasSubstr(file + ": stays as it is"));
    EXPECT_EQ(refused.out, "");
    EXPECT_EQ(rowsOf(file), rowsOf(repoGenerated()));
    EXPECT_EQ(test::readFile(file), bytes);
    EXPECT_THAT(names(), ElementsAre("copy.RemindDB"));
    const auto run = remindb({"compact", file, target});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("of the desktop product is left out"));
    EXPECT_THAT(run.out, HasSubstr(target + ": 1 table, 500 rows"));
}

// One after the other waits for a compact that is under way; what they say they did is there.
TEST_F(RemindbWhole, WhoWritesWhileAFileIsCompactedLosesNothing) {
    constexpr int kWriters = 3;
    constexpr int kRows = 8;
    std::atomic<int> writing = kWriters;
    std::vector<std::vector<std::string>> done(kWriters);
    std::vector<std::thread> writers;
    for (int w = 0; w < kWriters; ++w) {
        writers.emplace_back([&, w] {
            for (int i = 0; i < kRows; ++i) {
                const std::string guid = "w" + std::to_string(w) + "-" + std::to_string(i);
                if (remindb(
                        {"sql", file,
                         "INSERT INTO Reminders (GUID, Status) VALUES (\"" + guid + "\", \"\")"})
                        .code == 0) {
                    done[static_cast<std::size_t>(w)].push_back(guid);
                }
            }
            --writing;
        });
    }
    int compacted = 0;
    while (writing > 0) {
        compacted += remindb({"compact", file}).code == 0 ? 1 : 0;
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
    EXPECT_GT(compacted, 0);
    const std::string rows = rowsOf(file);
    std::size_t count = 0;
    for (const auto& guids : done) {
        count += guids.size();
        for (const std::string& guid : guids) {
            EXPECT_THAT(rows, HasSubstr('"' + guid + '"'));
        }
    }
    EXPECT_GT(count, 0U);
    EXPECT_EQ(remindb({"check", file}).code, 0);
    EXPECT_THAT(names(), ElementsAre("copy.RemindDB"));
}

TEST_F(RemindbWhole, CompactGoesWhereALinkLeads) {
    const test::TempFolder other;
    const std::string link = (other / "link.RemindDB").string();
    fs::create_symlink(file, link);
    const auto run = remindb({"compact", link});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_NE(test::readFile(file), bytes);
    EXPECT_EQ(std::distance(fs::directory_iterator(other.path()), {}), 1);
    EXPECT_THAT(names(), ElementsAre("copy.RemindDB"));
}

TEST_F(RemindbWhole, CompactOfNoFileSaysSo) {
    const std::string none = (folder / "none").string();
    for (const auto& words : {std::vector<std::string>{"compact", none},
                              std::vector<std::string>{"compact", none, target}}) {
        const auto run = remindb(words);
        EXPECT_EQ(run.code, 1);
        EXPECT_EQ(run.err, "remindb: " + none + ": cannot open: No such file or directory\n");
    }
    EXPECT_THAT(names(), ElementsAre("copy.RemindDB"));
}

TEST_F(RemindbWhole, CompactIsNotInTheWayOfAnyOtherFile) {
    // What an earlier compact left when it was killed might be called so; anybody's file, too.
    for (const char* name : {".compact", ".new", ".tmp"}) {
        test::writeFile(file + name, "mine");
    }
    const auto run = remindb({"compact", file});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_THAT(names(), ElementsAre("copy.RemindDB", "copy.RemindDB.compact", "copy.RemindDB.new",
                                     "copy.RemindDB.tmp"));
    for (const char* name : {".compact", ".new", ".tmp"}) {
        EXPECT_EQ(test::readFile(file + name), "mine");
    }
}

TEST_F(RemindbWhole, BackupIsNotInTheWayOfAnyOtherFile) {
    const std::string news = target + ".new";
    test::writeFile(news, bytes);
    const auto run = remindb({"backup", news, target});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(test::readFile(target), bytes);
    EXPECT_EQ(test::readFile(news), bytes);
    EXPECT_THAT(names(), ElementsAre("copy.RemindDB", "made.RemindDB", "made.RemindDB.new"));
}

TEST_F(RemindbWhole, CompactRefusesADamagedFileAndKeepsQueries) {
    damage(16 * 4096 + 0x10, 77);
    const auto run = remindb({"compact", file});
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("is damaged"));
    EXPECT_EQ(test::readFile(file), bytes);
    EXPECT_THAT(names(), ElementsAre("copy.RemindDB"));
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
