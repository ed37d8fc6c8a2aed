// The lists' rows: periods, new reminders, what an empty list and the status line say.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QTest>
#include <QTextDocument>

#include "WindowTest.h"
#include "notify/Periods.h"
#include "ui/UpDown.h"

namespace vl {
namespace {

using test::event;
using test::someFriday;

using frmDDERows = test::WindowTest;

TEST_F(frmDDERows, FillsBothPeriodGrids) {
    load();
    add(event("{1}", "Meeting", someFriday().addMinutes(60), 15));
    add(event("{2}", "Next week", someFriday().addDays(7), 15));
    add(event("{3}", "Reminded today", someFriday().addDays(1), 24 * 60));
    window->DoPeriod();
    EXPECT_EQ(tab(0), "&New Reminders");
    EXPECT_EQ(tab(1), "&All Reminders: 2");
    EXPECT_EQ(tab(2), "&Events: 1");
    EXPECT_EQ(state.dShownStart, someFriday().date());
    EXPECT_TRUE(listed(1).contains("{3}"));
    EXPECT_TRUE(listed(2).contains("{1}"));
    const GridRow& row = listed(1).rows().rows().at(0);
    EXPECT_EQ(row.summary, "Meeting");
    EXPECT_EQ(row.detail, "(15 minutes)");
    EXPECT_EQ(row.reminder, someFriday().addMinutes(45));
    EXPECT_EQ(listed(2).rows().rows().at(0).detail, "(1 hour)");
}

TEST_F(frmDDERows, RowsKeepWhatTheyShowWhenQueriesChangeTheEvent) {
    load();
    const auto e = event("{1}", "Meeting", someFriday().addMinutes(60), 15);
    add(e);
    window->DoPeriod();
    ASSERT_EQ(listed(1).rowCount(), 1U);
    e->InstanceStart = DateTime();
    e->iRemMinutes = calEvent::kNoReminder;
    EXPECT_EQ(listed(1).rows().rows().at(0).reminder, someFriday().addMinutes(45));
}

TEST_F(frmDDERows, TheDismissedViewListsOnlyDismissedEvents) {
    load();
    add(event("{1}", "Kept", someFriday().addMinutes(60), 15));
    const auto gone = event("{2}", "Gone", someFriday().addMinutes(90), 15);
    gone->Dismissed = someFriday().addMinutes(-5);
    add(gone);
    list().setCurrentText("Dismissed");
    EXPECT_EQ(state.sPeriod, "Di");
    EXPECT_EQ(listed(1).rowCount(), 1U);
    EXPECT_TRUE(listed(1).contains("{2}"));
    const int column = columnIndex(reminderColumns(), CIDEventD);
    EXPECT_EQ(grid(1).model()->headerData(column, Qt::Horizontal).toString(), "Dismissed");
}

TEST_F(frmDDERows, HiddenEventsAreInTheirOwnViewOnly) {
    load();
    const auto hidden = event("{1}", "Hidden", someFriday().addDays(-20), 15);
    hidden->Hidden = true;
    add(hidden);
    list().setCurrentText("Previous 30 days");
    EXPECT_EQ(listed(2).rowCount(), 0U);
    list().setCurrentText("Hidden");
    ASSERT_EQ(listed(1).rowCount(), 1U);
    EXPECT_EQ(listed(1).rows().rows().at(0).detail, "(15 minutes)");
    ASSERT_EQ(listed(2).rowCount(), 1U);
    EXPECT_EQ(listed(2).rows().rows().at(0).span.start, hidden->StartDateTime);
}

TEST_F(frmDDERows, SteppingWrapsAround) {
    load();
    UpDown& arrows = child<UpDown>("UpDown1");
    list().setCurrentIndex(16);
    arrows.stepBy(1);
    EXPECT_EQ(state.sPeriod, "D-30");
    arrows.stepBy(-1);
    EXPECT_EQ(state.sPeriod, "H");
    arrows.stepBy(-1);
    EXPECT_EQ(state.sPeriod, "Di");
}

TEST_F(frmDDERows, AnEventWithoutASubjectIsSeenAndFound) {
    load();
    add(event("{1}", " ", someFriday().addMinutes(60), 15));
    window->DoPeriod();
    for (const int i : {1, 2}) {
        EXPECT_EQ(listed(i).rows().rows().at(0).summary, "(no subject)");
    }
    EXPECT_EQ(listed(1).rows().rows().at(0).event->Summary(), " ") << "on the screen alone";
}

// However small its user makes the window.
TEST_F(frmDDERows, TwoOfThemAreSeenAtLeast) {
    load();
    haveDatabase();
    for (int i = 1; i < 5; ++i) {
        takeIn(event("{" + std::to_string(i) + "}", "Event", someFriday(), i));
    }
    window->ShowHide();
    window->resize(1, 1);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    const QRect view = grid(0).viewport()->rect();
    const QRect row = grid(0).visualRect(grid(0).model()->index(0, 0));
    ASSERT_GT(row.height(), 10);
    EXPECT_GE(view.height(), 2 * row.height());
    EXPECT_LT(window->height(), 360) << "and it goes on being small";
    for (int i = 1; i < 5; ++i) {
        window->RemoveGUID("{" + std::to_string(i) + "}", 0);
    }
    const QImage empty = grid(0).viewport()->grab().toImage();
    int painted = 0;
    for (int x = 0; x < empty.width(); ++x) {
        for (int y = 0; y < empty.height(); ++y) {
            painted += empty.pixel(x, y) != empty.pixel(0, 0) ? 1 : 0;
        }
    }
    EXPECT_GT(painted, 50) << "why it is empty can be read";
}

TEST_F(frmDDERows, AnEmptyGridSaysWhy) {
    load();
    EXPECT_EQ(grid(1).emptyText(), "No folder of a reminders database was named at the start");
    haveDatabase();
    window->DoPeriod();
    EXPECT_EQ(grid(0).emptyText(), "No new reminders");
    EXPECT_EQ(grid(2).emptyText(), "No events in the period \"Today\"");
    add(event("{1}", "Meeting", someFriday().addMinutes(60), 15));
    window->DoPeriod();
    child<QLineEdit>("txtSearch").setText("nowhere");
    EXPECT_EQ(grid(2).emptyText(), "Nothing matches the search");
    EXPECT_EQ(tab(2), "&Events: 1");
}

// The line is cut where it does not fit; its tip is not.
TEST_F(frmDDERows, TheTipOfTheStatusLineIsAllOfItToTheLetter) {
    load();
    haveDatabase();
    takeIn(event("{1}", "<b>Tom</b> & Ann", someFriday(), 15));
    window->ShowHide();
    window->FirstNewRowCurrent();
    const QLabel& status = child<QLabel>("lblStatus");
    EXPECT_TRUE(status.text().startsWith("<b>Tom</b> & Ann, ")) << plainText(status.text());
    QTextDocument shown;
    shown.setHtml(status.toolTip());
    EXPECT_EQ(shown.toPlainText(), status.text());
}

TEST_F(frmDDERows, TheStatusLineFollowsTheCurrentRow) {
    load();
    haveDatabase();
    child<QTabWidget>("tabs").setCurrentIndex(kEventsGrid);
    const auto e = event("{1}", "Meeting", someFriday().addMinutes(60), 15);
    e->Location = "Room 2";
    add(e);
    window->DoPeriod();
    EXPECT_EQ(state.curEvent, nullptr);
    window->fillPeriod();
    EXPECT_TRUE(window->SelectGUID("{1}"));
    EXPECT_EQ(state.curEvent, e);
    EXPECT_EQ(state.curReminder, (RowOccurrence{e->StartDateTime, DateTime()}));
    const QString status = child<QLabel>("lblStatus").text();
    EXPECT_TRUE(status.startsWith("Meeting, Today ")) << plainText(status);
    EXPECT_TRUE(status.contains("Room 2")) << plainText(status);
    window->RemoveGUID("{1}", kEventsGrid);
    EXPECT_EQ(state.curEvent, nullptr);
    EXPECT_EQ(state.curReminder, RowOccurrence());
    EXPECT_EQ(child<QLabel>("lblStatus").text(), "");
}

TEST_F(frmDDERows, ANewReminderIsListedAndShown) {
    load();
    takeIn(event("{1}", "Early", someFriday().addMinutes(-30), 0));
    takeIn(event("{2}", "Late", someFriday().addMinutes(15), 15));
    EXPECT_EQ(tab(0), "&New Reminders: 2");
    child<QTabWidget>("tabs").setCurrentIndex(kEventsGrid);
    child<QLineEdit>("txtSearch").setText("Early");
    window->ShowNewReminders("{2}");
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(child<QTabWidget>("tabs").currentIndex(), 0);
    ASSERT_NE(listed(0).currentRow(), nullptr);  // although the search had hidden it
    EXPECT_EQ(listed(0).currentRow()->GUID, "{2}");
    EXPECT_EQ(window->GetIconText(), "2 New reminders\r\n2 new reminders");
    window->RemoveGUID("{1}", 0);
    window->RemoveGUID("{2}", 0);
    EXPECT_EQ(tab(0), "&New Reminders");
}

TEST_F(frmDDERows, UpdatesOnlyRowsThatAreThere) {
    load();
    const auto e = event("{1}", "Meeting", someFriday().addMinutes(60), 15);
    window->UpdateItemR(e, kAllRemindersGrid);
    EXPECT_EQ(listed(1).rowCount(), 0U);
    window->AddItemR(e, kAllRemindersGrid);
    e->Subject = "Moved";
    window->UpdateItemR(e, kAllRemindersGrid);
    ASSERT_EQ(listed(1).rowCount(), 1U);
    EXPECT_EQ(listed(1).rows().rows().at(0).summary, "Moved");
}

}  // namespace
}  // namespace vl
