// The columns of the grids, over restarts.
#include <gtest/gtest.h>

#include <QHeaderView>
#include <QMenu>
#include <QTest>

#include "WindowTest.h"
#include "ui/ColumnMenu.h"

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
    EXPECT_EQ(grid(kAllRemindersGrid).columnLayout(),
              firstLayout(kAllRemindersGrid, grid(kAllRemindersGrid).unit()));
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
    EXPECT_EQ(grid(0).SelectedGUIDs(), (std::vector<std::string>{"{2}", "{1}"}));
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

TEST_F(frmDDEColumns, TheMenuOfTheHeadingsShowsAndHides) {
    load();
    Grid& all = grid(kAllRemindersGrid);
    const auto entry = [](QMenu& menu, const char* name) { return menu.findChild<QAction*>(name); };
    {
        QMenu menu;
        fillColumnMenu(menu, all);
        EXPECT_EQ(menu.actions().size(), 10);  // eight columns, a line, "Reset columns"
        EXPECT_FALSE(entry(menu, "mnuColumnSubject")->isEnabled());
        EXPECT_TRUE(entry(menu, "mnuColumnField")->isChecked());
        entry(menu, "mnuColumnField")->trigger();
        EXPECT_TRUE(all.isColumnHidden(column(1, CIDField)));
    }
    QMenu menu;
    fillColumnMenu(menu, all);
    EXPECT_FALSE(entry(menu, "mnuColumnField")->isChecked());
    all.sortByColumn(0, Qt::DescendingOrder);
    entry(menu, "mnuColumnsReset")->trigger();
    EXPECT_EQ(all.columnLayout(), firstLayout(kAllRemindersGrid, all.unit()));
    window.reset();
    EXPECT_EQ(saved("AllReminders"), "(none)") << "a change that was undone";
}

}  // namespace
}  // namespace vl
