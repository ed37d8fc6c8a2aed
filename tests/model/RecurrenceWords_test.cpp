#include "gtest/gtest.h"

#include "model/Recurrence.h"

namespace vl {
namespace {

struct Case {
    const char* lines;
    const char* words;
};

void check(const Case& c, bool allDay) {
    SCOPED_TRACE(c.lines);
    // Thursday
    const DateTime start = DateTime::fromCivil(2026, 1, 15, allDay ? 0 : 9, 0, 0);
    std::string RRULE;
    const Recurrence r = Recurrence::load({c.lines, start, allDay, ""}, TimeZone::utc(), &RRULE);
    EXPECT_EQ(r.inWords(RRULE), c.words);
}

TEST(RecurrenceWords, SayWhatPeopleSay) {
    static constexpr Case cases[] = {
        {"RRULE:FREQ=DAILY", "Every day"},
        {"RRULE:FREQ=DAILY;INTERVAL=3", "Every 3 days"},
        {"RRULE:FREQ=DAILY;BYDAY=MO,TU,WE,TH,FR", "Every weekday"},
        {"RRULE:FREQ=DAILY;BYMONTH=7,8", "Every day in July and August"},
        {"RRULE:FREQ=WEEKLY", "Every week on Thursday"},
        {"RRULE:FREQ=WEEKLY;BYDAY=FR,TU,WE,TH,MO", "Every weekday"},
        {"RRULE:FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR,SA,SU", "Every day"},
        {"RRULE:FREQ=WEEKLY;INTERVAL=2;BYDAY=FR,MO;UNTIL=20270303T090000Z",
         "Every 2 weeks on Monday and Friday until 3 March 2027"},
        {"RRULE:FREQ=WEEKLY;BYDAY=MO,WE,SU", "Every week on Monday, Wednesday and Sunday"},
        {"RRULE:FREQ=WEEKLY;INTERVAL=3;BYDAY=MO,TU,WE,TH,FR", "Every 3 weeks on weekdays"},
        {"RRULE:FREQ=MONTHLY", "Every month on the 15th"},
        {"RRULE:FREQ=MONTHLY;BYMONTHDAY=1,22,-1",
         "Every month on the 1st, the 22nd and the last day"},
        {"RRULE:FREQ=MONTHLY;BYMONTHDAY=-2", "Every month on the 2nd to last day"},
        {"RRULE:FREQ=MONTHLY;BYDAY=3TH", "Every month on the 3rd Thursday"},
        {"RRULE:FREQ=MONTHLY;INTERVAL=2;BYDAY=-1FR", "Every 2 months on the last Friday"},
        {"RRULE:FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-1", "Every month on the last weekday"},
        {"RRULE:FREQ=MONTHLY;BYDAY=TH;BYSETPOS=2", "Every month on the 2nd Thursday"},
        {"RRULE:FREQ=MONTHLY;BYDAY=TU", "Every month on every Tuesday"},
        {"RRULE:FREQ=YEARLY;COUNT=10;BYMONTH=5;BYMONTHDAY=4", "Every year on 4 May, 10 times"},
        {"RRULE:FREQ=YEARLY", "Every year on 15 January"},
        {"RRULE:FREQ=YEARLY;BYMONTHDAY=7", "Every year on 7 January"},
        {"RRULE:FREQ=YEARLY;INTERVAL=4;BYMONTH=11;BYDAY=4TH",
         "Every 4 years on the 4th Thursday of November"},
        {"RRULE:FREQ=YEARLY;BYMONTH=3,9;BYMONTHDAY=-1",
         "Every year on the last day of March and September"},
        {"RRULE:FREQ=HOURLY;INTERVAL=5;COUNT=1", "Every 5 hours, 1 time"},
        {"RRULE:FREQ=DAILY;BYHOUR=9,17", "Every day at 09:00 and 17:00"},
        {"RRULE:FREQ=DAILY;COUNT=5;UNTIL=20260301", "Every day, 5 times, until 1 March 2026"},
        {"RRULE:FREQ=NEVER\nRRULE:FREQ=DAILY\nRDATE:20270101T000000Z",
         "Every day, and on 1 more date"},
        {"RRULE:FREQ=WEEKLY;BYDAY=MO\nRRULE:FREQ=MONTHLY;BYMONTHDAY=1",
         "Every week on Monday; Every month on the 1st"},
        {"RDATE:20270101T000000Z,20270102T000000Z", "On its start and on 2 more dates"},
    };
    for (const Case& c : cases) {
        check(c, false);
    }
}

TEST(RecurrenceWords, AreGeneralWhereOneSentenceWouldNotDo) {
    static constexpr Case cases[] = {
        {"RRULE:FREQ=YEARLY;BYWEEKNO=20", "Every year, at times chosen by its rule"},
        {"RRULE:FREQ=YEARLY;BYDAY=20MO;COUNT=3",
         "Every year, at times chosen by its rule, 3 times"},
        {"RRULE:FREQ=MONTHLY;BYDAY=FR;BYMONTHDAY=13", "Every month, at times chosen by its rule"},
        {"RRULE:FREQ=HOURLY;BYHOUR=9,10", "Every hour, at times chosen by its rule"},
        {"RRULE:FREQ=WEEKLY;BYDAY=MO,TU;BYSETPOS=1", "Every week, at times chosen by its rule"},
    };
    for (const Case& c : cases) {
        check(c, false);
    }
}

TEST(RecurrenceWords, OfAllDayEventsNameNoTimes) {
    check({"RRULE:FREQ=DAILY;BYHOUR=9;UNTIL=20260301T000000Z", "Every day until 1 March 2026"},
          true);
    check({"RRULE:FREQ=HOURLY", ""}, true);
}

TEST(RecurrenceWords, AreEmptyForWhatDoesNotRepeat) {
    check({"", ""}, false);
    check({"RRULE:FREQ=NEVER", ""}, false);
}

}  // namespace
}  // namespace vl
