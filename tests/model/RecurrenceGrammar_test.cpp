// What may stand in a rule and in the lines around it, and what it means.
#include <string>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include "RecurrenceCase.h"
#include "model/Recurrence.h"

namespace vl {
namespace {

using testing::ElementsAre;

const DateTime kMonday = DateTime::fromCivil(2026, 1, 5, 10, 0, 0);

Recurrence loaded(const std::string& lines, bool allDay = false, const char* zone = "") {
    return Recurrence::load({lines, allDay ? kMonday.date() : kMonday, allDay, zone},
                            TimeZone::named("Europe/Berlin").value());
}

std::vector<std::string> instances(const Recurrence& r, std::size_t most = 40) {
    std::vector<std::string> texts;
    for (const DateTime time :
         r.between(DateTime::fromCivil(2025, 1, 1), DateTime::fromCivil(2040, 1, 1), most)) {
        texts.push_back(test::isoText(time));
    }
    return texts;
}

TEST(RecurrenceGrammar, ARejectedRuleLeavesTheStartAlone) {
    for (const char* rule : {"",
                             "COUNT=3",
                             "FREQ=",
                             "FREQ=FORTNIGHTLY",
                             "FREQ=DAILY;COUNT",
                             "FREQ=DAILY;COUNT=0",
                             "FREQ=DAILY;COUNT=-1",
                             "FREQ=DAILY;COUNT=x",
                             "FREQ=DAILY;COUNT=1.5",
                             "FREQ=DAILY;INTERVAL=-1",
                             "FREQ=DAILY;UNTIL=20260230",
                             "FREQ=DAILY;UNTIL=2026-02-03",
                             "FREQ=DAILY;UNTIL=20260203T1000",
                             "FREQ=DAILY;UNTIL=20260203T240000",
                             "FREQ=DAILY;UNTIL=20260203Z",
                             "FREQ=DAILY;BYSECOND=61",
                             "FREQ=DAILY;BYMINUTE=60",
                             "FREQ=DAILY;BYHOUR=24",
                             "FREQ=DAILY;BYHOUR=-1",
                             "FREQ=WEEKLY;BYDAY=XX",
                             "FREQ=WEEKLY;BYDAY=MO,",
                             "FREQ=MONTHLY;BYDAY=0MO",
                             "FREQ=MONTHLY;BYDAY=54MO",
                             "FREQ=MONTHLY;BYDAY=1",
                             "FREQ=MONTHLY;BYMONTHDAY=0",
                             "FREQ=MONTHLY;BYMONTHDAY=32",
                             "FREQ=MONTHLY;BYMONTHDAY=-32",
                             "FREQ=MONTHLY;BYMONTHDAY=-+1",
                             "FREQ=YEARLY;BYYEARDAY=0",
                             "FREQ=YEARLY;BYYEARDAY=367",
                             "FREQ=YEARLY;BYYEARDAY=-367",
                             "FREQ=YEARLY;BYWEEKNO=0",
                             "FREQ=YEARLY;BYWEEKNO=54",
                             "FREQ=YEARLY;BYWEEKNO=-54",
                             "FREQ=YEARLY;BYMONTH=0",
                             "FREQ=YEARLY;BYMONTH=13",
                             "FREQ=YEARLY;BYMONTH=-1",
                             "FREQ=MONTHLY;BYSETPOS=0",
                             "FREQ=MONTHLY;BYSETPOS=367",
                             "FREQ=MONTHLY;BYSETPOS=-367",
                             "FREQ=WEEKLY;WKST=1MO",
                             "FREQ=WEEKLY;WKST=MO,TU",
                             "FREQ=YEARLY;RSCALE=HEBREW",
                             "FREQ=YEARLY;BYEASTER=0",
                             "FREQ=DAILY;BYWEEKDAY=MO",
                             "FREQ=DAILY;BYWEEKNO=77",
                             "FREQ=DAILY;;x"}) {
        SCOPED_TRACE(rule);
        const Recurrence r = loaded(std::string("RRULE:") + rule);
        EXPECT_TRUE(r.rejected());
        EXPECT_FALSE(r.repeats());
        EXPECT_THAT(instances(r), ElementsAre("2026-01-05T10:00:00"));
        EXPECT_EQ(r.last(), kMonday);
    }
    for (const char* rule : {"FREQ=HOURLY", "FREQ=MINUTELY", "FREQ=SECONDLY"}) {
        EXPECT_TRUE(loaded(std::string("RRULE:") + rule, true).rejected()) << rule;
        EXPECT_FALSE(loaded(std::string("RRULE:") + rule).rejected()) << rule;
    }
}

TEST(RecurrenceGrammar, ValuesUpToTheirLimitsAreTaken) {
    for (const char* rule :
         {"FREQ=DAILY;BYSECOND=0,60", "FREQ=DAILY;BYMINUTE=0,59", "FREQ=DAILY;BYHOUR=0,23",
          "FREQ=YEARLY;BYDAY=53MO,-53SU,+1TU", "FREQ=MONTHLY;BYMONTHDAY=1,31,-1,-31",
          "FREQ=YEARLY;BYYEARDAY=1,366,-1,-366", "FREQ=YEARLY;BYWEEKNO=1,53,-1,-53",
          "FREQ=YEARLY;BYMONTH=1,12", "FREQ=MONTHLY;BYDAY=MO;BYSETPOS=1,366,-1,-366",
          "FREQ=DAILY;UNTIL=20240229", "FREQ=DAILY;UNTIL=20260203T235960",
          "FREQ=DAILY;INTERVAL=99999999999999999999", "FREQ=DAILY;COUNT=99999999999999999999"}) {
        SCOPED_TRACE(rule);
        EXPECT_FALSE(loaded(std::string("RRULE:") + rule).rejected());
    }
}

TEST(RecurrenceGrammar, OddRulesMeanWhatPlainOnesSay) {
    struct Case {
        const char* odd;
        const char* plain;
        bool allDay = false;
    };
    static const Case cases[] = {
        // Writing
        {" freq = weekly ; byday = we , fr ", "FREQ=WEEKLY;BYDAY=WE,FR"},
        {"BYDAY=FR,WE,FR;;COUNT=7;FREQ=WEEKLY;", "FREQ=WEEKLY;COUNT=7;BYDAY=WE,FR"},
        {"FREQ=DAILY;INTERVAL=0", "FREQ=DAILY"},
        {"FREQ=DAILY;INTERVAL=+2;COUNT=+4", "FREQ=DAILY;INTERVAL=2;COUNT=4"},
        {"FREQ=DAILY;COUNT=;UNTIL=;BYDAY=", "FREQ=DAILY"},
        {"FREQ=DAILY;COUNT=3;COUNT=5", "FREQ=DAILY;COUNT=5"},
        {"FREQ=DAILY;BYHOUR=9;BYHOUR=", "FREQ=DAILY;BYHOUR=9"},
        {"FREQ=DAILY;X-NOTE=1;FOO=BAR;DTSTART=20300101", "FREQ=DAILY"},
        {"RSCALE=gregorian;FREQ=MONTHLY;BYMONTHDAY=31;SKIP=FORWARD", "FREQ=MONTHLY;BYMONTHDAY=31"},
        // Combinations that the standard forbids
        {"FREQ=DAILY;COUNT=5;UNTIL=20260107T100000", "FREQ=DAILY;COUNT=3"},
        {"FREQ=DAILY;COUNT=2;UNTIL=20260110T100000", "FREQ=DAILY;COUNT=2"},
        {"FREQ=MONTHLY;BYWEEKNO=3", "FREQ=MONTHLY"},
        {"FREQ=WEEKLY;BYYEARDAY=3", "FREQ=WEEKLY"},
        {"FREQ=WEEKLY;BYDAY=2TU,-1FR", "FREQ=WEEKLY;BYDAY=TU,FR"},
        {"FREQ=DAILY;BYDAY=3WE", "FREQ=DAILY;BYDAY=WE"},
        {"FREQ=YEARLY;BYWEEKNO=20;BYDAY=3WE", "FREQ=YEARLY;BYWEEKNO=20;BYDAY=WE"},
        {"FREQ=MONTHLY;BYSETPOS=1", "FREQ=MONTHLY"},
        {"FREQ=DAILY;BYHOUR=9;BYMINUTE=30;BYSECOND=1", "FREQ=DAILY", true},
        // What is missing comes from the start
        {"FREQ=YEARLY", "FREQ=YEARLY;BYMONTH=1;BYMONTHDAY=5"},
        {"FREQ=YEARLY;BYMONTH=3", "FREQ=YEARLY;BYMONTH=3;BYMONTHDAY=5"},
        {"FREQ=YEARLY;BYWEEKNO=20", "FREQ=YEARLY;BYWEEKNO=20;BYDAY=MO"},
        {"FREQ=YEARLY;BYMONTHDAY=7", "FREQ=YEARLY;BYMONTH=1;BYMONTHDAY=7"},
        {"FREQ=YEARLY;BYMONTHDAY=7;BYDAY=TU", "FREQ=MONTHLY;BYMONTHDAY=7;BYDAY=TU"},
        {"FREQ=MONTHLY", "FREQ=MONTHLY;BYMONTHDAY=5"},
        {"FREQ=WEEKLY;BYHOUR=9,10", "FREQ=WEEKLY;BYDAY=MO;BYHOUR=9,10;BYMINUTE=0;BYSECOND=0"},
        // Ends
        {"FREQ=DAILY;UNTIL=20260107", "FREQ=DAILY;COUNT=3"},
        {"FREQ=DAILY;UNTIL=20260107T090000Z", "FREQ=DAILY;COUNT=3"},
        {"FREQ=DAILY;UNTIL=20260107T085959Z", "FREQ=DAILY;COUNT=2"},
        {"FREQ=DAILY;UNTIL=20260107T000000Z", "FREQ=DAILY;COUNT=3", true},
        {"FREQ=DAILY;UNTIL=20260106T230000Z", "FREQ=DAILY;COUNT=3", true},
        {"FREQ=DAILY;UNTIL=20260107T050000", "FREQ=DAILY;COUNT=3", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.odd);
        const Recurrence odd = loaded(std::string("RRULE:") + c.odd, c.allDay);
        const Recurrence plain = loaded(std::string("RRULE:") + c.plain, c.allDay);
        EXPECT_FALSE(odd.rejected());
        EXPECT_EQ(instances(odd), instances(plain));
        EXPECT_EQ(odd.last(), plain.last());
        EXPECT_GT(instances(odd).size(), 1U);
    }
}

TEST(RecurrenceGrammar, LinesAreFoundWhereverTheyStand) {
    const auto wanted = ElementsAre("2026-01-05T10:00:00", "2026-01-07T10:00:00");
    for (const char* lines :
         {R"(["RRULE:FREQ=DAILY;COUNT=3","EXDATE:20260106T100000"])",
          R"(["EXDATE:20260106T100000","RRULE:FREQ=DAILY;COUNT=3"])",
          R"([ " rrule:freq=daily;count=3 ", "exdate:20260106t100000" ])",
          R"(["RRULE:FREQ=DAILY;COUNT=3\r\nEXDATE:20260106T100000\r\n"])",
          R"(["RRULE:FREQ=DAI\r\n LY;COUNT=3","EXDA\n\tTE:20260106T\r\n 100000"])",
          R"(["FREQ=DAILY;COUNT=3","EXDATE:20260106T100000"])",
          R"(["RRULE;X-A=\":;,\":FREQ=DAILY;COUNT=3","EXDATE;X-B=\";\":20260106T100000"])",
          R"(["RRULE:FREQ=DAILY;COUNT=3","EXDATE:20260106T090000Z"])",
          R"(["RRULE:FREQ=DAILY;COUNT=3","EXDATE;TZID=America/New_York:20260106T040000"])",
          R"(["RRULE:FREQ=DAILY;COUNT=3","EXDATE;TZID=\"America/New_York\":20260106T040000"])",
          R"(["RRULE:FREQ=DAILY;COUNT=3","EXDATE;TZID=America/New_York:20260106T090000Z"])",
          R"(["RRULE:FREQ=DAILY;COUNT=3","EXDATE;TZID=No/Zone:20260106T100000"])",
          R"(["RRULE:FREQ=DAILY;COUNT=3","EXDATE;VALUE=DATE:20260106"])",
          R"(["RRULE:FREQ=DAILY;COUNT=3","EXDATE:20260106"])",
          R"(["RRULE:FREQ=DAILY;COUNT=3","EXDATE:x,20260230T100000,20260106T100000,"])",
          R"(["RDATE:20260107T100000"])",
          R"(["RDATE;VALUE=PERIOD:20260107T100000/PT1H"])",
          R"(["RDATE;VALUE=DATE:20260107"])",
          R"(["RDATE:20260107T090000Z,20260107T100000"])",
          R"([7,null,{"a":1},"RRULE:FREQ=DAILY;INTERVAL=2;COUNT=2",["RRULE:FREQ=DAILY"]])",
          R"(["X-RRULE:FREQ=DAILY","COMMENT:RRULE:FREQ=DAILY","EXRULE:FREQ=DAILY;COUNT=3",)"
          R"("DTSTART:20300101","RRULE:FREQ=DAILY;INTERVAL=2;COUNT=2"])"}) {
        SCOPED_TRACE(lines);
        EXPECT_THAT(instances(loaded(lines)), wanted);
    }
}

TEST(RecurrenceGrammar, DatesThatAreNoInstancesTakeNothingAway) {
    for (const char* excluded : {"EXDATE:20260106T095959", "EXDATE:20260106T100000Z",
                                 "EXDATE;VALUE=DATE:20260108", "EXDATE:2026-01-06"}) {
        SCOPED_TRACE(excluded);
        EXPECT_EQ(instances(loaded(std::string("RRULE:FREQ=DAILY;COUNT=3\n") + excluded)).size(),
                  3U);
    }
}

}  // namespace
}  // namespace vl
