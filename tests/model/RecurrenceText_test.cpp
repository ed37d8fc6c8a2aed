// Lines that were read once say the same for every event that has them.
#include "model/RecurrenceText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/Variant.h"
#include "model/Recurrence.h"

namespace vl {
namespace {

TEST(RecurrenceText, GivesTheRulesAsTheyAreWritten) {
    struct Case {
        const char* lines;
        const char* RRULE;
    };
    static constexpr Case cases[] = {
        {R"(["RRULE:FREQ=DAILY"])", "FREQ=DAILY"},
        {R"(["EXDATE:20260105T100000","RRULE: FREQ=WEEKLY;BYDAY=MO "])", "FREQ=WEEKLY;BYDAY=MO"},
        {R"(["RRULE:FREQ=DAILY","RRULE:FREQ=NEVER"])", "FREQ=DAILY\nFREQ=NEVER"},
        {R"(["RDATE:20260105T100000"])", ""},
        {"[]", ""},
        {"RRULE:FREQ=DAILY", ""},  // the column holds an array
        {"", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.lines);
        EXPECT_EQ(RecurrenceText::ofColumn(c.lines).RRULE(), c.RRULE);
    }
    EXPECT_EQ(RecurrenceText("RRULE:FREQ=DAILY").RRULE(), "FREQ=DAILY") << "lines need no array";
}

// In whatever order they are laid on starts: none leaves anything behind for the next one.
TEST(RecurrenceText, LaidOnManyStartsItSaysWhatItSaysWhenItIsReadForEach) {
    static constexpr const char* kLines[] = {
        R"(["RRULE:FREQ=DAILY;COUNT=9"])",
        R"(["RRULE:FREQ=WEEKLY"])",
        R"(["RRULE:FREQ=MONTHLY;BYDAY=2TH,-1FR;BYSETPOS=-1"])",
        R"(["RRULE:FREQ=MONTHLY"])",
        R"(["RRULE:FREQ=YEARLY;BYWEEKNO=20;UNTIL=20300101T000000Z"])",
        R"(["RRULE:FREQ=HOURLY;INTERVAL=7;COUNT=30"])",  // not of an all-day event
        R"(["RRULE:FREQ=NEVER","RRULE:FREQ=YEARLY"])",
        R"(["RRULE:FREQ=DAILY","EXDATE;VALUE=DATE:20260107,20260109","EXDATE:20260111T090000Z"])",
        R"(["RDATE;TZID=America/New_York:20260106T100000","RDATE:20260107T100000,20260210T110000"])",
    };
    const TimeZone local = TimeZone::named("Europe/Berlin").value();
    std::vector<Recurrence::Source> sources;
    for (const int day : {5, 7, 31}) {
        for (const bool allDay : {false, true}) {
            for (const char* zone : {"", "America/New_York", "Asia/Tokyo"}) {
                const DateTime start =
                    DateTime::fromCivil(2026, 1, day, allDay ? 0 : 10, allDay ? 0 : 5 * day, 0);
                sources.push_back({"", start, allDay, zone});
            }
        }
    }
    for (const char* lines : kLines) {
        const RecurrenceText once(lines);
        for (Recurrence::Source source : sources) {
            SCOPED_TRACE(testing::Message() << lines << ' ' << formatDateTime(source.start) << ' '
                                            << source.allDay << ' ' << source.zone);
            const Recurrence shared = Recurrence::load(source, once, local);
            source.lines = lines;
            const Recurrence alone = Recurrence::load(source, local);
            const DateTime end = source.start.addDays(3000);
            EXPECT_EQ(shared.between(source.start.addDays(-9), end),
                      alone.between(source.start.addDays(-9), end));
            EXPECT_EQ(shared.ExDates(), alone.ExDates());
            EXPECT_EQ(shared.RDates(), alone.RDates());
            EXPECT_EQ(shared.rejected(), alone.rejected());
            EXPECT_EQ(shared.last(), alone.last());
        }
    }
}

}  // namespace
}  // namespace vl
