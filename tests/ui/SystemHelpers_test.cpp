#include "ui/SystemHelpers.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QSignalSpy>
#include <QTest>

namespace vl {
namespace {

TEST(SetOnTop, KeepsAWindowVisibleInItsPlace) {
    QWidget window;
    window.setGeometry(40, 50, 200, 100);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_TRUE(setOnTop(window, true));
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.geometry(), QRect(40, 50, 200, 100));
    EXPECT_TRUE(setOnTop(window, false));
    EXPECT_FALSE(window.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_TRUE(window.isVisible());
}

TEST(SetOnTop, DoesNotShowAHiddenWindow) {
    QWidget window;
    EXPECT_TRUE(setOnTop(window, true));
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_FALSE(window.isVisible());
}

TEST(MouseButtonDown, CountsThreeButtons) {
    EXPECT_FALSE(mouseButtonDown(Qt::NoButton));
    EXPECT_TRUE(mouseButtonDown(Qt::LeftButton));
    EXPECT_TRUE(mouseButtonDown(Qt::RightButton));
    EXPECT_TRUE(mouseButtonDown(Qt::MiddleButton));
    EXPECT_TRUE(mouseButtonDown(Qt::BackButton | Qt::RightButton));
    EXPECT_FALSE(mouseButtonDown(Qt::BackButton | Qt::ForwardButton));
}

TEST(MouseButtonDown, FollowsTheMouse) {
    QWidget window;
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_FALSE(mouseButtonDown());
    QTest::mousePress(window.windowHandle(), Qt::RightButton);
    EXPECT_TRUE(mouseButtonDown());
    QTest::mouseRelease(window.windowHandle(), Qt::RightButton);
    EXPECT_FALSE(mouseButtonDown());
}

TEST(ControlKeyDown, GoesByItsOwnBit) {
    struct Case {
        std::uint16_t state;
        bool down;
    };
    static constexpr Case cases[] = {
        {0x0000, false}, {0x0001, false},                   // up, up and toggled
        {0xFF80, true},  {0xFF81, true},                    // down, down and toggled
        {0x8000, false}, {0x1000, true},  {0x0FFF, false},  // the bit alone decides
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << c.state);
        EXPECT_EQ(controlKeyDown(c.state), c.down);
    }
}

TEST(ControlKeyDown, IsFoundInTheStateOfTheKeyboard) {
    EXPECT_TRUE(controlKeyDown(controlKeyState(Qt::ControlModifier | Qt::ShiftModifier)));
    EXPECT_FALSE(controlKeyDown(controlKeyState(Qt::ShiftModifier | Qt::AltModifier)));
    EXPECT_FALSE(controlKeyDown());
}

TEST(HandCursor, IsShownOverTheLabel) {
    QLabel label("More about this");
    showHandCursor(label);
    EXPECT_EQ(label.cursor().shape(), Qt::PointingHandCursor);
}

}  // namespace
}  // namespace vl
