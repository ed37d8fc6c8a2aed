// Restarts, crashes, a second copy.
#include <gtest/gtest.h>

#include <filesystem>

#include "Desk.h"

namespace vl {
namespace {

using test::at;
using test::Desk;
using test::series;
using test::single;

class PendingRestart : public testing::Test {
protected:
    Desk desk;
};

TEST_F(PendingRestart, WhatWasListedAndNotActedUponIsListedAgainAfterARestart) {
    desk.put(single("A", at(10, 0, 0, 15), {15}));
    desk.put(series("B", at(8, 0, 0, 15), "FREQ=DAILY;COUNT=1", {15}));
    desk.clock.time = at(7, 0, 0, 15);
    EXPECT_EQ(desk.run(at(9, 45, 0, 15), 60), "B 15 08:00 (15 07:45), A 15 10:00 (15 09:45)");
    desk.start();
    EXPECT_EQ(desk.check(at(9, 0)), "B 15 08:00 (15 07:45), A 15 10:00 (15 09:45)");
    desk.dismiss("A");
    desk.start();
    EXPECT_EQ(desk.check(at(9, 0)), "B 15 08:00 (15 07:45)");
}

TEST_F(PendingRestart, ACrashBetweenLedgerAndRowLosesNothingAndBringsNothingBack) {
    desk.rowsAreWritten = false;
    desk.put(single("A", at(10, 0), {15}));
    desk.put(single("B", at(10, 0), {15}));
    desk.run(at(9, 45));
    desk.dismiss("A");
    desk.snooze("B", 30);
    desk.start();
    EXPECT_EQ(desk.check(at(9, 46)), "");
    const auto row = objectAt<calEvent>(*desk.program->period.mCol, "A");
    EXPECT_EQ(row->Dismissed, at(9, 45)) << "the act stands, and is on its way into the row";
    EXPECT_EQ(desk.program->state.waitingWrites, 2);
    EXPECT_EQ(desk.run(at(10, 15)), "B 20 10:00 (20 10:15)");
}

TEST_F(PendingRestart, ATornLedgerLosesOnlyItsLastLine) {
    desk.put(single("A", at(10, 0), {15}));
    desk.put(single("B", at(10, 0), {15}));
    desk.run(at(9, 45));
    desk.dismiss("A");
    desk.dismiss("B");
    desk.rows.at("B")->Dismissed = DateTime();  // the crash came before the row was written
    desk.stop();
    const std::string all = test::readFile(desk.ledgerPath);
    test::writeFile(desk.ledgerPath, all.substr(0, all.rfind(R"("act":"this")") + 4));
    EXPECT_EQ(desk.check(at(9, 46)), "B 20 10:00 (20 09:45)");
}

TEST_F(PendingRestart, WithoutItsLedgerTheProgramGoesByTheRows) {
    desk.put(single("A", at(10, 0), {15}));
    desk.put(single("B", at(10, 0), {15}));
    desk.put(single("C", at(10, 0), {15}));
    desk.run(at(9, 45));
    desk.dismiss("A");
    desk.snooze("B", 30);
    desk.stop();
    std::filesystem::remove(desk.ledgerPath);
    EXPECT_EQ(desk.check(at(9, 46)), "C 20 10:00 (20 09:45)");
    EXPECT_EQ(desk.run(at(10, 15)), "B 20 10:00 (20 10:15)");
}

TEST_F(PendingRestart, WhatWasDealtWithStaysSoWhileItsRowIsAway) {
    desk.put(single("A", at(10, 0), {15}));
    desk.put(series("B", at(10, 0), "FREQ=DAILY", {15}));
    desk.run(at(9, 45));
    desk.rowsAreWritten = false;  // the ledger alone knows
    desk.dismiss("A");
    desk.snooze("B", 30);
    const auto rows = desk.rows;
    desk.remove("A");
    desk.remove("B");
    for (int i = 0; i < 3; ++i) {
        desk.start();
        EXPECT_EQ(desk.check(at(9, 46 + i)), "");
    }
    for (const auto& [GUID, row] : rows) {
        row->Modified = at(9, 49);  // the host has written them anew
        desk.put(row);
    }
    EXPECT_EQ(desk.check(at(9, 50)), "");
    EXPECT_EQ(desk.run(at(10, 30)), "B 20 10:00 (20 10:15)");
}

TEST_F(PendingRestart, WithoutAPlaceForItTheLedgerLivesInMemory) {
    desk.ledgerPath = (desk.folder / "no" / "folder").string();
    desk.put(single("A", at(10, 0), {30, 15}));
    EXPECT_EQ(desk.run(at(9, 30)), "A 20 10:00 (20 09:30)");
    desk.dismiss("A", DismissMode::All);
    EXPECT_EQ(desk.run(at(11, 0)), "");
}

TEST_F(PendingRestart, WhatASecondCopyDealtWithLeavesThisOnesList) {
    desk.put(single("A", at(10, 0), {15}));
    desk.put(single("B", at(10, 0), {15}));
    desk.run(at(9, 45));
    Desk::Program other(desk.clock, desk.ledgerPath);
    for (const auto& [GUID, row] : desk.rows) {
        other.period.Add(std::make_shared<calEvent>(*row), GUID);
    }
    other.acts.Dismiss(desk.listed.at("A"), DismissMode::This);
    EXPECT_EQ(desk.check(at(9, 46)), "");
    EXPECT_EQ(desk.program->screen.count("RemoveGUID A 0"), 1U);
    EXPECT_FALSE(desk.program->state.NewReminders->Exists("A"));
    EXPECT_TRUE(desk.program->state.NewReminders->Exists("B"));
}

TEST_F(PendingRestart, WhatWasListedIsListedAgainAlsoWhereTheHostHasMovedIt) {
    desk.put(single("A", at(23, 0), {600}));
    desk.clock.time = at(12, 0);
    EXPECT_EQ(desk.run(at(13, 0), 60), "A 20 23:00 (20 13:00)");
    const auto move = [](DateTime start) {
        return [start](calEvent& e) {
            e.StartDateTime = start;
            e.EndDateTime = start.addMinutes(30);
        };
    };
    desk.change("A", move(at(22, 0, 0, 21)));  // its reminder is to come
    EXPECT_EQ(desk.run(at(13, 10)), "");
    desk.change("A", move(at(8, 0, 0, 21)));  // its reminder was yesterday's, when tomorrow comes
    desk.run(at(22, 10), 60);
    desk.clock.time = at(1, 0, 0, 21);
    desk.start();
    EXPECT_EQ(desk.check(), "A 21 08:00 (20 22:00)");
    desk.dismiss("A");
    desk.start();
    EXPECT_EQ(desk.check(), "");
}

TEST_F(PendingRestart, WhatWasMovedIntoThePastHasNoOldReminders) {
    for (const bool restarts : {false, true}) {
        SCOPED_TRACE(restarts);
        Desk fresh;
        fresh.put(single("A", at(10, 0), {15}));
        fresh.run(at(9, 45));
        fresh.check(at(12, 0, 0, 22));
        fresh.change("A", [](calEvent& e) {
            e.StartDateTime = at(16, 0);
            e.EndDateTime = at(16, 30);
        });
        fresh.check(at(12, 0, 10, 22));
        fresh.dismiss("A");
        if (restarts) {
            fresh.start();
        }
        EXPECT_EQ(fresh.check(at(12, 0, 20, 22)), "") << "neither of today, nor does it go on";
    }
}

TEST_F(PendingRestart, ASeriesThatTheHostHasMovedHasNoOldReminders) {
    for (const bool restarts : {false, true}) {
        SCOPED_TRACE(restarts);
        Desk fresh;
        fresh.put(series("A", at(10, 0), "FREQ=DAILY", {15}));
        fresh.run(at(9, 45));
        fresh.check(at(8, 0, 0, 22));
        fresh.change("A", [](calEvent& e) {
            e.StartDateTime = at(16, 0);
            e.EndDateTime = at(16, 30);
        });
        fresh.check(at(8, 0, 10, 22));
        if (restarts) {
            fresh.start();
        } else {
            fresh.dismiss("A");
        }
        EXPECT_EQ(fresh.check(at(8, 0, 20, 22)), "") << "none of them was ever due";
        EXPECT_EQ(fresh.run(at(15, 45, 0, 22), 60), "A 22 16:00 (22 15:45)");
    }
}

TEST_F(PendingRestart, ASeriesThatWasMovedWhileItWasListedIsListedAsWhatItIsNow) {
    desk.put(series("A", at(10, 0), "FREQ=DAILY", {15}));
    desk.run(at(9, 45));
    desk.check(at(23, 0));
    desk.change("A", [](calEvent& e) {
        e.StartDateTime = at(16, 0);
        e.EndDateTime = at(16, 30);
    });
    EXPECT_EQ(desk.check(at(23, 0, 10)), "") << "it stands in the list";
    desk.start();
    EXPECT_EQ(desk.check(at(9, 0, 0, 21)), "A 20 16:00 (20 15:45)") << "of the day of the move";
}

TEST_F(PendingRestart, WhatFellDueWhileAMovedSeriesWasListedComesAlsoByTheNextRun) {
    desk.check(at(9, 0));
    desk.put(series("A", at(10, 0, 0, 16), "FREQ=DAILY", {720}));
    EXPECT_EQ(desk.run(at(9, 10)), "A 20 10:00 (19 22:00)");
    desk.change("A", [](calEvent& e) {  // what is listed is still one of it
        e.StartDateTime = at(10, 0, 0, 18);
        e.EndDateTime = at(10, 30, 0, 18);
    });
    EXPECT_EQ(desk.check(at(9, 20)), "");
    EXPECT_EQ(desk.check(at(9, 0, 0, 21)), "");
    desk.dismiss("A", DismissMode::All);
    desk.start();
    EXPECT_EQ(desk.check(at(9, 1, 0, 21)), "A 21 10:00 (20 22:00)");
}

}  // namespace
}  // namespace vl
