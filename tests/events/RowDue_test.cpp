#include "events/RowDue.h"

#include <functional>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include "events/ActRules.h"
#include "support/Events.h"

namespace vl {
namespace {

using test::at;
using test::series;
using test::single;

/// Beside the given ones none are in the row: it shows what an act has put there.
void note(EventState& state, const calEvent& event) {
    for (const std::string_view column : kWordColumns) {
        state.row[std::string(column)].after = columnText(event, column);
    }
}

/// An event whose first reminder was shown and acted upon, and what a row asks of it afterwards.
class RowDueTest : public testing::Test {
protected:
    ActOn act(DateTime when) const { return {*event, start, when, TimeZone::local(), replaced}; }
    void snooze(DateTime when, DateTime until) {
        recordSnooze(state, act(when), until);
        event->NextReminder = until;
        note(state, *event);
    }
    void dismiss(DateTime when, DismissMode mode = DismissMode::This) {
        recordDismiss(state, act(when), mode);
        event->Dismissed = when;
        note(state, *event);
    }
    RowDue ask(DateTime reminder, DateTime now, std::optional<DateTime> of = {}) const {
        return askRow(*event,
                      {of.value_or(start), reminder, now, &state, replaced, TimeZone::local()});
    }
    void expect(Fate fate, DateTime time, const RowDue& answer) const {
        EXPECT_EQ(answer.fate, fate);
        EXPECT_EQ(answer.time, time);
    }

    DateTime start = at(15, 0);
    std::shared_ptr<calEvent> event = single("{1}", start, {60, 15});
    EventState state;
    std::vector<DateTime> replaced;
};

TEST_F(RowDueTest, WhatNobodyHasActedOnComes) {
    expect(Fate::Comes, at(14, 0), ask(at(14, 0), at(13, 0)));
    expect(Fate::Comes, at(14, 0), ask(at(14, 0), at(23, 0)));
    expect(Fate::Comes, DateTime(), ask(DateTime(), at(13, 0)));
    const RowAsked unknown{start, at(14, 0), at(14, 5), nullptr, {}, TimeZone::local()};
    expect(Fate::Comes, at(14, 0), askRow(*event, unknown));
}

TEST_F(RowDueTest, OneReminderDismissedLeavesTheNextOne) {
    dismiss(at(14, 2));
    expect(Fate::DealtWith, at(14, 0), ask(at(14, 0), at(14, 2)));
    expect(Fate::Comes, at(14, 45), ask(at(14, 45), at(14, 2)));
}

TEST_F(RowDueTest, WhatWasListedEarlyIsDealtWithBeforeItsTime) {
    state.at(event->ToWall(start)).listed = event->ToMoment(at(14, 0));
    dismiss(at(13, 59, 45));
    expect(Fate::DealtWith, at(14, 0), ask(at(14, 0), at(13, 59, 50)));
}

TEST_F(RowDueTest, AllDismissedLeavesNone) {
    dismiss(at(14, 2), DismissMode::All);
    expect(Fate::DealtWith, at(14, 45), ask(at(14, 45), at(14, 2)));
}

TEST_F(RowDueTest, ASnoozeIsWhenItComes) {
    const DateTime tomorrow = at(14, 10, 0, 21);
    snooze(at(14, 10), tomorrow);
    expect(Fate::Snoozed, tomorrow, ask(at(14, 0), at(14, 11)));
    expect(Fate::Snoozed, tomorrow, ask(at(14, 45), at(14, 11)));
    expect(Fate::Comes, tomorrow, ask(tomorrow, at(14, 11)));
}

TEST_F(RowDueTest, AReminderBehindTheSnoozeComesAtItsOwnTime) {
    snooze(at(14, 10), at(14, 20));
    expect(Fate::Snoozed, at(14, 20), ask(at(14, 0), at(14, 11)));
    expect(Fate::Comes, at(14, 45), ask(at(14, 45), at(14, 11)));
}

TEST_F(RowDueTest, ASnoozeThatWasDismissedDoesNotComeThoughTheRowGoesOnToNameIt) {
    event = single("{1}", start, {60});
    const DateTime until = at(16, 10);
    snooze(at(14, 10), until);
    dismiss(at(14, 11));
    ASSERT_EQ(event->NextReminder, until);
    for (const DateTime now : {at(14, 12), at(16, 10), at(17, 0)}) {
        expect(Fate::DealtWith, until, ask(until, now));
    }
}

TEST_F(RowDueTest, MovedByTheHostAfterwardsItComesByItsNewSchedule) {
    const DateTime until = at(16, 10);
    snooze(at(14, 10), until);
    dismiss(at(14, 11));
    event->StartDateTime = start = at(18, 0);
    event->EndDateTime = at(18, 30);
    expect(Fate::Comes, at(17, 0), ask(until, at(14, 30)));
}

TEST_F(RowDueTest, WhatTheRowSaysHoldsWhereNothingElseIsKnown) {
    event->Dismissed = at(14, 30);
    event->Modified = at(9, 0);
    expect(Fate::DealtWith, at(14, 0), ask(at(14, 0), at(14, 40)));
    event->Modified = at(14, 35);
    expect(Fate::Comes, at(14, 45), ask(at(14, 45), at(14, 40)));
    event->NextReminder = at(16, 0);
    expect(Fate::Comes, at(16, 0), ask(at(16, 0), at(14, 40)));
    expect(Fate::Snoozed, at(16, 0), ask(at(14, 45), at(14, 40)));
}

class RowDueOfSeries : public RowDueTest {
protected:
    RowDueOfSeries() { event = series("{1}", at(15, 0, 0, 16), "FREQ=DAILY", {60}); }
};

TEST_F(RowDueOfSeries, AnActIsOnItsDayAndOnWhatWasBefore) {
    dismiss(at(14, 2));
    expect(Fate::DealtWith, at(14, 0), ask(at(14, 0), at(14, 5)));
    expect(Fate::DealtWith, at(14, 0, 0, 18), ask(at(14, 0, 0, 18), at(14, 5), at(15, 0, 0, 18)));
    expect(Fate::Comes, at(14, 0, 0, 21), ask(at(14, 0, 0, 21), at(14, 5), at(15, 0, 0, 21)));
}

TEST_F(RowDueOfSeries, ASnoozeIntoTheNextDayIsNotThatDays) {
    const DateTime until = at(14, 30, 0, 21);
    snooze(at(14, 2), until);
    // The lists take a stored time for one of the day whose reminders have begun by then.
    expect(Fate::Comes, until, ask(until, at(14, 5), at(15, 0, 0, 21)));
    expect(Fate::Comes, at(14, 0, 0, 21), ask(at(14, 0, 0, 21), at(14, 5), at(15, 0, 0, 21)));
    expect(Fate::Snoozed, until, ask(at(14, 0), at(14, 5)));
}

TEST_F(RowDueOfSeries, AnOccurrenceThatAnExceptionHasTakenIsMoved) {
    replaced = {start};
    expect(Fate::Moved, at(14, 0), ask(at(14, 0), at(13, 0)));
    expect(Fate::Comes, at(14, 0, 0, 21), ask(at(14, 0, 0, 21), at(13, 0), at(15, 0, 0, 21)));
}

}  // namespace
}  // namespace vl
