// The check over a real database file, with no shortcut between the file's pages and the screen.
#include <gtest/gtest.h>

#include <filesystem>

#include "CheckParts.h"
#include "db/jet/Database.h"
#include "db/jet/Transaction.h"
#include "notify/CheckCycle.h"
#include "notify/UpdateCycle.h"
#include "support/Support.h"

namespace vl {
namespace {

DateTime at(int hour, int minute, int second = 0, int day = 20) {
    return DateTime::fromCivil(2026, 11, day, hour, minute, second);
}

constexpr const char* kStandUp = "{956ABE94-E18E-437E-878F-EF5EC79876F1}";
constexpr const char* kDentist = "{437FED06-B0D4-4C70-8AC9-99114CC7B46A}";

class CheckOnFile : public test::CheckTest {
protected:
    CheckOnFile() : CheckTest(at(13, 45)) {}
    void SetUp() override { takeFresh("Velmora.RemindDB"); }
    void takeFresh(const char* name) {
        db.DBFullName = (folder / name).string();
        std::filesystem::copy_file(test::repoFile("data/first-light.RemindDB"), db.DBFullName);
    }
    void tick() { cycle.Tick(10000); }

    test::TempFolder folder;
};

TEST_F(CheckOnFile, GoesFromTheFileToTheScreenStepByStep) {
    tick();
    EXPECT_EQ(
        screen.calls,
        (std::vector<std::string>{
            "RemoveGUID {AAB5536C-C33C-4286-B8E3-52AED7DF151C} 0",  // marked as deleted
            "RemoveGUID {AAB5536C-C33C-4286-B8E3-52AED7DF151C} 1",
            "RemoveGUID {AAB5536C-C33C-4286-B8E3-52AED7DF151C} 2", "AddItemR Stand-up meeting 0",
            "UpdateItemR Stand-up meeting 1", "AddItemR Dentist: check-up 0",
            "UpdateItemR Dentist: check-up 1", "FirstNewRowCurrent", "PlayReminderSound",
            std::string("ShowNewReminders ") + kStandUp, "DoPeriod", "SetIcon"}));
    const auto line = objectAt<ValueList>(*state.EvCol, kStandUp);
    ASSERT_TRUE(line);
    EXPECT_EQ(line->items[0], Variant("Stand-up meeting"));
    EXPECT_TRUE(line->items[1].toText().starts_with(" 5 minutes (")) << line->items[1].toText();
    EXPECT_EQ(period.mCol->Count(), 10U);
    EXPECT_EQ(state.dLastUpdated, at(13, 45));
    EXPECT_FALSE(db.isOpen);
}

/// Also writes down when it is asked for the focus.
class FocusScreen : public test::RecordingScreen {
public:
    bool GetHasFocus() const override {
        const_cast<FocusScreen*>(this)->note("GetHasFocus");  // NOLINT: of a test's own object
        return hasFocus;
    }
};

TEST_F(CheckOnFile, TheUpdateTickOfAVisibleWindowRemovesWhatTheHostHasDeleted) {
    period.ReadDB(true, false);
    FocusScreen seen;
    seen.interval = 20000;
    CheckCycle checks(reminders, period, db, clock, state, seen, ledger, acts);
    UpdateCycle update(checks, clock, state, seen, false);
    db.Execute(std::string("UPDATE Reminders SET Deleted = True WHERE GUID=\"") + kDentist + "\";");
    update.Tick();
    EXPECT_EQ(seen.count("RemoveGUID"), 0U) << "hidden";
    EXPECT_TRUE(period.mCol->Exists(kDentist));
    seen.forget();
    seen.visible = true;
    state.CurrentDate = at(0, 0, 0, 19);
    update.Tick();
    const std::string gone[] = {std::string("RemoveGUID ") + kDentist,
                                "RemoveGUID {AAB5536C-C33C-4286-B8E3-52AED7DF151C}"};
    std::vector<std::string> order{"ShowTime", "DoPeriod", "GetHasFocus"};
    for (std::size_t first = seen.calls[3].starts_with(gone[0]) ? 0 : 1; order.size() < 9;
         first = 1 - first) {
        for (const char* grid : {" 0", " 1", " 2"}) {
            order.push_back(gone[first] + grid);
        }
    }
    order.insert(order.end(), {"UpdateUI", "SetCheckInterval 10000"});
    EXPECT_EQ(seen.calls, order);
    EXPECT_FALSE(period.mCol->Exists(kDentist));
    EXPECT_EQ(db.GetDeletedCol()->Count(), 0U) << "the rows are purged";
}

TEST_F(CheckOnFile, WhatTheHostMarksAsDeletedLeavesGridsSetsAndTheCurrentEvent) {
    tick();
    state.curEvent = objectAt<calEvent>(*period.mCol, kDentist);
    ASSERT_TRUE(state.curEvent);
    db.Execute(std::string("UPDATE Reminders SET Deleted = True WHERE GUID=\"") + kDentist + "\";");
    screen.forget();
    cycle.DoRemoveDeleted();
    EXPECT_EQ(screen.count(std::string("RemoveGUID ") + kDentist), 3U);
    EXPECT_FALSE(period.mCol->Exists(kDentist));
    EXPECT_FALSE(reminders.mCol->Exists(kDentist));
    EXPECT_FALSE(state.curEvent);
    EXPECT_FALSE(state.NewReminders->Exists(kDentist));
    EXPECT_TRUE(state.NewReminders->Exists(kStandUp));
}

TEST_F(CheckOnFile, PurgesWhatIsMarkedAsDeletedAndSaysFirstWhatExceptionsReplaced) {
    const auto rows = [&](const std::string& condition) {
        const auto found = db.OpenRS("SELECT GUID FROM Reminders WHERE " + condition);
        db.CloseDB();
        return found->RecordCount();
    };
    const std::size_t all = rows("GUID is not Null");
    ASSERT_EQ(rows("Deleted=True"), 1U);
    const auto exception = db.OpenRS("SELECT * FROM Reminders WHERE RecurrenceState=3");
    const SeriesName master{exception->value("recurringEventId").toText(),
                            exception->value("VLBase").toText()};
    db.Execute("UPDATE Reminders SET Deleted = True WHERE RecurrenceState=3;");
    const std::size_t marked = rows("Deleted=True");
    ASSERT_GT(marked, 1U);
    cycle.DoRemoveDeleted();
    EXPECT_EQ(rows("Deleted=True"), 0U);
    EXPECT_EQ(rows("GUID is not Null"), all - marked);
    ASSERT_FALSE(master.id.empty() || master.VLBase.empty());
    EXPECT_TRUE(ledger.replaced(db.DBFullName, {master.id, "another.vldb"}).empty());
    EXPECT_EQ(ledger.replaced(db.DBFullName, master),
              std::vector<Noted>{notedNow(at(10, 0, 0, 23))});
}

TEST_F(CheckOnFile, APurgeThatFailsIsTriedAgainByTheNextCheckOnly) {
    // A table that takes no DELETE from us: somebody else is in the middle of a change.
    auto other = jet::Database::open(db.DBFullName, jet::Access::ReadWrite);
    const auto seen = [&] { return screen.count("RemoveGUID {AAB5536C"); };
    {
        const jet::Transaction change(other);
        cycle.DoRemoveDeleted();
        EXPECT_EQ(seen(), 3U) << "the rows leave the grids all the same";
        cycle.DoRemoveDeleted();
        EXPECT_EQ(seen(), 3U) << "not with every tick";
    }
    tick();
    EXPECT_EQ(seen(), 6U);
    tick();
    EXPECT_EQ(seen(), 6U) << "then it is done";
}

TEST_F(CheckOnFile, HoldsTheFileOpenNoLongerThanALookTakes) {
    tick();
    EXPECT_FALSE(db.isOpen);
    screen.visible = true;
    UpdateCycle(cycle, clock, state, screen, false).Tick();
    EXPECT_FALSE(db.isOpen);
    reminders.EventByGUID(kDentist);
    EXPECT_FALSE(db.isOpen);
}

TEST_F(CheckOnFile, SeesAFileThatTheHostPutInThePlaceOfTheOldOne) {
    tick();
    screen.visible = true;
    UpdateCycle(cycle, clock, state, screen, false).Tick();
    // A compaction: a whole new file, renamed over the old one.
    const std::string old = db.DBFullName;
    takeFresh("compacted.RemindDB");
    db.Execute(
        "UPDATE Reminders SET NextReminder = #2026-11-20 13:46:00#, Modified = "
        "#2026-11-20 13:45:30# WHERE EventID=1012;");
    std::filesystem::rename(db.DBFullName, old);
    db.DBFullName = old;
    clock.time = at(13, 46);
    tick();
    EXPECT_EQ(screen.count("AddItemR Café"), 1U);
}

TEST_F(CheckOnFile, SkipsNothingWhenTheMachineSleepsInsideACheck) {
    class Sleeper : public test::RecordingScreen {
    public:
        explicit Sleeper(test::ManualClock& c) : clock(c) {}
        void DoPeriod() override {
            if (!slept) {
                slept = true;
                clock.time = at(17, 0);
            }
        }
        test::ManualClock& clock;
        bool slept = false;
    };
    Sleeper sleeper(clock);
    CheckCycle asleep(reminders, period, db, clock, state, sleeper, ledger, acts);
    asleep.Tick(10000);
    EXPECT_EQ(sleeper.count("AddItemR Call the insurance"), 0U);
    asleep.Tick(10000);
    EXPECT_EQ(sleeper.count("AddItemR Call the insurance"), 1U) << "due at 16:45";
}

TEST_F(CheckOnFile, GoesOnWithWhatItHasWhileTheFileCannotBeRead) {
    tick();
    std::filesystem::remove(db.DBFullName);
    clock.time = at(16, 44, 55);
    tick();
    EXPECT_EQ(screen.count("AddItemR Call the insurance"), 1U);
}

}  // namespace
}  // namespace vl
