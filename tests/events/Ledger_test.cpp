#include "events/Ledger.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "../model/ZoneForTest.h"
#include "LedgerTest.h"
#include "base/ErrorState.h"

namespace vl {
namespace {

namespace fs = std::filesystem;

using LedgerFile = test::LedgerTest;

TEST_F(LedgerFile, KeepsEveryPartOverARestart) {
    EventState all;
    snooze(all, at(10, 0), at(14, 15));
    OccurrenceState& muted = all.at(at(11, 0));
    muted.end = at(12, 0);
    muted.muted = Muted::ThroughStart;
    muted.listed = at(10, 45);
    all.at(at(12, 0)).muted = Muted::ForEver;
    all.at(at(12, 0)).local = at(13, 0);
    all.endedBefore = at(9, 0);
    all.endedAt = at(9, 5);
    all.doubted[at(9, 5)] = {at(9, 6), at(8, 6)};
    all.openSince = at(8, 0);
    all.openOf = at(8, 30);
    all.newlyMet = true;
    all.waits = true;
    all.word = {at(7, 0), at(6, 0)};
    all.row["status"] = {{"", "a \"b\""}, "AllDone"};
    {
        Ledger ledger(clock, path.string());
        EXPECT_TRUE(ledger.change(kDb, "{A}", "test", [&](EventState& state) { state = all; }));
    }
    const Ledger again(clock, path.string());
    const EventState* state = again.find(kDb, "{a}");
    ASSERT_TRUE(state) << "GUIDs are equal without regard to case";
    EXPECT_EQ(*state, all);
    EXPECT_FALSE(again.find("/data/velmora.reminddb", "{A}")) << "paths are not";
    EXPECT_FALSE(again.find(kDb, "{B}"));
}

TEST_F(LedgerFile, TheLastLineOfAnOccurrenceCountsAndOthersStay) {
    {
        Ledger ledger(clock, path.string());
        put(ledger, "{A}", at(10, 0));
        put(ledger, "{A}", at(11, 0));
        ledger.change(kDb, "{A}", "this",
                      [](EventState& state) { state.at(at(10, 0)).snoozed = DateTime(); });
        EXPECT_EQ(lines(), 3U) << "one line an act";
    }
    const Ledger again(clock, path.string());
    const EventState* state = again.find(kDb, "{A}");
    ASSERT_TRUE(state);
    ASSERT_EQ(state->occurrences.size(), 2U);
    EXPECT_TRUE(state->find(at(10, 0))->snoozed.isZero());
    EXPECT_EQ(state->find(at(11, 0))->snoozed, at(11, 0));
}

TEST_F(LedgerFile, WhatIsForgottenIsForgottenOverARestart) {
    {
        Ledger ledger(clock, path.string());
        put(ledger, "{A}", at(10, 0));
        ledger.forget(kDb, "{A}", "reactivate", [](EventState& state) { state.acted = at(14, 0); });
    }
    const Ledger again(clock, path.string());
    ASSERT_TRUE(again.find(kDb, "{A}"));
    EXPECT_TRUE(again.find(kDb, "{A}")->occurrences.empty());
    EXPECT_TRUE(again.find(kDb, "{A}")->note("NextReminder"))
        << "the row still shows what we wrote";
}

// However the last line was cut off, all before it stand, and what comes after stands, too.
TEST_F(LedgerFile, ATornLastLineCostsNothingElse) {
    {
        Ledger ledger(clock, path.string());
        put(ledger, "{A}", at(10, 0));
        put(ledger, "{B}", at(10, 0));
    }
    const std::string whole = test::readFile(path);
    const std::size_t second = whole.find('\n') + 1;
    for (std::size_t length = second + 1; length < whole.size() - 1; ++length) {
        SCOPED_TRACE(testing::Message() << length << " of " << whole.size() << " bytes");
        test::writeFile(path, whole.substr(0, length));
        {
            Ledger torn(clock, path.string());
            ASSERT_TRUE(torn.find(kDb, "{A}"));
            ASSERT_FALSE(torn.find(kDb, "{B}"));
            put(torn, "{C}", at(11, 0));
        }
        const Ledger again(clock, path.string());
        ASSERT_TRUE(again.find(kDb, "{A}"));
        ASSERT_TRUE(again.find(kDb, "{C}"));
    }
}

TEST_F(LedgerFile, LinesThatItDoesNotUnderstandDoNotStopIt) {
    test::writeFile(path,
                    "nonsense\n"
                    "{\"db\":\"/data/Velmora.RemindDB\",\"guid\":7}\n"
                    "{\"db\":\"/data/Velmora.RemindDB\",\"guid\":\"{A}\",\"occurrences\":[{"
                    "\"start\":\"2026-11-20 10:00:00\",\"listed\":\"2026-11-20 09:45:00\"}]}\n"
                    "{\"db\":\"/data/Velmora.RemindDB\",\"guid\":\"{B}\",\"occurrences\":[{"
                    "\"start\":\"yesterday\"}]}\n"
                    "[1]\n"
                    "{\"of\":\"a later version\"}\n"
                    "{\"db\":\"/data/Velmora.RemindDB\",\"checked\":\"2026-11-20\"}\n");
    Ledger ledger(clock, path.string());
    ASSERT_TRUE(ledger.find(kDb, "{A}"));
    EXPECT_EQ(ledger.find(kDb, "{A}")->find(at(10, 0))->listed, at(9, 45));
    EXPECT_FALSE(ledger.find(kDb, "{B}"));
    EXPECT_EQ(ledger.lastCheck(kDb), at(0, 0));
    EXPECT_EQ(lines(), 3U) << "the start has compacted it";
    EXPECT_NE(test::readFile(path).find("a later version"), std::string::npos);
}

TEST_F(LedgerFile, CompactsItselfWhileItGrows) {
    Ledger ledger(clock, path.string());
    for (int i = 0; i < 600; ++i) {
        ledger.change(kDb, "{A}", "test", [&](EventState& state) {
            state.at(at(10, 0)).handled = at(10, 0).addSeconds(i);
        });
    }
    EXPECT_LT(lines(), 400U);
    EXPECT_EQ(Ledger(clock, path.string()).find(kDb, "{A}")->find(at(10, 0))->handled,
              at(10, 0).addSeconds(599));
}

TEST_F(LedgerFile, TwoCopiesSeeWhatTheOtherDidAndLoseNothing) {
    Ledger one(clock, path.string());
    Ledger two(clock, path.string());
    put(one, "{A}", at(10, 0));
    const auto before = two.version();
    EXPECT_FALSE(two.find(kDb, "{A}"));
    two.ReadAgain();
    ASSERT_TRUE(two.find(kDb, "{A}"));
    EXPECT_EQ(two.changedSince(before), (std::vector<std::uint64_t>{guidHash("{a}")}));
    // Without a look first: the change is made on top of the other's.
    put(one, "{A}", at(11, 0));
    put(two, "{A}", at(12, 0));
    one.ReadAgain();
    ASSERT_TRUE(one.find(kDb, "{A}"));
    EXPECT_EQ(one.find(kDb, "{A}")->occurrences.size(), 3U);
    EXPECT_EQ(two.find(kDb, "{A}")->occurrences.size(), 3U);
    const auto seen = one.version();
    one.ReadAgain();
    EXPECT_EQ(one.version(), seen) << "nothing new";
}

TEST_F(LedgerFile, TwoCopiesOfWhichOneCompactsLoseNothing) {
    Ledger one(clock, path.string());
    Ledger two(clock, path.string());
    for (int i = 0; i < 150; ++i) {
        put(one, "{A}", at(10, 0).addMinutes(i % 7));
        put(two, "{B}", at(10, 0).addMinutes(i % 5));
    }
    one.ReadAgain();
    two.ReadAgain();
    EXPECT_EQ(*one.find(kDb, "{A}"), *two.find(kDb, "{A}"));
    EXPECT_EQ(one.find(kDb, "{B}")->occurrences.size(), 5U);
    EXPECT_EQ(two.find(kDb, "{A}")->occurrences.size(), 7U);
}

TEST_F(LedgerFile, WithoutAFolderItLivesInMemory) {
    Ledger ledger(clock, (folder / "no" / "such" / "VLReminders.ledger").string());
    EXPECT_FALSE(ledger.change(kDb, "{A}", "test",
                               [](EventState& state) { state.at(at(10, 0)).handled = at(10, 0); }));
    ASSERT_TRUE(ledger.find(kDb, "{A}"));
    EXPECT_EQ(ledger.find(kDb, "{A}")->find(at(10, 0))->handled, at(10, 0));
    EXPECT_FALSE(ledger.onDisk());
    // The folder comes back: what is owed is written with the next change.
    fs::create_directories(folder / "no" / "such");
    put(ledger, "{B}", at(11, 0));
    EXPECT_TRUE(ledger.onDisk());
    const Ledger again(clock, (folder / "no" / "such" / "VLReminders.ledger").string());
    EXPECT_TRUE(again.find(kDb, "{A}"));
    EXPECT_TRUE(again.find(kDb, "{B}"));
}

TEST_F(LedgerFile, WhatItOwesStandsOverWhatOthersWrote) {
    Ledger one(clock, path.string());
    put(one, "{A}", at(10, 0));
    fs::remove(folder / "VLReminders.ledger.lock");
    fs::create_directory(folder / "VLReminders.ledger.lock");  // no lock is to be had
    put(one, "{A}", at(11, 0));
    EXPECT_FALSE(one.onDisk());
    fs::remove(folder / "VLReminders.ledger.lock");
    Ledger two(clock, path.string());
    put(two, "{A}", at(12, 0));
    one.ReadAgain();
    EXPECT_EQ(one.find(kDb, "{A}")->occurrences.size(), 3U);
    put(one, "{B}", at(12, 0));
    EXPECT_TRUE(one.onDisk());
    two.ReadAgain();
    EXPECT_EQ(two.find(kDb, "{A}")->occurrences.size(), 3U);
}

TEST_F(LedgerFile, AFileThatIsRemovedWhileItRunsIsWrittenAnew) {
    for (const bool isRead : {true, false}) {
        SCOPED_TRACE(isRead);
        Ledger ledger(clock, path.string());
        put(ledger, "{A}", at(10, 0));
        put(ledger, "{A}", at(11, 0));
        ledger.noteCheck(kDb, at(9, 0));
        ledger.keepReplaced(kDb, {"master"}, at(10, 0, 27));
        const auto version = ledger.version();
        fs::remove(path);
        if (isRead) {
            ledger.ReadAgain();
            EXPECT_EQ(ledger.version(), version) << "nothing has changed";
        } else {
            put(ledger, "{B}", at(12, 0));
        }
        EXPECT_TRUE(ledger.onDisk());
        const Ledger again(clock, path.string());
        EXPECT_EQ(again.find(kDb, "{B}") != nullptr, !isRead);
        for (const Ledger* one : {&static_cast<const Ledger&>(ledger), &again}) {
            ASSERT_TRUE(one->find(kDb, "{A}"));
            EXPECT_EQ(one->find(kDb, "{A}")->occurrences.size(), 2U);
            EXPECT_EQ(one->lastCheck(kDb), at(9, 0));
            EXPECT_EQ(one->replaced(kDb, {"master"}).size(), 1U);
        }
    }
}

TEST_F(LedgerFile, WithItsWholeFolderItIsWrittenAnewWhenThatIsBack) {
    const fs::path home = folder / "home";
    fs::create_directory(home);
    Ledger ledger(clock, (home / "VLReminders.ledger").string());
    put(ledger, "{A}", at(10, 0));
    fs::remove_all(home);
    ledger.ReadAgain();
    put(ledger, "{B}", at(10, 0));
    EXPECT_TRUE(ledger.find(kDb, "{A}"));
    EXPECT_FALSE(ledger.onDisk());
    fs::create_directory(home);
    ledger.ReadAgain();
    EXPECT_TRUE(ledger.onDisk());
    const Ledger again(clock, (home / "VLReminders.ledger").string());
    EXPECT_TRUE(again.find(kDb, "{A}"));
    EXPECT_TRUE(again.find(kDb, "{B}"));
}

TEST_F(LedgerFile, NotesTheFirstCheckOfEachDay) {
    Ledger ledger(clock, path.string());
    EXPECT_TRUE(ledger.lastCheck(kDb).isZero());
    ledger.noteCheck(kDb, at(9, 0));
    ledger.noteCheck(kDb, at(9, 1));
    EXPECT_EQ(lines(), 1U);
    ledger.noteCheck(kDb, at(0, 5, 21));
    EXPECT_EQ(lines(), 2U);
    EXPECT_EQ(Ledger(clock, path.string()).lastCheck(kDb), at(0, 5, 21));
    EXPECT_TRUE(ledger.lastCheck("/other.RemindDB").isZero());
}

TEST_F(LedgerFile, KnowsADatabaseHoweverItsPathIsWritten) {
    const fs::path real = folder / "real";
    fs::create_directory(real);
    fs::create_directory_symlink(real, folder / "link");
    test::writeFile(real / "Velmora.RemindDB", "");
    fs::create_symlink(real / "Velmora.RemindDB", folder / "file");
    Ledger ledger(clock, path.string());
    const auto act = [](EventState& state) { snooze(state, at(10, 0), at(10, 0)); };
    ledger.change((real / "Velmora.RemindDB").string(), "{A}", "snooze", act);
    const fs::path before = fs::current_path();
    fs::current_path(real);
    for (const fs::path& given :
         {fs::path("Velmora.RemindDB"), fs::path("../link/Velmora.RemindDB"), folder / "file",
          folder / "link" / ".." / "real" / "." / "Velmora.RemindDB"}) {
        SCOPED_TRACE(given);
        EXPECT_TRUE(ledger.find(given.string(), "{a}"));
        EXPECT_EQ(ledger.all(given.string()).size(), 1U);
    }
    ledger.noteCheck("Velmora.RemindDB", at(9, 0));
    fs::current_path(before);
    EXPECT_EQ(ledger.lastCheck((folder / "file").string()), at(9, 0));
    EXPECT_FALSE(ledger.find((real / "Other.RemindDB").string(), "{A}"));
    // While the link's end is away, the database is the one it was.
    fs::rename(real, folder / "away");
    ledger.ReadAgain();
    EXPECT_TRUE(ledger.find((folder / "file").string(), "{A}"));
}

TEST_F(LedgerFile, ACheckBeforeTheFirstOneOfItsDayIsNoted) {
    Ledger ledger(clock, path.string());
    ledger.noteCheck(kDb, at(10, 0));
    ledger.noteCheck(kDb, at(8, 0));  // the clock was turned back
    EXPECT_EQ(Ledger(clock, path.string()).lastCheck(kDb), at(8, 0));
}

TEST_F(LedgerFile, InAnotherZoneTheLastCheckIsTheEarlierOfTimeAndMoment) {
    Ledger ledger(clock, path.string());
    {
        const test::ZoneForTest berlin("Europe/Berlin");
        ledger.noteCheck(kDb, at(10, 0));
    }
    const test::ZoneForTest west("America/New_York");
    EXPECT_EQ(ledger.lastCheck(kDb), at(4, 0)) << "the same moment";
    const test::ZoneForTest east("Asia/Tokyo");
    EXPECT_EQ(ledger.lastCheck(kDb), at(10, 0)) << "the same time";
}

TEST_F(LedgerFile, AChangeThatChangesNothingWritesNothing) {
    Ledger ledger(clock, path.string());
    put(ledger, "{A}", at(10, 0));
    const auto version = ledger.version();
    put(ledger, "{A}", at(10, 0));
    EXPECT_EQ(lines(), 1U);
    EXPECT_EQ(ledger.version(), version);
}

TEST_F(LedgerFile, KeepsPendingError) {
    ErrorState::set(ErrNo::Syntax);
    test::writeFile(path, "nonsense\n");
    Ledger ledger(clock, path.string());
    put(ledger, "{A}", at(10, 0));
    ledger.ReadAgain();
    ledger.noteCheck(kDb, at(9, 0));
    EXPECT_EQ(ErrorState::number(), ErrNo::Syntax);
    ErrorState::clear();
}

}  // namespace
}  // namespace vl
