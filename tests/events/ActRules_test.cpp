#include "events/ActRules.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "events/WrongClock.h"
#include "support/Events.h"

namespace vl {
namespace {

using test::at;
using test::series;
using test::single;

// ---- what the row says

TEST(RowSaysTest, ANextReminderAfterTheDismissalIsASnooze) {
    const auto event = single("A", at(10, 0), {15});
    const RowSays snoozed = rowSays(*event, {at(12, 0, 1), at(12, 0)}, {});
    EXPECT_EQ(snoozed.snoozed, at(12, 0, 1));
    EXPECT_EQ(snoozed.occurrence, at(10, 0));
    EXPECT_TRUE(snoozed.silentThrough.isZero());
    for (const DateTime next : {at(12, 0), at(11, 0), DateTime()}) {
        const RowSays dismissed = rowSays(*event, {next, at(12, 0)}, {});
        EXPECT_TRUE(dismissed.snoozed.isZero());
        EXPECT_EQ(dismissed.silentThrough, at(12, 0));
    }
}

TEST(RowSaysTest, ASnoozeIsOfTheLastOccurrenceWhoseFirstReminderIsNotLater) {
    const auto event = series("S", at(10, 0, 0, 16), "FREQ=DAILY", {60, 15});
    struct Case {
        const char* what;
        DateTime next;
        std::vector<DateTime> replaced;
        int day;
    };
    const Case cases[] = {
        {"in the second of its first reminder", at(9, 0), {}, 20},
        {"a second earlier", at(8, 59, 59), {}, 19},
        {"that one is replaced", at(9, 0), {at(10, 0)}, 19},
        {"and the one before it", at(9, 0), {at(10, 0, 0, 19), at(10, 0)}, 18},
        {"before all of them", at(8, 0, 0, 10), {}, 16},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(rowSays(*event, {c.next, DateTime()}, c.replaced).occurrence,
                  at(10, 0, 0, c.day));
    }
}

TEST(IsSilenced, OfASeriesWhatHadBegunToRemindByThen) {
    const auto event = series("S", at(10, 0, 0, 16), "FREQ=DAILY", {60, 15});
    const RowSays says{{}, {}, at(9, 0)};
    EXPECT_TRUE(isSilenced(*event, says, at(10, 0), at(9, 45)));
    EXPECT_FALSE(isSilenced(*event, says, at(10, 0, 1), at(9, 45, 1)));
    EXPECT_FALSE(isSilenced(*event, {}, at(10, 0), at(9, 45)));
}

TEST(IsSilenced, OfASingleEventAllUnlessItsHostHasWrittenItSince) {
    const auto event = single("A", at(10, 0), {15});
    const RowSays says{{}, {}, at(9, 50)};
    event->Modified = at(9, 50);
    EXPECT_TRUE(isSilenced(*event, says, at(10, 0), at(9, 55)));
    event->Modified = at(9, 50, 1);
    EXPECT_FALSE(isSilenced(*event, says, at(10, 0), at(9, 55)));
    EXPECT_TRUE(isSilenced(*event, says, at(10, 0), at(9, 50)));
    EXPECT_FALSE(isSilenced(*event, says, at(10, 0), at(9, 50, 1)));
}

TEST(IsDoneByUser, ByADismissalElsewhereThatIsNotOlderThanWhatTheHostHasWritten) {
    const auto event = single("A", at(10, 0), {15});
    const auto isDone = [&](const EventState* state) {
        return isDoneByUser(*event, {state, {}, TimeZone::local()}, at(9, 55), at(9, 55));
    };
    EXPECT_FALSE(isDone(nullptr)) << "neither has a time";
    event->Modified = at(9, 50);
    EXPECT_FALSE(isDone(nullptr));
    event->Dismissed = at(9, 50);
    EXPECT_TRUE(isDone(nullptr));
    event->Dismissed = at(9, 49, 59);
    EXPECT_FALSE(isDone(nullptr));
    event->Dismissed = at(9, 51);
    EventState known;
    for (const std::string_view column : kWordColumns) {
        known.row[std::string(column)].after = columnText(*event, column);
    }
    EXPECT_FALSE(isDone(&known)) << "we have put it there";
}

TEST(IsMarkedDone, WhenItsLastOccurrenceIsMutedForEver) {
    const auto event = series("S", at(10, 0), "FREQ=DAILY;COUNT=2", {15});
    EventState state;
    const auto isDone = [&](DateTime now) {
        return isMarkedDone(*event, {&state, {}, TimeZone::local()}, now, now);
    };
    const DateTime after = at(12, 0, 0, 22);
    state.row["status"].after = "AllDone";
    state.at(at(10, 0)).muted = Muted::ForEver;
    state.at(at(10, 0)).local = at(10, 0);
    EXPECT_FALSE(isDone(after)) << "the first, where the series begins";
    state.at(at(10, 0, 0, 21)).muted = Muted::ThroughStart;
    EXPECT_FALSE(isDone(after));
    state.at(at(10, 0, 0, 21)).muted = Muted::ForEver;
    EXPECT_TRUE(isDone(after));
    EXPECT_TRUE(isDone(at(9, 0)));
    state.at(at(10, 0)).muted = Muted::No;
    EXPECT_FALSE(isDone(at(9, 0))) << "the first is still to come";
    state.row["status"].after = "";
    EXPECT_FALSE(isDone(after));
}

TEST(EntryOf, EndsWithTheOccurrenceOrItsLastReminder) {
    EventState state;
    EXPECT_EQ(entryOf(state, *single("A", at(10, 0), {15, -10}), at(10, 0)).end, at(10, 30));
    EXPECT_EQ(entryOf(state, *single("A", at(10, 0), {15, -60}), at(10, 0)).end, at(11, 0));
    EXPECT_EQ(state.occurrences.size(), 1U);
}

// ---- acts

/// An event of no zone, so that moments are local times.
class ActRulesTest : public testing::Test {
protected:
    ActOn act(DateTime start, DateTime now, DateTime reminder = {}) const {
        return {*event, start, now, here, replaced, reminder};
    }
    OccurrenceState& one(int day = 20) { return state.at(at(10, 0, 0, day)); }

