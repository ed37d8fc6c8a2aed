// The window on a desktop that shows no tray icons.
#include <gtest/gtest.h>

#include <QLabel>
#include <QTest>
#include <QTimer>

#include "WindowTest.h"

namespace vl {
namespace {

using test::event;
using test::someFriday;

class frmDDENoTray : public test::WindowTest {
protected:
    frmDDENoTray() {
        hasTray = false;
        settings.SaveIni("Reminders", "NotifType", "T");
    }
    /// Loaded, with the reminders of the sample that are due.
    void loadWithSample() {
        haveDatabase();
        load();
        ASSERT_TRUE(QTest::qWaitFor([this] { return listed(kNewRemindersGrid).rowCount() > 0; }));
        takeIn(event("{1}", "Meeting", someFriday(), 0));
    }
    /// The tray has had its time to come.
    void waitedForTray() {
        QTimer& timer = child<QTimer>("TimerTray");
        EXPECT_TRUE(timer.isActive());
        timer.start(0);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !timer.isActive(); }));
    }
    QString status() const { return child<QLabel>("lblStatus").text(); }
    bool said() const { return status().startsWith("This desktop shows no tray icons"); }
};

TEST_F(frmDDENoTray, TheWindowIsPutWithinReachAndSaysSoOnce) {
    loadWithSample();
    waitedForTray();
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(window->isMinimized());
    EXPECT_FALSE(said()) << "nobody would read it";
    window->showNormal();
    ASSERT_TRUE(QTest::qWaitFor([this] { return said(); }));
    window->DoPeriod();
    EXPECT_TRUE(said()) << "a refill changes nothing about it";
    EXPECT_TRUE(window->SelectGUID("{1}"));
    EXPECT_FALSE(said());
    window->HideMe();
    window->ShowHide();
    EXPECT_FALSE(said());
}

TEST_F(frmDDENoTray, AWindowThatIsShownAlreadySaysItThere) {
    loadWithSample();
    window->ShowHide();
    waitedForTray();
    EXPECT_FALSE(window->isMinimized());
    EXPECT_TRUE(said());
}

TEST_F(frmDDENoTray, NothingIsSaidWhereThereIsOne) {
    hasTray = true;
    loadWithSample();
    waitedForTray();
    EXPECT_FALSE(window->isVisible());
    window->ShowHide();
    EXPECT_FALSE(said());
}

TEST_F(frmDDENoTray, ComesBackAsLargeAsItWas) {
    load();
    window->showMaximized();
    window->HideMe();
    ASSERT_TRUE(window->isMinimized());
    window->ShowHide();
    EXPECT_FALSE(window->isMinimized());
    EXPECT_TRUE(window->isMaximized());
}

TEST_F(frmDDENoTray, MinimizedItWakesForItsChecksOnly) {
    load();
    window->ShowHide();
    EXPECT_TRUE(child<QTimer>("TimerUpdate").isActive());
    window->HideMe();
    ASSERT_TRUE(window->isMinimized());
    child<QTimer>("TimerUpdate").start(0);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !child<QTimer>("TimerUpdate").isActive(); }));
    window->showNormal();
    EXPECT_TRUE(QTest::qWaitFor([this] { return child<QTimer>("TimerUpdate").isActive(); }));
}

}  // namespace
}  // namespace vl
