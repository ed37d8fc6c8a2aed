#include "ui/ToastPlace.h"

#include <gtest/gtest.h>

namespace vl {
namespace {

// What the desktop does not tell.
constexpr QRect kNotTold;

QRect iconAt(int x, int y) { return {x - 11, y - 11, 22, 22}; }

ToastScreen bare(const QRect& whole) { return {whole, whole}; }

TEST(ToastPlace, IsTheCornerNextToTheTray) {
    struct Case {
        const char* where;
        QRect icon;
        QRect available;
        Qt::Corner corner;
    };
    // A panel takes 30 off one of the edges.
    const QRect screen(1000, 0, 1000, 800);
    const Case cases[] = {
        {"panel below", iconAt(1980, 785), {1000, 0, 1000, 770}, Qt::BottomRightCorner},
        {"panel above", iconAt(1980, 15), {1000, 30, 1000, 770}, Qt::TopRightCorner},
        {"tray at the left", iconAt(1015, 785), {1000, 0, 1000, 770}, Qt::BottomLeftCorner},
        {"panel at the left", iconAt(1015, 15), {1030, 0, 970, 800}, Qt::TopLeftCorner},
        {"the icon counts, not the panel",
         iconAt(1015, 15),
         {1000, 0, 1000, 770},
         Qt::TopLeftCorner},
        {"not told, panel below", kNotTold, {1000, 0, 1000, 770}, Qt::BottomRightCorner},
        {"not told, panel above", kNotTold, {1000, 30, 1000, 770}, Qt::TopRightCorner},
        {"not told, panel at the left", kNotTold, {1030, 0, 970, 800}, Qt::BottomLeftCorner},
        {"not told, panel at the right", kNotTold, {1000, 0, 970, 800}, Qt::BottomRightCorner},
        {"not told, none", kNotTold, screen, Qt::BottomRightCorner},
        {"on no screen", iconAt(15, 15), screen, Qt::BottomRightCorner},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.where);
        const ToastScreen screens[] = {{screen, c.available}};
        const ToastPlace place = toastPlace(c.icon, screens);
        EXPECT_EQ(place.corner, c.corner);
        EXPECT_TRUE(c.available.contains(place.room));
        EXPECT_FALSE(place.room.intersects(c.icon));
        EXPECT_GE(place.room.width(), 900);
        EXPECT_GE(place.room.height(), 700);
    }
}

TEST(ToastPlace, IsOnTheScreenOfTheTray) {
    const QRect left(0, 0, 1920, 1080);
    const QRect right(1920, -200, 1280, 1024);
    const QRect above(300, -900, 1440, 900);
    struct Case {
        const char* where;
        QRect icon;
        std::vector<ToastScreen> screens;  // the primary one first
        QRect on;
    };
    const QRect leftAbovePanel(0, 0, 1920, 1050);
    const QRect rightBelowPanel(1920, -170, 1280, 994);
    const Case cases[] = {
        {"on the primary one", iconAt(1900, 1065), {bare(left), bare(right)}, left},
        {"on the other one", iconAt(3180, 812), {bare(left), bare(right)}, right},
        {"on a third one, above", iconAt(320, -880), {bare(left), bare(right), bare(above)}, above},
        {"whatever other panels there are",
         iconAt(3180, 812),
         {{left, leftAbovePanel}, bare(right)},
         right},
        {"not told, the primary one", kNotTold, {bare(right), bare(left)}, right},
        {"not told, where the panel is", kNotTold, {bare(left), {right, rightBelowPanel}}, right},
        {"not told, a panel on each",
         kNotTold,
         {{left, leftAbovePanel}, {right, rightBelowPanel}},
         left},
        {"in the gap beside a lower screen", iconAt(2000, 1000), {bare(left), bare(right)}, left},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.where);
        EXPECT_TRUE(c.on.contains(toastPlace(c.icon, c.screens).room));
    }
}

// Where there are several screens, X11 does not say which room the panels take.
TEST(ToastPlace, LeavesTheIconFreeWhereNoPanelIsKnown) {
    const ToastScreen screens[] = {bare({0, 0, 1000, 800})};
    EXPECT_EQ(toastPlace(iconAt(980, 785), screens).room.bottom(), 785 - 11 - 11);
    EXPECT_EQ(toastPlace(iconAt(980, 15), screens).room.top(), 15 + 11 + 10);
    // Beside a panel at the side there is room as well as above it.
    EXPECT_EQ(toastPlace(iconAt(985, 400), screens).room, QRect(10, 10, 980, 780));
}

TEST(ToastPlace, TheDesktopHasAScreen) {
    const std::vector<ToastScreen> screens = toastScreens();
    ASSERT_FALSE(screens.empty());
    for (const ToastScreen& screen : screens) {
        EXPECT_TRUE(screen.whole.contains(screen.available));
    }
}

}  // namespace
}  // namespace vl
