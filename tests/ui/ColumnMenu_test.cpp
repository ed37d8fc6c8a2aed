#include "ui/ColumnMenu.h"

#include <gtest/gtest.h>

#include <QHeaderView>
#include <QMenu>

#include "WindowTest.h"

namespace vl {
namespace {

class ColumnMenuTest : public test::WindowTest {
protected:
    int column(int i, const char* id) const { return columnIndex(gridColumns(i), id); }
    /// Opens the menu and chooses the entry of that name; false where there is none.
    static bool choose(Grid& from, const char* name) {
        QMenu menu;
        fillColumnMenu(menu, from);
        auto* entry = menu.findChild<QAction*>(name);
        if (entry != nullptr) {
            entry->trigger();
        }
        return entry != nullptr;
    }
};

TEST_F(ColumnMenuTest, TheMenuOfTheHeadingsShowsAndHides) {
    load();
    Grid& all = grid(kAllRemindersGrid);
    const auto entry = [](QMenu& menu, const char* name) { return menu.findChild<QAction*>(name); };
    {
        QMenu menu;
        fillColumnMenu(menu, all);
        // eight columns, a line, sorting, two ways to move and to size, a line, "Reset columns"
        EXPECT_EQ(menu.actions().size(), 16);
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
    EXPECT_EQ(columnsText(all.columnLayout()),
              columnsText(firstLayout(kAllRemindersGrid, all.unit())));
    window.reset();
    EXPECT_EQ(settings.GetIni(kColumnsSection, "AllReminders", "(none)"), "(none)")
        << "a change that was undone";
}

TEST_F(ColumnMenuTest, TheMenuSortsAndMovesForWhoHasNoMouse) {
    load();
    Grid& all = grid(kAllRemindersGrid);
    ASSERT_TRUE(choose(all, "mnuSortLocation"));
    EXPECT_EQ(all.header()->sortIndicatorSection(), column(1, CIDLocation));
    EXPECT_EQ(all.header()->sortIndicatorOrder(), Qt::AscendingOrder);
    ASSERT_TRUE(choose(all, "mnuSortDown"));
    EXPECT_EQ(all.header()->sortIndicatorOrder(), Qt::DescendingOrder);
    EXPECT_EQ(all.header()->sortIndicatorSection(), column(1, CIDLocation));
    const auto place = [&](const char* id) { return all.header()->visualIndex(column(1, id)); };
    ASSERT_EQ(place(CIDDue), 1);
    ASSERT_TRUE(choose(all, "mnuMoveLeftDue"));
    EXPECT_EQ(place(CIDDue), 0);
    EXPECT_EQ(place(CIDSubject), 1);
    all.showColumn(column(1, CIDSubject), true);
    all.showColumn(column(1, CIDReminderD), false);
    ASSERT_TRUE(choose(all, "mnuMoveRightSubject"));
    EXPECT_EQ(place(CIDSubject), 3) << "past the one that is hidden";
    QMenu menu;
    fillColumnMenu(menu, all);
    EXPECT_EQ(menu.findChild<QAction*>("mnuMoveLeftDue"), nullptr) << "it is the first";
    EXPECT_TRUE(menu.findChild<QAction*>("mnuSortLocation")->isChecked());
    EXPECT_TRUE(menu.findChild<QAction*>("mnuSortDown")->isChecked());
}

TEST_F(ColumnMenuTest, TheMenuSizesThemForWhoHasNoMouse) {
    load();
    Grid& all = grid(kAllRemindersGrid);
    const int due = column(1, CIDDue);
    const int before = all.columnWidth(due);
    EXPECT_TRUE(choose(all, "mnuWiderDue"));
    EXPECT_EQ(all.columnWidth(due), before + 4 * all.unit());
    EXPECT_TRUE(all.columnLayout().sized) << "by the user: it no longer follows the window";
    EXPECT_TRUE(choose(all, "mnuNarrowerDue"));
    EXPECT_EQ(all.columnWidth(due), before);
    int times = 0;
    while (times < 100 && choose(all, "mnuNarrowerDue")) {
        ++times;
    }
    EXPECT_GT(times, 0);
    EXPECT_GE(all.columnWidth(due), 4 * all.unit()) << "it never goes";
    EXPECT_LT(all.columnWidth(due), 8 * all.unit());
    all.showColumn(due, false);
    EXPECT_FALSE(choose(all, "mnuWiderDue")) << "it is not shown";
}

TEST_F(ColumnMenuTest, EachEntryOfTheMenuHasALetterOfItsOwn) {
    load();
    for (const int tab : {0, 1, 2}) {
        QMenu menu;
        fillColumnMenu(menu, grid(tab));
        QList<QMenu*> menus = menu.findChildren<QMenu*>();
        EXPECT_EQ(menus.size(), 5);
        menus << &menu;
        for (const QMenu* each : menus) {
            QString letters;
            for (const QAction* entry : each->actions()) {
                if (!entry->isSeparator()) {
                    const QString text = entry->text();
                    const qsizetype at = text.indexOf(u'&');
                    ASSERT_GE(at, 0) << plainText(text);
                    EXPECT_FALSE(letters.contains(text[at + 1].toLower())) << plainText(text);
                    letters += text[at + 1].toLower();
                }
            }
        }
    }
}

}  // namespace
}  // namespace vl
