// The columns of the grids, over restarts.
#include <gtest/gtest.h>

#include <QHeaderView>
#include <QScrollBar>
#include <QTest>

#include "WindowTest.h"

namespace vl {
namespace {

class frmDDEColumns : public test::WindowTest {
protected:
    int column(int i, const char* id) const { return columnIndex(gridColumns(i), id); }
    std::string saved(const std::string& key) const {
        return settings.GetIni(kColumnsSection, key, "(none)");
    }
    void waitSaved(const std::string& key) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return saved(key) != "(none)"; }, 5000)) << key;
    }
};

TEST_F(frmDDEColumns, NothingIsWrittenBeforeAColumnChanges) {
    load();
    window->ShowHide();
    window->SaveSettings();
    window->HideMe();
    window.reset();
    EXPECT_EQ(settings.GetIniSection(kColumnsSection), "");
}

TEST_F(frmDDEColumns, AreAsTheyWereLeft) {
    load();
    Grid& events = grid(kEventsGrid);
    events.setColumnWidth(column(2, CIDSubject), 321);
    events.header()->moveSection(events.header()->visualIndex(column(2, CIDEnds)), 0);
    events.showColumn(column(2, CIDField), false);
    events.sortByColumn(column(2, CIDLocation), Qt::DescendingOrder);
    const ColumnLayout left = events.columnLayout();
    waitSaved("Events");
    EXPECT_EQ(saved("EventsSort"), "-Location");
    EXPECT_EQ(saved("NewReminders"), "(none)");

    load();
    EXPECT_EQ(grid(kEventsGrid).columnLayout(), left);
    EXPECT_TRUE(grid(kEventsGrid).isColumnHidden(column(2, CIDField)));
    EXPECT_EQ(grid(kEventsGrid).columnWidth(column(2, CIDSubject)), 321);
    EXPECT_EQ(grid(kEventsGrid).header()->logicalIndex(0), column(2, CIDEnds));
    EXPECT_FALSE(grid(kAllRemindersGrid).columnLayout().sized);
}

// The window's first size, and one that the user has made larger or smaller.
TEST_F(frmDDEColumns, FitIntoTheWindowUntilTheUserSizesOne) {
    load();
    window->ShowHide();
    for (const int tab : {0, 1, 2}) {
        SCOPED_TRACE(tab);
        child<QTabWidget>("tabs").setCurrentIndex(tab);
        Grid& shown = grid(tab);
        for (const int width : {920, 760, 1200}) {
            SCOPED_TRACE(width);
            window->resize(width, 440);
            EXPECT_TRUE(QTest::qWaitFor([&] { return window->width() == width; }));
            EXPECT_EQ(shown.header()->length(), shown.viewport()->width());
            EXPECT_EQ(shown.horizontalScrollBar()->maximum(), 0);
        }
        shown.showColumn(column(tab, CIDSource), false);
        EXPECT_EQ(shown.header()->length(), shown.viewport()->width());
        shown.header()->resizeSection(column(tab, CIDDue), 77);
        const int length = shown.header()->length();
        window->resize(920, 440);
        EXPECT_TRUE(QTest::qWaitFor([&] { return window->width() == 920; }));
        EXPECT_EQ(shown.header()->length(), length);
        EXPECT_EQ(shown.columnWidth(column(tab, CIDDue)), 77);
    }
}

TEST_F(frmDDEColumns, ManyRowsLeaveRoomForTheirScrollBar) {
    load();
    window->ShowHide();
    for (int i = 0; i < 40; ++i) {
        takeIn(test::event("{" + std::to_string(i) + "}", "One of many", test::someFriday(), 15));
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return grid(0).verticalScrollBar()->maximum() > 0; }));
    EXPECT_EQ(grid(0).horizontalScrollBar()->maximum(), 0);
    EXPECT_EQ(grid(0).header()->length(), grid(0).viewport()->width());
}

// Moved, hidden, sorted: that says nothing about widths.
TEST_F(frmDDEColumns, OnesThatWereOnlyMovedStillFitAfterARestart) {
    load();
    grid(0).header()->moveSection(0, 2);
    grid(0).showColumn(column(0, CIDField), false);
    waitSaved("NewReminders");
    EXPECT_EQ(saved("NewReminders"),
              "Due,ReminderD,Subject,EventD,Repeats,Location,Field::hidden,Source");
    load();
    window->ShowHide();
    EXPECT_EQ(grid(0).header()->visualIndex(0), 2);
    EXPECT_EQ(grid(0).header()->length(), grid(0).viewport()->width());
}

