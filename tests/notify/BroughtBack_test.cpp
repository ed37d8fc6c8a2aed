// What was all done and is brought back by its user while another process is in the middle of a
// change of the file: it comes at its time, and the row follows.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "FileDesk.h"
#include "support/HoldingProcess.h"

namespace vl {
namespace {

using test::at;
using test::FileDesk;
using test::HoldingProcess;
using test::single;

enum class By { TheWindow, AnotherCopy };
enum class Then { RunsOn, IsStartedAnew };

class BroughtBack : public testing::Test {
protected:
    /// A is finished, at nine of that day; B keeps the calendar busy.
    void begin(const std::shared_ptr<calEvent>& finished) {
        desk.emplace();
        desk->clock.time = at(7, 0);
        finished->status = "AllDone";
        desk->put(finished);
        desk->put(single("B", at(20, 0), {15}));
        ASSERT_EQ(desk->check(at(8, 0)), "");
        ASSERT_EQ(desk->check(at(8, 0, 10)), "");
    }
    template <class Act>
    void act(By who, Act&& act) {
        const auto on = [&](FileDesk::Program& program) {
            const auto event = program.period.EventByGUID("A");
            act(program.acts,
                ActRow{event, event->StartDateTime, event->StartDateTime.addMinutes(-15)});
        };
        if (who == By::TheWindow) {
            on(*desk->program);
            return;
        }
        FileDesk::Program other(*desk, desk->clock, (desk->folder / "VLReminders.ledger").string());
        other.cycle.ReadAtStart();
        on(other);
    }
    /// A check every minute to `until`; what they took, and when: "08:31 A 08:31, ".
    std::string run(DateTime until) {
        std::string taken;
        while (desk->clock.time < until) {
            const std::string now = desk->check(desk->clock.time.addMinutes(1));
            if (!now.empty()) {
                taken += formatDateTime(desk->clock.time).substr(11, 5) + " " + now + ", ";
            }
        }
        return taken;
    }
    void go(Then then) {
        if (then == Then::IsStartedAnew) {
            desk->program.reset();
        }
    }
    Variant stored(const char* column) { return *desk->file.value("A", column); }

