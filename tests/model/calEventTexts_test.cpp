#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "events/GenCollection.h"
#include "model/calEvent.h"
#include "model/clsReminder.h"

namespace vl {
namespace {

DateTime at(int hour, int minute, int day = 20) {
    return DateTime::fromCivil(2026, 11, day, hour, minute);
}

// "Today" is the 20th of November 2026.
DateWords words() {
    return {[](DateTime d) {
                return d.date() == at(0, 0) ? "Today" : formatDateTime(d.date()).substr(5);
            },
            [](DateTime d) {
                return formatDateTime(d.addSeconds(1)).substr(11, 5);  // midnight has a time too
            }};
}

calEvent meeting() {
    calEvent event;
    event.Subject = "Project meeting";
    event.Location = "Room 2";
    event.VLBase = "C:\\Work.vlb";
    event.StartDateTime = at(14, 45);
    event.EndDateTime = at(15, 30);
    event.reminders = R"({"overrides":[{"method":"popup","minutes":10},)"
                      R"({"method":"email","minutes":1440},{"method":"popup","minutes":-60}]})";
    event.SetRemindersCol();
    return event;
}

TEST(calEventTexts, SummaryIsTheSubject) { EXPECT_EQ(meeting().Summary(), "Project meeting"); }

TEST(calEventTexts, DurationIsInDays) {
    calEvent event;
    EXPECT_EQ(event.Duration(), 0.0);
    event.StartDateTime = at(10, 0);
    event.EndDateTime = at(16, 0, 21);
    EXPECT_EQ(event.Duration(), 1.25);
    event.EndDateTime = at(4, 0);
    EXPECT_EQ(event.Duration(), -0.25);
}

TEST(calEventTexts, OnlyATimedEventIsScheduled) {
    for (const bool allDay : {false, true}) {
        for (const bool unscheduled : {false, true}) {
            calEvent event;
            event.IsAllDayEvent = allDay;
            event.IsUnScheduled = unscheduled;
            EXPECT_EQ(event.isScheduled(), !allDay && !unscheduled);
        }
    }
}

// The words for one reminder that a query recorded.
std::string reminderText(std::int32_t minutes, const char* method = "popup", bool allDay = false) {
    calEvent event;
    event.IsAllDayEvent = allDay;
    event.InstanceStart = at(10, 0);
    event.RemindersCol = std::make_shared<GenCollection>();
    auto reminder = std::make_shared<clsReminder>();
    reminder->Minutes = minutes;
    reminder->Method = method;
    event.RemindersCol->Add(reminder);
    event.iRemMinutes = minutes;
    event.iRemMinutesNext = calEvent::kNoReminder;
    return event.ReminderText();
}

TEST(ReminderText, SaysTheRecordedReminder) {
    EXPECT_EQ(reminderText(10), "10 minutes");
    EXPECT_EQ(reminderText(0), "Event start");
    EXPECT_EQ(reminderText(60), "1 hour");
    EXPECT_EQ(reminderText(1440, "email"), "1 day (email)");
    EXPECT_EQ(reminderText(10, "popup", true), "10 minutes") << "all-day events too";
}

TEST(ReminderText, SaysHowLongAfterTheStart) {
    EXPECT_EQ(reminderText(-1), "1 minute after start");
    EXPECT_EQ(reminderText(-10), "10 minutes after start");
    EXPECT_EQ(reminderText(-60), "1 hour after start");
    EXPECT_EQ(reminderText(-90), "90 minutes after start");
    EXPECT_EQ(reminderText(-180, "email"), "3 hours after start (email)");
    EXPECT_EQ(reminderText(-1440), "1 day after start");
    EXPECT_EQ(reminderText(-20160), "2 weeks after start");
    EXPECT_EQ(reminderText(-2147483647 - 1), "2147483648 minutes after start");
}

TEST(ReminderText, IsEmptyWithoutARecordedReminder) {
    calEvent event = meeting();
    event.InstanceStart = at(14, 45);
    event.iRemMinutes = calEvent::kNoReminder;
    EXPECT_EQ(event.ReminderText(), "");
    EXPECT_EQ(meeting().ReminderText(), "") << "no query has looked at it yet";
}

TEST(ReminderText, SaysSnoozedForATimeOfNoReminder) {
    calEvent event = meeting();
    event.InstanceStart = at(14, 45);
    event.iRemMinutesNext = calEvent::kNoReminder;
    for (const std::int32_t minutes : {9, -65, 100000, -100001}) {
        event.iRemMinutes = minutes;
        EXPECT_EQ(event.ReminderText(), "snoozed") << minutes;
    }
    event.iRemMinutes = 10;
    EXPECT_EQ(event.ReminderText(), "10 minutes");
    event.dReminder = at(14, 35).addSeconds(20);
    EXPECT_EQ(event.ReminderText(), "snoozed") << "the same minute is not the same time";
    event.dReminder = at(14, 35);
    EXPECT_EQ(event.ReminderText(), "10 minutes");
    event.RemindersCol.reset();
    EXPECT_EQ(event.ReminderText(), "snoozed");
}

TEST(ReminderText, TakesTheLastOfTwoAtTheSameTime) {
    calEvent event;
    event.reminders = R"({"overrides":[{"method":"popup","minutes":10},)"
                      R"({"method":"email","minutes":10}]})";
    event.SetRemindersCol();
    event.InstanceStart = at(10, 0);
    event.iRemMinutes = 10;
    EXPECT_EQ(event.ReminderText(), "10 minutes (email)");
}

TEST(RemindersText, JoinsAllOfThem) {
    EXPECT_EQ(meeting().RemindersText(), "1 hour after start, 10 minutes, 1 day (email)");
    EXPECT_EQ(calEvent().RemindersText(), "");
}

TEST(WhenText, SaysDaysAndTimesOnce) {
    struct Case {
        const char* text;
        DateTime start;
        DateTime end;
        bool allDay;
    };
    const Case cases[] = {
        {"Today 14:45-15:30", at(14, 45), at(15, 30), false},
        {"Today 14:45", at(14, 45), at(14, 45), false},
        {"Today 14:45", at(14, 45), DateTime(), false},
        {"Today 14:45", at(14, 45), at(13, 0), false},
        {"Today 14:45", at(14, 45), at(14, 45, 18), false},
        {"Today 22:00 - 11-21 01:00", at(22, 0), at(1, 0, 21), false},
        {"Today 22:00 - 11-21 00:00", at(22, 0), at(0, 0, 21), false},
        {"Today", at(0, 0), at(0, 0), true},
        {"Today - 11-22", at(0, 0), at(0, 0, 22), true},
        {"11-24 08:00 - 11-26 18:00", at(8, 0, 24), at(18, 0, 26), false},
        {"", DateTime(), DateTime(), false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        calEvent event;
        event.StartDateTime = c.start;
        event.EndDateTime = c.end;
        event.IsAllDayEvent = c.allDay;
        EXPECT_EQ(event.WhenText(DateTime(), words()), c.text);
    }
}

TEST(WhenText, IsOfTheOccurrenceThatIsMeant) {
    calEvent event = meeting();
    EXPECT_EQ(event.WhenText(at(14, 45, 27), words()), "11-27 14:45-15:30");
    event.InstanceStart = at(14, 45, 25);
    EXPECT_EQ(event.WhenText(DateTime(), words()), "11-25 14:45-15:30");
    EXPECT_EQ(event.WhenText(at(14, 45, 27), words()), "11-27 14:45-15:30");
}

TEST(ToolTip, HasALineForAllThereIsToSay) {
    calEvent event = meeting();
    EXPECT_EQ(event.ToolTip(DateTime(), words()),
              "Project meeting\nToday 14:45-15:30\nRoom 2\n"
              "1 hour after start, 10 minutes, 1 day (email)\nC:\\Work.vlb");
    event.Location.clear();
    event.RemindersCol.reset();
    EXPECT_EQ(event.ToolTip(at(14, 45, 27), words()),
              "Project meeting\n11-27 14:45-15:30\nC:\\Work.vlb");
    EXPECT_EQ(calEvent().ToolTip(DateTime(), words()), "");
}

TEST(ToolTip, SaysHowTheEventRepeats) {
    calEvent event = meeting();
    event.RemindersCol.reset();
    event.recurrence = R"(["RRULE:FREQ=WEEKLY;BYDAY=FR"])";
    event.LoadRecurrence(TimeZone::utc());
    const std::string rule = event.RecurrenceInWords();
    ASSERT_NE(rule, "");
    EXPECT_EQ(event.ToolTip(DateTime(), words()),
              "Project meeting\nToday 14:45-15:30\nRoom 2\n" + rule + "\nC:\\Work.vlb");
    EXPECT_EQ(event.SBMessage(DateTime(), words()),
              "Project meeting, Today 14:45-15:30, Room 2, " + rule);
}

TEST(SBMessage, IsOneLine) {
    calEvent event = meeting();
    EXPECT_EQ(event.SBMessage(DateTime(), words()), "Project meeting, Today 14:45-15:30, Room 2");
    event.Subject = "Two\r\nlines\n";
    event.Location = "\tup \n\n down";
    EXPECT_EQ(event.SBMessage(at(14, 45, 27), words()), "Two lines, 11-27 14:45-15:30, up down");
    EXPECT_EQ(calEvent().SBMessage(DateTime(), words()), "");
}

TEST(calEventTexts, CarriesOnWhenADateCannotBeSaid) {
    const DateWords failing = {[](DateTime) -> std::string { throw std::runtime_error("no"); },
                               [](DateTime) { return std::string(); }};
    ErrorState::set(ErrNo::Locked);
    const calEvent event = meeting();
    EXPECT_EQ(event.SBMessage(DateTime(), failing), "Project meeting, Room 2");
    EXPECT_EQ(event.WhenText(DateTime(), failing), "");
    EXPECT_EQ(event.ToolTip(DateTime(), DateWords{}),
              "Project meeting\nRoom 2\n1 hour after start, 10 minutes, 1 day (email)\n"
              "C:\\Work.vlb");
    EXPECT_EQ(event.ReminderText(), "");
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked) << "KeepsPendingError";
    ErrorState::clear();
}

}  // namespace
}  // namespace vl
