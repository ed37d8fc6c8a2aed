#include "notify/TrayText.h"

#include <gtest/gtest.h>

namespace vl {
namespace {

TEST(TrayText, FollowsTabAndCounts) {
    struct Case {
        int tab;
        std::size_t rows;
        std::size_t newRows;
        bool visible;
        const char* text;
    };
    static constexpr Case cases[] = {
        {0, 0, 0, true, "0 New reminder"},
        {0, 1, 1, true, "1 New reminder\r\n1 new reminder"},
        {0, 2, 2, true, "2 New reminders\r\n2 new reminders"},
        {1, 1, 0, true, "1 Reminder"},
        {1, 7, 0, false, "7 Reminders\r\n(click to show/hide)"},
        {2, 2, 1, true, "2 Events\r\n1 new reminder"},
        {2, 0, 3, false, "0 Event\r\n3 new reminders\r\n(click to show/hide)"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(iconText(c.tab, c.rows, c.newRows, c.visible), c.text);
    }
}

}  // namespace
}  // namespace vl
