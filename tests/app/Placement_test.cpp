#include "app/Placement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "support/Support.h"

namespace vl {
namespace {

TEST(ClampedEdge, StaysOnTheScreen) {
    struct Case {
        double value, screen, window;
        int edge;
    };
    static constexpr Case cases[] = {
        {100, 1280, 560, 100},   {720, 1280, 560, 720}, {721, 1280, 560, 720}, {-5, 1280, 560, 0},
        {900, 1280, 2000, 0},    {640, 1280, 560, 640}, {0.5, 100, 10, 0},     {1.5, 100, 10, 2},
        {1e300, 1280, 560, 720}, {9, 1000, 0, 9},  // as texts 9 would be larger than 1000
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.value << " on " << c.screen);
        EXPECT_EQ(clampedEdge(c.value, c.screen, c.window), c.edge);
        EXPECT_EQ(clampedEdge(c.value - 3000, c.screen, c.window, -3000), c.edge - 3000);
    }
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(clampedEdge(infinity, infinity, 0), 2147483647);
    EXPECT_EQ(clampedEdge(std::nan(""), 100, 10), 0);
}

class Placement : public testing::Test {
protected:
    Placement() { settings.filename = (folder / "x.ini").string(); }
    void save(const char* left, const char* top, const char* width = "", const char* height = "") {
        test::writeFile(settings.filename, std::string("[Window]\nLeft=") + left + "\nTop=" + top +
                                               "\nWidth=" + width + "\nHeight=" + height + '\n');
    }
    test::TempFolder folder;
    Settings settings;
};

constexpr Extent kWindow{560, 380};

TEST_F(Placement, ComesFromTheSettings) {
    const ScreenArea screen[] = {{0, 0, 1280, 800}};
    WindowPlacement p = readPlacement(settings, screen, screen[0], kWindow);
    EXPECT_EQ(p.left, 640);
    EXPECT_EQ(p.top, 400);
    EXPECT_FALSE(p.width || p.height);
    save("5000", "12.5 px", "700", "-1");
    p = readPlacement(settings, screen, screen[0], kWindow);
    EXPECT_EQ(p.left, 1280 - 700) << "of the window as it will be";
    EXPECT_EQ(p.top, 12);
    EXPECT_EQ(p.width, 700);
    EXPECT_FALSE(p.height);
    save("left", "-0", "wide", "1e9");
    p = readPlacement(settings, screen, screen[0], kWindow);
    EXPECT_EQ(p.left, 0);
    EXPECT_EQ(p.top, 0);
    EXPECT_FALSE(p.width);
    EXPECT_EQ(p.height, 1000000);
}

TEST_F(Placement, IsWhereItWasOrOnTheScreenNextToIt) {
    const ScreenArea one{0, 0, 1280, 800};
    const ScreenArea toTheLeft{-1920, -200, 1920, 1080};
    const ScreenArea toTheRight{1280, 0, 1024, 768};
    const ScreenArea withPanel{0, 30, 1280, 770};
    struct Case {
        const char* what;
        std::vector<ScreenArea> screens;
        const char* left;
        const char* top;
        int x, y;
    };
    const Case cases[] = {
        {"inside", {one}, "100", "50", 100, 50},
        {"off the right lower corner", {one}, "1000", "700", 720, 420},
        {"off the left upper corner", {one}, "-300", "-10", 0, 0},
        {"on the left one", {one, toTheLeft}, "-1900", "-150", -1900, -150},
        {"half off the left one", {one, toTheLeft}, "-2200", "600", -1920, 500},
        {"the left one is gone", {one}, "-1900", "-150", 0, 0},
        {"the right one is gone", {one}, "1500", "200", 720, 200},
        {"the right one is gone, another is left", {one, toTheLeft}, "1500", "200", 720, 200},
        {"across two, all in sight", {one, toTheRight}, "1000", "100", 1000, 100},
        {"across two, more of the right", {one, toTheRight}, "1100", "500", 1280, 388},
        {"across two, more of the left", {one, toTheRight}, "900", "500", 720, 420},
        {"the first one lies to the right", {toTheRight, one}, "", "", 1744, 384},
        {"below a panel", {withPanel}, "10", "0", 10, 30},
        {"no screen at all", {}, "-7", "9000", -7, 9000},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        save(c.left, c.top);
        const WindowPlacement p =
            readPlacement(settings, c.screens, c.screens.empty() ? one : c.screens[0], kWindow);
        EXPECT_EQ(p.left, c.x);
        EXPECT_EQ(p.top, c.y);
    }
}

TEST_F(Placement, BeginsAtHalfTheScreenWithItsPanels) {
    const ScreenArea whole{0, 0, 1280, 800};
    const ScreenArea free[] = {{60, 30, 1220, 740}};
    const WindowPlacement p = readPlacement(settings, free, whole, {560, 300});
    EXPECT_EQ(p.left, 640);
    EXPECT_EQ(p.top, 400);
    const WindowPlacement larger = readPlacement(settings, free, whole, kWindow);
    EXPECT_EQ(larger.top, 770 - 380) << "clamped to what the panels leave";
}

// Of one screen that is nothing but: the smaller of value and bound, then the larger of that and 0.
TEST_F(Placement, OnOneScreenEachEdgeIsClampedByItself) {
    const ScreenArea screen[] = {{0, 0, 1280, 800}};
    for (int left = -700; left <= 2000; left += 250) {
        for (int top = -700; top <= 2000; top += 250) {
            save(std::to_string(left).c_str(), std::to_string(top).c_str());
            const WindowPlacement p = readPlacement(settings, screen, screen[0], kWindow, {0, 20});
            ASSERT_EQ(p.left, std::max(std::min(left, 1280 - 560), 0));
            ASSERT_EQ(p.top, std::max(std::min(top, 800 - 380 - 20), 0));
        }
    }
}

TEST_F(Placement, AWindowLargerThanTheScreenBeginsAtItsEdge) {
    const ScreenArea screens[] = {{0, 0, 1280, 800}, {-1280, 0, 1280, 800}};
    save("-1200", "40", "2000", "900");
    const WindowPlacement p = readPlacement(settings, screens, screens[0], kWindow);
    EXPECT_EQ(p.left, -1280);
    EXPECT_EQ(p.top, 0);
}

}  // namespace
}  // namespace vl
