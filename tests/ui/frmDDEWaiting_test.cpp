// The period's rows of a window that nobody sees: they wait.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QTabWidget>

#include "WindowTest.h"

namespace vl {
namespace {

using test::event;
using test::someFriday;

using frmDDEWaiting = test::WindowTest;

TEST_F(frmDDEWaiting, RowsAreMadeWhenSomebodyLooks) {
    load();
    window->show();
    child<QTabWidget>("tabs").setCurrentIndex(kEventsGrid);
    add(event("{1}", "Meeting", someFriday().addMinutes(60), 15));
    window->DoPeriod();
    const GridList& events = grid(kEventsGrid).list();
    ASSERT_EQ(events.rowCount(), 1U);

    window->hide();
    add(event("{2}", "Lunch", someFriday().addMinutes(90), 15));
    window->DoPeriod();
    EXPECT_EQ(events.rowCount(), 1U) << "nobody sees it";
    EXPECT_EQ(window->GetIconText(), "2 Events\r\n(click to show/hide)");

    window->AddItemR(event("{3}", "In no set", someFriday().addMinutes(95), 15), kEventsGrid);
    EXPECT_EQ(events.rowCount(), 1U);

    window->show();
    EXPECT_EQ(events.rowCount(), 2U);
    EXPECT_TRUE(events.contains("{2}"));
    EXPECT_EQ(tab(kEventsGrid), "&Events: 2");
    EXPECT_EQ(window->GetIconText(), "2 Events");
}

TEST_F(frmDDEWaiting, RowsOfAMinimizedWindowAreMadeWhenItIsBack) {
    load();
    window->show();
    const GridList& events = grid(kEventsGrid).list();
    window->showMinimized();
    add(event("{1}", "Meeting", someFriday().addMinutes(60), 15));
    window->DoPeriod();
    EXPECT_EQ(events.rowCount(), 0U);
    window->showNormal();
    EXPECT_EQ(events.rowCount(), 1U);
}

// What a list says of itself while its rows wait must not make them: others listen to it, too.
TEST_F(frmDDEWaiting, AMinutePassesOverRowsThatWait) {
    for (const int shownTab : {kAllRemindersGrid, kEventsGrid}) {
        for (const char* search : {"", "Item"}) {
            SCOPED_TRACE(std::to_string(shownTab) + search);
            clock.time = someFriday();
            period.mCol = std::make_shared<GenCollection>();
            load();
            for (int i = 0; i < 40; ++i) {
                add(event("{" + std::to_string(i) + "}", "Item " + std::to_string(i),
                          someFriday().addMinutes(60 + i), 15));
            }
            window->show();
            child<QTabWidget>("tabs").setCurrentIndex(shownTab);
            child<QLineEdit>("txtSearch").setText(search);
            window->DoPeriod();
            ASSERT_TRUE(window->SelectGUID("{20}"));
            const GridList& rows = grid(shownTab).list();

            window->hide();
            add(event("{x}", "Item more", someFriday().addMinutes(61), 15));
            period.mCol->Remove("{10}");
            window->DoPeriod();
            clock.time = clock.time.addMinutes(1);
            window->ShowTime();
            window->UpdateUI();
            window->RemoveGUID("{20}", shownTab);
            window->RemoveGUID("{21}", shownTab);
            period.mCol->Remove("{21}");
            EXPECT_EQ(rows.rowCount(), 38U) << "of those that were there";

            window->show();
            EXPECT_EQ(rows.rowCount(), 39U);
            EXPECT_TRUE(rows.contains("{x}"));
            EXPECT_FALSE(rows.contains("{10}"));
        }
    }
}

}  // namespace
}  // namespace vl
