#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZoneForTest.h"
#include "events/GenCollection.h"
#include "model/calEvent.h"

namespace vl {
namespace {

using test::ZoneForTest;
using testing::ElementsAre;
using testing::IsEmpty;

DateTime at(int month, int day, int hour = 0, int minute = 0) {
    return DateTime::fromCivil(2026, month, day, hour, minute);
}

TimeZone zone(const char* name) { return TimeZone::named(name).value(); }

std::vector<DateTime> datesOf(const std::shared_ptr<GenCollection>& collection) {
    std::vector<DateTime> dates;
    for (std::size_t i = 1; collection && i <= collection->Count(); ++i) {
        dates.push_back(collection->Item(i).toDateTime());
    }
    return dates;
}

// Mondays and Wednesdays at 10:00 from the 7th of September 2026.
calEvent series(const std::string& lines = R"(["RRULE:FREQ=WEEKLY;BYDAY=MO,WE",)"
                                           R"("EXDATE:20261125T100000"])") {
    calEvent event;
    event.StartDateTime = at(9, 7, 10);
    event.EndDateTime = at(9, 7, 11);
    event.recurrence = lines;
    event.LoadRecurrence(TimeZone::utc());
    return event;
}

TEST(LoadRecurrence, ReadsTheLinesIntoTheProperties) {
    const calEvent event = series();
    EXPECT_EQ(event.RRULE, "FREQ=WEEKLY;BYDAY=MO,WE");
    EXPECT_THAT(datesOf(event.ExDates), ElementsAre(at(11, 25, 10)));
    ASSERT_NE(event.RDates, nullptr);
    EXPECT_THAT(datesOf(event.RDates), IsEmpty());
    EXPECT_EQ(event.RepDates, nullptr);
    EXPECT_TRUE(event.isRecurrenceLoaded);
    EXPECT_TRUE(event.IsRepeating());
    EXPECT_NE(event.RecurrenceInWords(), "");
}

TEST(LoadRecurrence, WhatIsNoArrayIsNoRecurrence) {
    for (const char* text : {"RRULE:FREQ=DAILY", R"("RRULE:FREQ=DAILY")", R"({"a": "RRULE:X"})",
                             R"(["RRULE:FREQ=DAILY")", "[7]", "null"}) {
        SCOPED_TRACE(text);
        const calEvent event = series(text);
        EXPECT_EQ(event.RRULE, "");
        EXPECT_FALSE(event.IsRepeating());
        EXPECT_EQ(event.LastInstance(), event.StartDateTime);
        EXPECT_TRUE(event.isRecurrenceLoaded);
    }
    EXPECT_TRUE(series("\r\n [\"RRULE:FREQ=DAILY\"]").IsRepeating());
}

TEST(LoadRecurrence, OfNothingClears) {
    calEvent event = series();
    event.recurrence.clear();
    event.isRecurrenceLoaded = false;
    event.LoadRecurrence();
    EXPECT_EQ(event.RRULE, "");
    EXPECT_EQ(event.ExDates, nullptr);
    EXPECT_EQ(event.RDates, nullptr);
    EXPECT_TRUE(event.isRecurrenceLoaded);
    EXPECT_FALSE(event.IsRepeating());
    EXPECT_EQ(event.RecurrenceInWords(), "");
    EXPECT_THAT(event.ICalRecEvents(at(1, 1), at(12, 31)), ElementsAre(at(9, 7, 10)));
}

TEST(LoadRecurrence, KeepsARejectedRuleAndTheStart) {
    const calEvent event = series(R"(["RRULE:FREQ=SOMETIMES"])");
    EXPECT_EQ(event.RRULE, "FREQ=SOMETIMES");
    EXPECT_FALSE(event.IsRepeating());
    EXPECT_THAT(event.ICalRecEvents(at(1, 1), at(12, 31)), ElementsAre(at(9, 7, 10)));
}

TEST(LoadRecurrence, AddedDatesAloneRepeat) {
    const calEvent event = series(R"(["RDATE:20260910T120000,20260911T120000"])");
    EXPECT_EQ(event.RRULE, "");
    EXPECT_TRUE(event.IsRepeating());
    EXPECT_THAT(datesOf(event.RDates), ElementsAre(at(9, 10, 12), at(9, 11, 12)));
    EXPECT_THAT(event.ICalRecEvents(at(1, 1), at(12, 31)),
                ElementsAre(at(9, 7, 10), at(9, 10, 12), at(9, 11, 12)));
}

TEST(LoadRecurrence, OfWhatIsNoRecurrenceGivesOneOccurrence) {
    for (const char* text : {"[]", "{}", "not JSON", "[5]", "\xFF"}) {
        SCOPED_TRACE(text);
        const calEvent event = series(text);
        EXPECT_EQ(event.RRULE, "");
        EXPECT_FALSE(event.IsRepeating());
        EXPECT_TRUE(event.isRecurrenceLoaded);
        EXPECT_EQ(event.LastInstance(), at(9, 7, 10));
    }
}

TEST(LoadRecurrence, OfACopyLeavesTheOriginal) {
    const calEvent event = series();
    calEvent copy = event;
    EXPECT_EQ(copy.NextInstance(at(9, 7, 10)), at(9, 9, 10));
    copy.recurrence.clear();
    copy.LoadRecurrence();
    EXPECT_FALSE(copy.IsRepeating());
    EXPECT_TRUE(event.IsRepeating());
    EXPECT_EQ(event.ExDates->Count(), 1U);
}

// ---- Occurrences

TEST(Occurrences, OfASeriesLeaveOutWhatIsExcluded) {
    const calEvent event = series();
    EXPECT_THAT(event.ICalRecEvents(at(11, 18, 10), at(12, 2, 10)),
                ElementsAre(at(11, 18, 10), at(11, 23, 10), at(11, 30, 10), at(12, 2, 10)));
    EXPECT_THAT(event.ICalRecEvents(at(11, 18, 10), at(12, 2, 10), 2),
                ElementsAre(at(11, 18, 10), at(11, 23, 10)));
    EXPECT_THAT(event.ICalRecEvents(at(11, 18, 10), at(12, 2, 10), 0), IsEmpty());
    EXPECT_THAT(event.ICalRecEvents(at(12, 2, 10), at(11, 18, 10)), IsEmpty());
    EXPECT_EQ(event.NextInstance(at(11, 23, 10)), at(11, 30, 10)) << "strictly after";
    EXPECT_EQ(event.PreviousInstance(at(11, 30, 10)), at(11, 23, 10)) << "strictly before";
    EXPECT_TRUE(event.PreviousInstance(at(9, 7, 10)).isZero());
    EXPECT_TRUE(event.LastInstance().isZero()) << "endless";
}

TEST(Occurrences, OfASeriesWithAnEndHaveALast) {
    const calEvent event = series(R"(["RRULE:FREQ=DAILY;COUNT=3"])");
    EXPECT_EQ(event.LastInstance(), at(9, 9, 10));
    EXPECT_TRUE(event.NextInstance(at(9, 9, 10)).isZero());
}

TEST(Occurrences, OfASingleEventAreItsStart) {
    calEvent event;
    event.StartDateTime = at(11, 20, 9, 30);
    EXPECT_THAT(event.ICalRecEvents(at(11, 20, 9, 30), at(11, 20, 9, 30)),
                ElementsAre(at(11, 20, 9, 30)));
    EXPECT_THAT(event.ICalRecEvents(at(11, 20, 9, 31), at(11, 21)), IsEmpty());
    EXPECT_THAT(event.ICalRecEvents(at(11, 20), at(11, 20, 9, 29)), IsEmpty());
    EXPECT_THAT(event.ICalRecEvents(at(11, 20), at(11, 21), 0), IsEmpty());
    EXPECT_EQ(event.NextInstance(at(11, 20, 9, 29)), at(11, 20, 9, 30));
    EXPECT_TRUE(event.NextInstance(at(11, 20, 9, 30)).isZero());
    EXPECT_EQ(event.PreviousInstance(at(11, 20, 9, 31)), at(11, 20, 9, 30));
    EXPECT_TRUE(event.PreviousInstance(at(11, 20, 9, 30)).isZero());
    EXPECT_EQ(event.LastInstance(), at(11, 20, 9, 30));
}

TEST(Occurrences, TakesExcludedDatesOutOfAList) {
    const calEvent event =
        series(R"(["RRULE:FREQ=WEEKLY","EXDATE:20261125T100000,20260907T100000"])");
    EXPECT_THAT(
        event.ICalDelExceptions({at(11, 25, 10), at(11, 23, 10), at(9, 7, 10), at(11, 25, 11)}),
        ElementsAre(at(11, 23, 10), at(11, 25, 11)));
    EXPECT_THAT(series(R"(["RRULE:FREQ=WEEKLY","EXDATE;VALUE=DATE:20261125"])")
                    .ICalDelExceptions({at(11, 24, 10), at(11, 25, 10), at(11, 25, 11)}),
                ElementsAre(at(11, 24, 10)));
    EXPECT_THAT(calEvent().ICalDelExceptions({at(11, 25)}), ElementsAre(at(11, 25)));
}

TEST(Occurrences, AnExcludedMidnightIsNotAnExcludedDay) {
    calEvent event = series(R"(["RRULE:FREQ=DAILY;BYHOUR=0,10","EXDATE:20261125T000000"])");
    EXPECT_THAT(event.ICalDelExceptions({at(11, 25), at(11, 25, 10)}), ElementsAre(at(11, 25, 10)));
    EXPECT_TRUE(event.IsExcluded(at(11, 25)));
    EXPECT_FALSE(event.IsExcluded(at(11, 25, 10)));
    event.IsAllDayEvent = true;
    event.LoadRecurrence(TimeZone::utc());
    EXPECT_TRUE(event.IsExcluded(at(11, 25, 10))) << "of an all-day event only the date counts";
}

TEST(Occurrences, AnExcludedDayIsOneOfTheSeriesOwnZone) {
    // 21:00 in New York is 03:00 on the next day in Berlin.
    calEvent event;
    event.StartDateTime = at(9, 8, 3);
    event.JSON = R"({"start": {"timeZone": "America/New_York"}})";
    event.recurrence = R"(["RRULE:FREQ=DAILY","EXDATE;VALUE=DATE:20261120"])";
    event.LoadRecurrence(zone("Europe/Berlin"));
    EXPECT_TRUE(event.IsExcluded(at(11, 21, 3)));
    EXPECT_FALSE(event.IsExcluded(at(11, 20, 3)));
    EXPECT_THAT(event.ICalRecEvents(at(11, 20), at(11, 22, 12)),
                ElementsAre(at(11, 20, 3), at(11, 22, 3)));
}

TEST(Occurrences, AStartThatLocalClocksShowTwiceIsTheMomentThatIsMeant) {
    // In Auckland 02:31 came twice on that day; the series is one and a half hours behind it then.
    struct Case {
        const char* start;
        int hour;  // in Auckland, in June
    };
    static constexpr Case cases[] = {{"1993-03-21T01:01:00+10:30", 2},
                                     {"1993-03-20T14:31:00Z", 2},
                                     {"1993-03-21T00:01:00+10:30", 1},
                                     {"1993-03-21T01:01:00", 2},
                                     {"1993-03-20T09:31:00-05:00", 2},
                                     {"1993-03-20", 1},
                                     {"x", 1}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.start);
        calEvent event;
        event.StartDateTime = DateTime::fromCivil(1993, 3, 21, 2, 31);
        event.JSON = std::string(R"({"start": {"dateTime": ")") + c.start +
                     R"(", "timeZone": "Australia/Lord_Howe"}})";
        event.recurrence = R"(["RRULE:FREQ=DAILY"])";
        event.LoadRecurrence(zone("Pacific/Auckland"));
        EXPECT_EQ(event.NextInstance(DateTime::fromCivil(1993, 6, 1)),
                  DateTime::fromCivil(1993, 6, 1, c.hour, 31));
        EXPECT_EQ(event.NextInstance(DateTime::fromCivil(1993, 3, 20)), event.StartDateTime);
    }
}

