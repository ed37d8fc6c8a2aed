#include "events/DueRule.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "events/ActRules.h"
#include "support/Events.h"

namespace vl {
namespace {

using test::at;
using test::series;
using test::single;

/// A series every day from the 10th on, half an hour from 10:00, of no zone.
class DueRuleTest : public testing::Test {
protected:
    /// What is to be listed of what fell due since `since`, by a check at `now`; "20 09:45", the
    /// day of the occurrence and the time of the reminder.
    std::string ask(DateTime since, DateTime now) const {
        const DueFacts facts{&state, replaced, here};
        const auto taken = askDue(*event, facts, {since, now, now, since}).taken;
        return !taken ? ""
                      : formatDateTime(taken->instance).substr(8, 2) + " " +
                            formatDateTime(taken->time).substr(11, 5);
    }

    std::shared_ptr<calEvent> event = series("S", at(10, 0, 0, 10), "FREQ=DAILY", {15});
    EventState state;
    std::vector<DateTime> replaced;
    TimeZone here = TimeZone::local();
};

TEST_F(DueRuleTest, WhatAnotherProgramHasDismissedIsWhatHadBegunToRemindByThen) {
    event->Dismissed = at(9, 44, 59);
    EXPECT_EQ(ask(at(9, 0), at(9, 46)), "20 09:45");
    EXPECT_EQ(ask(at(9, 0, 0, 19), at(9, 44, 59)), "");
    event->Dismissed = at(9, 45);
    EXPECT_EQ(ask(at(9, 0), at(9, 46)), "");
    EXPECT_EQ(ask(at(9, 0), at(9, 46, 0, 21)), "21 09:45");
}

// Over is what ends now.
TEST_F(DueRuleTest, WhatIsOverIsPassedOverForWhatIsNot) {
    event = series("S", at(10, 0, 0, 10), "FREQ=DAILY", {15, -1440});
    EXPECT_EQ(ask(at(10, 0), at(10, 29, 59)), "19 10:00") << "of what is over";
    EXPECT_EQ(ask(at(9, 45), at(10, 29, 59)), "20 09:45") << "it goes on";
    EXPECT_EQ(ask(at(9, 45), at(10, 30)), "20 09:45") << "the later of two that are over";
    event->EndDateTime = at(10, 0, 0, 11);
    EXPECT_EQ(ask(at(9, 45), at(9, 59, 59)), "20 09:45");
    EXPECT_EQ(ask(at(9, 45), at(10, 0)), "20 09:45") << "that of the 19th is over";
    EXPECT_EQ(ask(at(9, 45, 0, 19), at(9, 59, 59)), "19 09:45") << "it goes on for a second";
    EXPECT_EQ(ask(at(9, 45, 0, 19), at(10, 0)), "20 09:45") << "not any more";
}

// By an act on the 20th, that did not know of what came since by another reminder.
TEST_F(DueRuleTest, WhatWasEndedAndIsOverIsSilent) {
    state.endedBefore = at(10, 0);
    EXPECT_EQ(ask(at(9, 0, 0, 19), at(9, 44)), "");
    EXPECT_EQ(ask(at(9, 0, 0, 19), at(9, 45)), "20 09:45") << "that begins with it is not ended";
    EXPECT_EQ(ask(at(9, 0, 0, 19), at(10, 31)), "20 09:45") << "over or not";
    state.endedBefore = at(10, 0, 1);
    EXPECT_EQ(ask(at(9, 0, 0, 19), at(10, 29, 59)), "20 09:45") << "nor what goes on";
    EXPECT_EQ(ask(at(9, 0, 0, 19), at(10, 30)), "");
    state.at(at(10, 0, 0, 19)).spared = true;
    state.at(at(10, 0, 0, 19)).handled = at(9, 0, 0, 19);
    EXPECT_EQ(ask(at(9, 0, 0, 19), at(10, 30)), "19 09:45") << "it was spared";
}

TEST_F(DueRuleTest, WhatIsBeforeASnoozeIsSupersededByIt) {
    event = series("S", at(10, 0, 0, 10), "FREQ=DAILY", {15, 5});
    state.at(at(10, 0)).snoozed = here.toUtc(at(9, 50));
    EXPECT_EQ(ask(at(9, 0), at(9, 49)), "");
    EXPECT_EQ(ask(at(9, 0), at(9, 50)), "20 09:50");
    event->NextReminder = at(9, 55);
    EXPECT_EQ(ask(at(9, 0), at(9, 54, 59)), "") << "another program's takes its place";
    EXPECT_EQ(ask(at(9, 0), at(9, 55)), "20 09:55");
    event->NextReminder = DateTime();
    replaced = {at(10, 0)};
    EXPECT_EQ(ask(at(9, 0), at(9, 55)), "") << "an exception has taken its occurrence";
    event->NextReminder = at(9, 50);
    EXPECT_EQ(ask(at(9, 0), at(9, 55)), "19 09:50") << "that of the row is of the one before";
}

TEST_F(DueRuleTest, ASnoozeInTheRowTakesTheOnesOfOtherOccurrencesNotAway) {
    event->NextReminder = at(9, 55);
    state.at(at(10, 0, 0, 18)).snoozed = here.toUtc(at(9, 50));
    EXPECT_EQ(ask(at(9, 50), at(9, 50)), "18 09:50");
}

// What it said before that was taken over, and silences nothing that came of the act.
TEST_F(DueRuleTest, ASnoozeAfterAnotherProgramsDismissalComes) {
    event->Dismissed = at(9, 50);
    for (const std::string_view column : kWordColumns) {
        state.row[std::string(column)].after = columnText(*event, column);
    }
    state.word.Dismissed = at(9, 50);
    state.at(at(10, 0)).snoozed = here.toUtc(at(9, 55));
    EXPECT_EQ(ask(at(9, 0), at(9, 55)), "20 09:55");
}

TEST_F(DueRuleTest, AllButThoseAfterTheEventLeavesNoneAtItsStart) {
    event = series("S", at(10, 0, 0, 10), "FREQ=DAILY", {15, 0, -1});
    state.at(at(10, 0)).muted = Muted::ThroughStart;
    EXPECT_EQ(ask(at(9, 0), at(10, 0)), "");
    EXPECT_EQ(ask(at(9, 0), at(10, 1)), "20 10:01");
}

// The row says the time that it said when it was marked as done; by now that is another moment.
TEST_F(DueRuleTest, WhatIsDoneStaysSoWhereItsRowSaysTheSame) {
    event = single("A", at(10, 0), {15});
    OccurrenceState& one = state.at(at(9, 0));
    one.muted = Muted::ForEver;
    one.local = at(10, 0);
    EXPECT_EQ(ask(at(9, 0), at(9, 45)), "20 09:45") << "it is not said to be done";
    state.row["status"].after = "AllDone";
    EXPECT_EQ(ask(at(9, 0), at(9, 45)), "");
    one.local = at(9, 0);
    EXPECT_EQ(ask(at(9, 0), at(9, 45)), "20 09:45") << "it has been moved";
}

TEST_F(DueRuleTest, WhatWasListedIsAskedForAsLongAsItIsThere) {
    state.at(at(10, 0, 0, 18)).listed = at(9, 45, 0, 18);
    EXPECT_EQ(ask(at(9, 0), at(9, 1)), "18 09:45");
    replaced = {at(10, 0, 0, 18)};
    EXPECT_EQ(ask(at(9, 0), at(9, 1)), "");
    replaced.clear();
    event = series("S", at(11, 0, 0, 10), "FREQ=DAILY", {15});
    EXPECT_EQ(ask(at(9, 0), at(9, 1)), "") << "it is no occurrence any more";
}

}  // namespace
}  // namespace vl
