#include "model/Recurrence.h"

#include <chrono>
#include <functional>
#include <iostream>
#include <limits>
#include <random>
#include <thread>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include "RecurrenceCase.h"

namespace vl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const DateTime kEnd = DateTime::fromCivil(9999, 12, 31, 23, 59, 59);

Recurrence loaded(const std::string& lines, DateTime start, bool allDay = false,
                  const std::string& zone = "", const char* local = "UTC") {
    return Recurrence::load({lines, start, allDay, zone}, TimeZone::named(local).value());
}

std::string RRULEOf(const std::string& lines) {
    std::string text = "what was there before";
    Recurrence::load({lines, DateTime::fromCivil(2026, 1, 5), false, ""}, TimeZone::utc(), &text);
    return text;
}

std::vector<std::string> texts(const std::vector<DateTime>& times) {
    std::vector<std::string> out;
    for (const DateTime time : times) {
        out.push_back(test::isoText(time));
    }
    return out;
}

const DateTime kMonday = DateTime::fromCivil(2026, 1, 5, 10, 0, 0);

TEST(RecurrenceLoad, WithoutLinesThereIsTheStartAlone) {
    for (const char* lines : {"", "[]", "null", "{}", "\"RRULE:FREQ=DAILY\"", "[1, {}, null]",
                              "[\"RRULE:FREQ=DAILY\"", "[\"COMMENT:x\"]", "12", "  "}) {
        SCOPED_TRACE(lines);
        const Recurrence r = loaded(lines, kMonday);
        EXPECT_THAT(r.between(DateTime::fromCivil(1900, 1, 1), kEnd), ElementsAre(kMonday));
        EXPECT_EQ(RRULEOf(lines), "");
        EXPECT_FALSE(r.repeats());
        EXPECT_FALSE(r.rejected());
        EXPECT_EQ(r.last(), kMonday);
    }
}

TEST(RecurrenceLoad, AnEmptyOneHasNoInstances) {
    const Recurrence r;
    EXPECT_THAT(r.between(DateTime::fromCivil(1900, 1, 1), kEnd), IsEmpty());
    EXPECT_TRUE(r.last().isZero());
    EXPECT_FALSE(r.repeats());
}

TEST(RecurrenceLoad, TakesPlainLinesAsWellAsJson) {
    const std::string json = R"(["RRULE:FREQ=DAILY;COUNT=3", "EXDATE:20260106T100000"])";
    const std::string escaped =
        R"([ "RRULE:FREQ=DAILY\u003bCOUNT=3\r\nEXDATE:20260106T100000", 7 ])";
    const std::string plain = "RRULE:FREQ=DAILY;COUNT=3\r\nEXDATE:20260106T100000\r\n";
    for (const std::string& lines : {json, escaped, plain}) {
        SCOPED_TRACE(lines);
        const Recurrence r = loaded(lines, kMonday);
        EXPECT_EQ(RRULEOf(lines), "FREQ=DAILY;COUNT=3");
        EXPECT_THAT(texts(r.between(kMonday, kEnd)),
                    ElementsAre("2026-01-05T10:00:00", "2026-01-07T10:00:00"));
    }
}

TEST(RecurrenceLoad, ARejectedRuleKeepsItsText) {
    const std::string lines = R"(["RRULE:FREQ=NEVER","RRULE:FREQ=WEEKLY;COUNT=2"])";
    const Recurrence r = loaded(lines, kMonday);
    EXPECT_EQ(RRULEOf(lines), "FREQ=NEVER\nFREQ=WEEKLY;COUNT=2");
    EXPECT_TRUE(r.rejected());
    EXPECT_TRUE(r.repeats());
    EXPECT_FALSE(loaded(R"(["RRULE:FREQ=NEVER"])", kMonday).repeats());
    EXPECT_TRUE(loaded(R"(["RDATE:20260110T090000"])", kMonday).repeats());
}

TEST(RecurrenceLoad, ListsAreLocalTimesAndSorted) {
    const Recurrence r = loaded(
        R"(["RRULE:FREQ=DAILY","EXDATE;TZID=America/New_York:20260107T040000,20260106T040000",
            "RDATE:20260301T120000Z","RDATE;VALUE=DATE:20260202"])",
        kMonday, false, "Europe/Berlin", "Asia/Kolkata");
    EXPECT_THAT(texts(r.ExDates()), ElementsAre("2026-01-06T14:30:00", "2026-01-07T14:30:00"));
    // A date without a time is at the start's time of day, which is 05:30 in Berlin.
    EXPECT_THAT(texts(r.RDates()), ElementsAre("2026-02-02T10:00:00", "2026-03-01T17:30:00"));
}

