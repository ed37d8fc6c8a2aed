#include "notify/PeriodRows.h"

#include <gtest/gtest.h>

#include "notify/ReminderScreen.h"
#include "support/Events.h"
#include "support/ManualClock.h"

namespace vl {
namespace {

using test::at;
using test::series;
using test::single;

class PeriodRows : public testing::Test {
protected:
    std::shared_ptr<calEvent> put(const std::shared_ptr<calEvent>& event) {
        set.Add(event, event->GUID);
        return event;
    }
    /// "A 19 23:00 (20 01:00)" for each row of the grid: start, and of reminders their time.
    std::string rows(const char* code, int wanted) {
        std::string said;
        const auto hidden = hiddenGUIDs(set);
        const PeriodView view{code, periodRange(code, clock.now()), clock.now(), *hidden};
        leftOut = listPeriod(set, view, [&](const auto& event, const auto& row, int grid) {
            if (grid == wanted) {
                said += (said.empty() ? "" : ", ") + event->GUID + " " + text(row.start) +
                        (row.reminder.isZero() || grid == kEventsGrid
                             ? ""
                             : " (" + text(row.reminder) + ")");
            }
        });
        return said;
    }
    static std::string text(DateTime d) { return formatDateTime(d).substr(8, 8); }
    std::string reminders(const char* code) { return rows(code, kAllRemindersGrid); }
    std::string events(const char* code) { return rows(code, kEventsGrid); }

    test::ManualClock clock{at(14, 0)};
    DBRemindUtils db;
    CalEvents set{db, clock};
    LeftOut leftOut{};
};

TEST_F(PeriodRows, AnEventShowsTheEarlierStartThatItsReminderHasFound) {
    put(series("A", at(23, 0, 0, 1), "FREQ=DAILY", {-120}));
    EXPECT_EQ(reminders("T"), "A 19 23:00 (20 01:00)");
    EXPECT_EQ(events("t"), "A 19 23:00");
}

TEST_F(PeriodRows, HiddenEventsStandInTheirOwnPeriodAlone) {
    put(single("A", at(15, 0), {15}))->Hidden = true;
    put(single("B", at(16, 0), {15}));
    EXPECT_EQ(reminders("T"), "B 20 16:00 (20 15:45)");
    EXPECT_EQ(events("T"), "B 20 16:00");
    EXPECT_EQ(reminders("H"), "A 20 15:00 (20 14:45)");
    EXPECT_EQ(events("h"), "A 20 15:00");
}

TEST_F(PeriodRows, WhatIsLeftOutAsHiddenIsCounted) {
    put(single("A", at(15, 0), {15}))->Hidden = true;
    put(single("B", at(16, 0), {15}))->Hidden = true;
    put(single("C", at(17, 0), {}))->Hidden = true;
    put(single("D", at(10, 0, 0, 27), {15}))->Hidden = true;
    put(single("E", at(18, 0), {15}));
    const auto left = [this](const char* code) {
        reminders(code);
        return leftOut;
    };
    EXPECT_EQ(left("T"), (LeftOut{0, 2, 3}));
    EXPECT_EQ(left("D+7"), (LeftOut{0, 2, 3})) << "one is of the day after";
    EXPECT_EQ(left("D+14"), (LeftOut{0, 3, 4}));
    EXPECT_EQ(left("H"), LeftOut{});
    EXPECT_EQ(left("Di"), LeftOut{}) << "none was dismissed";
    objectAt<calEvent>(*set.mCol, "B")->Dismissed = at(13, 0);
    EXPECT_EQ(left("di"), (LeftOut{0, 1, 1}));
}

TEST_F(PeriodRows, WhetherAnEventIsHiddenTheListTells) {
    const auto event = put(single("{a}", at(15, 0), {15}));
    GenCollection hidden;
    EXPECT_TRUE(isListedIn("T", *event, hidden));
    EXPECT_FALSE(isListedIn("H", *event, hidden));
    EXPECT_FALSE(isListedIn("Di", *event, hidden));
    hidden.Add("{A}", "{A}");
    EXPECT_FALSE(isListedIn("T", *event, hidden));
    EXPECT_TRUE(isListedIn("h", *event, hidden)) << "GUIDs are equal in any case";
    event->Dismissed = at(13, 0);
    EXPECT_FALSE(isListedIn("Di", *event, hidden));
    EXPECT_TRUE(isListedIn("Di", *event, GenCollection()));
}

TEST_F(PeriodRows, AHiddenEventShowsItsNextOccurrenceElseItsLast) {
    struct Case {
        std::shared_ptr<calEvent> event;
        const char* reminders;
        const char* events;
    };
    const Case cases[] = {
        {series("A", at(10, 0, 0, 1), "FREQ=DAILY", {15}), "A 21 10:00 (21 09:45)", "A 21 10:00"},
        {series("B", at(10, 0, 0, 1), "FREQ=DAILY;COUNT=3", {15}), "B 03 10:00 (03 09:45)",
         "B 03 10:00"},
        {single("C", at(10, 0, 0, 2), {15}), "C 02 10:00 (02 09:45)", "C 02 10:00"},
        {single("C", at(10, 0, 0, 2), {24 * 60, 15}), "C 02 10:00 (02 09:45)", "C 02 10:00"},
        {single("D", at(10, 0, 0, 27), {}), "", "D 27 10:00"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.events);
        set.mCol = std::make_shared<GenCollection>();
        c.event->iRemMinutesNext = 5;
        c.event->Hidden = true;
        put(c.event);
        EXPECT_EQ(reminders("H"), c.reminders);
        EXPECT_EQ(events("H"), c.events);
        EXPECT_EQ(c.event->iRemMinutesNext, -100000);
        EXPECT_EQ(c.event->iRemMinutes, *c.reminders != '\0' ? 15 : -100000);
    }
}

TEST_F(PeriodRows, ThePeriodOfWhatWasDismissedListsThatAlone) {
    put(single("A", at(15, 0), {15}))->Dismissed = at(13, 0);
    put(single("B", at(16, 0), {15}));
    EXPECT_EQ(reminders("Di"), "A 20 15:00 (20 14:45)");
    EXPECT_EQ(events("Di"), "A 20 15:00");
    EXPECT_EQ(reminders("T"), "A 20 15:00 (20 14:45), B 20 16:00 (20 15:45)");
}

}  // namespace
}  // namespace vl
