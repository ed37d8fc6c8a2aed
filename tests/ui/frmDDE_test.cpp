#include "ui/frmDDE.h"

#include <gmock/gmock.h>
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

// Seen whenever the handler asks for the time.
TEST_F(frmDDETest, LoadsInItsOrder) {
    haveDatabase();
    settings.SaveIni("Reminders", "NotifType", "T");
    settings.SaveIni("Reminders", "Period", "D+7");
    settings.SaveIni("Reminders", "DBVersion", "2");
    std::vector<std::string> seen;
    clock.whenAsked = [&] {
        const auto* tray = window ? window->findChild<QSystemTrayIcon*>() : nullptr;
        const auto* check = window ? window->findChild<QTimer*>("TimerCheck") : nullptr;
        const std::pair<const char*, bool> steps[] = {
            {"how to notify", state.sNotifType == "T"},
            {"saved period", state.sPeriod == "D+7"},
            {"upgrade", state.DBVersion == 4},
            {"actions", state.pendingActions && state.OneMin > 0},
            {"tray", tray != nullptr && tray->isVisible()},
            {"events", period.IsRead()},
            {"timers", check != nullptr && check->isActive()},
            {"period shown", !state.dShownStart.isZero()},
        };
        std::string done;
        bool all = true;
        for (const auto& [name, isDone] : steps) {
            EXPECT_TRUE(all || !isDone) << name << " comes too early; before it only" << done;
            all = all && isDone;
            done += isDone ? std::string(" ") + name + "," : "";
        }
        if (seen.empty() || seen.back() != done) {
            seen.push_back(done);
        }
    };
    load();
    clock.whenAsked();
    clock.whenAsked = nullptr;
    EXPECT_THAT(seen, testing::Contains(" how to notify,"));
    EXPECT_THAT(seen, testing::Contains(" how to notify, saved period, upgrade, actions, tray,"));
    EXPECT_THAT(seen, testing::Contains(
                          " how to notify, saved period, upgrade, actions, tray, events, timers,"));
    EXPECT_EQ(seen.back(),
              " how to notify, saved period, upgrade, actions, tray, events, timers, "
              "period shown,");
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
