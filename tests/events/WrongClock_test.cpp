#include "events/WrongClock.h"

#include <gtest/gtest.h>

#include "support/Events.h"

namespace vl {
namespace {

using test::at;
using test::series;
using test::single;

/// An event of no zone, so that moments are local times, and a clock that shows `now`.
class WrongClockRules : public testing::Test {
protected:
    DateTime utc(DateTime local) const { return here.toUtc(local); }
    /// An act on the 20th that was made at that time.
    OccurrenceState& actedAt(DateTime when) {
        OccurrenceState& one = entryOf();
        one.handled = when;
        one.acted = utc(when);
        state.acted = when;
        return one;
    }
    void doubt(DateTime acted, DateTime seen) { state.doubted[utc(acted)] = {seen, utc(seen)}; }
    OccurrenceState& entryOf(int day = 20) { return state.at(at(10, 0, 0, day)); }
    bool bears(const ClockWord& clock) const { return bearsOn(clock, state, here); }
    void take(const ClockWord& clock) { takeClock(state, *event, clock, here); }

    std::shared_ptr<calEvent> event = single("A", at(10, 0), {15});
    EventState state;
    TimeZone here = TimeZone::local();
    static constexpr bool kBack = true;
    const DateTime now = at(9, 0);
};

TEST_F(WrongClockRules, AnActFarAheadOfTheClockIsDoubted) {
    actedAt(at(9, 25));
    EXPECT_FALSE(bears({now, kBack}));
    take({now, kBack});
    EXPECT_TRUE(state.doubted.empty());
    actedAt(at(9, 25, 1));
    EXPECT_TRUE(bears({now, kBack}));
    take({now, kBack});
    EXPECT_EQ(state.doubted, (std::map<DateTime, Noted>{{utc(at(9, 25, 1)), {now, utc(now)}}}));
    EXPECT_EQ(entryOf().handled, at(9, 25, 1)) << "it stands as it was made";
    EXPECT_FALSE(bears({now, kBack})) << "it is in doubt already";
    take({at(9, 0, 1), kBack});
    EXPECT_EQ(state.doubted.begin()->second.local, now) << "that it was first seen at";
}

TEST_F(WrongClockRules, SoIsWhatOneHasEndedWithIt) {
    event = series("S", at(10, 0, 0, 16), "FREQ=DAILY", {15});
    state.endedBefore = at(10, 0);
    state.endedAt = utc(at(9, 25, 1));
    EXPECT_TRUE(bears({now, kBack}));
    take({now, kBack});
    EXPECT_EQ(state.doubted.size(), 1U);
}

TEST_F(WrongClockRules, WhatTheClockComesToWasWrong) {
    struct Case {
        const char* what;
        ClockWord clock;
        bool isRight;
    };
    const Case cases[] = {
        {"not yet", {at(11, 59, 59)}, false},
        {"now", {at(12, 0)}, true},
        {"it has gone on for an hour", {at(10, 0), false, false, true}, true},
        {"it is turned back once more", {at(9, 0, 1), kBack}, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        state = EventState();
        actedAt(at(12, 0)).reminder = at(8, 45);
        doubt(at(12, 0), now);
        EXPECT_EQ(bears(c.clock), c.isRight);
        take(c.clock);
        EXPECT_EQ(state.doubted.empty(), c.isRight);
        EXPECT_EQ(entryOf().handled, c.isRight ? now : at(12, 0));
        EXPECT_EQ(entryOf().acted, utc(c.isRight ? now : at(12, 0)));
        EXPECT_EQ(state.acted, c.isRight ? now : at(12, 0));
    }
}

TEST_F(WrongClockRules, WhatTheClockJumpsOverHoldsAsItWas) {
    struct Case {
        const char* what;
        ClockWord clock;
        bool holds;
    };
    const Case cases[] = {
        {"to it", {at(12, 0), false, true}, true},
        {"nearly to it", {at(11, 55), false, true}, true},
        {"not so near", {at(11, 54, 59), false, true}, false},
        {"it has not jumped", {at(11, 55)}, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        state = EventState();
        actedAt(at(12, 0));
        doubt(at(12, 0), now);
        EXPECT_EQ(bears(c.clock), c.holds);
        take(c.clock);
        EXPECT_EQ(state.doubted.empty(), c.holds);
        EXPECT_EQ(entryOf().handled, at(12, 0));
        EXPECT_EQ(entryOf().acted, utc(at(12, 0)));
    }
}

// What came while the clock was behind, against an act that held.
TEST_F(WrongClockRules, WhatWasListedAgainstItIsListedNoMore) {
    struct Case {
        DateTime listed;
        DateTime snoozed;
        bool stays;
    };
    const Case cases[] = {{at(12, 0), {}, false},
                          {at(12, 0, 1), {}, true},
                          {at(12, 59, 59), at(13, 0), false},
                          {at(13, 0), at(13, 0), true}};
    for (const Case& c : cases) {
        SCOPED_TRACE(formatDateTime(c.listed));
        state = EventState();
        OccurrenceState& one = actedAt(at(12, 0));
        one.listed = c.listed;
        one.snoozed = c.snoozed.isZero() ? DateTime() : utc(c.snoozed);
        doubt(at(12, 0), now);
        take({at(12, 0), false, true});
        EXPECT_EQ(!entryOf().listed.isZero(), c.stays);
    }
}

// The act on the 20th has ended those before it.
TEST_F(WrongClockRules, NorIsWhatItHadEnded) {
    event = series("S", at(10, 0, 0, 10), "FREQ=DAILY", {15});
    state.endedBefore = at(10, 0);
    state.endedAt = utc(at(12, 0));
    doubt(at(12, 0), now);
    for (int day = 17; day <= 20; ++day) {
        entryOf(day).listed = at(9, 45, 0, day);
    }
    entryOf(17).spared = true;
    entryOf(18).snoozed = utc(at(9, 30, 0, 18));
    take({at(12, 0), false, true});
    EXPECT_FALSE(entryOf(17).listed.isZero());
    EXPECT_FALSE(entryOf(18).listed.isZero());
    EXPECT_EQ(state.find(at(10, 0, 0, 19)), nullptr);
    EXPECT_FALSE(entryOf(20).listed.isZero());
    state.endedBefore = at(10, 0, 0, 22);
    state.endedAt = utc(at(12, 1));
    doubt(at(12, 1), now);
    take({at(12, 1), false, true});
    EXPECT_EQ(state.find(at(10, 0)), nullptr);
    entryOf(21).listed = at(9, 45, 0, 21);
    doubt(at(12, 1), now);
    take({at(12, 1), false, true});
    EXPECT_FALSE(entryOf(21).listed.isZero()) << "it is not over";
}

// Of the act holds what had come by the clock that first was seen to be behind, but not by one to
// which it was put back since.
TEST_F(WrongClockRules, AClockThatIsPutBackOnceMoreIsTheOneToGoBy) {
    actedAt(at(12, 0));
    doubt(at(12, 0), at(9, 25));
    EXPECT_FALSE(bears({now, kBack}));
    doubt(at(12, 0), at(9, 25, 1));
    EXPECT_TRUE(bears({now, kBack}));
    EXPECT_EQ(behind(state, utc(at(12, 0)), now, latestAct(now, here), here)->local, now);
    take({now, kBack});
    EXPECT_EQ(state.doubted.begin()->second.local, now);
    EXPECT_EQ(behind(state, utc(at(12, 0)), at(9, 10), latestAct(at(9, 10), here), here)->local,
              now);
}

TEST_F(WrongClockRules, OfAWrongActHoldsWhatHadComeAndItsReminder) {
    OccurrenceState& one = actedAt(at(12, 0));
    EXPECT_EQ(handledRight(one, *event, now), now);
    one.reminder = at(11, 0);
    EXPECT_EQ(handledRight(one, *event, now), at(11, 0));
    EXPECT_EQ(handledRight(one, *event, at(13, 0)), at(12, 0));
    one.snoozed = utc(at(18, 0));
    EXPECT_EQ(snoozedRight(one, *event, here), utc(at(11, 0)));
    one.reminder = DateTime();
    EXPECT_EQ(snoozedRight(one, *event, here), utc(at(18, 0))) << "nobody knows of which it was";
    one.snoozed = DateTime();
    one.reminder = at(11, 0);
    EXPECT_EQ(snoozedRight(one, *event, here), DateTime());
}

}  // namespace
}  // namespace vl
