// Snoozing, dismissing, reactivating, hiding: from the buttons to the rows and back.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTabWidget>
#include <QTest>

#include "Dialogs.h"
#include "WindowTest.h"
#include "ui/SplitButton.h"
#include "ui/frmDismiss.h"
#include "ui/frmSnooze.h"

namespace vl {
namespace {

using test::childOf;
using test::event;
using test::someFriday;

class frmDDEActs : public test::WindowTest {
protected:
    /// Three reminders of today listed as new; the window shown on its first tab.
    void loadThree() {
        load();
        for (std::int64_t i = 1; i <= 3; ++i) {
            const std::string GUID = "{" + std::to_string(i) + "}";
            const auto e =
                event(GUID, "Event " + std::to_string(i), someFriday().addMinutes(i * 10), 30);
            add(e);
            e->iRemMinutes = 30;
            takeIn(e);
            state.LastEventsReminded->Add(Variant(ObjectRef(e)), GUID);
        }
        window->DoPeriod();
        window->ShowHide();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        window->FirstNewRowCurrent();
    }
    void tabTo(int i) { child<QTabWidget>("tabs").setCurrentIndex(i); }
    void select(int tab, const std::vector<std::string>& GUIDs) {
        grid(tab).clearSelection();
        for (const std::string& GUID : GUIDs) {
            const auto column =
                grid(tab).model()->match(grid(tab).model()->index(0, 0), GridModel::SummaryRole,
                                         "Event " + QString(GUID[1]), 1, Qt::MatchExactly);
            ASSERT_EQ(column.size(), 1) << GUID;
            grid(tab).selectionModel()->select(
                column[0], QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
    }
    std::vector<std::string> listed(int tab) const {
        std::vector<std::string> GUIDs;
        for (const GridRow& row : window->list(tab).rows().rows()) {
            GUIDs.push_back(plainText(row.GUID));
        }
        return GUIDs;
    }
    std::shared_ptr<calEvent> held(const char* GUID) const {
        return objectAt<calEvent>(*period.mCol, GUID);
    }
    QPushButton& snooze() const { return child<QPushButton>("butSnooze"); }
    SplitButton& dismiss() const { return child<SplitButton>("butDismiss"); }

    // By the mouse: a click knows which keys are held, a `click()` only which were held last.
    void clickDismiss() const {
        QTest::mouseClick(&dismiss(), Qt::LeftButton, {}, QPoint(12, dismiss().height() / 2));
    }

    void snoozeBy(const char* typed, const char* leaveBy = "butSnooze") {
        test::whileOpen<frmSnooze>([this] { snooze().click(); },
                                   [&](frmSnooze& d) {
                                       caption = plainText(d.windowTitle());
                                       auto& list = childOf<QComboBox>(d, "cboSnooze");
                                       list.setEditText(typed);
                                       childOf<QPushButton>(d, leaveBy).click();
                                   });
    }
    using Names = std::vector<std::string>;
    std::string caption;
};

// ---- snooze

TEST_F(frmDDEActs, SnoozingTakesTheRowFromNewAndShowsItsNewTime) {
    loadThree();
    snoozeBy(" 2h");
    EXPECT_EQ(caption, "Snooze reminder for:  Event 1...");
    EXPECT_EQ(held("{1}")->NextReminder, someFriday().addMinutes(120)) << "from now";
    EXPECT_EQ(listed(0), (Names{"{2}", "{3}"}));
    EXPECT_FALSE(state.NewReminders->Exists("{1}"));
    EXPECT_FALSE(state.LastEventsReminded->Exists("{1}"));
    ASSERT_TRUE(window->list(1).contains("{1}"));
    const auto& rows = window->list(1).rows().rows();
    const GridRow& row = rows[static_cast<std::size_t>(*window->list(1).rows().find("{1}"))];
    EXPECT_EQ(row.reminder, someFriday().addMinutes(120));
    EXPECT_EQ(row.detail, "(snoozed)");
    EXPECT_EQ(row.span.start, someFriday().addMinutes(10));
    EXPECT_TRUE(window->isVisible());
}

TEST_F(frmDDEActs, AfterSnoozingTheNeighbourIsSelected) {
    loadThree();
    window->SelectGUID("{2}");
    snoozeBy("5m");
    EXPECT_EQ(window->list(0).SelectedGUIDs(), Names{"{3}"});
    snoozeBy("5m");  // the last row: the one before it
    EXPECT_EQ(window->list(0).SelectedGUIDs(), Names{"{1}"});
}

TEST_F(frmDDEActs, WhatIsNoTimeOrWasCancelledChangesNothing) {
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

TEST_F(frmDDEActs, AnEmailMarkChangesNothingWhenSnoozing) {
    loadThree();
    snoozeBy("3d (e)");
    EXPECT_EQ(held("{1}")->NextReminder, someFriday().addDays(3));
}

TEST_F(frmDDEActs, SnoozingTheOnlyNewReminderHidesTheWindow) {
    loadThree();
    window->RemoveGUID("{2}", 0);
    window->RemoveGUID("{3}", 0);
    snoozeBy("1h");
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(ini("Reminders", "Period"), "T") << "hiding saves";
}

// While the dialog is open checks go on: the act is on what the row said when it was opened.
TEST_F(frmDDEActs, ARefillBehindTheDialogChangesNothingOfTheAct) {
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

// ---- dismiss

TEST_F(frmDDEActs, APlainClickDismissesTheSelectedRows) {
    loadThree();
    select(0, {"{1}", "{3}"});
    clickDismiss();
    EXPECT_EQ(held("{1}")->Dismissed, someFriday());
    EXPECT_TRUE(held("{2}")->Dismissed.isZero());
    EXPECT_EQ(held("{3}")->Dismissed, someFriday());
    EXPECT_EQ(listed(0), Names{"{2}"});
    EXPECT_FALSE(state.NewReminders->Exists("{3}"));
    EXPECT_EQ(window->list(1).rowCount(), 3U) << "the view lists what is dismissed, too";
    EXPECT_TRUE(window->isVisible());
    select(0, {"{2}"});
    clickDismiss();
    EXPECT_FALSE(window->isVisible()) << "nothing is left";
}

// On the other tabs a row that was dismissed stays, dimmed.
TEST_F(frmDDEActs, TheListStandsStillUnderWhoDismissesOneRowAfterAnother) {
    load();
    for (int i = 1; i < 40; ++i) {
        add(event("{" + std::to_string(i) + "}", "Event", someFriday().addMinutes(i), 0));
    }
    window->DoPeriod();
    window->ShowHide();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    tabTo(1);
    QScrollBar& bar = *grid(1).verticalScrollBar();
    ASSERT_GT(bar.maximum(), 0);
    const auto inView = [this] {
        return grid(1).viewport()->rect().contains(grid(1).visualRect(grid(1).currentIndex()));
    };
    for (const int from : {0, bar.maximum() / 2}) {
        bar.setValue(from);
        grid(1).setCurrentIndex(grid(1).indexAt(QPoint(5, 30)));
        const int scroll = bar.value();
        for (int i = 0; i < 3; ++i) {
            const QString first = window->list(1).currentRow()->GUID;
            QTest::keyClick(&grid(1), Qt::Key_Delete);
            EXPECT_EQ(bar.value(), scroll) << "after " << i + 1;
            EXPECT_NE(window->list(1).currentRow()->GUID, first) << "the next one is at hand";
            EXPECT_TRUE(inView());
        }
    }
    tabTo(0);
    bar.setValue(bar.maximum());
    grid(1).setCurrentIndex(grid(1).model()->index(0, 0));
    bar.setValue(bar.maximum());
    tabTo(1);
    EXPECT_TRUE(inView()) << "also when its tab is chosen";
}

TEST_F(frmDDEActs, NothingSelectedIsNothingToDismiss) {
    loadThree();
    grid(0).clearSelection();
    EXPECT_FALSE(dismiss().isEnabled());
    QTest::keyClick(&grid(0), Qt::Key_Delete);
    QTest::keyClick(&grid(0), Qt::Key_Delete, Qt::ShiftModifier);
    EXPECT_EQ(listed(0).size(), 3U);
}

TEST_F(frmDDEActs, DeleteDismissesWithoutAsking) {
    loadThree();
    QTest::keyClick(&grid(0), Qt::Key_Delete);
    EXPECT_EQ(listed(0), (Names{"{2}", "{3}"}));
    EXPECT_EQ(window->list(0).SelectedGUIDs(), Names{"{2}"}) << "and the next one is at hand";
}

TEST_F(frmDDEActs, TheDialogIsShownForEachRow) {
    loadThree();
    select(0, {"{1}", "{2}", "{3}"});
    std::vector<std::string> labels;
    const std::function<void(frmDismiss&)> answer = [&](frmDismiss& d) {
        labels.push_back(plainText(childOf<QLabel>(d, "lblEvent").text()));
        const char* button = labels.size() == 2 ? "butCancel" : "butOK";
        if (labels.size() < 3) {  // the next one opens when this one is left
            QTimer::singleShot(0, qApp, [&] {
                auto* next = qobject_cast<frmDismiss*>(QApplication::activeModalWidget());
                ASSERT_NE(next, nullptr);
                answer(*next);
            });
        }
        childOf<QPushButton>(d, button).click();
    };
    test::whileOpen<frmDismiss>(
        [this] { QTest::keyClick(&grid(0), Qt::Key_Delete, Qt::ShiftModifier); }, answer);
    ASSERT_EQ(labels.size(), 3U);
    EXPECT_TRUE(labels[0].starts_with("Reminder Today 14:10. Event: Event 1, Today 14:40"))
        << labels[0];
    EXPECT_EQ(listed(0), Names{"{2}"});
    EXPECT_TRUE(held("{2}")->Dismissed.isZero());
    EXPECT_EQ(held("{3}")->Dismissed, someFriday());
}

TEST_F(frmDDEActs, MarkingAsDoneFinishesTheEvent) {
    loadThree();
    test::whileOpen<frmDismiss>([this] { emit dismiss().chooseChosen(); },
                                [](frmDismiss& d) {
                                    childOf<QRadioButton>(d, "radAll").click();
                                    childOf<QCheckBox>(d, "chkDone").click();
                                    childOf<QPushButton>(d, "butOK").click();
                                });
    EXPECT_EQ(held("{1}")->status, "AllDone");
    EXPECT_EQ(listed(0), (Names{"{2}", "{3}"}));
}

TEST_F(frmDDEActs, DeletingTakesTheEventAwayAndSaysSo) {
    loadThree();
    db.DBFullName = (folder / "Velmora.RemindDB").string();
    test::writeFile(db.DBFullName, test::readFile(test::repoFile("data/first-light.RemindDB")));
    for (const char* GUID : {"{1}", "{2}", "{3}"}) {
        held(GUID)->VLBase = (folder / "no such host.vlb").string();
    }
    test::whileOpen<frmDismiss>([this] { emit dismiss().chooseChosen(); },
                                [](frmDismiss& d) {
                                    childOf<QRadioButton>(d, "radDeleteItem").click();
                                    childOf<QPushButton>(d, "butOK").click();
                                });
    EXPECT_FALSE(period.mCol->Exists("{1}"));
    for (const int tab : {0, 1, 2}) {
        EXPECT_FALSE(window->list(tab).contains("{1}")) << tab;
    }
    QWidget* popup = nullptr;
    for (QWidget* top : QApplication::topLevelWidgets()) {
        popup = top->objectName() == "Popup1" && top->isVisible() ? top : popup;
    }
    ASSERT_NE(popup, nullptr);
    EXPECT_EQ(popup->findChild<QLabel*>("lblPopupTitle")->text(), "Items deleted...");
    EXPECT_EQ(popup->findChild<QLabel*>("lblPopupText")->text(),
              "Items were deleted. Opened grids and calendars may need to be refreshed");
}

// What others hold for good stays listed; what could be deleted is told once, and so is what could
// not, though another row is current then.
TEST_F(frmDDEActs, OfSeveralItemsTheOnesThatStayAreNamedAtTheEnd) {
    loadThree();
    haveDatabase();
    const std::string foreign = (folder / "foreign.vlb").string();
    std::string bytes("\0\1\0\0Standard ACE DB\0", 20);
    bytes.resize(8192);
    test::writeFile(foreign, bytes);
    for (const char* GUID : {"{1}", "{2}", "{3}"}) {
        held(GUID)->VLBase = (folder / "no such host.vlb").string();
    }
    held("{2}")->VLBase = foreign;
    const auto deleteItems = [this](const Names& which) {
        select(0, which);
        std::size_t asked = 0;
        const std::function<void(frmDismiss&)> answer = [&](frmDismiss& d) {
            if (++asked < which.size()) {  // the next one opens when this one is left
                QTimer::singleShot(0, qApp, [&] {
                    auto* next = qobject_cast<frmDismiss*>(QApplication::activeModalWidget());
                    ASSERT_NE(next, nullptr);
                    answer(*next);
                });
            }
            childOf<QRadioButton>(d, "radDeleteItem").click();
            childOf<QPushButton>(d, "butOK").click();
        };
        test::whileOpen<frmDismiss>(
            [this] { QTest::keyClick(&grid(0), Qt::Key_Delete, Qt::ShiftModifier); }, answer);
        EXPECT_EQ(asked, which.size());
    };
    deleteItems({"{1}", "{2}"});
    EXPECT_EQ(listed(0), (Names{"{2}", "{3}"}));
    EXPECT_EQ(child<QLabel>("lblStatus").text(), "Event 2 could not be deleted");
    held("{3}")->VLBase = foreign;
    deleteItems({"{2}", "{3}"});
    EXPECT_EQ(listed(0), (Names{"{2}", "{3}"}));
    EXPECT_EQ(child<QLabel>("lblStatus").text(), "2 items could not be deleted");
}

// ---- reactivate

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
    EXPECT_EQ(window->list(1).rowCount(), 3U);
    EXPECT_TRUE(state.bIsDismiss);
}

TEST_F(frmDDEActs, WhatIsNewIsNotShownAsDismissedBefore) {
    loadThree();
    const auto again = held("{1}");
    again->Dismissed = someFriday().addDays(-7);
    window->UpdateItemR(again, 0);
    window->DoPeriod();
    const auto shownAsDismissed = [this](int tab) {
        const int row = *window->list(tab).rows().find("{1}");
        return window->list(tab).rows().index(row, 0).data(GridModel::DismissedRole).toBool();
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

// ---- hide

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
