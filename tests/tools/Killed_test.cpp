// What remindb leaves that is killed while it makes a file: a whole one, or none.
#include <cstdlib>
#include <iostream>

#include <gmock/gmock.h>

#include "KilledAt.h"
#include "Remindb.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using test::remindb;
using testing::HasSubstr;
using testing::MatchesRegex;

struct RemindbKilled : testing::Test {
    test::TempFolder folder;
    const std::string file = (folder / "copy.RemindDB").string();
    const std::string target = (folder / "made.RemindDB").string();
    const std::string bytes = test::readFile(test::repoFile("data/first-light.RemindDB"));
    std::string rows;
    int whole = 0;  // kills after which the target was there
    int begun = 0;  // after which a file was that had been begun
    int kills = 0;

    void SetUp() override {
        test::writeFile(file, bytes);
        rows = rowsOf(file);
    }
    static std::string rowsOf(const std::string& path) {
        const auto run = remindb({"sql", path, "SELECT * FROM Reminders ORDER BY GUID", "--json"});
        EXPECT_EQ(run.code, 0) << run.err;
        return run.out;
    }
    void expectWhole(const std::string& path) const {
        const auto check = remindb({"check", path});
        EXPECT_EQ(check.code, 0) << check.out << check.err;
        EXPECT_EQ(rowsOf(path), rows);
    }

    // Killed at each of its changes, each time in a folder with nothing but the source.
    void killEverywhere(const std::vector<std::string>& words, const std::string& made) {
        std::vector<std::string> command = {VL_REMINDB};
        command.insert(command.end(), words.begin(), words.end());
        for (int n = 1;; ++n) {
            SCOPED_TRACE(words[0] + ", killed before change " + std::to_string(n));
            for (const auto& entry : fs::directory_iterator(folder.path())) {
                fs::remove_all(entry.path());
            }
            test::writeFile(file, bytes);
            const test::KilledRun run = test::killedAt(n, command);
            if (!run.killed) {
                EXPECT_EQ(run.code, 0);
                break;
            }
            ++kills;
            expectWhatMayBeLeft(made);
            if (HasFailure()) {
                return;
            }
        }
        expectWhole(made);
        EXPECT_GT(kills, 5);
        EXPECT_GT(begun, 3);
        std::cout << words[0] << ": killed " << kills << " times; then the target was there "
                  << whole << " times, and what had been begun " << begun << " times\n";
    }

    void expectWhatMayBeLeft(const std::string& made) {
        bool hasBegun = false;
        for (const auto& entry : fs::directory_iterator(folder.path())) {
            const std::string name = entry.path().filename().string();
            hasBegun = hasBegun || name.ends_with(".new");
            EXPECT_THAT(name,
                        MatchesRegex("(copy|made)\\.RemindDB|copy\\.ldb|"
                                     "(copy|made)\\.RemindDB\\.[0-9a-v]{8}\\.(ldb|new(\\.journal|"
                                     "\\.[0-9A-Za-z]{6})?)"));
        }
        begun += hasBegun ? 1 : 0;
        if (made != file) {
            EXPECT_EQ(test::readFile(file), bytes);
        }
        if (fs::exists(made)) {
            ++whole;
            expectWhole(made);
        }
    }
};

TEST_F(RemindbKilled, CompactLeavesAWholeTargetOrNone) {
    killEverywhere({"compact", file, target}, target);
    EXPECT_LT(whole, kills / 2);
}

TEST_F(RemindbKilled, RepairLeavesAWholeTargetOrNone) {
    killEverywhere({"repair", file, target}, target);
    EXPECT_LT(whole, kills / 2);
}

TEST_F(RemindbKilled, BackupLeavesAWholeTargetOrNone) {
    killEverywhere({"backup", file, target}, target);
    EXPECT_LT(whole, kills / 2);
}

TEST_F(RemindbKilled, CompactInPlaceLeavesTheOldFileOrTheNew) {
    killEverywhere({"compact", file}, file);
    EXPECT_EQ(whole, kills);
}

TEST_F(RemindbKilled, WhatDoesNotFitOnTheDiskLeavesNothing) {
    for (const char* command : {"compact", "repair", "backup"}) {
        // In pieces of 512 bytes; the source has 296 of them.
        const std::string line = "trap '' XFSZ; ulimit -f 200; '" VL_REMINDB "' " +
                                 std::string(command) + " '" + file + "' '" + target +
                                 "' 2>/dev/null";
        EXPECT_NE(std::system(line.c_str()), 0);
        EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1) << command;
    }
    EXPECT_EQ(test::readFile(file), bytes);
}

// Nobody can tell a file of a killed run from that of one at work, so it is named and stays.
TEST_F(RemindbKilled, TheNextRunDoesItsWorkAndNamesWhatIsLeft) {
    for (const auto& words : {std::vector<std::string>{"compact", file, target},
                              std::vector<std::string>{"repair", file, target},
                              std::vector<std::string>{"backup", file, target},
                              std::vector<std::string>{"compact", file}}) {
        SCOPED_TRACE(words[0] + " " + std::to_string(words.size()));
        const std::string left = words.back() + ".k3v0a9c2.new";
        const std::string mine = words.back() + ".K3v0a9c2.new";
        test::writeFile(left, "begun");
        test::writeFile(mine, "mine");
        const auto run = remindb(words);
        EXPECT_EQ(run.code, 0) << run.err;
        EXPECT_EQ(run.err,
                  left + ": was begun by a remindb that was killed, or is still at work\n");
        EXPECT_EQ(test::readFile(left), "begun");
        expectWhole(words.back());
        fs::remove(target);
        fs::remove(left);
        fs::remove(mine);
    }
}

TEST_F(RemindbKilled, NothingIsMadeBesideAJournalThatWouldBeTakenForItsOwn) {
    test::writeFile(target + ".journal", "of an earlier one");
    for (const char* command : {"compact", "repair"}) {
        const auto run = remindb({command, file, target});
        EXPECT_EQ(run.code, 1);
        EXPECT_THAT(run.err, HasSubstr(target + ".journal lies there"));
        EXPECT_FALSE(fs::exists(target));
    }
}

TEST_F(RemindbKilled, NeitherALinkThatLeadsNowhereNorANameOfALockFileIsATarget) {
    fs::create_symlink(folder / "nowhere", target);
    const std::string lock = (folder / "made.ldb").string();
    for (const char* command : {"compact", "repair"}) {
        EXPECT_THAT(remindb({command, file, target}).err,
                    HasSubstr("there is something of that name"));
        EXPECT_THAT(remindb({command, file, lock}).err, HasSubstr("its own lock file"));
    }
    EXPECT_TRUE(fs::is_symlink(target));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 2);
}

}  // namespace
}  // namespace vl
