#include "base/DateTime.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace vl {
namespace {

DateTime at(int hour, int minute, int second = 0) {
    return DateTime::fromCivil(2026, 11, 20, hour, minute, second);
}

TEST(DateTime, HalfAnHourAfterHalfPastNineIsTenExactly) {
    EXPECT_EQ(at(9, 30).addMinutes(30), at(10, 0));
    DateTime walked = at(0, 0);
    for (int i = 0; i < 600; ++i) {
        walked = walked.addMinutes(1);
    }
    EXPECT_EQ(walked, at(10, 0));
    EXPECT_EQ(walked.days(), at(10, 0).days()) << "the same bits, so that equality survives a file";
}

TEST(DateTime, KnowsTheDatabasesEpoch) {
    EXPECT_EQ(DateTime::fromCivil(1899, 12, 30).days(), 0.0);
    EXPECT_EQ(DateTime::fromCivil(2026, 11, 15, 12).days(), 46341.5);
    EXPECT_EQ(DateTime(27293.0).civil(), (Civil{1974, 9, 21, 0, 0, 0, 0}));
    EXPECT_TRUE(DateTime().isZero());
    EXPECT_FALSE(DateTime(0.5).isZero());
}

TEST(DateTime, CountsTheFractionForwardBelowZero) {
    EXPECT_EQ(DateTime(-1.25).civil(), (Civil{1899, 12, 29, 6, 0, 0, 0}));
    EXPECT_EQ(DateTime::fromCivil(1899, 12, 29, 6).days(), -1.25);
    EXPECT_LT(DateTime(-1.25), DateTime(-1.75));
    EXPECT_LT(DateTime(-1.75), DateTime(0.0));
}

TEST(DateTime, RoundsToTheNearestMillisecond) {
    EXPECT_EQ(DateTime(1.0 + 0.9999999999).civil(), (Civil{1900, 1, 1, 0, 0, 0, 0}));
    EXPECT_EQ(DateTime(560.0 / 1440).civil(), (Civil{1899, 12, 30, 9, 20, 0, 0}));
}

TEST(DateTime, SaysNothingWrongOfNonsense) {
    EXPECT_EQ(DateTime(std::nan("")).milliseconds(), 0);
    EXPECT_GT(DateTime(1e300).milliseconds(), DateTime::fromCivil(9999, 12, 31).milliseconds());
    EXPECT_LT(DateTime(-1e300).milliseconds(), DateTime::fromCivil(100, 1, 1).milliseconds());
}

TEST(DateTime, CalendarGoesThereAndBack) {
    for (std::int64_t day = daysFromCivil(-400, 1, 1); day < daysFromCivil(10000, 1, 1);
         day += 17) {
        const Civil c = civilFromDays(day);
        ASSERT_EQ(daysFromCivil(c.year, c.month, c.day), day);
    }
    EXPECT_EQ(civilFromDays(daysFromCivil(2024, 2, 29)), (Civil{2024, 2, 29, 0, 0, 0, 0}));
    EXPECT_EQ(civilFromDays(daysFromCivil(1900, 2, 29)), (Civil{1900, 3, 1, 0, 0, 0, 0}));
    EXPECT_EQ(daysFromCivil(2026, 13, 1), daysFromCivil(2027, 1, 1));
    EXPECT_EQ(daysFromCivil(2026, 0, 1), daysFromCivil(2025, 12, 1));
}

TEST(DateTime, WeeksBeginOnMonday) {
    EXPECT_EQ(DateTime::fromCivil(2026, 11, 16).weekday(), 1);
    EXPECT_EQ(DateTime::fromCivil(2026, 11, 22, 23, 59).weekday(), 7);
    EXPECT_EQ(DateTime::fromCivil(1899, 12, 30).weekday(), 6);
    EXPECT_EQ(DateTime::fromCivil(1899, 12, 24).weekday(), 7);
}

TEST(DateTime, DropsTimeAndParts) {
    EXPECT_EQ(at(14, 30, 5).date(), at(0, 0));
    EXPECT_FALSE(at(0, 0).hasTime());
    EXPECT_TRUE(at(0, 0, 1).hasTime());
    EXPECT_EQ(DateTime(at(9, 0).days() + 0.4 / 86400).wholeSeconds(), at(9, 0));
    EXPECT_EQ(at(23, 59, 59).addSeconds(1), at(0, 0).addDays(1));
}

TEST(DateTime, MinuteDistanceCountsBoundaries) {
    EXPECT_EQ(minutesBetween(at(9, 30, 59), at(10, 0)), 30);
    EXPECT_EQ(minutesBetween(at(9, 30, 0), at(9, 30, 59)), 0);
    EXPECT_EQ(minutesBetween(at(10, 0), at(9, 30, 59)), -30);
    EXPECT_EQ(minutesBetween(DateTime(-1.25), DateTime(0.25)), 1440);
}

TEST(DateTime, EverySecondSurvivesTheDouble) {
    std::mt19937_64 random(20261120);
    std::uniform_int_distribution<std::int64_t> seconds(-56'802'000'000, 255'611'000'000);
    for (int i = 0; i < 200'000; ++i) {
        const std::int64_t ms = seconds(random) * 1000;
        ASSERT_EQ(DateTime::fromMilliseconds(ms).milliseconds(), ms);
    }
}

TEST(DateTime, TheNearestMillisecondCountsWhereverTheDayLies) {
    std::mt19937_64 random(20261122);
    std::uniform_int_distribution<std::int64_t> days(-600'000, 3'000'000);
    std::uniform_int_distribution<std::int64_t> parts(0, 86'399'999);
    for (int i = 0; i < 200'000; ++i) {
        const std::int64_t day = days(random);
        const std::int64_t part = parts(random);
        const double away = static_cast<double>(i % 9 - 4) / 10;  // of a millisecond
        const double time = std::max(0.0, (static_cast<double>(part) + away) / 86'400'000);
        const auto whole = static_cast<double>(day);
        const DateTime date(day < 0 ? whole - time : whole + time);
        ASSERT_EQ(date.milliseconds(), day * 86'400'000 + part) << day << ' ' << part;
    }
}

TEST(DateTime, TheNearestSecondHasNoParts) {
    struct Case {
        std::int64_t ms;
        std::int64_t nearest;
    };
    constexpr std::int64_t kDay = 86'400'000;
    for (const Case& c : {Case{46'000 * kDay + 499, 46'000 * kDay},
                          {46'000 * kDay + 500, 46'000 * kDay + 1000},
                          {46'001 * kDay - 1, 46'001 * kDay},
                          {46'001 * kDay - 501, 46'001 * kDay - 1000},
                          {-500, 0},
                          {-501, -1000},
                          {499, 0}}) {
        EXPECT_EQ(DateTime::fromMilliseconds(c.ms).nearestSecond().milliseconds(), c.nearest)
            << c.ms;
    }
}

TEST(DateTime, AWholeSecondStaysBitForBit) {
    const double days = std::nextafter(at(9, 0).days(), 0.0);
    EXPECT_EQ(DateTime(days).nearestSecond().days(), days);
    EXPECT_EQ(DateTime().nearestSecond().days(), 0.0);
    EXPECT_TRUE(DateTime(std::nan("")).nearestSecond().isZero());
}

}  // namespace
}  // namespace vl
