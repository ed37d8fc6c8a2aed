// The period views: what each lists, how it is chosen, who has the focus afterwards.
#include <set>

#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QTest>

#include "WindowTest.h"
#include "base/Variant.h"
#include "notify/Periods.h"
#include "ui/UpDown.h"

namespace vl {
namespace {

using test::event;
using test::someFriday;

// Of 2026; the window's now is 20 November, 14:30, a Friday.
DateTime at(int month, int day, int hour = 0, int minute = 0, int second = 0) {
    return DateTime::fromCivil(2026, month, day, hour, minute, second);
}

class frmDDEViews : public test::WindowTest {
protected:
    /// An event at that moment, with a reminder at its start: both grids list it by that moment.
    void addAt(DateTime moment) {
        add(event("{" + formatDateTime(moment) + "}", "Probe", moment, 0));
    }
    bool lists(int tab, DateTime moment) const {
        return listed(tab).contains("{" + formatDateTime(moment) + "}");
    }
    QLineEdit& search() const { return child<QLineEdit>("txtSearch"); }
    void showActive() {
        window->ShowHide();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    /// A repeating event that started at that moment.
    std::shared_ptr<calEvent> series(const char* GUID, DateTime start, const char* rule) {
        auto e = event(GUID, "Series", start, 15);
        e->recurrence = std::string("[\"") + rule + "\"]";
        e->LoadRecurrence();
        e->RecurrenceState = 1;
        return e;
    }
};

TEST_F(frmDDEViews, EachListsWhatLiesInItToTheSecond) {
    struct Case {
        const char* code;
        DateTime first;  // both are listed,
        DateTime last;   // what is a second before or after them is not
    };
    const Case cases[] = {
        {"D-30", at(10, 21), at(11, 20)},
        {"D-14", at(11, 6), at(11, 20)},
        {"W-1", at(11, 9), at(11, 15, 23, 59)},
        {"D-7", at(11, 13), at(11, 20)},
        {"D-1", at(11, 19), at(11, 19, 23, 59)},
        {"R", at(11, 19, 14, 30), at(11, 20, 14, 30)},
        {"N", at(11, 20, 14, 30), at(11, 21, 14, 30)},
        {"T", at(11, 20), at(11, 20, 23, 59)},
        {"D+1", at(11, 21), at(11, 21, 23, 59)},
        {"T+D1", at(11, 20), at(11, 21, 23, 59)},
        {"W0", at(11, 16), at(11, 22, 23, 59)},
        {"D+7", at(11, 20), at(11, 27)},
        {"W+1", at(11, 23), at(11, 29, 23, 59)},
        {"D+14", at(11, 20), at(12, 4)},
        {"D+30", at(11, 20), at(12, 20)},
    };
    load();
    std::set<std::string> there;
    for (const Case& c : cases) {
        for (const DateTime m : {c.first, c.last, c.first.addSeconds(-1), c.last.addSeconds(1)}) {
            if (there.insert(formatDateTime(m)).second) {
                addAt(m);
            }
        }
    }
    for (const Case& c : cases) {
        SCOPED_TRACE(c.code);
        list().setCurrentIndex(static_cast<int>(*periodIndex(c.code)));
        EXPECT_EQ(state.sPeriod, c.code);
        EXPECT_EQ(state.dShownStart, c.first);
        EXPECT_EQ(state.dShownEnd, c.last);
        for (const int tab : {kAllRemindersGrid, kEventsGrid}) {
            EXPECT_TRUE(lists(tab, c.first)) << tab;
            EXPECT_TRUE(lists(tab, c.last)) << tab;
            EXPECT_FALSE(lists(tab, c.first.addSeconds(-1))) << tab;
            EXPECT_FALSE(lists(tab, c.last.addSeconds(1))) << tab;
        }
    }
}

TEST_F(frmDDEViews, ACodeIsReadWithoutRegardToCase) {
    settings.SaveIni("Reminders", "Period", "t+d1");
    addAt(at(11, 21, 9));
    load();
    window->DoPeriod();
    EXPECT_EQ(list().currentText(), "Today + Tomorrow");
    EXPECT_TRUE(lists(kEventsGrid, at(11, 21, 9)));
}

TEST_F(frmDDEViews, DismissedListsWhatWasDismissedAroundToday) {
    load();
    struct Case {
        const char* GUID;
        DateTime start;
        DateTime dismissed;
        bool listed;
    };
    const Case cases[] = {
        {"{kept}", at(11, 20, 16), DateTime(), false},
        {"{gone}", at(11, 20, 16), at(11, 20, 14), true},
        {"{a week ago}", at(11, 13), at(11, 13), true},
        {"{earlier}", at(11, 12, 23, 59), at(11, 20, 14), false},
        {"{in a week}", at(11, 27), at(11, 20, 14), true},
        {"{later}", at(11, 27, 0, 1), at(11, 20, 14), false},
    };
    for (const Case& c : cases) {
        const auto e = event(c.GUID, c.GUID, c.start, 0);
        e->Dismissed = c.dismissed;
        add(e);
    }
    list().setCurrentText("Dismissed");
    for (const int tab : {kAllRemindersGrid, kEventsGrid}) {
        for (const Case& c : cases) {
            EXPECT_EQ(listed(tab).contains(c.GUID), c.listed) << tab << c.GUID;
        }
        const int column = columnIndex(gridColumns(tab), CIDEventD);
        const auto heading = [&] {
            return grid(tab).model()->headerData(column, Qt::Horizontal).toString();
        };
        EXPECT_EQ(heading(), "Dismissed");
        list().setCurrentText("Today");
        EXPECT_EQ(heading(), "Event Date");
        list().setCurrentText("Dismissed");
    }
}

TEST_F(frmDDEViews, HiddenListsEachAtItsNextOccurrenceElseItsLast) {
    load();
    const std::shared_ptr<calEvent> events[] = {
        series("{endless}", at(11, 2, 9), "RRULE:FREQ=WEEKLY"),
        series("{over}", at(10, 5, 9), "RRULE:FREQ=DAILY;COUNT=3"),
        event("{single}", "Single", at(1, 7, 8), 15),
        event("{shown}", "Shown", at(11, 20, 16), 15),
    };
    for (const auto& e : events) {
        e->Hidden = e->GUID != "{shown}";
        add(e);
    }
    list().setCurrentText("Hidden");
    for (const int tab : {kAllRemindersGrid, kEventsGrid}) {
        EXPECT_EQ(listed(tab).rowCount(), 3U);
        const auto start = [&](const char* GUID) {
            const auto row = listed(tab).rows().find(GUID);
            EXPECT_TRUE(row) << GUID;
            return row ? listed(tab).rows().rows()[static_cast<std::size_t>(*row)].span.start
                       : DateTime();
        };
        EXPECT_EQ(start("{endless}"), at(11, 23, 9));
        EXPECT_EQ(start("{over}"), at(10, 7, 9));
        EXPECT_EQ(start("{single}"), at(1, 7, 8));
    }
}

// ---- choosing

TEST_F(frmDDEViews, ChoosingAPeriodShowsItAtOnceAndGoesToTheGrid) {
    load();
    showActive();
    child<QTabWidget>("tabs").setCurrentIndex(kEventsGrid);
    addAt(at(11, 21, 9));
    search().setFocus();
    state.bHasFocus = false;
    clock.time = clock.time.addMinutes(5);
    list().setCurrentText("Tomorrow");
    EXPECT_EQ(state.sPeriod, "D+1");
    EXPECT_TRUE(lists(kEventsGrid, at(11, 21, 9)));
    EXPECT_TRUE(grid(kEventsGrid).hasFocus());
    EXPECT_TRUE(state.bHasFocus) << "the update timer's work is done at once";
    const std::string time = plainText(child<QLabel>("lblTime").text());
    EXPECT_NE(time.find("35"), std::string::npos) << time;
}

TEST_F(frmDDEViews, SteppingGoesByTheListAndOnToTheGrid) {
    load();
    showActive();
    UpDown& arrows = child<UpDown>("UpDown1");
    list().setCurrentText("Today");
    EXPECT_EQ(arrows.value(), 8);
    const std::pair<int, const char*> steps[] = {
        {1, "D+1"}, {1, "T+D1"}, {-1, "D+1"}, {-1, "T"}, {-1, "N"}};
    for (const auto& [by, code] : steps) {
        search().setFocus();
        arrows.stepBy(by);
        EXPECT_EQ(state.sPeriod, code);
        EXPECT_EQ(arrows.value(), list().currentIndex() + 1);
        EXPECT_TRUE(grid(kNewRemindersGrid).hasFocus()) << code;
    }
    // All the way round, either way.
    for (const int by : {1, -1}) {
        for (int i = 0; i < 17; ++i) {
            arrows.stepBy(by);
        }
        EXPECT_EQ(state.sPeriod, "N");
    }
}

TEST_F(frmDDEViews, ARefillLeavesTheFocusToWhoIsTyping) {
    load();
    showActive();
    search().setFocus();
    window->DoPeriod();  // as every check does
    EXPECT_TRUE(search().hasFocus());
    QTest::keyClick(&search(), Qt::Key_F5);
    EXPECT_TRUE(grid(kNewRemindersGrid).hasFocus()) << "who asks for it goes on with the rows";
}

// ---- among other windows

TEST_F(frmDDEViews, OnlyTheDialogTypeTakesTheFocusFromAnotherProgram) {
    load();
    showActive();
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    takeIn(event("{1}", "Meeting", someFriday(), 0));
    add(event("{1}", "Meeting", someFriday(), 0));
    window->FirstNewRowCurrent();
    window->DoPeriod();
    window->SetIcon();
    window->UpdateUI();
    QTest::qWait(50);  // what would take the focus does so in the event loop
    EXPECT_TRUE(other.isActiveWindow());
    EXPECT_FALSE(window->GetHasFocus());
    window->ShowNewReminders("{1}");
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    EXPECT_TRUE(window->GetHasFocus());
    EXPECT_TRUE(grid(kNewRemindersGrid).hasFocus());
}

}  // namespace
}  // namespace vl
