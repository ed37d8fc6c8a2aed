// Snoozing: from the button to the rows and back.
#include <gtest/gtest.h>

#include <QPushButton>

#include "ActsTest.h"

namespace vl {
namespace {

using test::childOf;
using test::someFriday;

using frmDDESnooze = test::ActsTest;

TEST_F(frmDDESnooze, SnoozingTakesTheRowFromNewAndShowsItsNewTime) {
    loadThree();
    snoozeBy(" 2h");
    EXPECT_EQ(caption, "Snooze reminder for:  Event 1...");
    EXPECT_EQ(held("{1}")->NextReminder, someFriday().addMinutes(120)) << "from now";
    EXPECT_EQ(listed(0), (Names{"{2}", "{3}"}));
    EXPECT_FALSE(state.NewReminders->Exists("{1}"));
    EXPECT_FALSE(state.LastEventsReminded->Exists("{1}"));
    ASSERT_TRUE(WindowTest::listed(1).contains("{1}"));
    const auto& rows = WindowTest::listed(1).rows().rows();
    const GridRow& row = rows[static_cast<std::size_t>(*WindowTest::listed(1).rows().find("{1}"))];
    EXPECT_EQ(row.reminder, someFriday().addMinutes(120));
    EXPECT_EQ(row.detail, "(snoozed)");
    EXPECT_EQ(row.span.start, someFriday().addMinutes(10));
    EXPECT_TRUE(window->isVisible());
}

TEST_F(frmDDESnooze, NamesAnEventWithoutASubject) {
    loadThree();
    held("{1}")->Subject = "";
    snoozeBy("2h", "butCancel");
    EXPECT_EQ(caption, "Snooze reminder for:  (no subject)...");
}

TEST_F(frmDDESnooze, AfterSnoozingTheNeighbourIsSelected) {
    loadThree();
    window->SelectGUID("{2}");
    snoozeBy("5m");
    EXPECT_EQ(WindowTest::listed(0).SelectedGUIDs(), Names{"{3}"});
    snoozeBy("5m");  // the last row: the one before it
    EXPECT_EQ(WindowTest::listed(0).SelectedGUIDs(), Names{"{1}"});
}

TEST_F(frmDDESnooze, WhatIsNoTimeOrWasCancelledChangesNothing) {
    loadThree();
    for (const auto& [typed, button] : {std::pair{"2h", "butCancel"},
                                        {"0m", "butSnooze"},
                                        {"-1h", "butSnooze"},
                                        {"soon", "butSnooze"},
                                        {"", "butSnooze"},
                                        {"99999999w", "butSnooze"}}) {
        SCOPED_TRACE(typed);
        snoozeBy(typed, button);
        EXPECT_TRUE(held("{1}")->NextReminder.isZero());
        EXPECT_EQ(listed(0).size(), 3U);
        EXPECT_TRUE(boxes.shown.empty());
    }
}

TEST_F(frmDDESnooze, AnEmailMarkChangesNothingWhenSnoozing) {
    loadThree();
    snoozeBy("3d (e)");
    EXPECT_EQ(held("{1}")->NextReminder, someFriday().addDays(3));
}

TEST_F(frmDDESnooze, SnoozingTheOnlyNewReminderHidesTheWindow) {
    loadThree();
    window->RemoveGUID("{2}", 0);
    window->RemoveGUID("{3}", 0);
    snoozeBy("1h");
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(ini("Reminders", "Period"), "T") << "hiding saves";
}

// While the dialog is open checks go on: the act is on what the row said when it was opened.
TEST_F(frmDDESnooze, ARefillBehindTheDialogChangesNothingOfTheAct) {
    loadThree();
    test::whileOpen<frmSnooze>([this] { snooze().click(); },
                               [&](frmSnooze& d) {
                                   held("{1}")->InstanceStart = DateTime();
                                   window->RemoveGUID("{1}", 0);
                                   window->DoPeriod();
                                   childOf<QPushButton>(d, "butSnooze").click();
                               });
    EXPECT_EQ(held("{1}")->NextReminder, someFriday().addMinutes(15));
    EXPECT_EQ(listed(0), (Names{"{2}", "{3}"}));
}

}  // namespace
}  // namespace vl