TEST(RecurrenceLoad, SurvivesStartsOutOfAllRange) {
    for (const double start :
         {0.0, -1.0e9, 1.0e9, -36'530.5, 2'958'465.9, 2'958'466.0,
          std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        SCOPED_TRACE(start);
        const Recurrence r = loaded(R"(["RRULE:FREQ=SECONDLY;COUNT=4000000000"])", DateTime(start));
        EXPECT_LE(r.between(DateTime(start), DateTime(start + 1), 100).size(), 100U);
        EXPECT_LE(r.next(DateTime(start)), kEnd);
        r.last();
        r.previous(DateTime(start));
    }
}

TEST(RecurrenceQuery, WindowsThatHoldNothing) {
    const Recurrence r = loaded(R"(["RRULE:FREQ=DAILY"])", kMonday);
    EXPECT_THAT(r.between(kMonday.addDays(3), kMonday), IsEmpty());
    EXPECT_THAT(r.between(kMonday, kMonday.addDays(3), 0), IsEmpty());
    EXPECT_THAT(r.between(kMonday.addSeconds(1), kMonday.addSeconds(3600)), IsEmpty());
    EXPECT_TRUE(r.previous(kMonday).isZero());
}

TEST(RecurrenceQuery, ACallersVectorIsEmptiedFirst) {
    const Recurrence r = loaded(R"(["RRULE:FREQ=DAILY"])", kMonday);
    std::vector<DateTime> out{kMonday, kMonday, kMonday};
    r.between(kMonday.addDays(1), kMonday.addDays(1), 9, out);
    EXPECT_THAT(out, ElementsAre(kMonday.addDays(1)));
}

TEST(RecurrenceQuery, TimesAreMeantToTheSecond) {
    // 09:20 has no exact double; what arithmetic leaves beside it means the same second.
    const DateTime start = DateTime::fromCivil(2026, 1, 5, 9, 20, 0);
    const Recurrence r = loaded(R"(["RRULE:FREQ=DAILY"])", start);
    const DateTime beside(start.days() + 1 + 2e-9);
    EXPECT_EQ(r.between(beside, beside).size(), 1U);
    EXPECT_EQ(r.next(beside), start.addDays(2));
    EXPECT_EQ(r.next(start).civil().minute, 20);
}

TEST(RecurrenceQuery, NothingLiesAfterTheYear9999) {
    const DateTime near = DateTime::fromCivil(9999, 12, 30, 10, 0, 0);
    const Recurrence r = loaded(R"(["RRULE:FREQ=DAILY;COUNT=100"])", near);
    EXPECT_EQ(r.between(near, DateTime(4.0e6)).size(), 2U);
    EXPECT_EQ(r.last(), near.addDays(1));
    EXPECT_TRUE(r.next(near.addDays(1)).isZero());
}

TEST(RecurrenceClocks, EveryHourOverBothChanges) {
    // On the wall clock 02:00 is skipped, that is shown at 03:00, where there is one already.
    const Recurrence spring =
        loaded(R"(["RRULE:FREQ=HOURLY;COUNT=5"])", DateTime::fromCivil(2026, 3, 29, 0, 0, 0), false,
               "", "Europe/Berlin");
    EXPECT_THAT(texts(spring.between(DateTime::fromCivil(2026, 3, 1), kEnd)),
                ElementsAre("2026-03-29T00:00:00", "2026-03-29T01:00:00", "2026-03-29T03:00:00",
                            "2026-03-29T04:00:00"));
    const Recurrence half =
        loaded(R"(["RRULE:FREQ=MINUTELY;INTERVAL=30;COUNT=7"])",
               DateTime::fromCivil(2026, 3, 29, 1, 15, 0), false, "", "Europe/Berlin");
    const std::vector<DateTime> all = half.between(DateTime::fromCivil(2026, 3, 1), kEnd);
    EXPECT_THAT(texts(all),
                ElementsAre("2026-03-29T01:15:00", "2026-03-29T01:45:00", "2026-03-29T03:15:00",
                            "2026-03-29T03:45:00", "2026-03-29T04:15:00"));
    for (std::size_t i = 1; i < all.size(); ++i) {
        EXPECT_EQ(half.next(all[i - 1]), all[i]);
        EXPECT_EQ(half.previous(all[i]), all[i - 1]);
    }
}

TEST(RecurrenceClocks, TheFirstFewAreTheEarliestAlsoWhereAMovedOneComesLater) {
    // 02:50 is moved to 03:50, behind the 03:10 of another rule and of the same one.
    const Recurrence r =
        loaded(R"(["RRULE:FREQ=DAILY;BYHOUR=2,3;BYMINUTE=10,50"])",
               DateTime::fromCivil(2026, 3, 29, 1, 0, 0), false, "", "Europe/Berlin");
    const DateTime from = DateTime::fromCivil(2026, 3, 29, 1, 30, 0);
    const std::vector<DateTime> all = r.between(from, from.addDays(2));
    for (std::size_t n = 1; n <= all.size(); ++n) {
        const std::vector<DateTime> some = r.between(from, from.addDays(2), n);
        ASSERT_EQ(some.size(), n);
        EXPECT_TRUE(std::equal(some.begin(), some.end(), all.begin()));
    }
    EXPECT_THAT(texts({all.front(), all.at(1)}),
                ElementsAre("2026-03-29T03:10:00", "2026-03-29T03:50:00"));
}

TEST(RecurrenceClocks, AnExcludedMomentMatchesAMovedInstance) {
    for (const char* excluded : {"20260329T023000", "20260329T033000", "20260329T013000Z"}) {
        SCOPED_TRACE(excluded);
        const Recurrence r =
            loaded(std::string("RRULE:FREQ=DAILY;COUNT=3\nEXDATE:") + excluded,
                   DateTime::fromCivil(2026, 3, 28, 2, 30, 0), false, "", "Europe/Berlin");
        EXPECT_THAT(texts(r.between(DateTime::fromCivil(2026, 3, 1), kEnd)),
                    ElementsAre("2026-03-28T02:30:00", "2026-03-30T02:30:00"));
    }
}

TEST(RecurrenceClocks, SplitWindowsAddUpAcrossZones) {
    const unsigned seed = std::random_device{}();
    std::cout << "seed " << seed << '\n';
    std::mt19937 random(seed);
    const char* zones[] = {"Europe/Berlin",       "America/New_York", "Asia/Kolkata",
                           "Australia/Lord_Howe", "Pacific/Apia",     "Africa/Casablanca"};
    const char* rules[] = {"FREQ=HOURLY;INTERVAL=5", "FREQ=DAILY;BYHOUR=1,2,3;BYMINUTE=0,30",
                           "FREQ=WEEKLY;BYDAY=SU;BYHOUR=0,2,23", "FREQ=MINUTELY;INTERVAL=47"};
    for (int i = 0; i < 300; ++i) {
        const Recurrence r =
            loaded(std::string("RRULE:") + rules[random() % 4],
                   DateTime::fromCivil(2011, 1 + static_cast<int>(random() % 12), 1, 2, 30, 0),
                   false, zones[random() % 6], zones[random() % 6]);
        // Over a change of clocks of one of the two in most cases.
        const DateTime from = DateTime::fromCivil(2011, 1 + static_cast<int>(random() % 14), 20);
        const DateTime to = from.addDays(25);
        const DateTime middle = from.addMinutes(static_cast<int>(random() % (25 * 1440)));
        const std::vector<DateTime> all = r.between(from, to);
        std::vector<DateTime> joined = r.between(from, middle);
        for (const DateTime t : r.between(middle.addSeconds(1), to)) {
            joined.push_back(t);
        }
        ASSERT_EQ(texts(joined), texts(all));
        ASSERT_TRUE(std::adjacent_find(all.begin(), all.end(), std::greater_equal<>()) ==
                    all.end());
        DateTime at = from.addSeconds(-1);
        for (const DateTime t : all) {
            at = r.next(at);
            ASSERT_EQ(test::isoText(at), test::isoText(t));
        }
        for (std::size_t k = all.size(); k-- > 1;) {
            ASSERT_EQ(test::isoText(r.previous(all[k])), test::isoText(all[k - 1]));
        }
    }
}

// Every call looks at a bounded number of periods and months, whatever the rule says.
TEST(RecurrenceWork, RulesThatNeverMatchAreGivenUp) {
    struct Case {
        const char* rule;
        std::uint64_t most;
    };
    const Case cases[] = {
        {"FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30", 0},
        {"FREQ=DAILY;BYMONTH=2;BYMONTHDAY=30", 0},
        {"FREQ=MONTHLY;INTERVAL=12;BYMONTHDAY=31;BYMONTH=4", 0},
        {"FREQ=MONTHLY;INTERVAL=3;BYMONTHDAY=31;BYMONTH=2,3,5", 0},
        {"FREQ=HOURLY;INTERVAL=2;BYHOUR=1,3", 0},
        {"FREQ=MINUTELY;INTERVAL=10;BYMINUTE=5,15", 0},
        {"FREQ=MINUTELY;INTERVAL=1440;BYHOUR=11", 0},
        {"FREQ=SECONDLY;INTERVAL=60;BYSECOND=1", 0},
        {"FREQ=SECONDLY;INTERVAL=86400;BYHOUR=9", 0},
        {"FREQ=SECONDLY;BYSECOND=60", 0},
        {"FREQ=HOURLY;INTERVAL=168;BYDAY=TU", 0},
        {"FREQ=MINUTELY;INTERVAL=5040;BYDAY=TU,WE,FR", 0},
        {"FREQ=HOURLY;INTERVAL=84;BYDAY=TH;BYHOUR=10", 0},
        {"FREQ=DAILY;INTERVAL=7;BYDAY=TU", 0},
        {"FREQ=DAILY;BYSETPOS=2", 0},
        {"FREQ=WEEKLY;BYDAY=MO,TU;BYSETPOS=3", 0},
        {"FREQ=MONTHLY;BYDAY=6MO", 0},
        {"FREQ=MONTHLY;BYDAY=1TH;BYSETPOS=2", 5000},
        {"FREQ=YEARLY;BYDAY=1TH;BYSETPOS=2", 6000},
        {"FREQ=YEARLY;BYWEEKNO=1;BYMONTH=6", 1500},
        {"FREQ=YEARLY;BYWEEKNO=53;BYMONTHDAY=15", 1500},
        {"FREQ=YEARLY;BYYEARDAY=366;BYMONTHDAY=30", 6000},
        {"FREQ=WEEKLY;BYDAY=MO;BYMONTHDAY=-31;BYMONTH=4", 0},
        {"FREQ=WEEKLY;INTERVAL=3;BYDAY=MO;BYMONTHDAY=31;BYMONTH=2,4", 0},
        {"FREQ=HOURLY;BYYEARDAY=1;BYMONTH=2", 10000},
        {"FREQ=SECONDLY;BYMONTHDAY=31;BYDAY=MO;BYYEARDAY=40", 10000},
        {"FREQ=SECONDLY;INTERVAL=86399;BYYEARDAY=60;BYMONTHDAY=2", 10000},
        // Every 63rd day meets 29 February, but never on these days.
        {"FREQ=HOURLY;INTERVAL=1512;BYMONTH=2;BYMONTHDAY=29;BYDAY=TU", 0},
        {"FREQ=HOURLY;INTERVAL=648;BYMONTH=2;BYMONTHDAY=29;BYDAY=FR,TU,WE", 6000},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.rule);
        for (const char* end : {"", ";COUNT=5", ";COUNT=4000000000", ";UNTIL=99991231"}) {
            const std::uint64_t before = Recurrence::workDone();
            const Recurrence r = loaded(std::string("RRULE:") + c.rule + end, kMonday);
            EXPECT_FALSE(r.rejected());
            EXPECT_EQ(r.between(kMonday, kEnd).size(), 1U);
            EXPECT_LE(Recurrence::workDone() - before, c.most) << "between" << end;
            EXPECT_TRUE(r.next(kMonday).isZero());
            EXPECT_LE(Recurrence::workDone() - before, 2 * c.most) << "next" << end;
            // Both look at growing stretches, each of them to its end.
            EXPECT_EQ(r.last(), *end == '\0' ? DateTime() : kMonday);
            EXPECT_EQ(r.previous(kEnd), kMonday);
            EXPECT_LE(Recurrence::workDone() - before, 40 * c.most) << "last" << end;
        }
    }
}

