// Acts while another process is in the middle of a change of the file.
#include <gtest/gtest.h>

#include <string>

#include "FileDesk.h"
#include "support/HoldingProcess.h"

namespace vl {
namespace {

using test::at;
using test::FileDesk;
using test::HoldingProcess;
using test::single;

class HeldFile : public testing::Test {
protected:
    void SetUp() override {
        for (const char* GUID : {"A", "B", "C"}) {
            desk.put(single(GUID, at(9, 10), {15}));
        }
        ASSERT_EQ(desk.check(at(9, 0)), "A 08:55, B 08:55, C 08:55");
    }
    /// What somebody else reads in the file.
    std::shared_ptr<calEvent> stored(const char* GUID) {
        DBRemindUtils other;
        other.DBFullName = desk.file.path();
        return CalEvents(other, desk.clock).EventByGUID(GUID);
    }
    void actOnAll() {
        Acts& acts = desk.program->acts;
        acts.Snooze(desk.listed.at("A"), 20);
        acts.Dismiss(desk.listed.at("B"), DismissMode::All);
        acts.Hide(desk.listed.at("C"));
        acts.Dismiss(desk.listed.at("C"), DismissMode::This, true);
    }
    int waiting() { return desk.program->state.waitingWrites; }

    FileDesk desk;
};

TEST_F(HeldFile, AnActHoldsAtOnceAndIsWrittenWhenTheOtherProcessIsGone) {
    {
        const HoldingProcess other(desk.file.path());
        actOnAll();
        EXPECT_EQ(waiting(), 5) << "for the status line";
        EXPECT_TRUE(stored("B")->Dismissed.isZero());
        EXPECT_EQ(desk.check(at(9, 1)), "");
        EXPECT_EQ(desk.program->state.NewReminders->Count(), 0U);
        EXPECT_EQ(waiting(), 5);
        EXPECT_EQ(objectAt<calEvent>(*desk.program->period.mCol, "B")->Dismissed, at(9, 0))
            << "the views show it all the while";
    }
    EXPECT_EQ(desk.check(at(9, 2)), "");
    EXPECT_EQ(waiting(), 0);
    EXPECT_EQ(stored("A")->NextReminder, at(9, 20));
    EXPECT_EQ(stored("B")->Dismissed, at(9, 0));
    EXPECT_TRUE(stored("C")->Hidden);
    EXPECT_EQ(stored("C")->status, "AllDone");
    EXPECT_EQ(desk.check(at(9, 20)), "A 09:20");
}

TEST_F(HeldFile, SoItIsOverRestarts) {
    {
        const HoldingProcess other(desk.file.path());
        actOnAll();
        for (int i = 0; i < 2; ++i) {
            desk.start();
            EXPECT_EQ(desk.check(at(9, 1 + i)), "");
            EXPECT_EQ(waiting(), 5);
        }
        desk.program->acts.Dismiss(desk.listed.at("A"), DismissMode::This);
        EXPECT_EQ(waiting(), 6) << "what came later takes its place behind";
    }
    desk.start();
    EXPECT_EQ(desk.check(at(9, 3)), "");
    EXPECT_EQ(waiting(), 0);
    EXPECT_EQ(stored("A")->Dismissed, at(9, 2));
    EXPECT_EQ(stored("B")->Dismissed, at(9, 0));
    EXPECT_TRUE(stored("C")->Hidden);
    EXPECT_EQ(stored("C")->status, "AllDone");
    EXPECT_EQ(desk.check(at(9, 20)), "") << "the snooze was dealt with";
}

// What is alike is written at once.
TEST_F(HeldFile, ATimeThatIsToStandInTwoColumnsIsWrittenIntoEachByItself) {
    {
        const HoldingProcess other(desk.file.path());
        desk.program->acts.Snooze(desk.listed.at("A"), 20);
        desk.clock.time = at(9, 20);
        desk.program->acts.Dismiss(desk.listed.at("B"), DismissMode::All);
    }
    desk.check(at(9, 20, 10));
    EXPECT_EQ(waiting(), 0);
    EXPECT_EQ(stored("A")->NextReminder, at(9, 20));
    EXPECT_TRUE(stored("A")->Dismissed.isZero());
    EXPECT_EQ(stored("B")->Dismissed, at(9, 20));
    EXPECT_TRUE(stored("B")->NextReminder.isZero());
}

TEST_F(HeldFile, ADeletionThatWaitsForTheHostsFileHoldsUpNothingElse) {
    const std::string host = (desk.folder / "Host.vldb").string();
    jet::Database::create(host).createTable(
        "Event", std::vector<jet::NewColumn>{{"GUID", jet::ColumnType::Text, 50}});
    desk.listed.at("B").event->VLBase = host;
    Acts& acts = desk.program->acts;
    {
        const HoldingProcess ofHost(host);
        {
            const HoldingProcess other(desk.file.path());
            acts.Snooze(desk.listed.at("A"), 20);
            EXPECT_EQ(acts.DeleteItem(desk.listed.at("B")), calEvent::Deletion::Waits);
            acts.Dismiss(desk.listed.at("C"), DismissMode::All);
            EXPECT_EQ(waiting(), 3);
        }
        acts.WriteWaiting();
        EXPECT_EQ(waiting(), 1);
        EXPECT_EQ(stored("A")->NextReminder, at(9, 20));
        EXPECT_TRUE(stored("B"));
        EXPECT_EQ(stored("C")->Dismissed, at(9, 0));
        acts.Snooze(desk.listed.at("A"), 40);
        EXPECT_EQ(stored("A")->NextReminder, at(9, 40)) << "while it waits";
    }
    acts.WriteWaiting();
    EXPECT_EQ(waiting(), 0);
    EXPECT_FALSE(stored("B"));
}

/// Another copy of the program, or a command: it acts while somebody holds the file, and ends.
class OtherCopy : public HeldFile {
protected:
    template <class Act>
    void actAndEnd(const char* GUID, Act&& act) {
        FileDesk::Program other(desk, desk.clock, (desk.folder / "VLReminders.ledger").string());
        other.cycle.ReadAtStart();
        const HoldingProcess holder(desk.file.path());
        ActRow row = desk.listed.at(GUID);
        row.event = objectAt<calEvent>(*other.period.mCol, GUID);
        act(other.acts, row);
        EXPECT_GT(other.state.waitingWrites, 0);
    }
};

TEST_F(OtherCopy, WhatItCouldNotWriteTheRunningOneWrites) {
    actAndEnd("A", [](Acts& acts, const ActRow& row) { acts.Dismiss(row, DismissMode::All); });
    EXPECT_TRUE(stored("A")->Dismissed.isZero());
    desk.check(at(9, 1));
    EXPECT_EQ(stored("A")->Dismissed, at(9, 0));
    EXPECT_EQ(objectAt<calEvent>(*desk.program->period.mCol, "A")->Dismissed, at(9, 0));
    EXPECT_EQ(waiting(), 0);
}

TEST_F(OtherCopy, WhatItCouldNotWriteAnActOnTheSameWritesWithItsOwn) {
    actAndEnd("A", [](Acts& acts, const ActRow& row) { acts.Dismiss(row, DismissMode::This); });
    desk.program->acts.Snooze(desk.listed.at("A"), 20);
    EXPECT_EQ(stored("A")->Dismissed, at(9, 0));
    EXPECT_EQ(stored("A")->NextReminder, at(9, 20));
    EXPECT_EQ(waiting(), 0);
}

TEST_F(OtherCopy, ALaterActOfItStands) {
    {
        const HoldingProcess holder(desk.file.path());
        desk.program->acts.Snooze(desk.listed.at("A"), 20);
    }
    EXPECT_EQ(waiting(), 1);
    desk.clock.time = at(9, 1);
    actAndEnd("A", [](Acts& acts, const ActRow& row) { acts.Snooze(row, 120); });
    desk.check(at(9, 2));
    EXPECT_EQ(stored("A")->NextReminder, at(11, 1));
    EXPECT_EQ(waiting(), 0);
}

// An act on something else writes what waits, before a check has read.
TEST_F(OtherCopy, ALaterActOfItStandsAlsoWithoutACheck) {
    {
        const HoldingProcess holder(desk.file.path());
        desk.program->acts.Snooze(desk.listed.at("A"), 20);
    }
    desk.clock.time = at(9, 1);
    actAndEnd("A", [](Acts& acts, const ActRow& row) { acts.Snooze(row, 120); });
    desk.program->acts.Snooze(desk.listed.at("B"), 20);
    EXPECT_EQ(waiting(), 0);
    EXPECT_EQ(stored("A")->NextReminder, at(11, 1));
}

TEST_F(HeldFile, WhatIsReactivatedMeanwhileIsNotTakenForSomebodyElsesAct) {
    Acts& acts = desk.program->acts;
    acts.Snooze(desk.listed.at("A"), 20);
    {
        const HoldingProcess other(desk.file.path());
        acts.Snooze(desk.listed.at("A"), 30);
        acts.Reactivate(desk.listed.at("A"));
    }
    EXPECT_EQ(desk.check(at(9, 1)), "A 08:55");
    EXPECT_EQ(waiting(), 0);
    EXPECT_TRUE(stored("A")->NextReminder.isZero());
    EXPECT_FALSE(rowSpeaks(*stored("A"), desk.program->ledger.find(desk.file.path(), "A")));
}

}  // namespace
}  // namespace vl
