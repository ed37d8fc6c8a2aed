#include "notify/TrayText.h"

#include <gtest/gtest.h>

namespace vl {
namespace {

TEST(TrayText, FollowsTabAndCounts) {
    struct Case {
        std::size_t rows;
        std::size_t newRows;
        const char* text;
        int tab;
        bool visible;
    };
    static constexpr Case cases[] = {
        {0, 0, "0 New reminder", 0, true},
        {1, 1, "1 New reminder\r\n1 new reminder", 0, true},
        {2, 2, "2 New reminders\r\n2 new reminders", 0, true},
        {1, 0, "1 Reminder", 1, true},
        {7, 0, "7 Reminders\r\n(click to show/hide)", 1, false},
        {2, 1, "2 Events\r\n1 new reminder", 2, true},
        {0, 3, "0 Event\r\n3 new reminders\r\n(click to show/hide)", 2, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(iconText(c.tab, c.rows, c.newRows, c.visible), c.text);
    }
}

}  // namespace
}  // namespace vl