TEST(RecurrenceWork, AFarWindowCostsNoMoreThanANearOne) {
    for (const char* rule :
         {"FREQ=DAILY", "FREQ=DAILY;INTERVAL=3;BYDAY=MO", "FREQ=WEEKLY;BYDAY=MO,FR",
          "FREQ=WEEKLY;INTERVAL=2;BYDAY=TU;BYMONTH=3", "FREQ=MONTHLY;BYDAY=-1FR",
          "FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-1", "FREQ=YEARLY", "FREQ=YEARLY;BYWEEKNO=20",
          "FREQ=HOURLY;INTERVAL=5", "FREQ=SECONDLY;INTERVAL=4000", "FREQ=DAILY;COUNT=2900000",
          "FREQ=WEEKLY;BYDAY=SU,MO;COUNT=800000"}) {
        SCOPED_TRACE(rule);
        const Recurrence r = loaded(std::string("RRULE:") + rule, kMonday);
        for (const int year : {2027, 2036, 2126, 9000}) {
            const std::uint64_t before = Recurrence::workDone();
            r.between(DateTime::fromCivil(year, 3, 3), DateTime::fromCivil(year, 3, 4));
            EXPECT_LE(Recurrence::workDone() - before, 30U) << year;
        }
    }
}

TEST(RecurrenceWork, LargeCountsEndWhereTheyShould) {
    struct Case {
        const char* rule;
        const char* last;
    };
    // Each by arithmetic on the calendar: a year of 365.2425 days has 8765.82 hours.
    const Case cases[] = {
        {"FREQ=DAILY;COUNT=100000", "2299-10-20T10:00:00"},
        {"FREQ=DAILY;BYHOUR=10,11;COUNT=200000", "2299-10-20T11:00:00"},
        {"FREQ=HOURLY;COUNT=2400000", "2299-10-21T09:00:00"},
        {"FREQ=SECONDLY;COUNT=86401", "2026-01-06T10:00:00"},
        {"FREQ=WEEKLY;BYDAY=MO,WE;COUNT=2001", "2045-03-06T10:00:00"},
        {"FREQ=SECONDLY;BYHOUR=10;COUNT=360000", "2026-04-14T10:59:59"},
        {"FREQ=SECONDLY;INTERVAL=7;BYHOUR=10;COUNT=4000000000", "9999-12-31T10:59:55"},
        {"FREQ=MONTHLY;COUNT=95689", "9999-12-05T10:00:00"},
        {"FREQ=MONTHLY;COUNT=99999", "9999-12-05T10:00:00"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.rule);
        EXPECT_EQ(test::isoOrNull(loaded(std::string("RRULE:") + c.rule, kMonday).last()), c.last);
    }
}