    std::optional<FileDesk> desk;
};

TEST_F(BroughtBack, WhatIsSnoozedComesWhenItIsTime) {
    for (const By who : {By::TheWindow, By::AnotherCopy}) {
        for (const Then then : {Then::RunsOn, Then::IsStartedAnew}) {
            SCOPED_TRACE(testing::Message()
                         << static_cast<int>(who) << ' ' << static_cast<int>(then));
            ASSERT_NO_FATAL_FAILURE(begin(single("A", at(9, 0, 0, 17), {15})));
            {
                const HoldingProcess holder(desk->file.path());
                desk->clock.time = at(8, 1);
                act(who, [](Acts& acts, const ActRow& row) { acts.Snooze(row, 30); });
                go(then);
                EXPECT_EQ(run(at(8, 40)), "08:31 A 08:31, ");
                EXPECT_EQ(desk->program->state.waitingWrites, 2);
                go(then);
                EXPECT_EQ(run(at(8, 45)), then == Then::RunsOn ? "" : "08:41 A 08:31, ")
                    << "it stands in the list until it is acted upon";
                EXPECT_EQ(desk->program->state.waitingWrites, 2);
                EXPECT_EQ(stored("status"), Variant("AllDone"));
            }
            EXPECT_EQ(run(at(8, 50)), "");
            EXPECT_EQ(desk->program->state.waitingWrites, 0);
            EXPECT_EQ(stored("status"), Variant(""));
            EXPECT_EQ(stored("NextReminder"), Variant(at(8, 31)));
            desk->program->acts.Dismiss(desk->listed.at("A"), DismissMode::This);
            desk->start();
            EXPECT_EQ(run(at(9, 10)), "");
            EXPECT_EQ(stored("status"), Variant("AllDone"));
        }
    }
}

TEST_F(BroughtBack, WhatIsReactivatedComesAtOnce) {
    for (const By who : {By::TheWindow, By::AnotherCopy}) {
        for (const Then then : {Then::RunsOn, Then::IsStartedAnew}) {
            SCOPED_TRACE(testing::Message()
                         << static_cast<int>(who) << ' ' << static_cast<int>(then));
            ASSERT_NO_FATAL_FAILURE(begin(single("A", at(15, 0), {10080})));
            {
                const HoldingProcess holder(desk->file.path());
                desk->clock.time = at(8, 1);
                act(who, [](Acts& acts, const ActRow& row) { acts.Reactivate(row); });
                go(then);
                const std::string taken = run(at(8, 10));
                EXPECT_TRUE(taken == "08:02 A 15:00, " || taken == "08:03 A 15:00, ") << taken;
                EXPECT_EQ(desk->program->state.NewReminders->Count(), 1U);
            }
            EXPECT_EQ(run(at(8, 20)), "");
            EXPECT_EQ(stored("status"), Variant(""));
            EXPECT_EQ(desk->program->state.waitingWrites, 0);
        }
    }
}

// The last word counts, in the program at once and in the row as soon as it can be written.
TEST_F(BroughtBack, WhatIsMarkedAsDoneAfterwardsStaysDone) {
    for (const Then then : {Then::RunsOn, Then::IsStartedAnew}) {
        SCOPED_TRACE(static_cast<int>(then));
        ASSERT_NO_FATAL_FAILURE(begin(single("A", at(9, 0, 0, 17), {15})));
        {
            const HoldingProcess holder(desk->file.path());
            desk->clock.time = at(8, 1);
            act(By::TheWindow, [](Acts& acts, const ActRow& row) { acts.Snooze(row, 30); });
            EXPECT_EQ(run(at(8, 5)), "");
            act(By::TheWindow,
                [](Acts& acts, const ActRow& row) { acts.Dismiss(row, DismissMode::All, true); });
            go(then);
            EXPECT_EQ(run(at(8, 40)), "");
        }
        EXPECT_EQ(run(at(8, 50)), "");
        EXPECT_EQ(stored("status"), Variant("AllDone"));
        EXPECT_EQ(desk->program->state.waitingWrites, 0);
    }
}

// What has nothing to come is not read again and again.
TEST_F(BroughtBack, WhatIsReactivatedLongAfterItWasOverIsFinishedAgain) {
    ASSERT_NO_FATAL_FAILURE(begin(single("A", at(9, 0, 0, 17), {15})));
    desk->clock.time = at(8, 1);
    act(By::TheWindow, [](Acts& acts, const ActRow& row) { acts.Reactivate(row); });
    EXPECT_EQ(stored("status"), Variant(""));
    desk->clock.time = at(23, 55);
    EXPECT_EQ(run(at(0, 5, 0, 21)), "23:56 B 19:45, ");
    EXPECT_EQ(stored("status"), Variant("AllDone"));
    const auto look = desk->program->db.TakeLook();
    EXPECT_EQ(run(at(0, 15, 0, 21)), "");
    EXPECT_TRUE(look.same(desk->program->db.TakeLook())) << "nobody writes";
}

// Longer than anything else is kept that was dealt with.
TEST_F(BroughtBack, MonthsLaterItIsStillBack) {
    ASSERT_NO_FATAL_FAILURE(begin(single("C", at(9, 0, 0, 17), {15})));
    desk->put(single("A", at(10, 0).addDays(120), {15}));
    desk->put(single("D", at(10, 0).addDays(300), {15}));
    ASSERT_EQ(desk->check(at(8, 1)), "");
    const auto row = [&](const char* GUID) {
        const auto event = objectAt<calEvent>(*desk->program->period.mCol, GUID);
        return ActRow{event, event->StartDateTime, event->StartDateTime.addMinutes(-15)};
    };
    desk->program->acts.Dismiss(row("A"), DismissMode::All);
    const HoldingProcess holder(desk->file.path());
    desk->clock.time = at(8, 2);
    desk->program->acts.Reactivate(row("A"));
    desk->program->acts.Hide(row("D"));
    for (const int days : {30, 89, 92, 110}) {
        desk->program.reset();
        desk->check(at(8, 0).addDays(days));
        EXPECT_EQ(desk->program->state.waitingWrites, 2) << days;
    }
    EXPECT_TRUE(row("D").event->Hidden);
    desk->check(at(9, 44).addDays(120));
    EXPECT_EQ(desk->check(at(9, 45).addDays(120)), "A 09:45");
    EXPECT_NE(stored("Dismissed"), Variant(DateTime()));
}

// No event: no date, and yet somebody has put it off.
TEST(WithoutADate, ASnoozeIsShownOnceAndGoesAfterAnAct) {
    FileDesk desk;
    desk.clock.time = at(8, 0);
    const auto event = single("A", at(10, 0), {15});
    event->StartDateTime = event->EndDateTime = DateTime();
    desk.put(event);
    ASSERT_EQ(desk.check(at(8, 1)), "");
    desk.file.change("A", {{"NextReminder", Variant(at(8, 5))}});
    EXPECT_EQ(desk.check(at(8, 4)), "");
    EXPECT_EQ(desk.check(at(8, 5, 10)), "A 08:05");
    EXPECT_EQ(desk.program->screen.count("PlayReminderSound"), 1);
    for (const int minute : {6, 7}) {
        EXPECT_EQ(desk.check(at(8, minute)), "") << "it stands in the list";
    }
    EXPECT_EQ(desk.program->screen.count("PlayReminderSound"), 1);
    desk.program->acts.Snooze(desk.listed.at("A"), 5);
    EXPECT_EQ(desk.check(at(8, 11)), "");
    EXPECT_EQ(desk.check(at(8, 12)), "A 08:12");
    desk.program->acts.Dismiss(desk.listed.at("A"), DismissMode::This);
    EXPECT_EQ(desk.check(at(8, 13)), "");
    EXPECT_FALSE(desk.program->state.NewReminders->Exists("A"));
    desk.program.reset();
    EXPECT_EQ(desk.check(at(8, 14)), "");
}

}  // namespace
}  // namespace vl
