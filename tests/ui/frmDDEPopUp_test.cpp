// The pop-up and the tray's icon, from the window's side.
#include <cmath>

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QSystemTrayIcon>
#include <QTest>
#include <QTimer>

#include "WindowTest.h"
#include "base/ErrorState.h"

namespace vl {
namespace {

using test::event;
using test::someFriday;

class frmDDEPopUp : public test::WindowTest {
protected:
    /// How much of a label is drawn, in whole pixels of ink.
    static double inkOf(QLabel& label) {
        const QImage seen = label.grab().toImage().convertToFormat(QImage::Format_Grayscale8);
        const int paper = qGray(seen.pixel(0, 0));
        double ink = 0;
        for (int y = 0; y < seen.height(); ++y) {
            for (int x = 0; x < seen.width(); ++x) {
                ink += std::abs(qGray(seen.pixel(x, y)) - paper) / 255.0;
            }
        }
        return ink;
    }
    static QWidget* popup() {
        for (QWidget* top : QApplication::topLevelWidgets()) {
            if (top->objectName() == "Popup1") {
                return top;
            }
        }
        return nullptr;
    }
};

TEST_F(frmDDEPopUp, TheLinkOfAPopUpSelectsItsReminder) {
    load();
    for (const char* GUID : {"{1}", "{2}"}) {
        takeIn(event(GUID, std::string("Event ") + GUID, someFriday(), 0));
        auto line = std::make_shared<ValueList>();
        line->items = {Variant(std::string("Event ") + GUID), Variant(" Event start (14:30)")};
        state.EvCol->Add(Variant(ObjectRef(line)), GUID);
    }
    window->ShowPopUp({"2 new reminders", "", -1, false, 300, 100, 100});
    ASSERT_NE(popup(), nullptr);
    EXPECT_TRUE(popup()->isVisible());
    EXPECT_FALSE(window->isVisible());
    // A muted check takes in another one meanwhile: the toast still means what it shows.
    state.EvCol = std::make_shared<GenCollection>();
    clock.time = someFriday().addMinutes(1);
    emit popup()->findChild<QLabel*>("lblPopupLink2")->linkActivated("2");
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(listed(0).currentRow()->GUID, "{2}");
    EXPECT_FALSE(popup()->isVisible());
    EXPECT_EQ(state.dLastShown, clock.time);
}

TEST_F(frmDDEPopUp, APopUpStaysUntilClosedUnlessItWasGivenATime) {
    load();
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

// The font is that of the form, which must not take its weight away.
TEST_F(frmDDEPopUp, ItsTitleIsBoldAndItsTextAsItWasAsked) {
    load();
    for (const bool bold : {false, true}) {
        SCOPED_TRACE(bold);
        window->ShowPopUp({"Items deleted", "Items deleted", -1, bold, 300, 100, 100});
        ASSERT_NE(popup(), nullptr);
        auto& title = *popup()->findChild<QLabel*>("lblPopupTitle");
        const auto texts = popup()->findChildren<QLabel*>("lblPopupText");
        QLabel& text = *texts.back();  // one shown before may still wait to be deleted
        EXPECT_EQ(title.font().family(), text.font().family());
        EXPECT_EQ(title.font().pixelSize(), text.font().pixelSize());
        if (bold) {
            EXPECT_NEAR(inkOf(title), inkOf(text), 0.05 * inkOf(title));
        } else {
            EXPECT_GT(inkOf(title), 1.15 * inkOf(text));
        }
    }
}

TEST_F(frmDDEPopUp, ItKeepsThePendingError) {
    load();
    ErrorState::set(ErrNo::Locked);
    window->ShowPopUp({"Stays", "", -1, false, 300, 100, 100});
    window->ShowSystem("Title", "Text", 5000);
    window->ShowNewReminders("{of none}");
    window->SetIcon();
    window->HidePopUp();
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

// In the window Escape has nothing else to close.
TEST_F(frmDDEPopUp, EscapeInTheWindowClosesIt) {
    load();
    window->ShowHide();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    window->ShowPopUp({"Stays", "", -1, false, 300, 100, 100});
    const auto shown = [] { return popup()->isVisible(); };
    child<QLineEdit>("txtSearch").setFocus();
    child<QLineEdit>("txtSearch").setText("x");
    QTest::keyClick(&child<QLineEdit>("txtSearch"), Qt::Key_Escape);
    EXPECT_EQ(child<QLineEdit>("txtSearch").text(), "") << "there it empties the field";
    EXPECT_TRUE(shown());
    grid(0).setFocus();
    clock.time = someFriday().addMinutes(1);
    QTest::keyClick(&grid(0), Qt::Key_Escape);
    EXPECT_FALSE(shown());
    EXPECT_EQ(state.dLastShown, clock.time);
    clock.time = someFriday().addMinutes(2);
    QTest::keyClick(&grid(0), Qt::Key_Escape);
    EXPECT_EQ(state.dLastShown, someFriday().addMinutes(1)) << "nothing was closed";
    EXPECT_TRUE(window->isVisible());
}

TEST_F(frmDDEPopUp, TheIconHasItsDotWhileRemindersAreNew) {
    load();
    auto* icon = window->findChild<QSystemTrayIcon*>();
    ASSERT_NE(icon, nullptr);
    const auto dotted = [&] {
        const QImage shown = icon->icon().pixmap(32, 32).toImage();
        const bool isNew = shown == window->Pic2.pixmap(32, 32).toImage();
        EXPECT_NE(isNew, shown == window->Pic1.pixmap(32, 32).toImage());
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

}  // namespace
}  // namespace vl