TEST_F(frmDDEColumns, ShowTheirTextsInFullInTheFirstWindow) {
    load();
    window->ShowHide();
    const auto late = test::event("{1}", "Planning", DateTime::fromCivil(2026, 11, 30, 20, 38), 0);
    takeIn(late);
    const GridModel& model = listed(0).rows();
    const QFontMetrics metrics = grid(0).fontMetrics();
    for (const char* id : {CIDDue, CIDReminderD, CIDEventD}) {
        const int at = column(0, id);
        const QString longest =
            id == std::string(CIDDue) ? "2 h 48 min overdue" : "Mon 30 Nov 20:38";
        EXPECT_LE(metrics.horizontalAdvance(longest) + 8, grid(0).columnWidth(at)) << id;
        EXPECT_LE(metrics.horizontalAdvance(model.index(0, at).data().toString()) + 8,
                  grid(0).columnWidth(at))
            << id;
    }
}

// Whatever the dates leave is the subject's, which is cut at 50 characters.
TEST_F(frmDDEColumns, TheSubjectHasRoomInTheFirstWindow) {
    load();
    window->ShowHide();
    takeIn(test::event("{1}", "Collect the parcel before the shop closes", clock.now(), 0));
    EXPECT_TRUE(QTest::qWaitFor([&] { return grid(0).columnWidth(0) >= 30 * grid(0).unit(); }))
        << grid(0).columnWidth(0) << " of " << grid(0).unit();
    EXPECT_EQ(grid(0).horizontalScrollBar()->maximum(), 0);
}

TEST_F(frmDDEColumns, AFieldIsReadWholeWhenItsNameIsKnown) {
    load();
    window->ShowHide();
    const auto one = test::event("{1}", "Tea", clock.now(), 0);
    takeIn(one);
    const QString name = "Appointments of the family";
    one->FieldName = plainText(name);
    window->AddItemR(one, kNewRemindersGrid);
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return grid(0).columnWidth(column(0, CIDField)) >
               std::min(grid(0).fontMetrics().horizontalAdvance(name), 22 * grid(0).unit());
    }));
    EXPECT_EQ(grid(0).horizontalScrollBar()->maximum(), 0);
    grid(0).setColumnWidth(column(0, CIDField), 60);
    one->FieldName = "Appointments of the whole family";
    window->AddItemR(one, kNewRemindersGrid);
    QTest::qWait(1);
    EXPECT_EQ(grid(0).columnWidth(column(0, CIDField)), 60) << "the user's width";
}

TEST_F(frmDDEColumns, WhatIsStillWaitingIsWrittenAtTheEnd) {
    load();
    grid(0).setColumnWidth(0, 222);
    EXPECT_EQ(saved("NewReminders"), "(none)");
    window.reset();
    EXPECT_TRUE(saved("NewReminders").starts_with("Subject:222,")) << saved("NewReminders");
}

TEST_F(frmDDEColumns, AHiddenColumnKeepsItsWidthAndPlace) {
    load();
    const int due = column(0, CIDDue);
    grid(0).setColumnWidth(due, 99);
    grid(0).showColumn(due, false);
    window.reset();
    load();
    grid(0).showColumn(due, true);
    EXPECT_EQ(grid(0).columnWidth(due), 99);
    EXPECT_EQ(grid(0).header()->visualIndex(due), 1);
}

TEST_F(frmDDEColumns, ARowIsFoundAndSortedWhateverIsHidden) {
    load();
    grid(0).showColumn(column(0, CIDReminderD), false);
    takeIn(test::event("{1}", "Late", test::someFriday().addMinutes(30), 15));
    takeIn(test::event("{2}", "Early", test::someFriday(), 15));
    grid(0).selectAll();
    EXPECT_EQ(listed(0).SelectedGUIDs(), (std::vector<std::string>{"{2}", "{1}"}));
}

TEST_F(frmDDEColumns, AnyTextInTheSettingsIsStarted) {
    for (const char* garbage : {"x", ",,:", "Subject:0,Due:-1:hidden", "Ends:80:hidden,Ends:90"}) {
        SCOPED_TRACE(garbage);
        for (const char* key : {"NewReminders", "AllReminders", "Events", "NewRemindersSort"}) {
            settings.SaveIni(kColumnsSection, key, garbage);
        }
        load();
        for (int i = 0; i < kGridCount; ++i) {
            EXPECT_FALSE(grid(i).isColumnHidden(0));
            EXPECT_GE(grid(i).columnWidth(0), 20);
            EXPECT_GE(grid(i).header()->sortIndicatorSection(), 0);
        }
    }
}

}  // namespace
}  // namespace vl
