#include "app/Timestamps.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "base/ErrorState.h"
#include "base/Variant.h"

namespace vl {
namespace {

DateTime at(const char* text) { return parseDateTime(text); }

TEST(Timestamps, ReadsAsWrittenWithoutTheLocalFlag) {
    struct Case {
        const char* text;
        const char* expected;
    };
    static constexpr Case cases[] = {
        {"2024-05-01T10:00:00Z", "2024-05-01 10:00"},
        {"2024-05-01T10:00:00+02:00", "2024-05-01 10:00"},
        {"2024-05-01T10:00:00-11:30", "2024-05-01 10:00"},
        {"2024-05-01t10:00:00z", "2024-05-01 10:00"},
        {"2024-05-01 10:00:00Z", "2024-05-01 10:00"},
        {"2024-05-01T10:00:01.999999999999999999999Z", "2024-05-01 10:00:01"},
        {"2024-05-01T10:00:01.5+02:00", "2024-05-01 10:00:01"},
        {"2016-12-31T23:59:60Z", "2016-12-31 23:59:59"},
        {"2024-05-01T10:00:00", "2024-05-01 10:00"},
        {"2024-05-01", "2024-05-01"},
        {"2024-02-29", "2024-02-29"},
        {"0000-01-01T00:00:00Z", "0000-01-01"},
        {"9999-12-31T23:59:59Z", "9999-12-31 23:59:59"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(parseTimestamp(c.text, false), at(c.expected));
    }
    EXPECT_TRUE(parseTimestamp("", false).isZero());
    EXPECT_TRUE(parseTimestamp("", true).isZero());
}

TEST(Timestamps, DatesAndTimesWithoutOffsetAreNeverShifted) {
    EXPECT_EQ(parseTimestamp("2024-05-01", true), at("2024-05-01"));
    EXPECT_EQ(parseTimestamp("2024-05-01T10:00:00", true), at("2024-05-01 10:00"));
}

TEST(Timestamps, RefusesWhatIsNone) {
    for (const char* text : {" ",
                             "x",
                             "2024",
                             "2024-5-1",
                             "2024-05-01T",
                             "2024-05-01T10:00",
                             "2024-05-01T10:00Z",
                             "2024-05-01T24:00:00Z",
                             "2024-05-01T10:60:00Z",
                             "2024-05-01T10:00:61Z",
                             "2024-05-01T10:00:00+2:00",
                             "2024-05-01T10:00:00+0200",
                             "2024-05-01T10:00:00+02",
                             "2024-05-01T10:00:00+24:00",
                             "2024-05-01T10:00:00+02:60",
                             "2024-05-01T10:00:00.Z",
                             "2024-05-01T10:00:00 Z",
                             "2024-05-01T10:00:00ZZ",
                             "2024-05-01T10:00:00+02:00x",
                             "2024-02-30",
                             "2023-02-29",
                             "2024-13-01",
                             "2024-00-01",
                             "2024-01-00",
                             "24-05-01",
                             "2024/05/01",
                             "-024-05-01",
                             "2024-05-01\xC3\xA4",
                             "2024-05-01X10:00:00Z",
                             "2024-05-01T1O:00:00Z",
                             "GMT+05:00"}) {
        SCOPED_TRACE(text);
        ErrNo number = ErrNo::None;
        std::string what;
        try {
            (void)parseTimestamp(text, true);
        } catch (const Error& e) {
            number = e.number();
            what = e.what();
        }
        EXPECT_EQ(number, ErrNo::Syntax);
        EXPECT_NE(what.find(text), std::string::npos) << what;
    }
}

TEST(Timestamps, SaysWhereItStoppedUnderstanding) {
    try {
        (void)parseTimestamp("2024-05-01T10:7x:00Z", false);
        FAIL();
    } catch (const Error& e) {
        EXPECT_STREQ(
            e.what(),
            "timestamp \"2024-05-01T10:7x:00Z\", character 16: expected a minute, 00 to 59");
    }
}

TEST(Timestamps, WritesAsItStandsWithoutTheLocalFlag) {
    EXPECT_EQ(formatTimestamp(DateTime(), false), "");
    EXPECT_EQ(formatTimestamp(DateTime(), true), "");
    EXPECT_EQ(formatTimestamp(at("2024-05-01"), false), "2024-05-01T00:00:00Z");
    EXPECT_EQ(formatTimestamp(at("2024-05-01 10:20:30"), false), "2024-05-01T10:20:30Z");
    EXPECT_EQ(formatTimestamp(DateTime(-1.25), false), "1899-12-29T06:00:00Z");
}

TEST(Timestamps, LabelsAnOffsetWithoutItsSign) {
    EXPECT_EQ(zoneLabel("2026-11-15T10:00:00+01:00"), "GMT+01:00");
    EXPECT_EQ(zoneLabel("2026-11-15T10:00:00-05:00"), "GMT+05:00");
    EXPECT_EQ(zoneLabel("2026-11-15T10:00:00+05:45"), "GMT+05:45");
    EXPECT_EQ(zoneLabel("2026-11-15T10:00:00Z"), "");
    EXPECT_EQ(zoneLabel("2026-11-15"), "");
    EXPECT_EQ(zoneLabel(""), "");
    EXPECT_EQ(zoneLabel("12345678901234567890a"), "GMT+a:0a");
    EXPECT_EQ(zoneLabel("1234567890123456789\xC3\xA4"
                        "ab"),
              "GMT+ab:ab");  // characters, not bytes
}

TEST(Timestamps, CutsTheDateOff) {
    EXPECT_EQ(datePart("2026-11-15T10:00:00Z"), "2026-11-15");
    EXPECT_EQ(datePart("2026-11-15"), "2026-11-15");
    EXPECT_EQ(datePart("12345T"), "12345T");
    EXPECT_EQ(datePart("123456T"), "123456");
    EXPECT_EQ(datePart("T23456T7"), "T23456");
    EXPECT_EQ(datePart(""), "");
}

// Run once under each zone below: the process itself never changes TZ.
class TimestampsLocal : public testing::Test {
protected:
    static std::string zone() {
        const char* name = std::getenv("VL_EXPECTED_ZONE");
        return name != nullptr ? name : "";
    }
};

struct Moment {
    const char* zone;
    const char* wall;       // as it goes in
    const char* timestamp;  // as it is written
    const char* utc;
};

// Both changes of the clocks of a year, and a day between.
constexpr Moment kMoments[] = {
    {"UTC", "2026-03-29 02:30", "2026-03-29T02:30:00+00:00", "2026-03-29T02:30:00Z"},
    {"Europe/Berlin", "2026-03-29 01:59:59", "2026-03-29T01:59:59+01:00", "2026-03-29T00:59:59Z"},
    {"Europe/Berlin", "2026-03-29 02:30", "2026-03-29T03:30:00+02:00", "2026-03-29T01:30:00Z"},
    {"Europe/Berlin", "2026-03-29 03:00", "2026-03-29T03:00:00+02:00", "2026-03-29T01:00:00Z"},
    {"Europe/Berlin", "2026-07-01 12:00", "2026-07-01T12:00:00+02:00", "2026-07-01T10:00:00Z"},
    {"Europe/Berlin", "2026-10-25 02:30", "2026-10-25T02:30:00+02:00", "2026-10-25T00:30:00Z"},
    {"Europe/Berlin", "2026-10-25 03:00", "2026-10-25T03:00:00+01:00", "2026-10-25T02:00:00Z"},
    {"America/New_York", "2026-03-08 02:15", "2026-03-08T03:15:00-04:00", "2026-03-08T07:15:00Z"},
    {"America/New_York", "2026-11-01 01:30", "2026-11-01T01:30:00-04:00", "2026-11-01T05:30:00Z"},
    {"America/New_York", "2026-12-01 00:00", "2026-12-01T00:00:00-05:00", "2026-12-01T05:00:00Z"},
    {"Asia/Kolkata", "2026-03-29 02:30", "2026-03-29T02:30:00+05:30", "2026-03-28T21:00:00Z"},
    {"Asia/Kolkata", "2026-10-25 02:30", "2026-10-25T02:30:00+05:30", "2026-10-24T21:00:00Z"},
    // Half an hour, at 2 o'clock: forward in October, back in April.
    {"Australia/Lord_Howe", "2026-10-04 02:15", "2026-10-04T02:45:00+11:00",
     "2026-10-03T15:45:00Z"},
    {"Australia/Lord_Howe", "2026-04-05 01:45", "2026-04-05T01:45:00+11:00",
     "2026-04-04T14:45:00Z"},
    {"Australia/Lord_Howe", "2026-07-01 12:00", "2026-07-01T12:00:00+10:30",
     "2026-07-01T01:30:00Z"},
    // 30 December 2011 was left out as a whole.
    {"Pacific/Apia", "2011-12-29 23:59:59", "2011-12-29T23:59:59-10:00", "2011-12-30T09:59:59Z"},
    {"Pacific/Apia", "2011-12-30 12:00", "2011-12-31T12:00:00+14:00", "2011-12-30T22:00:00Z"},
    {"Pacific/Apia", "2011-12-31 00:00", "2011-12-31T00:00:00+14:00", "2011-12-30T10:00:00Z"},
    {"Pacific/Apia", "2011-04-02 03:30", "2011-04-02T03:30:00-10:00", "2011-04-02T13:30:00Z"},
    {"Pacific/Apia", "2011-09-24 03:30", "2011-09-24T04:30:00-10:00", "2011-09-24T14:30:00Z"},
};

TEST_F(TimestampsLocal, FollowsTheSystemsZone) {
    int met = 0;
    for (const Moment& m : kMoments) {
        if (zone() != m.zone) {
            continue;
        }
        SCOPED_TRACE(m.wall);
        ++met;
        EXPECT_EQ(formatTimestamp(at(m.wall), true), m.timestamp);
        const DateTime local = parseTimestamp(m.timestamp, true);
        EXPECT_EQ(parseTimestamp(m.utc, true), local);
        EXPECT_EQ(formatTimestamp(local, true), m.timestamp);
    }
    EXPECT_TRUE(met > 0 || zone().empty()) << "no moments for " << zone();
}

TEST_F(TimestampsLocal, ReadsTheSecondOfTwoEqualTimesToo) {
    if (zone() == "Europe/Berlin") {
        EXPECT_EQ(parseTimestamp("2026-10-25T02:30:00+01:00", true), at("2026-10-25 02:30"));
        EXPECT_EQ(parseTimestamp("2026-10-25T01:30:00Z", true), at("2026-10-25 02:30"));
    }
    // A date is midnight of its day in every zone.
    EXPECT_EQ(parseTimestamp("2026-10-25", true), at("2026-10-25"));
}

TEST_F(TimestampsLocal, EveryHourOfAYearReadsBackOrLiesInAGap) {
    int moved = 0;
    for (int hour = 0; hour < 365 * 24; ++hour) {
        const DateTime wall = DateTime::fromCivil(2026, 1, 1, hour, 7);
        const std::string text = formatTimestamp(wall, true);
        moved += parseTimestamp(text, true) != wall ? 1 : 0;
        ASSERT_EQ(formatTimestamp(parseTimestamp(text, true), true), text);
    }
    const bool changes = zone() == "Europe/Berlin" || zone() == "America/New_York" ||
                         zone() == "Australia/Lord_Howe";
    if (!zone().empty()) {
        EXPECT_EQ(moved, changes ? 1 : 0);
    }
}

TEST_F(TimestampsLocal, LieInTheYearsThatDatesHave) {
    struct Case {
        const char* text;
        bool local;
        ErrNo error;
    };
    // Further from Greenwich than any zone.
    static constexpr Case cases[] = {
        {"9999-12-31T23:30:00-23:00", true, ErrNo::Overflow},
        {"0000-01-01T00:30:00+23:00", true, ErrNo::Overflow},
        {"9999-12-31T23:30:00-23:00", false, ErrNo::None},
        {"0000-01-01T00:30:00+23:00", false, ErrNo::None},
        {"9999-12-31T23:30:00+23:00", true, ErrNo::None},
        {"0000-01-01T00:30:00-23:00", true, ErrNo::None},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.text << ' ' << c.local);
        ErrNo error = ErrNo::None;
        DateTime d;
        try {
            d = parseTimestamp(c.text, c.local);
        } catch (const Error& e) {
            error = e.number();
        }
        EXPECT_EQ(error, c.error);
        if (error == ErrNo::None) {
            EXPECT_EQ(d.civil().year, c.text[0] == '9' ? 9999 : 0);
        }
    }
}

}  // namespace
}  // namespace vl
