// The load handler, help, and what the settings keep.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <QLabel>
#include <QTest>

#include "LoadTest.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using test::writeFile;

using frmDDELoad = test::LoadTest;

// What was marked as done is read by nothing else: it can be looked at, and reactivated.
TEST_F(frmDDELoad, RefreshReadsAllThereIs) {
    settings.SaveIni("Reminders", "DBVersion", "4");  // an older one forgets what was done
    writeFile(path, sample());
    load();
    ASSERT_GT(held(), 1U);
    const std::string GUID = objectAt<calEvent>(*period.mCol, 1)->GUID;
    window.reset();
    EXPECT_EQ(db.Execute("UPDATE Reminders SET Status=\"AllDone\" WHERE GUID=\"" + GUID + "\""), 1);
    db.CloseDB();
    load();
    EXPECT_FALSE(period.mCol->Exists(GUID));
    refresh();
    ASSERT_TRUE(period.mCol->Exists(GUID));
    EXPECT_EQ(objectAt<calEvent>(*period.mCol, GUID)->status, "AllDone");
    EXPECT_TRUE(reminders.mCol->Exists(GUID));
}

// ---- help

TEST_F(frmDDELoad, F1OpensTheWindowsHelp) {
    load();
    press(Qt::Key_F1);
    EXPECT_EQ(opened, std::vector<std::string>{"file:///help/index.html#5565"});
}

TEST_F(frmDDELoad, WithoutAHelpPageF1DoesNothing) {
    HelpBase.clear();
    load();
    press(Qt::Key_F1);
    EXPECT_TRUE(opened.empty());
}

// ---- timers and state

TEST_F(frmDDELoad, TheFirstCheckWaitsForNoTick) {
    load();
    EXPECT_TRUE(state.dLastUpdated.isZero()) << "not in the load handler either";
    EXPECT_TRUE(QTest::qWaitFor([this] { return !state.dLastUpdated.isZero(); }, 5000));
    EXPECT_EQ(child<QTimer>("TimerCheck").interval(), 20000);
}

TEST_F(frmDDELoad, SetsTimersAndState) {
    load();
    EXPECT_DOUBLE_EQ(state.OneMin * 1440, 1);
    EXPECT_EQ(state.pendingActions->Count(), 0U);
    const std::pair<const char*, int> intervals[] = {
        {"TimerCheck", 20000}, {"TimerUpdate", 1000}, {"TimerFlash", 500}, {"TimerActions", 50}};
    for (const auto& [name, interval] : intervals) {
        EXPECT_EQ(child<QTimer>(name).interval(), interval) << name;
    }
    EXPECT_TRUE(child<QTimer>("TimerCheck").isActive());
    for (const char* name : {"TimerActions", "TimerFlash", "TimerUpdate"}) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return !child<QTimer>(name).isActive(); })) << name;
    }
}

TEST_F(frmDDELoad, ChecksEveryTenSecondsWhileShownAndEveryTwoInADevelopmentRun) {
    for (const bool development : {false, true}) {
        SCOPED_TRACE(development);
        DebugMode = development;
        load();
        const auto interval = [this] { return child<QTimer>("TimerCheck").interval(); };
        EXPECT_EQ(interval(), 20000) << "hidden";
        window->ShowHide();
        EXPECT_EQ(interval(), development ? 2000 : 10000);
        window->ShowHide();
        EXPECT_EQ(interval(), 20000) << "hidden";
    }
}

// ---- settings

