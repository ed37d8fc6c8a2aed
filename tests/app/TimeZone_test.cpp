#include "app/TimeZone.h"

#include <cstdlib>
#include <ctime>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "gtest/gtest.h"

namespace vl {
namespace {

constexpr std::int64_t kDay = 86'400;
constexpr std::int64_t kUnixEpoch = 25'569 * kDay;

std::int64_t seconds(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    return daysFromCivil(year, month, day) * kDay + (hour * 60LL + minute) * 60 + second;
}

TimeZone zone(const char* name) {
    const std::optional<TimeZone> found = TimeZone::named(name);
    EXPECT_TRUE(found.has_value()) << name;
    return found.value_or(TimeZone::utc());
}

/// Hours east of UTC at a moment in UTC.
double hoursEast(const TimeZone& z, std::int64_t utc) {
    return static_cast<double>(z.fromUtc(utc) - utc) / 3600.0;
}

TEST(TimeZoneNamed, KnowsExactNamesOnly) {
    for (const char* name : {"Europe/Berlin", "America/New_York", "UTC", "Asia/Calcutta"}) {
        EXPECT_TRUE(TimeZone::named(name).has_value()) << name;
    }
    for (const char* name : {"", "GMT+05:00", "GMT-05:00", "europe/berlin", "Europe", "Mars/Base",
                             "../Europe/Berlin", "W. Europe Standard Time", "Europe/Berlin "}) {
        EXPECT_FALSE(TimeZone::named(name).has_value()) << '"' << name << '"';
        EXPECT_FALSE(TimeZone::named(name).has_value()) << '"' << name << "\" asked for again";
    }
}

TEST(TimeZoneNamed, TheSameNameSharesOneTable) {
    EXPECT_TRUE(zone("Europe/Berlin").same(zone("Europe/Berlin")));
    EXPECT_FALSE(zone("Europe/Berlin").same(zone("Europe/Paris")));
    EXPECT_TRUE(TimeZone::utc().same(TimeZone::utc()));
}

TEST(TimeZoneNamed, OffsetsOverTwoHundredYears) {
    struct Case {
        const char* name;
        std::int64_t utc;
        double hours;
    };
    const Case cases[] = {
        {"Europe/Berlin", seconds(1900, 1, 1), 1},
        {"Europe/Berlin", seconds(1916, 6, 1), 2},
        {"Europe/Berlin", seconds(1945, 6, 15), 3},  // double summer time
        {"Europe/Berlin", seconds(1970, 7, 1), 1},
        {"Europe/Berlin", seconds(2026, 3, 29, 0, 59, 59), 1},
        {"Europe/Berlin", seconds(2026, 3, 29, 1, 0, 0), 2},
        {"Europe/Berlin", seconds(2026, 10, 25, 0, 59, 59), 2},
        {"Europe/Berlin", seconds(2026, 10, 25, 1, 0, 0), 1},
        // The zone files list no changes after 2037, the rule goes on.
        {"Europe/Berlin", seconds(2038, 3, 28, 0, 59, 59), 1},
        {"Europe/Berlin", seconds(2038, 3, 28, 1, 0, 0), 2},
        {"Europe/Berlin", seconds(2099, 3, 29, 1, 0, 0), 2},
        {"Europe/Berlin", seconds(2099, 10, 25, 1, 0, 0), 1},
        {"Europe/Berlin", seconds(2100, 7, 1), 2},
        {"Europe/Berlin", seconds(2500, 7, 1), 2},
        {"Europe/Berlin", seconds(9999, 12, 31), 1},
        {"America/New_York", seconds(1900, 1, 1), -5},
        {"America/New_York", seconds(1943, 1, 15), -4},  // war time in winter
        {"America/New_York", seconds(2024, 3, 10, 6, 59, 59), -5},
        {"America/New_York", seconds(2024, 3, 10, 7, 0, 0), -4},
        {"America/New_York", seconds(2100, 3, 14, 7, 0, 0), -4},
        {"America/New_York", seconds(2100, 11, 7, 6, 0, 0), -5},
        {"Asia/Kolkata", seconds(1980, 1, 1), 5.5},
        {"Asia/Kolkata", seconds(2100, 7, 1), 5.5},
        {"Australia/Lord_Howe", seconds(2026, 1, 1), 11},
        {"Australia/Lord_Howe", seconds(2026, 7, 1), 10.5},  // half an hour of summer time
        {"Australia/Lord_Howe", seconds(2100, 1, 1), 11},
        {"Australia/Lord_Howe", seconds(2100, 7, 1), 10.5},
        {"Pacific/Apia", seconds(2011, 12, 30, 9, 59, 59), -10},
        {"Pacific/Apia", seconds(2011, 12, 30, 10, 0, 0), 14},  // a day left out
        {"Europe/Dublin", seconds(2050, 1, 1), 0},  // its rule has winter as the odd half
        {"Europe/Dublin", seconds(2050, 7, 1), 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.name << " at " << c.utc);
        EXPECT_DOUBLE_EQ(hoursEast(zone(c.name), c.utc), c.hours);
    }
}

TEST(TimeZoneNamed, SkippedTimesMoveForwardByTheGap) {
    const TimeZone berlin = zone("Europe/Berlin");
    const auto shown = [&](std::int64_t wall) { return berlin.fromUtc(berlin.toUtc(wall)); };
    EXPECT_EQ(shown(seconds(2026, 3, 29, 1, 59, 59)), seconds(2026, 3, 29, 1, 59, 59));
    EXPECT_EQ(shown(seconds(2026, 3, 29, 2, 0, 0)), seconds(2026, 3, 29, 3, 0, 0));
    EXPECT_EQ(shown(seconds(2026, 3, 29, 2, 30, 0)), seconds(2026, 3, 29, 3, 30, 0));
    EXPECT_EQ(shown(seconds(2026, 3, 29, 2, 59, 59)), seconds(2026, 3, 29, 3, 59, 59));
    EXPECT_EQ(shown(seconds(2026, 3, 29, 3, 0, 0)), seconds(2026, 3, 29, 3, 0, 0));
    // Half an hour, and a whole day.
    const TimeZone howe = zone("Australia/Lord_Howe");
    EXPECT_EQ(howe.fromUtc(howe.toUtc(seconds(2026, 10, 4, 2, 15, 0))),
              seconds(2026, 10, 4, 2, 45, 0));
    const TimeZone apia = zone("Pacific/Apia");
    EXPECT_EQ(apia.fromUtc(apia.toUtc(seconds(2011, 12, 30, 12, 0, 0))),
              seconds(2011, 12, 31, 12, 0, 0));
}

TEST(TimeZoneNamed, TimesThatComeTwiceMeanTheFirst) {
    const TimeZone berlin = zone("Europe/Berlin");
    EXPECT_EQ(berlin.toUtc(seconds(2026, 10, 25, 1, 59, 59)), seconds(2026, 10, 24, 23, 59, 59));
    EXPECT_EQ(berlin.toUtc(seconds(2026, 10, 25, 2, 0, 0)), seconds(2026, 10, 25, 0, 0, 0));
    EXPECT_EQ(berlin.toUtc(seconds(2026, 10, 25, 2, 59, 59)), seconds(2026, 10, 25, 0, 59, 59));
    EXPECT_EQ(berlin.toUtc(seconds(2026, 10, 25, 3, 0, 0)), seconds(2026, 10, 25, 2, 0, 0));
    const TimeZone howe = zone("Australia/Lord_Howe");
    EXPECT_EQ(howe.toUtc(seconds(2026, 4, 5, 1, 45, 0)), seconds(2026, 4, 4, 14, 45, 0));
}

TEST(TimeZoneNamed, UtcComesBackFromEveryWallTimeThatIsNotDoubled) {
    const unsigned seed = std::random_device{}();
    std::cout << "seed " << seed << '\n';
    std::mt19937_64 random(seed);
    std::uniform_int_distribution<std::int64_t> moment(seconds(1900, 1, 1), seconds(2400, 1, 1));
    for (const char* name : {"Europe/Berlin", "America/New_York", "Asia/Kolkata",
                             "Australia/Lord_Howe", "Pacific/Apia", "Africa/Casablanca"}) {
        const TimeZone z = zone(name);
        for (int i = 0; i < 20'000; ++i) {
            const std::int64_t utc = moment(random);
            const std::int64_t wall = z.fromUtc(utc);
            const std::int64_t back = z.toUtc(wall);
            ASSERT_LE(back, utc) << name;
            ASSERT_EQ(z.fromUtc(back), wall) << name;
            ASSERT_TRUE(z.wallStretch(wall).holds(wall)) << name;
            ASSERT_TRUE(z.utcStretch(utc).holds(utc)) << name;
            ASSERT_EQ(z.utcStretch(utc).offset, wall - utc) << name;
        }
    }
}

TEST(TimeZoneNamed, StretchesFollowEachOtherWithoutGaps) {
    const TimeZone z = zone("Europe/Berlin");
    int changes = 0;
    std::int64_t at = seconds(2020, 1, 1);
    while (at < seconds(2300, 1, 1)) {
        const TimeZone::Stretch s = z.utcStretch(at);
        ASSERT_EQ(z.utcStretch(s.end - 1).offset, s.offset);
        changes += z.utcStretch(s.end).offset != s.offset ? 1 : 0;
        at = s.end;
    }
    EXPECT_EQ(changes, 560);
}

TEST(TimeZoneNamed, DatesAreConvertedToTheSecond) {
    const TimeZone berlin = zone("Europe/Berlin");
    const DateTime wall = DateTime::fromCivil(2026, 7, 1, 9, 20, 0);
    EXPECT_EQ(berlin.toUtc(wall), DateTime::fromCivil(2026, 7, 1, 7, 20, 0));
    EXPECT_EQ(berlin.fromUtc(berlin.toUtc(wall)), wall);
    EXPECT_EQ(TimeZone::utc().toUtc(wall), wall);
}

TEST(TimeZoneNamed, MayBeAskedFromSeveralThreads) {
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([] {
            for (int i = 0; i < 50; ++i) {
                const TimeZone z = zone("America/Chicago");
                EXPECT_DOUBLE_EQ(hoursEast(z, seconds(2026, 7, 1)), -5);
                EXPECT_FALSE(TimeZone::named("Mars/Base").has_value());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

// Under the zone of the environment: the build runs these once for each of several values of TZ.

TEST(TimeZoneLocal, AgreesWithTheCLibrary) {
    const TimeZone local = TimeZone::local();
    std::mt19937_64 random(7);
    std::uniform_int_distribution<std::int64_t> moment(seconds(1900, 1, 1), seconds(2128, 1, 1));
    for (int i = 0; i < 20'000; ++i) {
        const std::int64_t utc = moment(random);
        const auto t = static_cast<std::time_t>(utc - kUnixEpoch);
        std::tm tm{};
        ASSERT_NE(localtime_r(&t, &tm), nullptr);
        const std::int64_t wall =
            seconds(tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec);
        ASSERT_EQ(local.fromUtc(utc), wall) << utc;
    }
}

TEST(TimeZoneLocal, IsTheZoneOfTheEnvironment) {
    const char* name = std::getenv("VL_EXPECTED_ZONE");
    if (name == nullptr) {
        EXPECT_TRUE(TimeZone::local().same(TimeZone::local()));
        return;
    }
    const TimeZone local = TimeZone::local();
    const TimeZone named = zone(name);
    // The files of two zones differ in how far back they go, so from 1905 on.
    for (std::int64_t day = daysFromCivil(1905, 1, 1); day < daysFromCivil(2100, 12, 31); ++day) {
        for (const std::int64_t hour : {0, 1, 2, 3, 13}) {
            const std::int64_t at = day * kDay + hour * 3600 + 1234;
            ASSERT_EQ(local.fromUtc(at), named.fromUtc(at)) << day << ' ' << hour;
            ASSERT_EQ(local.toUtc(at), named.toUtc(at)) << day << ' ' << hour;
        }
    }
}

TEST(TimeZoneLocal, ANewlyMadeZoneSeesAChangeOfZone) {
    const char* before = std::getenv("TZ");
    const std::string kept = before != nullptr ? before : "";
    setenv("TZ", "Asia/Tokyo", 1);
    const TimeZone tokyo = TimeZone::local();
    setenv("TZ", "America/Los_Angeles", 1);
    const TimeZone angeles = TimeZone::local();
    const std::int64_t utc = seconds(2026, 1, 15);
    EXPECT_DOUBLE_EQ(hoursEast(angeles, utc), -8);
    EXPECT_DOUBLE_EQ(hoursEast(tokyo, utc), 9) << "a zone already made stays as it is";
    // A rule instead of a name.
    setenv("TZ", "XXX-3:30", 1);
    EXPECT_DOUBLE_EQ(hoursEast(TimeZone::local(), utc), 3.5);
    if (before != nullptr) {
        setenv("TZ", kept.c_str(), 1);
    } else {
        unsetenv("TZ");
    }
    tzset();
}

}  // namespace
}  // namespace vl