TEST(Occurrences, AnExceptionIsKnownByItsState) {
    calEvent event;
    for (const std::int32_t state : {0, 1, 2, 3, 4}) {
        event.RecurrenceState = state;
        EXPECT_EQ(event.IsException(), state == 3);
    }
}

// ---- The zone of a series

// A weekly call at 09:00 in New York, seen from Berlin: 15:00, but 14:00 in the weeks of March in
// which only New York has changed its clocks.
calEvent call(const std::string& JSON, const char* local = "Europe/Berlin") {
    calEvent event;
    event.StartDateTime = at(3, 2, 15);
    event.recurrence = R"(["RRULE:FREQ=WEEKLY"])";
    event.JSON = JSON;
    event.LoadRecurrence(zone(local));
    return event;
}

std::string resource(const std::string& timeZone) {
    return R"({"summary":"Call","start":{"dateTime":"2026-03-02T09:00:00-05:00","timeZone":")" +
           timeZone + R"("},"end":{"timeZone":"Asia/Tokyo"}})";
}

TEST(ZoneOfSeries, KeepsTheClockOfTheZoneItsJsonNames) {
    EXPECT_THAT(
        call(resource("America/New_York")).ICalRecEvents(at(3, 1), at(3, 31, 23)),
        ElementsAre(at(3, 2, 15), at(3, 9, 14), at(3, 16, 14), at(3, 23, 14), at(3, 30, 15)));
}

