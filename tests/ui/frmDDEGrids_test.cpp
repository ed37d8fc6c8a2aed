// The grids in the window, used as a person does: sorted, chosen from, asked for a menu.
#include <functional>

#include <gtest/gtest.h>

#include <QApplication>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include "GridsTest.h"

namespace vl {
namespace {

using test::event;
using test::someFriday;

class frmDDEGrids : public test::GridsTest {
protected:
    QPoint middleOf(int tab, const char* id) const {
        const QHeaderView& header = *grid(tab).header();
        const int section = columnIndex(gridColumns(tab), id);
        return {header.sectionViewportPosition(section) + header.sectionSize(section) / 2,
                header.height() / 2};
    }
    void clickHeading(int tab, const char* id) const {
        QTest::mouseClick(grid(tab).header()->viewport(), Qt::LeftButton, {}, middleOf(tab, id));
    }
    /// Asks for the grid's menu and looks at it while it is open.
    void whileMenuIsOpen(int tab, const QContextMenuEvent::Reason by,
                         const std::function<void(QMenu&)>& look) const {
        bool looked = false;
        const auto whenOpen = [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_NE(menu, nullptr);
            looked = true;
            look(*menu);
            menu->close();
        };
        QMetaObject::invokeMethod(window.get(), whenOpen, Qt::QueuedConnection);
        QWidget& rows = *grid(tab).viewport();
        QContextMenuEvent asked(by, rowAt(tab, 0), rows.mapToGlobal(rowAt(tab, 0)));
        QApplication::sendEvent(&rows, &asked);
        EXPECT_TRUE(looked);
    }
    static std::vector<std::string> entriesOf(const QMenu& menu) {
        std::vector<std::string> texts;
        for (const QAction* action : menu.actions()) {
            if (!action->isSeparator()) {
                texts.push_back(plainText(action->text()));
            }
        }
        return texts;
    }
};

// ---- columns

TEST_F(frmDDEGrids, AClickOnAHeadingSortsAndAnotherTurnsItRound) {
    loadThree();
    EXPECT_EQ(shown(0), "Cello Anvil Banjo") << "by the time of the reminder at first";
    clickHeading(0, CIDSubject);
    EXPECT_EQ(shown(0), "Anvil Banjo Cello");
    clickHeading(0, CIDSubject);
    EXPECT_EQ(shown(0), "Cello Banjo Anvil");
    window->DoPeriod();
    takeIn(event("{d}", "Bugle", someFriday(), 0));
    EXPECT_EQ(shown(0), "Cello Bugle Banjo Anvil") << "what comes finds its place";
    EXPECT_EQ(shown(1), "Cello Anvil Banjo") << "each grid by its own column";
}

TEST_F(frmDDEGrids, ARefillSortsByTheRememberedColumn) {
    loadThree();
    child<QTabWidget>("tabs").setCurrentIndex(kEventsGrid);
    clickHeading(kEventsGrid, CIDSubject);
    add(event("{d}", "Bugle", someFriday().addMinutes(90), 5));
    window->DoPeriod();
    EXPECT_EQ(shown(kEventsGrid), "Anvil Banjo Bugle Cello");
}

TEST_F(frmDDEGrids, AHeadingIsDraggedToAnotherPlace) {
    loadThree();
    QHeaderView& header = *grid(0).header();
    const int due = columnIndex(reminderColumns(), CIDDue);
    const int subject = columnIndex(reminderColumns(), CIDSubject);
    ASSERT_GT(header.visualIndex(due), header.visualIndex(subject));
    const QPoint from = middleOf(0, CIDDue);
    const QPoint to = middleOf(0, CIDSubject) - QPoint(header.sectionSize(subject) / 2 - 3, 0);
    QTest::mousePress(header.viewport(), Qt::LeftButton, {}, from);
    for (int i = 1; i <= 4; ++i) {
        const QPoint at = from + (to - from) * i / 4;
        QMouseEvent moved(QEvent::MouseMove, at, header.viewport()->mapToGlobal(at), Qt::NoButton,
                          Qt::LeftButton, {});
        QApplication::sendEvent(header.viewport(), &moved);
    }
    QTest::mouseRelease(header.viewport(), Qt::LeftButton, {}, to);
    EXPECT_LT(header.visualIndex(due), header.visualIndex(subject));
    EXPECT_EQ(shown(0), "Cello Anvil Banjo") << "dragging does not sort";
}

TEST_F(frmDDEGrids, TheDueColumnFollowsTheClock) {
    loadThree();
    const int due = columnIndex(reminderColumns(), CIDDue);
    const auto text = [&] { return plainText(grid(0).model()->index(0, due).data().toString()); };
    EXPECT_EQ(text(), "in 5 min");
    clock.time = someFriday().addMinutes(5);
    window->ShowTime();  // as the update timer does each second
    EXPECT_EQ(text(), "now");
    clock.time = someFriday().addMinutes(12);
    window->ShowTime();
    EXPECT_EQ(text(), "7 min overdue");
}

TEST_F(frmDDEGrids, TipsSayMoreThanTheCells) {
    loadThree();
    const auto tip = [&](int tab, const char* id) {
        const int column = columnIndex(gridColumns(tab), id);
        return plainText(grid(tab).model()->index(0, column).data(Qt::ToolTipRole).toString());
    };
    EXPECT_NE(tip(0, CIDSubject).find("Cello"), std::string::npos) << tip(0, CIDSubject);
    EXPECT_NE(tip(0, CIDSubject).find("Hall"), std::string::npos) << tip(0, CIDSubject);
    for (const auto& [tab, id] :
         {std::pair{0, CIDDue}, {0, CIDReminderD}, {1, CIDEventD}, {2, CIDEventD}, {2, CIDEnds}}) {
        EXPECT_TRUE(tip(tab, id).starts_with("Friday, 20 November 2026, ")) << tip(tab, id);
    }
}

// ---- choosing rows

TEST_F(frmDDEGrids, SeveralRowsAreChosenAndTheButtonsAreAboutThem) {
    loadThree();
    clickRow(0, 0);
    clickRow(0, 2, Qt::ControlModifier);
    EXPECT_EQ(listed(0).SelectedGUIDs(), (Texts{"{c}", "{b}"})) << "from top to bottom";
    clickRow(0, 0);
    clickRow(0, 2, Qt::ShiftModifier);
    EXPECT_EQ(listed(0).SelectedGUIDs(), (Texts{"{c}", "{a}", "{b}"}));
    QTest::keyClick(&grid(0), Qt::Key_Home);
    QTest::keyClick(&grid(0), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(listed(0).SelectedGUIDs(), (Texts{"{c}", "{a}"}));
    QTest::keyClick(&grid(0), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(listed(0).SelectedGUIDs().size(), 3U);
    grid(0).clearSelection();
    EXPECT_FALSE(child<QWidget>("butDismiss").isEnabled());
    EXPECT_TRUE(child<QPushButton>("butSnooze").isEnabled()) << "snoozing is of the current row";
}

TEST_F(frmDDEGrids, EachTabHasItsOwnRowsButtonsAndTip) {
    loadThree();
    QTabWidget& tabs = child<QTabWidget>("tabs");
    const std::tuple<int, const char*, const char*> expected[] = {
        {0, "&Snooze...", "3 New reminders\r\n3 new reminders"},
        {1, "&Hide", "3 Reminders\r\n3 new reminders"},
        {2, "&Hide", "3 Events\r\n3 new reminders"}};
    for (const auto& [tab, button, tip] : expected) {
        tabs.setCurrentIndex(tab);
        EXPECT_EQ(window->isNewRemindersTab(), tab == 0);
        EXPECT_EQ(child<QPushButton>("butSnooze").text(), button);
        EXPECT_EQ(plainText(window->GetIconText()), tip);
    }
    EXPECT_TRUE(window->SelectGUID("{b}"));
    EXPECT_EQ(state.curEvent->Subject, "Banjo");
    tabs.setCurrentIndex(0);
    EXPECT_EQ(state.curEvent->Subject, "Cello") << "that of the tab's own current row";
}

// ---- the context menu

TEST_F(frmDDEGrids, TheMenuHoldsWhatTheButtonsDo) {
    loadThree();
    whileMenuIsOpen(0, QContextMenuEvent::Mouse, [&](QMenu& menu) {
        EXPECT_EQ(entriesOf(menu), (Texts{"&Open", "&Snooze...", "Dismiss &this reminder",
                                          "&Dismiss...", "&Columns"}));
        EXPECT_EQ(menu.defaultAction(), menu.actions().first()) << "as a double click";
        menu.findChild<QAction*>("mnuDismissThis")->trigger();
    });
    EXPECT_EQ(shown(0), "Anvil Banjo");
    child<QTabWidget>("tabs").setCurrentIndex(kEventsGrid);
    ASSERT_TRUE(window->SelectGUID("{c}"));
    whileMenuIsOpen(kEventsGrid, QContextMenuEvent::Keyboard, [&](QMenu& menu) {
        EXPECT_EQ(entriesOf(menu), (Texts{"&Open", "&Hide", "&Reactivate", "&Columns"}));
        menu.findChild<QAction*>("mnuReactivate")->trigger();
    });
    EXPECT_TRUE(objectAt<calEvent>(*period.mCol, "{c}")->Dismissed.isZero());
    grid(kEventsGrid).clearSelection();
    grid(kEventsGrid).setCurrentIndex({});
    whileMenuIsOpen(kEventsGrid, QContextMenuEvent::Mouse, [&](QMenu& menu) {
        for (const QAction* action : menu.actions()) {
            EXPECT_EQ(action->isEnabled(), action->isSeparator() || action->menu() != nullptr)
                << plainText(action->text());
        }
    });
}

TEST_F(frmDDEGrids, ByTheKeyboardTheMenuOpensAtTheRow) {
    loadThree();
    window->SelectGUID("{b}");
    QSignalSpy asked(&grid(0), &Grid::menuAsked);
    grid(0).disconnect(window.get());  // only where it opens is of interest
    QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(0, 0), QPoint(0, 0));
    QApplication::sendEvent(grid(0).viewport(), &key);
    ASSERT_EQ(asked.count(), 1);
    const QPoint at = grid(0).viewport()->mapFromGlobal(asked[0][0].toPoint());
    EXPECT_TRUE(grid(0).visualRect(grid(0).currentIndex()).adjusted(0, 0, 0, 1).contains(at));
}

}  // namespace
}  // namespace vl
