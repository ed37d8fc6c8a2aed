// However the program ends, its settings are saved, and once.
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

#include <QApplication>
#include <QTest>
#include <QTimer>

#include "WindowTest.h"
#include "ui/SessionEnd.h"

namespace vl {
namespace {

namespace fs = std::filesystem;

class SessionEnds : public test::WindowTest {
protected:
    SessionEnds() {
        // Before the program's own: a file that is there again afterwards was saved twice.
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, &context, [this] {
            saved = fs::exists(settings.filename) && ini("Reminders", "NotifType") == "T";
            fs::remove(settings.filename);
        });
    }
    /// Runs the program until `end`, which runs first thing in the event loop, has ended it.
    template <class End>
    int runUntil(End&& end) {
        const SessionEnd sessionEnd(*window);
        state.sNotifType = "T";
        QTimer::singleShot(0, &context, end);
        bool late = false;
        QTimer::singleShot(20'000, &context, [&] {
            late = true;
            QCoreApplication::exit(1);
        });
        const int status = QApplication::exec();
        EXPECT_FALSE(late) << "it goes on and on";
        return status;
    }

    QObject context;
    bool saved = false;  // when the program was about to end
};

TEST_F(SessionEnds, WhenItIsToldToQuitWithAVisibleWindow) {
    load().ShowHide();
    ASSERT_TRUE(window->isVisible());
    EXPECT_EQ(runUntil([] { QCoreApplication::quit(); }), 0);
    EXPECT_TRUE(saved);
    EXPECT_FALSE(fs::exists(settings.filename)) << "saved twice";
}

TEST_F(SessionEnds, WhenItIsToldToQuitWhileHidden) {
    load();
    EXPECT_EQ(runUntil([] { QCoreApplication::quit(); }), 0);
    EXPECT_TRUE(saved);
    EXPECT_FALSE(fs::exists(settings.filename)) << "saved twice";
}

TEST_F(SessionEnds, ByItsMenu) {
    load();
    EXPECT_EQ(runUntil([this] { window->Exit(); }), 0);
    EXPECT_TRUE(saved);
    EXPECT_FALSE(fs::exists(settings.filename)) << "saved twice";
}

TEST_F(SessionEnds, WhenTheEventLoopIsLeftByAnybody) {
    load();
    const SessionEnd sessionEnd(*window);
    state.sNotifType = "T";
    QTimer::singleShot(0, &context, [] { QCoreApplication::exit(3); });
    EXPECT_EQ(QApplication::exec(), 3);
    EXPECT_EQ(ini("Reminders", "NotifType"), "T");
}

TEST_F(SessionEnds, SavesWhenTheSessionAsksAndGoesOn) {
    load();
    const SessionEnd sessionEnd(*window);
    state.sNotifType = "T";
    const int signal =
        QGuiApplication::staticMetaObject.indexOfSignal("commitDataRequest(QSessionManager&)");
    ASSERT_GE(signal, 0);
    int manager = 0;  // stands for the session manager, of which nothing is asked
    void* arguments[] = {nullptr, &manager};
    QMetaObject::activate(qApp, &QGuiApplication::staticMetaObject,
                          signal - QGuiApplication::staticMetaObject.methodOffset(), arguments);
    EXPECT_EQ(ini("Reminders", "NotifType"), "T");
    window->ShowHide();
    EXPECT_TRUE(window->isVisible());
    window->close();
    EXPECT_FALSE(window->isVisible()) << "a session called off: closing hides, as ever";
}

#ifndef _WIN32
TEST_F(SessionEnds, ByTheFirstSignal) {
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(number);
        saved = false;
        load();
        EXPECT_EQ(runUntil([number] { std::raise(number); }), 0);
        EXPECT_TRUE(saved);
        EXPECT_FALSE(fs::exists(settings.filename)) << "saved twice";
        const auto handler = std::signal(number, SIG_DFL);
        EXPECT_EQ(handler, SIG_DFL) << "nothing is left behind";
    }
}
#endif

}  // namespace
}  // namespace vl
