#include "ui/frmDDE.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSystemTrayIcon>
#include <QTabWidget>
#include <QTest>

#include "WindowTest.h"
#include "app/TimeText.h"
#include "notify/Periods.h"
#include "ui/QtText.h"
#include "ui/UpDown.h"

namespace vl {
namespace {

using test::event;
using test::someFriday;
using test::WindowTest;

class frmDDETest : public WindowTest {};

// ---- the load handler

TEST_F(frmDDETest, StartsHiddenWithDefaults) {
    load();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(state.sNotifType, "D");
    EXPECT_EQ(state.sPeriod, "T");
    EXPECT_EQ(state.dLastShown, someFriday());
    EXPECT_EQ(state.DBVersion, 0);
    EXPECT_FALSE(state.bMuted || state.bSilent || state.bOnTop);
    EXPECT_EQ(window->CheckInterval(), 20000);  // hidden
    EXPECT_EQ(list().count(), 17);
    EXPECT_EQ(list().currentText(), "Today");
}

TEST_F(frmDDETest, OlderFlagsWinOverTheType) {
    struct Case {
        const char* type;
        const char* popup;
        const char* system;
        const char* result;
    };
    static constexpr Case cases[] = {
        {"T", "0", "0", "T"}, {"D", "1", "0", "P"}, {"D", "1", "-1", "S"}, {"E", "", "", "E"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.type << c.popup << c.system);
        settings.SaveIni("Reminders", "NotifType", c.type);
        settings.SaveIni("Reminders", "Popup", c.popup);
        settings.SaveIni("Reminders", "System", c.system);
        load();
        EXPECT_EQ(state.sNotifType, c.result);
    }
}

TEST_F(frmDDETest, ReadsItsSettings) {
    for (const auto& [key, value] : {std::pair{"Muted", "1"},
                                     {"Silent", "-1"},
                                     {"OnTop", "7"},
                                     {"Period", "d+7"},
                                     {"LastShown", "463415000"},
                                     {"DBVersion", "4"}}) {
        settings.SaveIni("Reminders", key, value);
    }
    for (const auto& [key, value] :
         {std::pair{"Left", "-50"}, {"Top", "99999"}, {"Width", "500"}, {"Height", "300"}}) {
        settings.SaveIni("Window", key, value);
    }
    load();
    EXPECT_TRUE(state.bMuted && state.bSilent && state.bOnTop);
    EXPECT_TRUE(window->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_EQ(list().currentText(), "Next 7 days");
    EXPECT_EQ(state.dLastShown, DateTime::fromCivil(2026, 11, 15, 12));
    EXPECT_EQ(state.DBVersion, 4);
    EXPECT_EQ(window->size(), QSize(500, 300));
    EXPECT_EQ(window->pos().x(), 0);
    const int bottom = window->screen()->availableVirtualSize().height() - 300;
    EXPECT_LE(window->pos().y(), bottom);
    EXPECT_GT(window->pos().y(), bottom - 60);  // less its frame
}

TEST_F(frmDDETest, AnUnknownPeriodIsToday) {
    settings.SaveIni("Reminders", "Period", "next year");
    load();
    EXPECT_EQ(state.sPeriod, "T");
}

TEST_F(frmDDETest, KeepsThePendingError) {
    ErrorState::set(ErrNo::Locked);
    load();
    window->DoPeriod();
    window->SaveSettings();
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

// ---- settings

TEST_F(frmDDETest, SavesEveryKey) {
    load();
    state.bMuted = true;
    state.sNotifType = "P";
    state.sPeriod = "W0";
    state.dLastShown = DateTime::fromCivil(2026, 11, 15, 12);
    state.DBVersion = 3;
    window->resize(600, 400);
    window->SaveSettings();
    EXPECT_EQ(test::readFile(settings.filename).find("[Window]"), 0U);
    EXPECT_EQ(ini("Window", "Left"), std::to_string(window->pos().x()));
    EXPECT_EQ(ini("Window", "Top"), std::to_string(window->pos().y()));
    EXPECT_EQ(ini("Window", "Width"), "600");
    EXPECT_EQ(ini("Window", "Height"), "400");
    const std::pair<const char*, const char*> expected[] = {
        {"Muted", "-1"},    {"Silent", "0"},    {"Popup", "0"},   {"System", "0"},
        {"OnTop", "0"},     {"NotifType", "P"}, {"Period", "W0"}, {"LastShown", "463415000"},
        {"DBVersion", "3"},
    };
    std::string section;
    for (const auto& [key, value] : expected) {
        section += std::string(key) + '=' + value + '\0';
    }
    EXPECT_EQ(settings.GetIniSection("Reminders"), section);  // in this order
}

TEST_F(frmDDETest, MenuCommandsChangeAndSave) {
    load();
    QMenu* menu = trayMenu();
    ASSERT_NE(menu, nullptr);
    const auto action = [menu](const char* name) { return menu->findChild<QAction*>(name); };
    action("mnuMute")->trigger();
    EXPECT_EQ(ini("Reminders", "Muted"), "-1");
    action("mnuSilent")->trigger();
    action("mnuSilent")->trigger();
    EXPECT_EQ(ini("Reminders", "Silent"), "0");
    action("mnuOnTop")->trigger();
    EXPECT_EQ(ini("Reminders", "OnTop"), "-1");
    for (const auto& [name, letter] : {std::pair{"mnuTypeEmail", "E"},
                                       {"mnuTypePopup", "P"},
                                       {"mnuTypeSystem", "S"},
                                       {"mnuTypeTray", "T"},
                                       {"mnuTypeDialog", "D"}}) {
        action(name)->trigger();
        EXPECT_EQ(state.sNotifType, letter);
        EXPECT_EQ(ini("Reminders", "NotifType"), letter);
    }
    state.sNotifType = "p";
    emit menu->aboutToShow();
    EXPECT_TRUE(action("mnuTypePopup")->isChecked());
    EXPECT_FALSE(action("mnuTypeDialog")->isChecked());
    EXPECT_TRUE(action("mnuMute")->isChecked());
    EXPECT_FALSE(action("mnuSilent")->isChecked());
    EXPECT_TRUE(action("mnuOnTop")->isChecked());
    EXPECT_EQ(action("mnuShowHide")->text(), "0 New reminder: (click to show/hide)");
}

// ---- showing and hiding

TEST_F(frmDDETest, ClosingTheFrameHidesAndSaves) {
    load();
    window->ShowHide();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(ini("Reminders", "Period"), "(none)");  // showing saves nothing
    clock.time = someFriday().addMinutes(5);
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(ini("Reminders", "Period"), "T");
    EXPECT_EQ(state.dLastShown, clock.time);
}

TEST_F(frmDDETest, ShowHideSavesNothing) {
    load();
    window->ShowHide();
    window->ShowHide();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(ini("Reminders", "Period"), "(none)");
}

TEST_F(frmDDETest, TheTrayTipFollowsTheWindow) {
    load();
    const auto tip = [this] { return trayMenu()->findChild<QAction*>("mnuShowHide")->text(); };
    EXPECT_EQ(tip(), "0 New reminder: (click to show/hide)");
    window->ShowHide();
    EXPECT_EQ(tip(), "0 New reminder");
    window->ShowHide();
    EXPECT_EQ(tip(), "0 New reminder: (click to show/hide)");
}

TEST_F(frmDDETest, WithoutATrayTheWindowStaysWithinReach) {
    hasTray = false;
    load();
    window->ShowHide();
    QTest::mouseClick(&child<QPushButton>("butHide"), Qt::LeftButton);
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(window->isMinimized());
    window->ShowHide();
    EXPECT_FALSE(window->isMinimized());
}

TEST_F(frmDDETest, ChecksComeAtLeisureWhileItIsHidden) {
    load();
    window->ShowHide();
    EXPECT_EQ(window->CheckInterval(), 10000);
    window->ShowHide();
    EXPECT_EQ(window->CheckInterval(), 20000);
}

TEST(TrayClick, GoesByTheFocusFoundBefore) {
    EXPECT_EQ(trayClick(true, true), TrayClick::Hide);
    EXPECT_EQ(trayClick(false, true), TrayClick::BringForward);
    EXPECT_EQ(trayClick(false, false), TrayClick::Show);
}

// ---- periods and grids

TEST_F(frmDDETest, FillsBothPeriodGrids) {
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

TEST_F(frmDDETest, RowsKeepWhatTheyShowWhenQueriesChangeTheEvent) {
    load();
    const auto e = event("{1}", "Meeting", someFriday().addMinutes(60), 15);
    add(e);
    window->DoPeriod();
    e->InstanceStart = DateTime();
    e->iRemMinutes = calEvent::kNoReminder;
    EXPECT_EQ(listed(1).rows().rows().at(0).reminder, someFriday().addMinutes(45));
}

TEST_F(frmDDETest, TheDismissedViewListsOnlyDismissedEvents) {
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

TEST_F(frmDDETest, HiddenEventsAreInTheirOwnViewOnly) {
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

TEST_F(frmDDETest, SteppingWrapsAround) {
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

TEST_F(frmDDETest, AnEmptyGridSaysWhy) {
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

TEST_F(frmDDETest, TheStatusLineFollowsTheCurrentRow) {
    load();
    haveDatabase();
    child<QTabWidget>("tabs").setCurrentIndex(kEventsGrid);
    const auto e = event("{1}", "Meeting", someFriday().addMinutes(60), 15);
    e->Location = "Room 2";
    add(e);
    window->DoPeriod();
    EXPECT_EQ(state.curEvent, nullptr);
    EXPECT_TRUE(window->SelectGUID("{1}"));
    EXPECT_EQ(state.curEvent, e);
    const QString status = child<QLabel>("lblStatus").text();
    EXPECT_TRUE(status.startsWith("Meeting, Today ")) << plainText(status);
    EXPECT_TRUE(status.contains("Room 2")) << plainText(status);
    window->RemoveGUID("{1}", kEventsGrid);
    EXPECT_EQ(state.curEvent, nullptr);
    EXPECT_EQ(child<QLabel>("lblStatus").text(), "");
}

// ---- new reminders

TEST_F(frmDDETest, ANewReminderIsListedAndShown) {
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

TEST_F(frmDDETest, UpdatesOnlyRowsThatAreThere) {
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

TEST_F(frmDDETest, TheLinkOfAPopUpSelectsItsReminder) {
    load();
    for (const char* GUID : {"{1}", "{2}"}) {
        takeIn(event(GUID, std::string("Event ") + GUID, someFriday(), 0));
        auto line = std::make_shared<ValueList>();
        line->items = {Variant(std::string("Event ") + GUID), Variant(" Event start (14:30)")};
        state.EvCol->Add(Variant(ObjectRef(line)), GUID);
    }
    window->ShowPopUp({"2 new reminders", "", -1, false, 300, 100, 100});
    QWidget* popup = nullptr;
    for (QWidget* top : QApplication::topLevelWidgets()) {
        popup = top->objectName() == "Popup1" ? top : popup;
    }
    ASSERT_NE(popup, nullptr);
    EXPECT_TRUE(popup->isVisible());
    EXPECT_FALSE(window->isVisible());
    // A muted check takes in another one meanwhile: the toast still means what it shows.
    state.EvCol = std::make_shared<GenCollection>();
    clock.time = someFriday().addMinutes(1);
    emit popup->findChild<QLabel*>("lblPopupLink2")->linkActivated("2");
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(listed(0).currentRow()->GUID, "{2}");
    EXPECT_FALSE(popup->isVisible());
    EXPECT_EQ(state.dLastShown, clock.time);
}

TEST_F(frmDDETest, APopUpStaysUntilClosedUnlessItWasGivenATime) {
    load();
    const auto popup = []() -> QWidget* {
        for (QWidget* top : QApplication::topLevelWidgets()) {
            if (top->objectName() == "Popup1") {
                return top;
            }
        }
        return nullptr;
    };
    window->ShowPopUp({"Stays", "", -1, false, 300, 100, 100});
    QTest::qWait(60);
    ASSERT_NE(popup(), nullptr);
    EXPECT_TRUE(popup()->isVisible());
    window->ShowPopUp({"Goes", "", 20, false, 300, 100, 100});
    EXPECT_TRUE(QTest::qWaitFor([&] { return !popup()->isVisible(); }));
    window->ShowPopUp({"Stays", "", -1, false, 300, 100, 100});
    QTest::qWait(60);
    EXPECT_TRUE(popup()->isVisible()) << "whatever time the one before had";
}

TEST_F(frmDDETest, TheIconHasItsDotWhileRemindersAreNew) {
    load();
    const TrayPictures pictures;
    auto* icon = window->findChild<QSystemTrayIcon*>();
    ASSERT_NE(icon, nullptr);
    const auto dotted = [&] {
        const QImage shown = icon->icon().pixmap(32, 32).toImage();
        const bool isNew = shown == pictures.Pic2.pixmap(32, 32).toImage();
        EXPECT_NE(isNew, shown == pictures.Pic1.pixmap(32, 32).toImage());
        return isNew;
    };
    auto& flash = child<QTimer>("TimerFlash");
    EXPECT_FALSE(dotted());
    takeIn(event("{1}", "Meeting", someFriday(), 15));
    window->SetIcon();
    EXPECT_TRUE(QTest::qWaitFor(dotted)) << "with the next phase at the latest";
    ASSERT_TRUE(flash.isActive());
    bool seen[2] = {false, false};
    EXPECT_TRUE(QTest::qWaitFor([&] {
        seen[dotted() ? 1 : 0] = true;
        return seen[0] && seen[1];
    })) << "it flashes";
    EXPECT_TRUE(QTest::qWaitFor(dotted));
    window->RemoveGUID("{1}", kNewRemindersGrid);
    window->SetIcon();
    EXPECT_FALSE(dotted());
    takeIn(event("{1}", "Meeting", someFriday(), 15));
    EXPECT_TRUE(QTest::qWaitFor(dotted));
    window->RemoveGUID("{1}", kNewRemindersGrid);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !dotted() && !flash.isActive(); }))
        << "by its own tick, too";
}

TEST_F(frmDDETest, EveryControlCanBeFoundAndNamed) {
    load();
    for (const char* name : {"cboPeriod", "UpDown1", "txtSearch", "tabs", "G0", "G1", "G2"}) {
        EXPECT_NE(child<QWidget>(name).accessibleName(), "") << name;
    }
    for (const char* name : {"lblTime", "lblStatus", "butHide"}) {
        EXPECT_EQ(child<QWidget>(name).objectName(), name);
    }
    window->ShowTime();
    EXPECT_EQ(child<QLabel>("lblTime").text(), qtText(shortTimeText(someFriday())));
}

}  // namespace
}  // namespace vl
