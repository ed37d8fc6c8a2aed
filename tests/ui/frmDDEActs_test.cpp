// Reactivating and hiding: from the buttons to the rows and back.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QPushButton>
#include <QTest>

#include "ActsTest.h"
#include "ui/SplitButton.h"

namespace vl {
namespace {

using test::someFriday;

using frmDDEActs = test::ActsTest;

TEST_F(frmDDEActs, TheButtonReactivatesWhatIsShownAsDismissed) {
    loadThree();
    tabTo(1);
    select(1, {"{1}", "{2}"});
    EXPECT_TRUE(state.bIsDismiss);
    EXPECT_EQ(dismiss().text(), "&Dismiss...");
    EXPECT_EQ(dismiss().toolTip(), "Click to dismiss reminders for this event");
    clickDismiss();
    select(1, {"{1}"});
    EXPECT_FALSE(state.bIsDismiss);
    EXPECT_EQ(dismiss().text(), "&Reactivate");
    EXPECT_EQ(dismiss().toolTip(),
              "Click to cancel dismiss action. Reminders will be re-enabled for this event");
    EXPECT_EQ(dismiss().menu(), nullptr);
    QTest::keyClick(&grid(1), Qt::Key_Delete);
    EXPECT_FALSE(held("{1}")->Dismissed.isZero()) << "Delete dismisses, it never reactivates";
    select(1, {"{1}", "{3}"});
    EXPECT_TRUE(state.bIsDismiss) << "one of them is not dismissed";
    select(1, {"{1}", "{2}"});
    clickDismiss();
    EXPECT_TRUE(held("{1}")->Dismissed.isZero());
    EXPECT_TRUE(held("{2}")->NextReminder.isZero());
    EXPECT_EQ(WindowTest::listed(1).rowCount(), 3U);
    EXPECT_TRUE(state.bIsDismiss);
}

TEST_F(frmDDEActs, WhatIsNewIsNotShownAsDismissedBefore) {
    loadThree();
    const auto again = held("{1}");
    again->Dismissed = someFriday().addDays(-7);
    window->UpdateItemR(again, 0);
    window->DoPeriod();
    const auto shownAsDismissed = [this](int tab) {
        const int row = *WindowTest::listed(tab).rows().find("{1}");
        return WindowTest::listed(tab).rows().index(row, 0).data(GridModel::DismissedRole).toBool();
    };
    EXPECT_FALSE(shownAsDismissed(0));
    EXPECT_TRUE(shownAsDismissed(1));
}

TEST_F(frmDDEActs, AKeyIsAboutTheTabThatWasInFront) {
    loadThree();
    clickDismiss();
    tabTo(1);
    select(1, {"{1}"});
    ASSERT_FALSE(state.bIsDismiss);
    QTest::keyClick(window.get(), Qt::Key_R, Qt::AltModifier);
    tabTo(0);
    QTest::qWait(150);
    EXPECT_TRUE(held("{1}")->Dismissed.isZero());
    EXPECT_EQ(listed(0), (Names{"{2}", "{3}"})) << "nothing here was dismissed";
}

TEST_F(frmDDEActs, WhatIsReactivatedLeavesTheDismissedView) {
    loadThree();
    clickDismiss();
    child<QComboBox>("cboPeriod").setCurrentText("Dismissed");
    tabTo(2);
    EXPECT_EQ(listed(2), Names{"{1}"});
    select(2, {"{1}"});
    EXPECT_FALSE(state.bIsDismiss);
    clickDismiss();
    EXPECT_TRUE(listed(1).empty());
    EXPECT_TRUE(listed(2).empty());
    EXPECT_TRUE(held("{1}")->Dismissed.isZero());
}

TEST_F(frmDDEActs, OnTheOtherTabsTheButtonHides) {
    loadThree();
    EXPECT_EQ(snooze().text(), "&Snooze...");
    tabTo(2);
    EXPECT_EQ(snooze().text(), "&Hide");
    select(2, {"{1}", "{3}"});
    snooze().click();
    EXPECT_TRUE(held("{1}")->Hidden);
    EXPECT_FALSE(held("{2}")->Hidden);
    EXPECT_EQ(listed(1), Names{"{2}"});
    EXPECT_EQ(listed(2), Names{"{2}"});
    EXPECT_EQ(listed(0).size(), 3U) << "its reminders still come";

    child<QComboBox>("cboPeriod").setCurrentText("Hidden");
    EXPECT_EQ(snooze().text(), "Un&hide");
    EXPECT_EQ(listed(2), (Names{"{1}", "{3}"}));
    select(2, {"{1}"});
    snooze().click();
    EXPECT_FALSE(held("{1}")->Hidden);
    EXPECT_EQ(listed(2), Names{"{3}"});
    child<QComboBox>("cboPeriod").setCurrentText("Today");
    EXPECT_EQ(listed(2), (Names{"{1}", "{2}"}));
}

TEST_F(frmDDEActs, TheTraysTipCountsWhatIsLeft) {
    loadThree();
    const auto tip = [] {
        return plainText(trayMenu()->findChild<QAction*>("mnuShowHide")->text());
    };
    tabTo(2);
    EXPECT_EQ(tip(), "3 Events: 3 new reminders");
    select(2, {"{1}", "{3}"});
    snooze().click();
    EXPECT_EQ(tip(), "1 Event: 3 new reminders") << "after hiding";
    child<QComboBox>("cboPeriod").setCurrentText("Hidden");
    EXPECT_EQ(tip(), "2 Events: 3 new reminders");
    select(2, {"{3}"});
    snooze().click();
    EXPECT_EQ(tip(), "1 Event: 3 new reminders") << "after it is listed again";
    child<QComboBox>("cboPeriod").setCurrentText("Today");
    select(2, {"{2}", "{3}"});
    clickDismiss();
    EXPECT_EQ(tip(), "2 Events: 1 new reminder");
    child<QComboBox>("cboPeriod").setCurrentText("Dismissed");
    select(2, {"{2}"});
    clickDismiss();
    EXPECT_EQ(tip(), "1 Event: 1 new reminder") << "after reactivating";
    window->HideMe();
    EXPECT_EQ(tip(), "1 Event: 1 new reminder: (click to show/hide)");
}

TEST_F(frmDDEActs, KeepThePendingError) {
    loadThree();
    ErrorState::set(ErrNo::Locked);
    clickDismiss();
    tabTo(2);
    select(2, {"{2}"});
    snooze().click();
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

}  // namespace
}  // namespace vl
