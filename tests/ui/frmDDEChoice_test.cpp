// A command acts on what was chosen when it was given; keys act once, and not on what nobody has
// seen yet.
#include <gtest/gtest.h>

#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include "Dialogs.h"
#include "WindowTest.h"
#include "ui/SplitButton.h"
#include "ui/frmSnooze.h"

namespace vl {
namespace {

using test::event;
using test::someFriday;

class frmDDEChoice : public test::WindowTest {
protected:
    void loadRows() {
        load();
        for (const char* GUID : {"{1}", "{2}", "{3}"}) {
            list(GUID);
        }
        window->ShowHide();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        ASSERT_TRUE(window->SelectGUID("{2}"));
    }
    void list(const char* GUID) {
        const auto e = event(GUID, std::string("Event ") + GUID[1], someFriday(), 0);
        period.Add(e, e->GUID);
        takeIn(e);
    }
    /// As a check does that has found something new.
    void comesUp(const char* GUID) {
        list(GUID);
        window->ShowNewReminders(GUID);
    }
    bool isDismissed(const char* GUID) const {
        return objectAt<calEvent>(*period.mCol, GUID)->Dismissed > DateTime();
    }
    /// Opens the menu, lets a reminder come, and only then chooses.
    void chooseLate(const std::function<void()>& open, const char* entry) {
        bool chosen = false;
        QTimer::singleShot(0, window.get(), [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_NE(menu, nullptr);
            comesUp("{9}");
            auto* action = menu->findChild<QAction*>(entry);
            ASSERT_NE(action, nullptr) << entry;
            menu->setActiveAction(action);
            QTest::keyClick(menu, Qt::Key_Return);
            chosen = true;
        });
        open();
        EXPECT_TRUE(chosen);
    }
    void press(QWidget& target, int key, bool repeated, quint64 when = 0) {
        send(target, QEvent::KeyPress, key, repeated, when);
    }
    void send(QWidget& target, QEvent::Type type, int key, bool repeated, quint64 when) {
        QKeyEvent event(type, key, Qt::NoModifier, QString(), repeated);
        event.setTimestamp(when);
        QApplication::sendEvent(&target, &event);
    }
};

TEST_F(frmDDEChoice, OfTheRowsMenuStandsWhateverComesMeanwhile) {
    loadRows();
    chooseLate([this] { emit grid(0).menuAsked(window->mapToGlobal(QPoint(9, 9))); },
               "mnuDismissThis");
    EXPECT_TRUE(isDismissed("{2}"));
    EXPECT_FALSE(isDismissed("{9}"));
    EXPECT_TRUE(listed(0).contains("{9}"));
}

TEST_F(frmDDEChoice, OfTheButtonsMenuStandsWhateverComesMeanwhile) {
    loadRows();
    chooseLate([this] { child<SplitButton>("butDismiss").showMenu(); }, "mnuDismissThis");
    EXPECT_TRUE(isDismissed("{2}"));
    EXPECT_FALSE(isDismissed("{9}"));
}

// The entry said "Hide" when it was read.
TEST_F(frmDDEChoice, IsOfTheListThatWasInFront) {
    loadRows();
    window->AddItemR(objectAt<calEvent>(*period.mCol, "{3}"), kAllRemindersGrid);
    child<QTabWidget>("tabs").setCurrentIndex(kAllRemindersGrid);
    ASSERT_TRUE(window->SelectGUID("{3}"));
    chooseLate([this] { emit grid(1).menuAsked(window->mapToGlobal(QPoint(9, 9))); }, "mnuSnooze");
    EXPECT_TRUE(objectAt<calEvent>(*period.mCol, "{3}")->Hidden);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "nothing is snoozed";
}

TEST_F(frmDDEChoice, OfTheNextMenuIsItsOwn) {
    loadRows();
    QTimer::singleShot(0, window.get(), [] { QApplication::activePopupWidget()->close(); });
    child<SplitButton>("butDismiss").showMenu();
    ASSERT_TRUE(window->SelectGUID("{3}"));
    chooseLate([this] { child<SplitButton>("butDismiss").showMenu(); }, "mnuDismissThis");
    EXPECT_TRUE(isDismissed("{3}"));
    EXPECT_FALSE(isDismissed("{2}"));
}

TEST_F(frmDDEChoice, AKeyThatIsHeldActsOnce) {
    loadRows();
    press(grid(0), Qt::Key_Delete, false);
    EXPECT_TRUE(isDismissed("{2}"));
    press(grid(0), Qt::Key_Delete, true);
    press(grid(0), Qt::Key_Delete, true);
    EXPECT_EQ(listed(0).rowCount(), 2U);
    QSignalSpy asked(&grid(0), &Grid::openAsked);
    press(grid(0), Qt::Key_Return, true);
    EXPECT_EQ(asked.count(), 0);
    press(grid(0), Qt::Key_Return, false);
    EXPECT_EQ(asked.count(), 1);
}

// A busy machine is told of a press and its release, again and again, at one time each.
TEST_F(frmDDEChoice, AKeyThatIsHeldActsOnceAlsoWhereNobodySaysSo) {
    loadRows();
    press(grid(0), Qt::Key_Delete, false, 1000);
    EXPECT_EQ(listed(0).rowCount(), 2U);
    for (const quint64 when : {1660U, 1700U, 1740U}) {
        send(grid(0), QEvent::KeyRelease, Qt::Key_Delete, false, when);
        press(grid(0), Qt::Key_Delete, false, when);
    }
    EXPECT_EQ(listed(0).rowCount(), 2U);
    send(grid(0), QEvent::KeyRelease, Qt::Key_Delete, false, 1750);
    press(grid(0), Qt::Key_Delete, false, 1830);
    EXPECT_EQ(listed(0).rowCount(), 1U) << "pressed once more";
}

// What is typed into another program goes on for a moment.
TEST_F(frmDDEChoice, AWindowThatHasJustComeTakesNoKeyThatActs) {
    keysRest = std::chrono::hours(1);
    loadRows();
    window->ShowHide();
    comesUp("{9}");
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    QTest::keyClick(&grid(0), Qt::Key_Delete);
    EXPECT_FALSE(isDismissed("{9}"));
    child<SplitButton>("butDismiss").click();
    EXPECT_TRUE(isDismissed("{9}")) << "a button is meant";
}

TEST_F(frmDDEChoice, AWindowThatWasInFrontTakesKeysAtOnce) {
    keysRest = std::chrono::hours(1);
    loadRows();
    comesUp("{9}");
    QTest::keyClick(&grid(0), Qt::Key_Delete);
    EXPECT_TRUE(isDismissed("{9}"));
}

TEST_F(frmDDEChoice, TheRowsMenuOpensByShiftF10) {
    loadRows();
    QSignalSpy asked(&grid(0), &Grid::menuAsked);
    QTimer::singleShot(0, window.get(), [] {
        ASSERT_NE(QApplication::activePopupWidget(), nullptr);
        QApplication::activePopupWidget()->close();
    });
    QTest::keyClick(&grid(0), Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(asked.count(), 1);
}

TEST_F(frmDDEChoice, ControlQEndsOnEveryDesktop) {
    loadRows();
    QTest::keyClick(window.get(), Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(ini("Reminders", "NotifType"), state.sNotifType)
        << "unloaded: the settings are saved";
}

// The window comes, with what is new in front, and the dialog stays where the keys go.
TEST_F(frmDDEChoice, ADialogKeepsTheKeysWhenAReminderComes) {
    loadRows();
    test::whileOpen<frmSnooze>([this] { child<QPushButton>("butSnooze").click(); },
                               [this](frmSnooze& dialog) {
                                   const auto hasKeys = [&] {
                                       return QApplication::activeWindow() == &dialog &&
                                              dialog.isAncestorOf(QApplication::focusWidget());
                                   };
                                   EXPECT_TRUE(QTest::qWaitFor(hasKeys));
                                   comesUp("{9}");
                                   QTest::qWait(50);
                                   EXPECT_TRUE(hasKeys());
                                   EXPECT_EQ(listed(0).currentRow()->GUID, "{9}");
                               });
}

TEST_F(frmDDEChoice, OfManyRowsIsActedOnInOneGo) {
    load();
    constexpr int kRows = 400;
    for (int i = 0; i < kRows; ++i) {
        list(("{" + std::to_string(1000 + i) + "}").c_str());
    }
    window->ShowHide();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    grid(0).selectAll();
    grid(0).selectionModel()->select(listed(0).proxy().index(7, 0),
                                     QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
    const std::string spared = plainText(listed(0).proxy().row(7).GUID);
    QSignalSpy changes(&grid(0).list(), &GridList::chosenRowsChanged);
    QTest::keyClick(&grid(0), Qt::Key_Delete);
    EXPECT_EQ(listed(0).rowCount(), 1U);
    EXPECT_TRUE(listed(0).contains(spared));
    EXPECT_LT(changes.count(), kRows / 10) << "what is selected is not collected for each row";
}

}  // namespace
}  // namespace vl
