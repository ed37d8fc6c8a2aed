// Two copies of the program over one file and one ledger, each acting before it has read what the
// other has done.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "FileDesk.h"

namespace vl {
namespace {

using test::at;
using test::FileDesk;
using test::series;
using test::single;

class TwoCopies : public testing::Test {
protected:
    TwoCopies() { desk.clock.time = at(9, 0); }

    void startOther() {
        other = std::make_unique<FileDesk::Program>(desk, desk.clock,
                                                    (desk.folder / "VLReminders.ledger").string());
        other->cycle.ReadAtStart();
        checkOther();
    }
    /// A check of the other one; what stands in its list then.
    std::string checkOther() {
        other->cycle.Tick(10000);
        std::string listed;
        for (const Variant& item : *other->state.NewReminders) {
            listed += objectIn<calEvent>(item)->GUID;
        }
        return listed;
    }
    /// One check of each; what the list of either took, and what stands in the other's.
    std::string checkBoth(DateTime when) {
        const std::string taken = desk.check(when);
        return taken + "/" + checkOther();
    }
    ActRow rowOf(const FileDesk::Program& program, const char* GUID) {
        ActRow row = desk.listed.at(GUID);
        row.event = objectAt<calEvent>(*program.period.mCol, GUID);
        return row;
    }
    DateTime inRow(const char* column) {
        const auto value = desk.file.value("A", column);
        return value && !value->isNull() ? value->toDateTime() : DateTime();
    }

