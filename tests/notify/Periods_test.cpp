#include "notify/Periods.h"

#include <gtest/gtest.h>

#include <string>

#include "base/Variant.h"

namespace vl {
namespace {

// Friday 2026-11-20, 14:32:10.
const DateTime kFriday = DateTime::fromCivil(2026, 11, 20, 14, 32, 10);

TEST(Periods, StandInTheirOrder) {
    static constexpr Period expected[] = {{"Previous 30 days", "D-30"},
                                          {"Previous 14 days", "D-14"},
                                          {"Previous Week", "W-1"},
                                          {"Previous 7 days", "D-7"},
                                          {"Yesterday", "D-1"},
                                          {"Past Reminders", "R"},
                                          {"Next Reminders", "N"},
                                          {"Today", "T"},
                                          {"Tomorrow", "D+1"},
                                          {"Today + Tomorrow", "T+D1"},
                                          {"This Week", "W0"},
                                          {"Next 7 days", "D+7"},
                                          {"Next Week", "W+1"},
                                          {"Next 14 days", "D+14"},
                                          {"Next 30 days", "D+30"},
                                          {"Dismissed", "Di"},
                                          {"Hidden", "H"}};
    ASSERT_EQ(periods().size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_STREQ(periods()[i].text, expected[i].text);
        EXPECT_STREQ(periods()[i].code, expected[i].code);
        EXPECT_EQ(periodIndex(expected[i].code), i);
    }
    EXPECT_EQ(periodIndex("d+7"), 11U);
    EXPECT_EQ(periodIndex("dI"), 15U);
    EXPECT_FALSE(periodIndex(""));
    EXPECT_FALSE(periodIndex("D+8"));
}

TEST(ListPositions, CountFromOneAndKnowAnyCase) {
    const auto positions = listPositions();
    ASSERT_EQ(positions->Count(), periods().size());
    for (std::size_t i = 0; i < periods().size(); ++i) {
        EXPECT_EQ(listPosition(*positions, periods()[i].code), static_cast<int>(i) + 1);
        EXPECT_EQ(positions->Key(static_cast<int>(i) + 1), periods()[i].code);
    }
    EXPECT_EQ(listPosition(*positions, "w+1"), 13);
    EXPECT_EQ(listPosition(*positions, "D+8"), listPosition(*positions, "T"));
    EXPECT_EQ(listPosition(*positions, ""), 8);
}

TEST(PeriodRange, EndsADayByItsMinuteBeforeTheNextOne) {
    const DateTime midnight = kFriday.date().addDays(1);
    EXPECT_EQ(periodRange("T", kFriday, 5 * kOneMin).to, midnight.addMinutes(-5));
    EXPECT_EQ(periodRange("D+7", kFriday, 5 * kOneMin).to, kFriday.date().addDays(7));
}

TEST(PeriodRange, EndsAsThePeriodIsGiven) {
    struct Case {
        const char* code;
        const char* from;
        const char* to;
    };
    static constexpr Case cases[] = {
        {"D-30", "2026-10-21", "2026-11-20"},
        {"D-14", "2026-11-06", "2026-11-20"},
        {"W-1", "2026-11-09", "2026-11-15 23:59:00"},
        {"D-7", "2026-11-13", "2026-11-20"},
        {"D-1", "2026-11-19", "2026-11-19 23:59:00"},
        {"R", "2026-11-19 14:32:10", "2026-11-20 14:32:10"},
        {"N", "2026-11-20 14:32:10", "2026-11-21 14:32:10"},
        {"T", "2026-11-20", "2026-11-20 23:59:00"},
        {"D+1", "2026-11-21", "2026-11-21 23:59:00"},
        {"T+D1", "2026-11-20", "2026-11-21 23:59:00"},
        {"W0", "2026-11-16", "2026-11-22 23:59:00"},
        {"D+7", "2026-11-20", "2026-11-27"},
        {"W+1", "2026-11-23", "2026-11-29 23:59:00"},
        {"D+14", "2026-11-20", "2026-12-04"},
        {"D+30", "2026-11-20", "2026-12-20"},
        {"Di", "2026-11-13", "2026-11-27"},
        {"H", "2026-11-16", "2026-11-22 23:59:00"},
        {"d+1", "2026-11-21", "2026-11-21 23:59:00"},
        {"t", "2026-11-20", "2026-11-20 23:59:00"},
        {"nonsense", "2026-11-16", "2026-11-22 23:59:00"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.code);
        const PeriodRange range = periodRange(c.code, kFriday);
        EXPECT_EQ(formatDateTime(range.from), c.from);
        EXPECT_EQ(formatDateTime(range.to), c.to);
    }
}

TEST(PeriodRange, WeeksBeginOnMonday) {
    const auto week = [](int day, int hour) {
        const PeriodRange r = periodRange("W0", DateTime::fromCivil(2026, 11, day, hour));
        return formatDateTime(r.from) + " " + formatDateTime(r.to);
    };
    EXPECT_EQ(week(15, 23), "2026-11-09 2026-11-15 23:59:00") << "a Sunday, late";
    for (int day = 16; day <= 22; ++day) {
        for (const int hour : {0, 12, 23}) {
            EXPECT_EQ(week(day, hour), "2026-11-16 2026-11-22 23:59:00") << day << ' ' << hour;
        }
    }
    EXPECT_EQ(week(23, 0), "2026-11-23 2026-11-29 23:59:00");
}

// Where days, weeks, months and years meet.
TEST(PeriodRange, CrossesEveryBorder) {
    const DateTime monday = DateTime::fromCivil(2026, 11, 16);
    const DateTime sunday = DateTime::fromCivil(2026, 11, 22, 23, 59, 59);
    const DateTime leapDay = DateTime::fromCivil(2028, 2, 29, 12);          // a Tuesday
    const DateTime lastOfYear = DateTime::fromCivil(2026, 12, 31, 23, 30);  // a Thursday
    struct Case {
        DateTime now;
        const char* code;
        const char* from;
        const char* to;
    };
    const Case cases[] = {
        {monday, "T", "2026-11-16", "2026-11-16 23:59:00"},
        {monday, "D-1", "2026-11-15", "2026-11-15 23:59:00"},
        {monday, "W-1", "2026-11-09", "2026-11-15 23:59:00"},
        {monday, "W+1", "2026-11-23", "2026-11-29 23:59:00"},
        {monday, "D-7", "2026-11-09", "2026-11-16"},
        {monday, "D+7", "2026-11-16", "2026-11-23"},
        {monday, "R", "2026-11-15", "2026-11-16"},
        {sunday, "W-1", "2026-11-09", "2026-11-15 23:59:00"},
        {sunday, "W+1", "2026-11-23", "2026-11-29 23:59:00"},
        {sunday, "D+1", "2026-11-23", "2026-11-23 23:59:00"},
        {sunday, "T", "2026-11-22", "2026-11-22 23:59:00"},
        {sunday, "N", "2026-11-22 23:59:59", "2026-11-23 23:59:59"},
        {leapDay, "D-1", "2028-02-28", "2028-02-28 23:59:00"},
        {leapDay, "D+1", "2028-03-01", "2028-03-01 23:59:00"},
        {leapDay, "W0", "2028-02-28", "2028-03-05 23:59:00"},
        {leapDay, "D-30", "2028-01-30", "2028-02-29"},
        {leapDay, "D+30", "2028-02-29", "2028-03-30"},
        {leapDay, "R", "2028-02-28 12:00:00", "2028-02-29 12:00:00"},
        {lastOfYear, "D+1", "2027-01-01", "2027-01-01 23:59:00"},
        {lastOfYear, "T+D1", "2026-12-31", "2027-01-01 23:59:00"},
        {lastOfYear, "W0", "2026-12-28", "2027-01-03 23:59:00"},
        {lastOfYear, "D+14", "2026-12-31", "2027-01-14"},
        {lastOfYear, "D-14", "2026-12-17", "2026-12-31"},
        {lastOfYear, "Di", "2026-12-24", "2027-01-07"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(formatDateTime(c.now) + " " + c.code);
        const PeriodRange range = periodRange(c.code, c.now);
        EXPECT_EQ(formatDateTime(range.from), c.from);
        EXPECT_EQ(formatDateTime(range.to), c.to);
    }
}

}  // namespace
}  // namespace vl