TEST(RecurrenceBytes, AnyBytesAreReadWithoutHarm) {
    const unsigned seed = std::random_device{}();
    std::cout << "seed " << seed << '\n';
    std::mt19937 random(seed);
    static const char* const kPieces[] = {
        "RRULE:",   "EXDATE",  "RDATE",     ";",        ":",        ",",         "=",
        "FREQ=",    "DAILY",   "SECONDLY",  "YEARLY",   "INTERVAL", "COUNT",     "UNTIL",
        "BYDAY",    "BYMONTH", "BYSETPOS",  "BYWEEKNO", "BYHOUR",   "BYSECOND",  "-1",
        "MO",       "53SU",    "366",       "60",       "99999999", "20260105T", "100000Z",
        "TZID=",    "\"",      "\r\n ",     "\n",       "VALUE=",   "DATE",      "[\"",
        "\"]",      "\\u0000", "\xC3\xBC",  "\xFF",     "0",        "/",         "+",
        "20260229", "[[[[",    "BYYEARDAY", "BYMINUTE", "WKST",     "RSCALE",    "TH"};
    for (int i = 0; i < 20'000; ++i) {
        std::string lines = random() % 2 == 0 ? "RRULE:FREQ=" : "";
        const std::size_t length = random() % 25;
        for (std::size_t k = 0; k < length; ++k) {
            if (random() % 8 == 0) {
                lines += static_cast<char>(random() % 256);
            } else {
                lines += kPieces[random() % std::size(kPieces)];
            }
        }
        if (random() % 3 == 0) {
            lines = "[\"" + lines + "\"]";
        }
        const Recurrence r = loaded(lines, kMonday, random() % 4 == 0);
        r.between(kMonday.addDays(3000), kMonday.addDays(3001), 1000);
        r.next(kMonday);
        r.inWords(RRULEOf(lines));
    }
    SUCCEED() << "reached without a crash; the sanitizers watch";
}

TEST(RecurrenceThreads, OneLoadedRuleServesSeveral) {
    const Recurrence r =
        loaded(R"(["RRULE:FREQ=WEEKLY;BYDAY=MO,FR;COUNT=5000","EXDATE:20260109T100000"])", kMonday,
               false, "America/New_York", "Europe/Berlin");
    const std::vector<DateTime> expected = r.between(kMonday, kEnd);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 20; ++i) {
                EXPECT_EQ(r.between(kMonday, kEnd).size(), expected.size());
                EXPECT_EQ(r.last(), expected.back());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace
}  // namespace vl