TEST_F(frmDDELoad, TheWindowDoesNotWanderOverRestarts) {
    using Size = void (QWidget::*)();
    static constexpr std::pair<const char*, Size> kSizes[] = {
        {"normal", &QWidget::showNormal},
        {"minimized", &QWidget::showMinimized},
        {"maximized", &QWidget::showMaximized},
        {"full", &QWidget::showFullScreen}};
    const auto saved = [this] {
        window->SaveSettings();
        return settings.GetIniSection("Window");
    };
    for (const auto& [name, size] : kSizes) {
        SCOPED_TRACE(name);
        load();
        window->ShowHide();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        window->move(60, 70);
        window->resize(520, 330);
        QTest::qWait(1);
        ASSERT_NE(window->geometry().topLeft(), window->pos()) << "there is a frame to tell from";
        const std::string before = saved();
        ASSERT_EQ(before.substr(0, 15), std::string("Left=60\0Top=70\0", 15));
        for (int restart = 0; restart < 3; ++restart) {
            (window.get()->*size)();
            QTest::qWait(1);
            EXPECT_EQ(saved(), before);
            load();
            window->ShowHide();
            ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        }
    }
}

TEST_F(frmDDELoad, OlderFlagsAreTakenOverOnceAndThenGone) {
    settings.SaveIni("Reminders", "NotifType", "D");
    settings.SaveIni("Reminders", "Popup", "1");
    load();
    EXPECT_EQ(state.sNotifType, "P");
    settings.SaveIni("Reminders", "System", "1");
    load();
    EXPECT_EQ(state.sNotifType, "S");
    window->SaveSettings();
    EXPECT_EQ(ini("Reminders", "Popup"), "0");
    EXPECT_EQ(ini("Reminders", "System"), "0");
    EXPECT_EQ(ini("Reminders", "NotifType"), "S");
    state.sNotifType = "T";
    window->SaveSettings();
    load();
    EXPECT_EQ(state.sNotifType, "T");
}

TEST_F(frmDDELoad, FlagsAndVersionAreWholeNumbers) {
    struct Case {
        const char* text;
        int number;
    };
    static constexpr Case cases[] = {{"", 0},    {"0", 0},      {"-1", -1},
                                     {" 7 ", 7}, {"yes", 0},    {"0.4", 0},
                                     {"0.6", 1}, {"2 of 3", 2}, {"1e99", 2147483647}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        settings.SaveIni("Reminders", "Muted", c.text);
        settings.SaveIni("Reminders", "DBVersion", c.text);
        load();
        EXPECT_EQ(state.bMuted, c.number != 0);
        EXPECT_EQ(state.DBVersion, c.number);
    }
}

TEST_F(frmDDELoad, AddsItsColumnsToTheFileOfAnOlderHost) {
    const auto make = [&] {
        fs::remove(path);
        jet::Database::create(path, [](jet::Database& file) {
            file.createTable("Reminders",
                             std::vector<jet::NewColumn>{{"GUID", jet::ColumnType::Text},
                                                         {"Status", jet::ColumnType::Text}});
        });
    };
    make();
    load();
    EXPECT_EQ(state.DBVersion, 4);
    for (const char* column : {"id", "NextReminder", "Dismissed", "Hidden"}) {
        EXPECT_TRUE(db.FieldExistsDB("Reminders", column)) << column;
    }
    window->SaveSettings();
    EXPECT_EQ(ini("Reminders", "DBVersion"), "4");
    make();
    settings.SaveIni("Reminders", "DBVersion", "2");
    load();
    EXPECT_FALSE(db.FieldExistsDB("Reminders", "NextReminder")) << "that step is behind it";
    EXPECT_TRUE(db.FieldExistsDB("Reminders", "Hidden"));
}

TEST_F(frmDDELoad, AnUnwritableSettingsFileStillLetsTheWindowStart) {
    settings.filename = (folder / "missing" / "VLReminders.ini").string();
    load();
    EXPECT_EQ(state.sNotifType, "D");
    window->SaveSettings();
    EXPECT_FALSE(fs::exists(settings.filename));
    EXPECT_EQ(child<QLabel>("lblNotice").text(), "Settings cannot be saved");
    EXPECT_TRUE(boxes.shown.empty());
    fs::create_directory(folder / "missing");
    refresh();
    EXPECT_TRUE(child<QLabel>("lblNotice").isHidden());
}

}  // namespace
}  // namespace vl