    FileDesk desk;
    std::unique_ptr<FileDesk::Program> other;
};

TEST_F(TwoCopies, WhatOneDismissesThatTheOtherHasJustSnoozedDoesNotComeBack) {
    desk.put(single("A", at(10, 0), {15}));
    desk.check(at(9, 45));
    startOther();
    desk.program->acts.Snooze(rowOf(*desk.program, "A"), 11);
    other->acts.Dismiss(rowOf(*other, "A"), DismissMode::This);
    EXPECT_EQ(inRow("Dismissed"), at(9, 45));
    EXPECT_EQ(checkBoth(at(9, 45, 10)), "/");
    EXPECT_EQ(checkBoth(at(9, 56)), "/");
    EXPECT_EQ(checkBoth(at(10, 10)), "/");
}

TEST_F(TwoCopies, WhatOneHasWrittenByTwoActsIsNoWordOfAnotherProgram) {
    desk.put(single("A", at(10, 0), {15}));
    desk.check(at(9, 45));
    startOther();
    desk.program->acts.Snooze(rowOf(*desk.program, "A"), 5);
    EXPECT_EQ(checkBoth(at(9, 50)), "A 09:50/A");
    desk.program->acts.Dismiss(rowOf(*desk.program, "A"), DismissMode::This);
    desk.program->acts.Snooze(rowOf(*desk.program, "A"), 60);
    EXPECT_EQ(checkBoth(at(9, 50, 10)), "/");
    EXPECT_EQ(checkBoth(at(10, 50)).substr(0, 7), "A 10:50");
}

TEST_F(TwoCopies, NeitherWritesOverAWordThatIsNewerThanAnActOfTheOther) {
    desk.put(single("A", at(10, 0), {15}));
    desk.check(at(9, 45));
    startOther();
    desk.program->acts.Dismiss(rowOf(*desk.program, "A"), DismissMode::This);
    desk.file.change("A", {{"Dismissed", Variant(at(9, 45, 1))}});
    desk.clock.time = at(9, 45, 10);
    EXPECT_EQ(checkOther(), "");
    EXPECT_EQ(inRow("Dismissed"), at(9, 45, 1));
}

// In the second of a read: the one still has it as it was, the other has read what it is.
TEST_F(TwoCopies, WhatStandsInTheListOfOneIsNotFinishedByTheOther) {
    desk.put(single("A", at(10, 0), {15}));
    desk.check(at(9, 0));
    desk.put(single("A", at(9, 50), {15}));
    EXPECT_EQ(desk.check(at(12, 0, 0, 21)), "A 09:45");
    desk.clock.time = at(12, 0, 5, 21);
    startOther();
    EXPECT_EQ(desk.file.value("A", "status"), Variant(""));
    desk.program->acts.Snooze(desk.listed.at("A"), 5);
    EXPECT_NE(checkBoth(at(12, 5, 10, 21)), "/");
}

TEST_F(TwoCopies, NeitherMarksAsDoneWhatTheHostHasMovedMeanwhile) {
    desk.put(single("A", at(10, 0), {15}));
    desk.check(at(9, 45));
    desk.program->acts.Dismiss(desk.listed.at("A"), DismissMode::This, true);
    desk.program.reset();
    desk.check(at(9, 46));
    desk.put(single("A", at(10, 0), {15}));
    desk.check(at(9, 47));
    startOther();
    desk.put(single("A", at(9, 55), {5}));
    ASSERT_NE(objectAt<calEvent>(*desk.program->period.mCol, "A"), nullptr);
    desk.program->acts.Hide(rowOf(*desk.program, "A"), true);
    checkOther();
    EXPECT_NE(desk.file.value("A", "status"), Variant("AllDone"));
}

// Its row is gone when the second one looks.
TEST_F(TwoCopies, WhatTheOtherHasPurgedIsNotListed) {
    desk.put(single("A", at(10, 0), {15}));
    desk.check(at(9, 0));
    startOther();
    desk.file.change("A", {{"Deleted", Variant(true)}});
    EXPECT_EQ(checkBoth(at(9, 50)), "/");
    EXPECT_EQ(checkBoth(at(9, 50, 10)), "/");
}

// Nobody can read the file: neither what has reached the row nor what waits is known for certain.
TEST_F(TwoCopies, AnActStandsInTheRowWhateverOfTheOthersHasReachedIt) {
    for (const bool snoozes : {false, true}) {
        for (const bool checks : {false, true}) {
            SCOPED_TRACE(std::string(snoozes ? "snoozed" : "reactivated") +
                         (checks ? ", a check between" : ""));
            const std::string GUID = std::string("A") + (snoozes ? "s" : "r") + (checks ? "c" : "");
            desk.program.reset();
            other.reset();
            desk.clock.time = at(9, 0);
            desk.put(single(GUID, at(10, 0), {15}));
            desk.check(at(9, 45));
            startOther();
            Acts& acts = desk.program->acts;
            acts.Snooze(rowOf(*desk.program, GUID.c_str()), 30);
            desk.takeFileAway();
            if (snoozes) {
                acts.Snooze(rowOf(*desk.program, GUID.c_str()), 60);
            } else {
                acts.Reactivate(rowOf(*desk.program, GUID.c_str()));
            }
            if (checks) {
                checkBoth(at(9, 46));
            }
            desk.clock.time = at(9, 47);
            other->acts.Snooze(rowOf(*other, GUID.c_str()), 15);
            desk.bringFileBack();
            checkBoth(at(9, 48));
            checkBoth(at(9, 49));
            EXPECT_EQ(desk.file.value(GUID, "NextReminder")->toDateTime(), at(10, 2));
            EXPECT_NE(checkBoth(at(10, 2)).find(GUID + " 10:02"), std::string::npos);
            desk.program->acts.Dismiss(rowOf(*desk.program, GUID.c_str()), DismissMode::All);
        }
    }
}

TEST_F(TwoCopies, ASnoozeOfARowFromBeforeAMoveLeavesTheListOfTheOther) {
    desk.put(single("A", at(9, 10), {15}));
    desk.check(at(9, 0));
    startOther();
    desk.clock.time = at(9, 1);
    const auto moved = single("A", at(9, 5), {15});
    desk.put(moved);
    EXPECT_EQ(checkBoth(at(9, 1, 10)), "/A");
    desk.program->acts.Snooze(rowOf(*desk.program, "A"), 30);
    EXPECT_EQ(checkBoth(at(9, 1, 20)), "/");
}

// While nobody can read what the row says; the one that has reactivated it writes no more.
TEST_F(TwoCopies, WhatOneHasReactivatedBeforeItEndedIsBroughtBackByTheOtherWhenTheFileIsThere) {
    for (const bool snoozes : {false, true}) {
        SCOPED_TRACE(snoozes);
        const std::string GUID = snoozes ? "As" : "Ar";
        desk.program.reset();
        desk.clock.time = at(9, 0);
        desk.put(single(GUID, at(10, 0), {15}));
        ASSERT_EQ(desk.check(at(9, 45)), GUID + " 09:45");
        startOther();
        desk.program->acts.Dismiss(rowOf(*desk.program, GUID.c_str()), DismissMode::This, true);
        desk.check(at(9, 45, 10));
        ASSERT_EQ(desk.file.value(GUID, "status"), Variant("AllDone"));
        desk.takeFileAway();
        const ActRow row = rowOf(*other, GUID.c_str());
        if (snoozes) {
            other->acts.Snooze(row, 10);
        } else {
            other->acts.Reactivate(row);
        }
        other.reset();
        EXPECT_EQ(desk.check(at(9, 46)), "");
        EXPECT_EQ(desk.check(at(9, 47)), "");
        desk.bringFileBack();
        desk.check(at(9, 56));
        EXPECT_EQ(desk.file.value(GUID, "status"), Variant(""));
        EXPECT_EQ(desk.check(at(9, 56, 10)), GUID + (snoozes ? " 09:55" : " 09:45"));
        desk.program->acts.Dismiss(desk.listed.at(GUID), DismissMode::All);
    }
}

// Each row would wait for whoever has the file.
TEST_F(TwoCopies, WhileNobodyCanReadTheFileACheckTriesItNoMoreOftenWhereMoreWasActedOn) {
    const auto failedSteps = [&](int count) {
        const std::string first(1, static_cast<char>('A' + count));
        desk.program.reset();
        other.reset();
        desk.clock.time = at(9, 0);
        for (int i = 0; i < count; ++i) {
            desk.put(single(first + std::to_string(i), at(10, 0), {15}));
        }
        desk.check(at(9, 45));
        startOther();
        desk.takeFileAway();
        for (int i = 0; i < count; ++i) {
            const std::string GUID = first + std::to_string(i);
            other->acts.Dismiss(rowOf(*other, GUID.c_str()), DismissMode::This, true);
        }
        const std::string path = (desk.folder / (first + ".trace")).string();
        openTrace(path);
        EXPECT_EQ(desk.check(at(9, 46)), "");
        openTrace("");
        desk.bringFileBack();
        EXPECT_EQ(checkBoth(at(9, 47)), "/");
        EXPECT_EQ(desk.file.value(first + "0", "status"), Variant("AllDone"));
        std::ifstream in(path);
        return std::count(std::istreambuf_iterator<char>(in), {}, '\n');
    };
    const auto ofFew = failedSteps(2);
    EXPECT_GT(ofFew, 0);
    EXPECT_EQ(failedSteps(12), ofFew);
}

// The row of an occurrence that goes on for weeks stands in the list for months. What was dealt
// with behind it does not come when that row goes, although the other copy has dropped it
// meanwhile.
TEST_F(TwoCopies, WhatOneDropsAtItsStartDoesNotComeBackInTheOther) {
    const auto day = [](int days) { return at(10, 0).addDays(days); };
    const auto fair = series("A", day(0), "FREQ=WEEKLY;COUNT=2", {15});
    fair->EndDateTime = day(20);
    desk.put(fair);
    ASSERT_EQ(desk.check(day(0).addMinutes(-15)), "A 09:45");
    ASSERT_EQ(desk.check(day(7)), "") << "the second is heard";
    const ActRow first = desk.listed.at("A");
    desk.program->acts.Dismiss({first.event, day(7), day(7).addMinutes(-15)}, DismissMode::All);
    ASSERT_EQ(desk.check(day(7).addMinutes(1)), "A 09:45") << "the first is there still";
    for (int days = 8; days <= 130; ++days) {
        ASSERT_EQ(desk.check(day(days)), "") << days;
    }
    startOther();
    EXPECT_EQ(checkBoth(day(130).addMinutes(1)), "/A");
    desk.program->acts.Dismiss(first, DismissMode::This);
    EXPECT_EQ(checkBoth(day(130).addMinutes(2)), "/");
    EXPECT_EQ(checkBoth(day(130).addMinutes(3)), "/");
    desk.program.reset();
    EXPECT_EQ(checkBoth(day(131)), "/");
}

}  // namespace
}  // namespace vl