    std::shared_ptr<calEvent> event = series("S", at(10, 0, 0, 16), "FREQ=DAILY", {15});
    EventState state;
    std::vector<DateTime> replaced;
    TimeZone here = TimeZone::local();
};

// By that one an act under a wrong clock is set right: it holds no more than it.
TEST_F(ActRulesTest, NoteTheReminderThatTheyAreOnUnlessItIsStillToCome) {
    struct Case {
        DateTime reminder;
        DateTime noted;
    };
    for (const Case& c : {Case{at(9, 45), at(9, 45)}, Case{at(9, 46), at(9, 46)},
                          Case{at(9, 46, 1), {}}, Case{{}, {}}}) {
        SCOPED_TRACE(formatDateTime(c.reminder));
        state = EventState();
        recordDismiss(state, act(at(10, 0), at(9, 46), c.reminder), DismissMode::This);
        EXPECT_EQ(one().reminder, c.noted);
    }
    one().listed = at(9, 47);
    recordDismiss(state, act(at(10, 0), at(9, 46), at(9, 40)), DismissMode::This);
    EXPECT_EQ(one().reminder, at(9, 47)) << "the list took it early";
    EXPECT_EQ(one().handled, at(9, 47));
}

// What the list took early, within a minute, stays dealt with.
TEST_F(ActRulesTest, HandleUpToNowWhateverWasDealtWithAhead) {
    struct Case {
        DateTime handled;
        DateTime after;
    };
    for (const Case& c : {Case{at(9, 30), at(9, 44)}, Case{at(9, 45), at(9, 45)},
                          Case{at(9, 45, 1), at(9, 44)}, Case{at(12, 0), at(9, 44)}}) {
        SCOPED_TRACE(formatDateTime(c.handled));
        state = EventState();
        one().handled = c.handled;
        one().acted = here.toUtc(at(9, 43));
        recordDismiss(state, act(at(10, 0), at(9, 44)), DismissMode::This);
        EXPECT_EQ(one().handled, c.after);
        EXPECT_EQ(one().acted, here.toUtc(at(9, 44)));
        EXPECT_EQ(state.acted, at(9, 44));
    }
}

TEST_F(ActRulesTest, EndWhatIsEarlierAndOverButNoSnooze) {
    for (int day = 17; day <= 20; ++day) {
        one(day).listed = at(9, 45, 0, day);
    }
    one(18).snoozed = here.toUtc(at(18, 0));
    recordDismiss(state, act(at(10, 0), at(9, 46)), DismissMode::This);
    EXPECT_EQ(state.endedBefore, overBefore(*event, at(9, 46)));
    EXPECT_EQ(state.endedAt, here.toUtc(at(9, 46)));
    EXPECT_TRUE(one(17).listed.isZero());
    EXPECT_TRUE(one(18).spared);
    EXPECT_EQ(one(18).listed, at(9, 45, 0, 18));
    EXPECT_TRUE(one(20).listed.isZero());
    EXPECT_FALSE(one(20).spared);
    recordDismiss(state, act(at(10, 0, 0, 17), at(9, 47)), DismissMode::This);
    EXPECT_EQ(state.endedAt, here.toUtc(at(9, 46))) << "nothing more is ended by it";
}

// Of what has begun when it begins, the one that is acted upon is not ended, nor is what goes on.
TEST_F(ActRulesTest, EndNothingThatBeginsWithItOrGoesOn) {
    recordDismiss(state, act(at(10, 0, 0, 19), at(9, 46)), DismissMode::This);
    EXPECT_EQ(state.endedBefore, at(10, 0, 0, 19));
    state = EventState();
    recordDismiss(state, act(at(10, 0), at(10, 29, 59, 19)), DismissMode::This);
    EXPECT_EQ(state.endedBefore, at(10, 0, 0, 19)) << "it is over half an hour later";
    state = EventState();
    recordDismiss(state, act(at(10, 0), at(10, 30, 0, 19)), DismissMode::This);
    EXPECT_EQ(state.endedBefore, at(10, 0, 1, 19));
}

// Once it is over, too.
TEST_F(ActRulesTest, DoNotSpareTheOneThatTheyAreOn) {
    one(20).snoozed = here.toUtc(at(10, 40));
    recordDismiss(state, act(at(10, 0), at(10, 41)), DismissMode::This);
    EXPECT_EQ(state.endedBefore, at(10, 0));
    EXPECT_FALSE(one(20).spared);
}

TEST_F(ActRulesTest, TouchNoListingOfALaterOccurrence) {
    one(21).listed = at(9, 50, 0, 21);  // by a reminder that it had then
    recordSnooze(state, act(at(10, 0), at(9, 46)), at(12, 0, 0, 22));
    EXPECT_EQ(one(21).listed, at(9, 50, 0, 21));
}

// Of a row from before a move nobody has seen what has fallen due since by the new time.
TEST_F(ActRulesTest, OnARowFromBeforeAMoveLeaveWhatIsListedNowAsFarAsItHasCome) {
    event = single("A", at(10, 0), {15});
    struct Case {
        const char* what;
        DateTime start;
        DateTime listed;
        DateTime now;
        bool stays;
    };
    const Case cases[] = {
        {"it has come", at(10, 0), at(9, 45), at(9, 45), true},
        {"it is to come", at(10, 0), at(9, 45), at(9, 44, 59), false},
        {"by a reminder that it has no more", at(10, 0), at(9, 44), at(9, 45), false},
        {"of another start that it had", at(7, 0), at(9, 45), at(9, 45), false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        state = EventState();
        state.at(c.start).listed = c.listed;
        recordDismiss(state, act(at(8, 0), c.now), DismissMode::This);
        EXPECT_EQ(!state.at(c.start).listed.isZero(), c.stays);
    }
    state = EventState();
    state.at(at(8, 0)).listed = at(7, 45);
    one(20).listed = at(9, 45);
    recordSnooze(state, act(at(8, 0), at(9, 46)), at(10, 0));
    EXPECT_EQ(state.at(at(8, 0)).reminder, at(7, 45)) << "that the row showed";
}

// Another program's clock is ahead: what its dismissal would silence has not begun to remind.
TEST_F(ActRulesTest, ASnoozeFromADismissalAheadSilencesNothingOnceItIsActedUpon) {
    event->NextReminder = at(12, 30, 0, 21);
    event->Dismissed = at(12, 0, 0, 21);
    recordDismiss(state, act(at(10, 0, 0, 21), at(9, 0)), DismissMode::This);
    EXPECT_FALSE(state.word.saysAnything());
    state = EventState();
    event->NextReminder = at(12, 0);
    event->Dismissed = at(11, 0);
    recordDismiss(state, act(at(10, 0), at(11, 0)), DismissMode::This);
    EXPECT_FALSE(state.word.saysAnything()) << "in the same second";
}

// Its host may move it to where reminders before the snooze are asked for.
TEST_F(ActRulesTest, ASnoozeOfASingleEventByAnotherProgramIsNoneAnyMore) {
    event = single("A", at(10, 0), {15});
    event->NextReminder = at(12, 0);
    event->Dismissed = at(9, 46);
    recordDismiss(state, act(at(10, 0), at(12, 1)), DismissMode::This);
    EXPECT_FALSE(state.word.saysAnything());
}

TEST_F(ActRulesTest, WhatASnoozeOfTheRowHasSupersededStaysSo) {
    event->NextReminder = at(12, 0);
    event->Dismissed = at(9, 46);
    recordDismiss(state, act(at(10, 0), at(11, 0)), DismissMode::This);
    EXPECT_EQ(state.word, (RowWord{at(11, 0), at(9, 46)})) << "up to now";
    state = EventState();
    recordDismiss(state, act(at(10, 0), at(12, 1)), DismissMode::This);
    EXPECT_EQ(state.word, (RowWord{at(12, 0), at(9, 46)})) << "up to its time";
    state = EventState();
    recordDismiss(state, act(at(10, 0, 0, 19), at(11, 0)), DismissMode::This);
    EXPECT_EQ(state.word, (RowWord{at(12, 0), at(9, 46)})) << "that was on another occurrence";
    EXPECT_EQ(one().snoozed, here.toUtc(at(12, 0)));
}

// Of a single event that silences what is still to come.
TEST_F(ActRulesTest, WhatAnotherProgramHasDismissedStaysSoAfterAnActHere) {
    event = single("A", at(10, 0), {15});
    event->Dismissed = at(9, 0);
    recordSnooze(state, act(at(10, 0), at(9, 10)), at(9, 20));
    EXPECT_EQ(state.word, (RowWord{DateTime(), at(9, 0)}));
    for (const std::string_view column : kWordColumns) {
        state.row[std::string(column)].after = columnText(*event, column);
    }
    event->Dismissed = at(9, 10);
    state.row["Dismissed"].after = columnText(*event, "Dismissed");
    recordDismiss(state, act(at(10, 0), at(9, 20)), DismissMode::This);
    EXPECT_EQ(state.word, (RowWord{DateTime(), at(9, 0)}))
        << "the row shows what we have put there";
}

// Of the 20th, which had begun to remind by then; not of the 22nd.
TEST_F(ActRulesTest, ASnoozeThatAnotherProgramHasDismissedEndsWithAnActOnAnyOccurrence) {
    one(20).snoozed = here.toUtc(at(12, 0));
    one(22).snoozed = here.toUtc(at(12, 0, 0, 23));
    event->Dismissed = at(10, 0);
    recordDismiss(state, act(at(10, 0, 0, 21), at(10, 5)), DismissMode::This);
    EXPECT_EQ(state.find(at(10, 0))->snoozed, DateTime());
    EXPECT_EQ(one(22).snoozed, here.toUtc(at(12, 0, 0, 23)));
}

TEST_F(ActRulesTest, AllButAfterTakesNothingBackOfWhatIsMutedForEver) {
    recordDismiss(state, act(at(10, 0), at(9, 46)), DismissMode::All);
    recordDismiss(state, act(at(10, 0), at(9, 47)), DismissMode::AllButAfter);
    EXPECT_EQ(one().muted, Muted::ForEver);
}

// What stands in the list under the start that it has now goes with the row from before a move
// where it was superseded by the snooze, and is the reminder that this was on.
TEST_F(ActRulesTest, ASnoozeOfAMovedSingleEventSupersedesWhatIsListedBeforeIt) {
    event = single("A", at(10, 0), {15});
    for (const int minute : {14, 15, 16}) {
        SCOPED_TRACE(minute);
        state = EventState();
        one().listed = at(9, 45);
        recordSnooze(state, act(at(8, 0), at(9, 46)), at(9, 30 + minute));
        const OccurrenceState& snoozed = state.at(at(8, 0));
        EXPECT_EQ(snoozed.snoozed, here.toUtc(at(9, 30 + minute)));
        const OccurrenceState* listed = state.find(at(10, 0));
        EXPECT_EQ(listed != nullptr && !listed->listed.isZero(), minute <= 15);
        EXPECT_EQ(snoozed.reminder, minute <= 15 ? DateTime() : at(9, 45));
    }
}

}  // namespace
}  // namespace vl