TEST(ZoneOfSeries, IsTheLocalClockWhereNoKnownZoneIsNamed) {
    for (const std::string& text :
         {resource("GMT+05:00"), resource(""), resource("Nowhere/Town"), resource("../UTC"),
          std::string(), std::string("{}"), std::string("not JSON"),
          std::string(R"({"start":{"date":"2026-03-02"}})"),
          std::string(R"({"start":"America/New_York"})"),
          std::string(R"({"timeZone":"America/New_York","end":{"timeZone":"America/New_York"}})"),
          std::string(R"({"x":{"start":{"timeZone":"America/New_York"}}})"),
          std::string(R"({"start":{"x":{"timeZone":"America/New_York"}}})"),
          std::string(R"({"start":{"timeZone":["America/New_York"]}})"),
          std::string(R"([{"start":{"timeZone":"America/New_York"}}])")}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(call(text).NextInstance(at(3, 9)), at(3, 9, 15));
    }
}

TEST(ZoneOfSeries, IsFoundWhereverItStands) {
    for (const char* text :
         {R"({"start":{"timeZone":"America/New_York"}})",
          R"({"a":[{"start":{"timeZone":"UTC"}}],"b":{"timeZone":"UTC"},"start":{"x":[1,{}],)"
          R"("y":{"z":null},"timeZone":"America/New_York","dateTime":"x"},"c":true})",
          R"({"start":{"timeZone":"America/New_York"}}, and what follows is not read)"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(call(text).NextInstance(at(3, 9)), at(3, 9, 14));
    }
}

TEST(ZoneOfSeries, DoesNotShiftAllDayEvents) {
    calEvent event = call(resource("America/New_York"));
    event.IsAllDayEvent = true;
    event.StartDateTime = at(3, 2);
    event.LoadRecurrence(zone("Pacific/Auckland"));
    EXPECT_EQ(event.NextInstance(at(3, 2)), at(3, 9));
}

TEST(ZoneOfSeries, TakesTheSystemsZoneForTheLocalOne) {
    const ZoneForTest here("Europe/Berlin");
    calEvent event = call(resource("America/New_York"));
    event.LoadRecurrence();
    EXPECT_EQ(event.NextInstance(at(3, 9)), at(3, 9, 14));
}

TEST(ZoneOfSeries, WallTimesAndMomentsLeadBackToTheLocalTime) {
    const ZoneForTest here("Europe/Berlin");
    calEvent single;
    single.StartDateTime = at(3, 2, 15);
    single.JSON = resource("America/New_York");
    // A day after New York has changed its clocks.
    const DateTime local = at(3, 9, 14);
    for (const calEvent& event : {call(single.JSON), single}) {
        SCOPED_TRACE(event.IsRepeating());
        EXPECT_TRUE(event.HasOwnZone());
        EXPECT_EQ(event.ToWall(local), at(3, 9, 9));
        EXPECT_EQ(event.FromWall(at(3, 9, 9)), local);
        EXPECT_EQ(event.ToMoment(local), at(3, 9, 13));
        EXPECT_EQ(event.FromMoment(at(3, 9, 13)), local);
        EXPECT_TRUE(event.ToWall(DateTime()).isZero());
        EXPECT_TRUE(event.FromWall(DateTime()).isZero());
        EXPECT_TRUE(event.ToMoment(DateTime()).isZero());
        EXPECT_TRUE(event.FromMoment(DateTime()).isZero());
    }
    calEvent allDay = single;
    allDay.IsAllDayEvent = true;
    for (const calEvent& event : {call("{}"), call(resource("GMT+05:00")), calEvent(), allDay}) {
        EXPECT_FALSE(event.HasOwnZone());
        EXPECT_EQ(event.ToWall(local), local);
        EXPECT_EQ(event.FromWall(local), local);
        EXPECT_EQ(event.ToMoment(local), local);
        EXPECT_EQ(event.FromMoment(local), local);
    }
}

TEST(calEventRecurrence, KeepsPendingError) {
    ErrorState::set(ErrNo::Locked);
    calEvent event = series("not JSON");
    event.JSON = "not JSON";
    event.LoadRecurrence();
    event.ICalRecEvents(at(1, 1), at(12, 31));
    event.NextInstance(at(1, 1));
    event.PreviousInstance(at(1, 1));
    event.LastInstance();
    event.ICalDelExceptions({at(1, 1)});
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

}  // namespace
}  // namespace vl
