// What the check does with the file itself: when it looks into it, and when it cannot.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "CheckParts.h"
#include "notify/CheckCycle.h"
#include "notify/ReadAgain.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;

class Reading : public test::CheckTest {
protected:
    Reading() : CheckTest(DateTime::fromCivil(2026, 11, 20, 14, 0)) {
        put();
        db.DBFullName = path.string();
    }
    void put() { test::writeFile(path, sample); }
    /// Somebody else's statement: the database as another program leaves it.
    void elsewhere(const std::string& statement) {
        DBRemindUtils other;
        other.DBFullName = path.string();
        ASSERT_GT(other.Execute(statement), 0);
        touch();
    }
    void touch() { fs::last_write_time(path, written += std::chrono::seconds(1)); }
    std::string firstGUID() const { return period.mCol->Key(1); }
    std::string of(const std::string& GUID) const { return " WHERE GUID = \"" + GUID + '"'; }

    test::TempFolder folder;
    fs::path path = folder / "Velmora.RemindDB";
    std::string sample = test::readFile(test::repoFile("data/first-light.RemindDB"));
    fs::file_time_type written = fs::file_time_type::clock::now();
};

TEST_F(Reading, LooksForDeletedRowsOnlyWhenTheFileHasChanged) {
    cycle.Tick(10000);
    const std::string GUID = firstGUID();
    const std::size_t held = period.mCol->Count();
    cycle.DoRemoveDeleted();
    db.CloseDB();
    cycle.DoRemoveDeleted();
    EXPECT_FALSE(db.isOpen) << "an unchanged file is not opened";

    elsewhere("UPDATE Reminders SET Deleted = True" + of(GUID));
    cycle.DoRemoveDeleted();
    EXPECT_EQ(screen.count("RemoveGUID " + GUID), 3U) << "from each grid";
    EXPECT_EQ(period.mCol->Count(), held - 1);
    db.CloseDB();
    screen.forget();
    cycle.DoRemoveDeleted();
    EXPECT_TRUE(screen.calls.empty());
    EXPECT_FALSE(db.isOpen);
}

TEST_F(Reading, LooksAgainAfterAWriteOfOurOwn) {
    cycle.Tick(10000);
    cycle.DoRemoveDeleted();
    const std::string GUID = firstGUID();
    const auto before = fs::last_write_time(path);
    db.Execute("UPDATE Reminders SET Deleted = True" + of(GUID));
    fs::last_write_time(path, before);
    cycle.DoRemoveDeleted();
    EXPECT_EQ(screen.count("RemoveGUID " + GUID), 3U);
}

TEST_F(Reading, LooksAgainUntilALookSucceeds) {
    test::writeFile(path, "not yet a database");
    written = fs::last_write_time(path);
    cycle.DoRemoveDeleted();
    EXPECT_EQ(db.LastError(), ErrNo::Format);
    db.OpenRS("no SQL");
    cycle.DoRemoveDeleted();
    EXPECT_EQ(db.LastError(), ErrNo::Format) << "a failed look is none";
}

TEST_F(Reading, KeepsBothSetsWhileTheFileCannotBeRead) {
    cycle.Tick(10000);
    const auto listed = reminders.mCol;
    const std::size_t held = period.mCol->Count();
    ASSERT_GT(held, 0U);
    for (const char* bytes : {"", "no database"}) {
        SCOPED_TRACE(bytes);
        test::writeFile(path, bytes);
        screen.forget();
        clock.time = clock.time.addSeconds(10);
        cycle.Tick(10000);
        EXPECT_EQ(period.mCol->Count(), held);
        EXPECT_EQ(reminders.mCol, listed);
        EXPECT_EQ(screen.count("RemoveGUID"), 0U);
        EXPECT_NE(db.ReadTrouble().number, ErrNo::None);
    }
    put();
    cycle.Tick(10000);
    EXPECT_EQ(db.ReadTrouble().number, ErrNo::None);
    EXPECT_EQ(period.mCol->Count(), held);
}

