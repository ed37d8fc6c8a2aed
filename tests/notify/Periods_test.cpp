#include "notify/Periods.h"

#include <gtest/gtest.h>

#include <string>

#include "base/Variant.h"

namespace vl {
namespace {

// Friday 2026-11-20, 14:32:10.
const DateTime kFriday = DateTime::fromCivil(2026, 11, 20, 14, 32, 10);

TEST(Periods, StandInTheirOrder) {
    static constexpr const char* codes[] = {"D-30", "D-14", "W-1",  "D-7",  "D-1", "R",
                                            "N",    "T",    "D+1",  "T+D1", "W0",  "D+7",
                                            "W+1",  "D+14", "D+30", "Di",   "H"};
    ASSERT_EQ(periods().size(), std::size(codes));
    for (std::size_t i = 0; i < std::size(codes); ++i) {
        EXPECT_STREQ(periods()[i].code, codes[i]);
        EXPECT_EQ(periodIndex(codes[i]), i);
    }
    EXPECT_STREQ(periods()[9].text, "Today + Tomorrow");
    EXPECT_EQ(periodIndex("d+7"), 11U);
    EXPECT_EQ(periodIndex("dI"), 15U);
    EXPECT_FALSE(periodIndex(""));
    EXPECT_FALSE(periodIndex("D+8"));
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
    EXPECT_EQ(week(16, 0), "2026-11-16 2026-11-22 23:59:00") << "a Monday, at midnight";
    EXPECT_EQ(week(22, 23), "2026-11-16 2026-11-22 23:59:00") << "a Sunday, late";
    EXPECT_EQ(week(23, 0), "2026-11-23 2026-11-29 23:59:00");
}

}  // namespace
}  // namespace vl
