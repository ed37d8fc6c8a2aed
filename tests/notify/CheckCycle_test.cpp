#include "notify/CheckCycle.h"

#include <gtest/gtest.h>

#include <functional>

#include "CheckParts.h"
#include "app/TimeText.h"
#include "base/ErrorState.h"

namespace vl {
namespace {

using test::ManualClock;
using test::RecordingScreen;

DateTime at(int hour, int minute, int second = 0, int day = 20) {
    return DateTime::fromCivil(2026, 11, day, hour, minute, second);
}

std::shared_ptr<calEvent> event(const char* GUID, const char* subject, DateTime start,
                                const char* overrides) {
    auto e = std::make_shared<calEvent>();
    e->GUID = GUID;
    e->Subject = subject;
    e->StartDateTime = start;
    e->reminders = std::string(R"({"useDefault":false,"overrides":[)") + overrides + "]}";
    e->SetRemindersCol();
    return e;
}

constexpr const char* kQuarter = R"({"method":"popup","minutes":15})";

/// A check over events put into the reminders set by hand; the database is not there, so that
/// reads leave the set as it is.
class Check : public test::CheckTest {
protected:
    Check() : CheckTest(at(14, 0)) {}
    void tick(int interval = 10000) { cycle.Tick(interval); }
};

TEST_F(Check, TheFirstOneTakesWhatWasDueSinceMidnight) {
    reminders.Add(event("{A}", "early", at(0, 15), kQuarter), "{A}");
    reminders.Add(event("{B}", "yesterday", at(23, 59, 59, 19), kQuarter), "{B}");
    reminders.Add(event("{C}", "later", at(15, 0), kQuarter), "{C}");
    tick();
    EXPECT_EQ(screen.count("AddItemR early 0"), 1U) << "its reminder is at 00:00 sharp";
    EXPECT_EQ(screen.count("AddItemR"), 1U);
    EXPECT_EQ(state.NewReminders->Count(), 1U);
    EXPECT_EQ(state.dLastUpdated, clock.now());
}

TEST_F(Check, TakesWhatFallsDueBeforeTheNextTick) {
    reminders.Add(event("{A}", "soon", at(14, 15, 10), kQuarter), "{A}");
    reminders.Add(event("{B}", "one second later", at(14, 15, 11), kQuarter), "{B}");
    tick(10000);
    EXPECT_EQ(screen.count("AddItemR soon 0"), 1U);
    EXPECT_EQ(screen.count("AddItemR one"), 0U);
    clock.time = at(14, 0, 10);
    tick(20000);
    EXPECT_EQ(screen.count("AddItemR one"), 1U);
}

TEST_F(Check, ListsAnEventOnceButSoundsForTheWholeListAgain) {
    reminders.Add(event("{A}", "a", at(14, 14), kQuarter), "{A}");
    tick();
    EXPECT_EQ(screen.count("PlayReminderSound"), 1U);
    screen.forget();
    clock.time = at(14, 0, 10);
    tick();
    EXPECT_EQ(screen.count("AddItemR"), 0U);
    EXPECT_EQ(screen.count("PlayReminderSound"), 0U) << "13:59 lies before this check's window";

    reminders.Add(event("{B}", "b", at(14, 15, 15), kQuarter), "{B}");
    tick();
    EXPECT_EQ(screen.count("AddItemR b 0"), 1U);
    EXPECT_EQ(screen.count("AddItemR a"), 0U);
    screen.forget();
    clock.time = at(14, 0, 12);
    tick();
    EXPECT_EQ(screen.count("AddItemR"), 0U);
    EXPECT_EQ(screen.count("PlayReminderSound"), 1U) << "b was taken early: found once more";
}

TEST_F(Check, WithOneListedEventTheTitleIsItsMessageWithMoreItIsTheCount) {
    state.sNotifType = "p";
    reminders.Add(event("{A}", "Call <b>Bob</b> || 5 min || x", at(14, 15), kQuarter), "{A}");
    tick();
    ASSERT_EQ(screen.popUps.size(), 1U);
    EXPECT_EQ(screen.popUps[0].title, "Call Bob (5 min)");
    EXPECT_EQ(screen.popUps[0].sContent, "");
    EXPECT_EQ(screen.popUps[0].ShowDelay, -1);
    EXPECT_FALSE(screen.popUps[0].Bold);
    EXPECT_EQ(screen.popUps[0].iWidth, 300);
    EXPECT_EQ(screen.popUps[0].ContentHeight, 100);
    EXPECT_EQ(screen.popUps[0].Opacity, 100);
    reminders.Add(event("{B}", "b", at(14, 15, 5), kQuarter), "{B}");
    reminders.Add(event("{C}", "c", at(14, 15, 5), kQuarter), "{C}");
    tick();
    ASSERT_EQ(screen.popUps.size(), 2U);
    EXPECT_EQ(screen.popUps[1].title, "3 new reminders");
    EXPECT_EQ(state.EvCol->Count(), 2U) << "only those of this check";
}

TEST_F(Check, ARepeatedPopUpWithNothingNewShowsTheWholeList) {
    state.sNotifType = "P";
    reminders.Add(event("{A}", "a", at(14, 15, 5), kQuarter), "{A}");
    reminders.Add(event("{B}", "b", at(14, 15, 5), kQuarter), "{B}");
    tick();
    clock.time = at(14, 0, 3);
    tick();
    ASSERT_EQ(screen.popUps.size(), 2U);
    ASSERT_EQ(state.EvCol->Count(), 2U);
    const auto entry = objectAt<ValueList>(*state.EvCol, "{A}");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->items[0], Variant("a"));
    EXPECT_EQ(entry->items[1].toText().substr(0, 13), " 15 minutes (");
}

TEST_F(Check, MutedListsInSilenceAndSilentNotifiesWithoutSound) {
    state.bMuted = true;
    reminders.Add(event("{A}", "a", at(14, 15), kQuarter), "{A}");
    tick();
    EXPECT_EQ(screen.count("AddItemR a 0"), 1U);
    EXPECT_EQ(screen.count("PlayReminderSound"), 0U);
    EXPECT_EQ(screen.count("ShowNewReminders"), 0U);
    state.bMuted = false;
    state.bSilent = true;
    reminders.Add(event("{B}", "b", at(14, 15, 5), kQuarter), "{B}");
    tick();
    EXPECT_EQ(screen.count("PlayReminderSound"), 0U);
    EXPECT_EQ(screen.count("ShowNewReminders {B}"), 1U);
}

TEST_F(Check, EachTypeNotifiesInItsWay) {
    struct Case {
        const char* type;
        const char* call;
    };
    static constexpr Case cases[] = {{"D", "ShowNewReminders {A}"},
                                     {"d", "ShowNewReminders {A}"},
                                     {"E", "ShowPopUp Email notifications..."},
                                     {"P", "ShowPopUp a"},
                                     {"S:", "ShowSystem a"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.type);
        CalEvents set(db, clock);
        set.Add(event("{A}", "a", at(14, 15), kQuarter), "{A}");
        ReminderState fresh;
        fresh.sNotifType = c.type;
        RecordingScreen seen;
        Ledger none(clock);
        Acts freshActs(set, period, db, clock, none, fresh);
        CheckCycle(set, period, db, clock, fresh, seen, none, freshActs).Tick(10000);
        EXPECT_EQ(seen.count(c.call), 1U);
        EXPECT_EQ(seen.count("Show"), 1U);
    }
}

TEST_F(Check, TheSystemAndTrayTypesShowNothingBesideTheIcon) {
    for (const char* type : {"S", "T", "x", ""}) {
        SCOPED_TRACE(type);
        CalEvents set(db, clock);
        set.Add(event("{A}", "a", at(14, 15), kQuarter), "{A}");
        ReminderState fresh;
        fresh.sNotifType = type;
        RecordingScreen seen;
        Ledger none(clock);
        Acts freshActs(set, period, db, clock, none, fresh);
        CheckCycle(set, period, db, clock, fresh, seen, none, freshActs).Tick(10000);
        EXPECT_EQ(seen.count("AddItemR a 0"), 1U);
        EXPECT_EQ(seen.count("PlayReminderSound"), 1U);
        EXPECT_EQ(seen.count("Show"), 0U);
        EXPECT_EQ(seen.calls.back(), "SetIcon");
    }
}

TEST_F(Check, TheEmailTypeSaysWhatItDoesNot) {
    state.sNotifType = "E";
    reminders.Add(event("{A}", "a", at(14, 15), kQuarter), "{A}");
    tick();
    ASSERT_EQ(screen.popUps.size(), 1U);
    EXPECT_EQ(screen.popUps[0].sContent,
              "This feature is not yet implemented, but will send email reminders");
    EXPECT_EQ(screen.popUps[0].ShowDelay, 5000);
    EXPECT_FALSE(screen.popUps[0].Bold);
    EXPECT_EQ(screen.popUps[0].iWidth, 250);
    EXPECT_EQ(screen.popUps[0].ContentHeight, 100);
    EXPECT_EQ(screen.popUps[0].Opacity, 100);
}

TEST_F(Check, WhatIsShownIsGivenInFull) {
    const std::string lines = "a 15 minutes (" + shortTimeText(at(14, 0)) + ")\r\nb 15 minutes (" +
                              shortTimeText(at(14, 0, 5)) + ")\r\n";
    for (const char* type : {"E", "P", "S:"}) {
        SCOPED_TRACE(type);
        const bool mail = std::string_view(type) == "E";
        CalEvents set(db, clock);
        set.Add(event("{A}", "a", at(14, 15), kQuarter), "{A}");
        set.Add(event("{B}", "b", at(14, 15, 5), kQuarter), "{B}");
        ReminderState fresh;
        fresh.sNotifType = type;
        RecordingScreen seen;
        Ledger none(clock);
        Acts freshActs(set, period, db, clock, none, fresh);
        CheckCycle(set, period, db, clock, fresh, seen, none, freshActs).Tick(10000);
        EXPECT_EQ(fresh.dLastReminder, clock.now());
        for (const PopUpRequest& shown : seen.popUps) {
            EXPECT_FALSE(shown.Bold);
            EXPECT_EQ(shown.ContentHeight, 100);
            EXPECT_EQ(shown.Opacity, 100);
            EXPECT_EQ(shown.iWidth, mail ? 250 : 300);
            EXPECT_EQ(shown.ShowDelay, mail ? 5000 : -1);
        }
        for (const auto& shown : seen.balloons) {
            EXPECT_EQ(shown.title, "2 new reminders");
            EXPECT_EQ(shown.text, lines);
            EXPECT_EQ(shown.timeoutMs, 5000);
        }
        EXPECT_EQ(seen.popUps.size() + seen.balloons.size(), 1U);
        const auto entry = objectAt<ValueList>(*fresh.EvCol, "{B}");
        ASSERT_TRUE(entry);
        EXPECT_EQ(entry->items[1], Variant(" 15 minutes (" + shortTimeText(at(14, 0, 5)) + ")"));
    }
}

TEST_F(Check, WithoutAGUIDThereIsNothingToActOn) {
    reminders.Add(event("", "nobody", at(14, 15), kQuarter));
    reminders.Add(event("{A}", "a", at(14, 15), kQuarter), "{A}");
    tick();
    EXPECT_EQ(screen.count("AddItemR"), 1U);
    EXPECT_EQ(screen.count("AddItemR a 0"), 1U);
}

/// Notes whether a check was running when it was asked for the icon.
class IconScreen : public RecordingScreen {
public:
    const ReminderState* state = nullptr;
    std::vector<bool> running;
    void SetIcon() override { running.push_back(state->bInTimerCheck); }
    void DoPeriod() override { running.push_back(state->bInTimerCheck); }
};

TEST_F(Check, IsOverBeforeTheIconIsSet) {
    IconScreen seen;
    seen.state = &state;
    period.Add(event("{A}", "a", at(18, 0), kQuarter), "{A}");
    CheckCycle(reminders, period, db, clock, state, seen, ledger, acts).Tick(10000);
    EXPECT_EQ(seen.running, (std::vector<bool>{true, false}));
}

/// Shows a modal box inside the notification: timers tick meanwhile.
class BoxScreen : public RecordingScreen {
public:
    std::function<void()> whileOpen;

protected:
    void note(const std::string& call) override {
        RecordingScreen::note(call);
        if (call.starts_with("ShowNewReminders")) {
            whileOpen();
        }
    }
};

TEST_F(Check, OneThatStartsWhileOneRunsChangesNothing) {
    BoxScreen box;
    CheckCycle inner(reminders, period, db, clock, state, box, ledger, acts);
    reminders.Add(event("{A}", "a", at(14, 15), kQuarter), "{A}");
    std::size_t before = 0;
    std::size_t after = 0;
    box.whileOpen = [&] {
        before = box.calls.size();
        inner.Tick(10000);
        after = box.calls.size();
    };
    inner.Tick(10000);
    EXPECT_GT(before, 0U);
    EXPECT_EQ(before, after);
    EXPECT_FALSE(state.bInTimerCheck);
    EXPECT_EQ(box.count("SetIcon"), 1U);
}

TEST_F(Check, CoversTheTimeOfASleepAndStartsAnewWhenTheClockIsTurnedBack) {
    tick();
    clock.time = at(18, 0);
    reminders.Add(event("{A}", "slept over", at(16, 15), kQuarter), "{A}");
    tick();
    EXPECT_EQ(screen.count("AddItemR slept over 0"), 1U);
    clock.time = at(15, 0);
    reminders.Add(event("{B}", "after the turn", at(15, 15, 5), kQuarter), "{B}");
    tick();
    EXPECT_EQ(screen.count("AddItemR after the turn 0"), 1U);
}

TEST_F(Check, FromTheNextDayOnWhatIsFinishedLeavesTheRemindersSet) {
    const auto old = event("{A}", "old", at(9, 0, 0, 19), kQuarter);
    reminders.Add(old, "{a}");
    reminders.Add(event("{B}", "b", at(9, 0, 0, 28), kQuarter), "{B}");
    period.Add(event("{A}", "old", at(9, 0, 0, 19), kQuarter), "{A}");
    tick();
    EXPECT_EQ(state.CheckDay, at(0, 0));
    clock.time = at(23, 59, 59);
    tick();
    EXPECT_EQ(reminders.mCol->Count(), 2U) << "the same day: nothing is asked";
    clock.time = at(0, 0, 0, 21);
    tick();
    EXPECT_EQ(reminders.mCol->Count(), 1U);
    EXPECT_EQ(objectAt<calEvent>(*period.mCol, 1)->status, "AllDone");
    EXPECT_EQ(state.CheckDay, at(0, 0)) << "never advanced:";
    reminders.Add(old, "{A}");
    tick();
    EXPECT_EQ(reminders.mCol->Count(), 1U) << "so it is done with every check of a later day";
    clock.time = at(13, 0);
    reminders.Add(old, "{A}");
    tick();
    EXPECT_EQ(reminders.mCol->Count(), 2U) << "back on the first day";
}

TEST_F(Check, KeepsPendingError) {
    ErrorState::set(ErrNo::Locked);
    tick();
    cycle.DoRemoveDeleted();
    cycle.RemoveGUIDAll("{A}");
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

TEST_F(Check, WhatIsRemovedMayComeAgain) {
    reminders.Add(event("{A}", "a", at(14, 15, 5), kQuarter), "{A}");
    tick();
    cycle.RemoveGUIDAll("{a}");
    EXPECT_EQ(state.NewReminders->Count(), 0U);
    EXPECT_EQ(state.LastEventsReminded->Count(), 0U);
    EXPECT_EQ(screen.count("RemoveGUID {a}"), 3U);
    screen.forget();
    tick();
    EXPECT_EQ(screen.count("AddItemR a 0"), 1U);
}

}  // namespace
}  // namespace vl
