// What falls due, where the file itself is the matter.
#include <gtest/gtest.h>

#include <fstream>

#include "../model/ZoneForTest.h"
#include "FileDesk.h"
#include "app/TimeText.h"
#include "db/jet/Database.h"

namespace vl {
namespace {

using test::at;
using test::FileDesk;
using test::series;
using test::single;

class OnFile : public testing::Test {
protected:
    FileDesk desk;
};

// A start while the network is not up yet.
TEST_F(OnFile, WhatFellDueWhileNobodyCouldReadIsShownWhenTheFileIsBack) {
    desk.put(single("A", at(20, 0), {15}));
    EXPECT_EQ(desk.check(at(12, 0)), "");
    desk.program.reset();
    desk.takeFileAway();
    EXPECT_EQ(desk.check(at(8, 0, 0, 21)), "");
    EXPECT_EQ(desk.check(at(8, 0, 10, 21)), "");
    desk.start();  // a restart does not lose it either
    EXPECT_EQ(desk.check(at(8, 0, 20, 21)), "");
    desk.bringFileBack();
    EXPECT_EQ(desk.check(at(8, 0, 30, 21)), "A 19:45");
}

TEST_F(OnFile, ASnoozeLongerThanTheGraceOfItsEventComesOverDaysAndRestarts) {
    const auto status = [this] {
        DBRemindUtils other;
        other.DBFullName = desk.file.path();
        return CalEvents(other, desk.clock).EventByGUID("A")->status;
    };
    desk.put(single("A", at(10, 0), {15}));
    EXPECT_EQ(desk.check(at(9, 45)), "A 09:45");
    desk.program->acts.Snooze(desk.listed.at("A"), 7 * 24 * 60);
    for (int day = 21; day <= 26; ++day) {
        EXPECT_EQ(desk.check(at(12, 0, 0, day)), "");
        EXPECT_EQ(status(), "") << "a day of grace is over, the snooze is not";
        if (day % 2 == 0) {
            desk.start();
        }
    }
    EXPECT_EQ(desk.check(at(9, 44, 0, 27)), "");
    EXPECT_EQ(desk.check(at(9, 45, 0, 27)), "A 09:45");
    desk.check(at(9, 45, 10, 28));
    EXPECT_EQ(status(), "") << "it stands in the list";
    desk.program->acts.Dismiss(desk.listed.at("A"), DismissMode::This);
    desk.check(at(9, 45, 20, 28));
    EXPECT_EQ(status(), "AllDone");
    EXPECT_EQ(desk.check(at(9, 46, 0, 28)), "");
}

TEST_F(OnFile, SoIsWhatTheHostEnteredMeanwhile) {
    desk.check(at(12, 0));
    desk.takeFileAway();
    desk.check(at(12, 0, 10));
    desk.check(at(12, 0, 0, 22));
    desk.bringFileBack();
    desk.put(single("A", at(20, 0, 0, 21), {15}));
    EXPECT_EQ(desk.check(at(12, 1, 0, 22)), "A 19:45");
}

TEST_F(OnFile, AnExceptionThatAnotherProgramFinishedKeepsItsOldStart) {
    const auto master = series("M", at(10, 0, 0, 21), "FREQ=DAILY;COUNT=1", {15});
    const auto other = series("N", at(10, 0, 0, 21), "FREQ=DAILY;COUNT=1", {15});
    desk.put(master);
    desk.put(other);
    for (const bool deleted : {false, true}) {
        const auto& series = deleted ? other : master;
        const auto exception = single("X" + series->GUID, at(11, 0), {15});
        exception->RecurrenceState = 3;
        exception->recurringEventId = series->id;
        exception->RExceptionStartTimeOrig = series->StartDateTime;
        exception->status = "AllDone";
        exception->Dismissed = desk.clock.time;
        exception->deleted = deleted;
        desk.put(exception);
    }
    EXPECT_EQ(desk.check(at(9, 0)), "");
    EXPECT_EQ(desk.check(at(10, 0, 0, 21)), "");
    desk.start();
    EXPECT_EQ(desk.check(at(10, 1, 0, 21)), "");
}

// Its row came to the ledger in one zone, and is asked for in another.
TEST_F(OnFile, AStartThatAnExceptionHadReplacedStaysSoInAnotherZone) {
    const auto master = [](int hour) {
        auto e = series("M", at(hour, 0, 0, 19), "FREQ=DAILY", {15}, "America/New_York");
        return e;
    };
    {
        const test::ZoneForTest berlin("Europe/Berlin");
        desk.put(master(16));
        const auto exception = single("X", at(16, 0), {15});
        exception->RecurrenceState = 3;
        exception->recurringEventId = "idM";
        exception->RExceptionStartTimeOrig = at(16, 0, 0, 21);
        exception->status = "AllDone";
        exception->Dismissed = desk.clock.time;
        desk.put(exception);
        EXPECT_EQ(desk.check(at(12, 0)), "");
        desk.file.remove("X");
        EXPECT_EQ(desk.check(at(16, 0)), "M 15:45");
        desk.program->acts.Dismiss(desk.listed.at("M"), DismissMode::This);
    }
    const test::ZoneForTest there("America/New_York");
    desk.clock.time = at(10, 1);
    desk.put(master(10));
    EXPECT_EQ(desk.check(at(10, 1)), "");
    EXPECT_EQ(desk.check(at(10, 0, 0, 21)), "");
    EXPECT_EQ(desk.check(at(10, 0, 0, 22)), "M 09:45");
}

TEST_F(OnFile, WhoHasTravelledSeesWhatTheHostHasWrittenThere) {
    const auto entry = [](int hour) {
        return series("M", at(hour, 0), "FREQ=DAILY", {15}, "America/New_York");
    };
    {
        const test::ZoneForTest berlin("Europe/Berlin");
        desk.put(entry(16));
        EXPECT_EQ(desk.check(at(12, 0)), "");
    }
    const test::ZoneForTest there("Asia/Kolkata");
    desk.clock.time = at(16, 31);
    desk.file.put(*entry(20));  // 20:30, and not stamped at all
    EXPECT_EQ(desk.check(at(16, 31)), "") << "it is no meeting at 16:00";
    EXPECT_EQ(desk.check(at(19, 45)), "M 19:45");
}

std::shared_ptr<calEvent> exceptionTo(const calEvent& series, const char* GUID, DateTime start) {
    auto e = single(GUID, start, {15});
    e->RecurrenceState = 3;
    e->recurringEventId = series.id;
    e->RExceptionStartTimeOrig = series.StartDateTime;
    return e;
}

TEST_F(OnFile, AnExceptionThatIsFinishedWhenItIsFirstReadKeepsItsOldStart) {
    const auto master = series("M", at(10, 0), "FREQ=DAILY;COUNT=1", {15});
    desk.put(master);
    desk.put(exceptionTo(*master, "X", at(10, 0, 0, 18)));
    EXPECT_EQ(desk.check(at(9, 50)), "");
    EXPECT_EQ(desk.check(at(9, 51)), "");
}

TEST_F(OnFile, SoDoesOneThatWasWrittenAndDeletedBetweenTwoChecks) {
    desk.check(at(9, 40));
    const auto master = series("M", at(10, 0), "FREQ=DAILY;COUNT=1", {15});
    const auto gone = exceptionTo(*master, "X", at(12, 0));
    gone->deleted = true;
    desk.put(master);
    desk.put(gone);
    for (const int second : {10, 20, 30}) {
        EXPECT_EQ(desk.check(at(9, 50, second)), "");
    }
}

TEST_F(OnFile, WhatWasDoneAndThenMovedRingsAtItsNewTimeAlsoAfterARestart) {
    desk.put(single("A", at(10, 0), {15}));
    EXPECT_EQ(desk.check(at(9, 45)), "A 09:45");
    desk.program->acts.Dismiss(desk.listed.at("A"), DismissMode::This, true);
    desk.put(single("A", at(12, 0), {15}));  // with a status of its own
    desk.start();
    EXPECT_EQ(desk.check(at(9, 46)), "");
    EXPECT_EQ(desk.check(at(11, 45)), "A 11:45");
}

TEST_F(OnFile, WhatTheHostMovesWhenTheDayChangesIsNotFinished) {
    desk.put(single("A", at(0, 0, 0, 20), {-5}));
    desk.check(at(9, 0));
    desk.program->acts.Dismiss(desk.listed.at("A"), DismissMode::All);
    desk.check(at(0, 4, 59, 21));
    desk.put(single("A", at(0, 10, 0, 21), {-5}));
    EXPECT_EQ(desk.check(at(0, 5, 9, 21)), "");
    EXPECT_EQ(desk.check(at(0, 15, 0, 21)), "A 00:15");
}

// Its stamp is older than the last read: the full read alone finds it, and there it looks finished.
TEST_F(OnFile, WhatTheCheckHasNotMetYetIsNotFinishedWhenTheDayHasChanged) {
    desk.check(at(9, 0));
    desk.check(at(9, 0, 0, 21));
    const auto fair = single("A", at(9, 0, 0, 19), {60});
    fair->EndDateTime = at(18, 0, 0, 24);
    fair->Modified = at(8, 59, 0, 21);
    desk.file.put(*fair);
    EXPECT_EQ(desk.check(at(9, 0, 10, 21)), "");
    EXPECT_EQ(desk.check(at(9, 0, 20, 21)), "A 08:00") << "it goes on";
}

TEST_F(OnFile, ARowOfTheListShowsTheTimesOfWhereItsReaderIs) {
    const auto entry = [](int hour) {
        return series("M", at(hour, 0), "FREQ=DAILY", {15}, "America/New_York");
    };
    {
        const test::ZoneForTest berlin("Europe/Berlin");
        desk.put(entry(16));
        EXPECT_EQ(desk.check(at(15, 45)), "M 15:45");
    }
    const test::ZoneForTest there("America/New_York");
    desk.clock.time = at(9, 50);
    desk.put(entry(10));
    EXPECT_EQ(desk.check(at(9, 50)), "");
    EXPECT_EQ(desk.listed.at("M").InstanceStart, at(10, 0));
    desk.program->acts.Dismiss(desk.listed.at("M"), DismissMode::This);
    EXPECT_EQ(desk.check(at(9, 51)), "");
    desk.start();
    EXPECT_EQ(desk.check(at(9, 52)), "");
}

// The toast that shows the whole list is of where its reader is, too.
TEST_F(OnFile, TheWholeListShowsTheTimesOfWhereItsReaderIs) {
    const auto entry = [](int hour) {
        return series("M", at(hour, 0, 0, 16), "FREQ=DAILY", {15, 5}, "America/New_York");
    };
    {
        const test::ZoneForTest berlin("Europe/Berlin");
        desk.put(entry(16));
        EXPECT_EQ(desk.check(at(15, 45)), "M 15:45");
    }
    const test::ZoneForTest there("America/New_York");
    ReminderState& state = desk.program->state;
    state.sNotifType = "P";
    desk.clock.time = at(9, 50);
    desk.put(entry(10));
    EXPECT_EQ(desk.check(at(9, 55)), "");
    const auto line = objectAt<ValueList>(*state.EvCol, "M");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->items[1], Variant(" 15 minutes (" + shortTimeText(at(9, 45)) + ")"));
    // What is listed is not what the views ask.
    const auto listed = objectAt<calEvent>(*state.NewReminders, "M");
    desk.program->period.EventCol(at(0, 0, 0, 23), at(23, 59, 0, 23));
    desk.program->reminders.RemindCol(at(0, 0, 0, 24), at(23, 59, 0, 24));
    EXPECT_EQ(listed->InstanceStart, at(10, 0));
}

/// An event whose item lies in a host's file of a version that is not written.
class DeletionThatFails : public OnFile {
protected:
    DeletionThatFails() {
        jet::Database::create(host).createTable(
            "Event", std::vector<jet::NewColumn>{{"GUID", jet::ColumnType::Text, 50}});
        std::fstream file(host, std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(4);
        file << "Standard ACE DB";
    }
    /// Its first reminder was before the first run.
    void putAndCheck() {
        const auto event = single("A", at(10, 0, 0, 23), {7 * 1440, 15});
        event->VLBase = host;
        desk.clock.time = at(8, 0, 0, 19);
        desk.put(event);
        EXPECT_EQ(desk.check(at(9, 0, 0, 19)), "");
    }
    calEvent::Deletion deleteIt() {
        const auto held = objectAt<calEvent>(*desk.program->period.mCol, "A");
        return desk.program->acts.DeleteItem({held, held->StartDateTime, {}});
    }
    /// The file cannot be opened at all.
    void takeHostAway() {
        std::filesystem::rename(host, desk.folder / "held");
        std::filesystem::create_directory(host);
    }
    void bringHostBack() {
        std::filesystem::remove(host);
        std::filesystem::rename(desk.folder / "held", host);
    }

    const std::string host = (desk.folder / "Host.vldb").string();
};

TEST_F(DeletionThatFails, LeavesTheEventAsItWas) {
    putAndCheck();
    EXPECT_EQ(deleteIt(), calEvent::Deletion::Failed);
    EXPECT_EQ(desk.check(at(9, 1, 0, 19)), "");
    EXPECT_EQ(desk.check(at(9, 45, 0, 23)), "A 09:45");
}

TEST_F(DeletionThatFails, DoesSoAlsoAfterItHasWaited) {
    putAndCheck();
    takeHostAway();
    EXPECT_EQ(deleteIt(), calEvent::Deletion::Waits);
    EXPECT_EQ(desk.check(at(9, 1, 0, 19)), "");
    EXPECT_EQ(desk.check(at(9, 2, 0, 19)), "");
    EXPECT_FALSE(desk.program->period.mCol->Exists("A"));
    EXPECT_EQ(desk.program->state.waitingWrites, 1);
    bringHostBack();
    EXPECT_EQ(desk.check(at(9, 3, 0, 19)), "");
    EXPECT_EQ(desk.program->state.waitingWrites, 0);
    EXPECT_TRUE(desk.program->period.mCol->Exists("A"));
    EXPECT_EQ(desk.check(at(9, 4, 0, 19)), "") << "it is nothing new";
    EXPECT_EQ(desk.check(at(9, 45, 0, 23)), "A 09:45");
}

TEST_F(DeletionThatFails, WhatFellDueWhileItWaitedIsShown) {
    putAndCheck();
    takeHostAway();
    EXPECT_EQ(deleteIt(), calEvent::Deletion::Waits);
    EXPECT_EQ(desk.check(at(9, 1, 0, 19)), "");
    EXPECT_EQ(desk.check(at(12, 0, 0, 24)), "");
    bringHostBack();
    EXPECT_EQ(desk.check(at(12, 0, 10, 24)), "");
    EXPECT_EQ(desk.check(at(12, 0, 20, 24)), "A 09:45");
}

// What the act was on may be finished when the next run begins.
TEST_F(OnFile, TheRowOfWhatIsFinishedMeanwhileIsStillWritten) {
    desk.put(single("A", at(10, 0), {15}));
    EXPECT_EQ(desk.check(at(9, 45)), "A 09:45");
    desk.check(at(9, 0, 0, 21));
    desk.takeFileAway();
    desk.program->acts.Dismiss(desk.listed.at("A"), DismissMode::This);
    desk.program.reset();
    desk.bringFileBack();
    EXPECT_EQ(desk.check(at(9, 0, 0, 23)), "");
    EXPECT_EQ(desk.file.value("A", "status"), Variant("AllDone"));
    EXPECT_EQ(desk.file.value("A", "Dismissed"), Variant(at(9, 0, 0, 21)));
}

// The incremental read of the next check goes by the stamp, and passes it over.
TEST_F(OnFile, WhatTheHostWritesInTheSecondOfACheckIsNotLostWhenTheMachineThenSleeps) {
    EXPECT_EQ(desk.check(at(9, 0)), "");
    desk.put(single("A", at(10, 0), {15}));
    desk.put(series("B", at(11, 0), "FREQ=DAILY;COUNT=1", {15}));
    EXPECT_EQ(desk.check(at(9, 0, 0, 22)), "");
    EXPECT_EQ(desk.check(at(9, 0, 10, 22)), "A 09:45, B 10:45");
    // What is entered after the sleep, and was over long before, is not asked for.
    desk.put(single("C", at(10, 0, 0, 21), {15}));
    EXPECT_EQ(desk.check(at(9, 0, 20, 22)), "");
    EXPECT_EQ(desk.check(at(9, 0, 30, 22)), "");
}

TEST_F(OnFile, WhatIsHiddenWhileNobodyCanWriteIsHiddenAlsoAfterTwoRestarts) {
    desk.put(single("A", at(12, 0), {15}));
    desk.check(at(9, 0));
    desk.check(at(9, 0, 10));
    desk.takeFileAway();
    const auto event = objectAt<calEvent>(*desk.program->period.mCol, "A");
    desk.program->acts.Hide({event, at(12, 0), DateTime()});
    desk.start();
    desk.start();
    desk.bringFileBack();
    desk.check(at(9, 1));
    EXPECT_EQ(desk.file.value("A", "Hidden"), Variant(true));
}

// Nobody reads what is all done, so the act waits for the host to take the event back.
TEST_F(OnFile, WhatWasHiddenAndIsAllDoneBeforeThatIsWrittenIsHiddenWhenItsHostTakesItBack) {
    desk.put(single("A", at(8, 0), {15}));
    desk.check(at(9, 0));
    desk.takeFileAway();
    const auto event = objectAt<calEvent>(*desk.program->period.mCol, "A");
    desk.program->acts.Hide({event, at(8, 0), DateTime()});
    desk.program.reset();
    desk.bringFileBack();
    desk.file.change("A", {{"status", Variant(std::string("AllDone"))}});
    EXPECT_EQ(desk.check(at(9, 1, 0, 22)), "");
    EXPECT_EQ(desk.check(at(9, 2, 0, 22)), "");
    EXPECT_EQ(desk.file.value("A", "Hidden"), Variant(false));
    desk.file.change("A",
                     {{"status", Variant(std::string())}, {"Modified", Variant(at(9, 3, 0, 22))}});
    EXPECT_EQ(desk.check(at(9, 4, 0, 22)), "A 07:45") << "nobody has acted on that";
    EXPECT_TRUE(objectAt<calEvent>(*desk.program->period.mCol, "A")->Hidden);
    EXPECT_EQ(desk.check(at(9, 5, 0, 22)), "");
    EXPECT_EQ(desk.file.value("A", "Hidden"), Variant(true));
}

// One of its columns is then as it was before our act.
TEST_F(OnFile, WhatIsDismissedElsewhereAfterASnoozeHereStaysSoAfterARestart) {
    desk.put(single("A", at(10, 0), {15}));
    desk.check(at(9, 45));
    desk.program->acts.Snooze(desk.listed.at("A"), 60);
    desk.check(at(9, 46));
    desk.file.change("A",
                     {{"NextReminder", Variant(DateTime())}, {"Dismissed", Variant(at(9, 47))}});
    desk.check(at(9, 48));
    desk.start();
    EXPECT_EQ(desk.check(at(9, 49)), "");
    EXPECT_EQ(desk.check(at(11, 0)), "");
    EXPECT_EQ(desk.file.value("A", "NextReminder"), Variant(Null{}));
}

// As long as its row is not written, it says that the event is all done.
TEST_F(OnFile, WhatIsSnoozedOrReactivatedAfterItWasDoneComesAlsoWhenThatRunCouldNotWrite) {
    for (const bool snoozed : {false, true}) {
        SCOPED_TRACE(snoozed);
        FileDesk fresh;
        fresh.put(single("A", at(10, 0), {15}));
        fresh.check(at(9, 45));
        const ActRow row = fresh.listed.at("A");
        fresh.program->acts.Dismiss(row, DismissMode::This, true);
        fresh.takeFileAway();
        if (snoozed) {
            fresh.program->acts.Snooze(row, 60);
        } else {
            fresh.program->acts.Reactivate(row);
        }
        fresh.program.reset();
        fresh.bringFileBack();
        EXPECT_EQ(fresh.check(at(10, 45)), snoozed ? "A 10:45" : "A 09:45");
        EXPECT_EQ(fresh.file.value("A", "status").value_or(Variant(Null{})), Variant(""));
        EXPECT_EQ(fresh.check(at(10, 45, 10)), "");
    }
}

}  // namespace
}  // namespace vl