TEST_F(Reading, AFailedReadDoesNotCount) {
    fs::remove(path);
    EXPECT_FALSE(readAgain(reminders, false, false));
    EXPECT_EQ(reminders.mCol, nullptr);
    EXPECT_TRUE(reminders.dLastRead.isZero());
    put();
    clock.time = clock.time.addMinutes(5);
    EXPECT_TRUE(readAgain(reminders, false, false)) << "so this one reads all";
    EXPECT_GT(reminders.mCol->Count(), 0U);
    EXPECT_EQ(reminders.dLastRead, clock.time);
    const DateTime last = clock.time;
    fs::remove(path);
    clock.time = clock.time.addMinutes(5);
    EXPECT_FALSE(readAgain(reminders, false, false));
    EXPECT_EQ(reminders.dLastRead, last);
}

TEST_F(Reading, AStartWithoutADatabaseFindsItLater) {
    fs::remove(path);
    cycle.Tick(10000);
    put();
    clock.time = clock.time.addSeconds(10);
    cycle.Tick(10000);
    ASSERT_NE(reminders.mCol, nullptr);
    EXPECT_GT(reminders.mCol->Count(), 0U);
    EXPECT_EQ(reminders.mCol->Count(), period.mCol->Count());
}

TEST_F(Reading, ADamagedValueCostsItsRowThatValueAlone) {
    constexpr std::size_t kLongValue = 36 * 4096;  // a page with the JSON of one event
    std::string bytes = sample;
    bytes[kLongValue] = 9;
    test::writeFile(path, bytes);
    cycle.ReadAtStart();
    cycle.Tick(10000);
    const std::string damaged = [&]() -> std::string {
        for (const Variant& item : *period.mCol) {
            if (const auto event = objectIn<calEvent>(item); event->JSON.empty()) {
                return event->GUID;
            }
        }
        return {};
    }();
    ASSERT_NE(damaged, "");
    EXPECT_EQ(state.damagedRows, 1);
    EXPECT_EQ(period.mCol->Count(), reminders.mCol->Count());
    EXPECT_EQ(ledger.lastCheck(db.DBFullName), clock.now()) << "the file counts as read";

    // What an act writes into the row leaves the damaged value to who can mend it.
    const auto event = objectAt<calEvent>(*period.mCol, damaged);
    acts.Dismiss({event, event->StartDateTime, {}}, DismissMode::All, true);
    EXPECT_EQ(state.waitingWrites, 0);
    bytes = test::readFile(path);
    EXPECT_EQ(bytes[kLongValue], 9);
    bytes[kLongValue] = 1;
    test::writeFile(path, bytes);
    const auto mended = period.EventByGUID(damaged);
    ASSERT_NE(mended, nullptr);
    EXPECT_EQ(mended->Dismissed, clock.now());
    EXPECT_EQ(mended->status, "") << "what it seems to be it may not be";
    EXPECT_NE(mended->JSON, "");
}

TEST_F(Reading, CountsTheRowsThatHaveNoStatus) {
    cycle.Tick(10000);
    EXPECT_EQ(state.rowsWithoutStatus, 0);
    test::writeFile(path,
                    test::readFile(test::repoFile("tests/data/generated-reminders.RemindDB")));
    cycle.Tick(10000);
    DBRemindUtils all;
    all.DBFullName = path.string();
    const auto rows = all.OpenRS("SELECT status FROM Reminders WHERE Deleted=0");
    int without = 0;
    for (; !rows->EOF_(); rows->MoveNext()) {
        without += rows->value("status").isNull() ? 1 : 0;
    }
    ASSERT_GT(without, 0);
    EXPECT_EQ(state.rowsWithoutStatus, without);
    put();
    cycle.Tick(10000);
    EXPECT_EQ(state.rowsWithoutStatus, 0);
}

}  // namespace
}  // namespace vl
