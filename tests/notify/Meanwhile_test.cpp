// What host, user and other programs do between two looks at the file.
#include <gtest/gtest.h>

#include "../model/ZoneForTest.h"
#include "FileDesk.h"

namespace vl {
namespace {

using test::at;
using test::FileDesk;
using test::series;
using test::single;

class Meanwhile : public testing::Test {
protected:
    /// The incremental read of the first goes by stamps, and may pass over what the second finds.
    std::string twoChecks(DateTime when) {
        return desk.check(when) + desk.check(when.addSeconds(10));
    }
    ActRow rowOf(const std::string& GUID) {
        const auto event = objectAt<calEvent>(*desk.program->period.mCol, GUID);
        return {event, event->StartDateTime, {}};
    }

    FileDesk desk;
};

// Its stamp is the host's: the question for what has changed does not show it.
TEST_F(Meanwhile, WhatHadToWaitIsNotWrittenOverAWordThatIsNewer) {
    for (const bool byAnAct : {false, true}) {
        SCOPED_TRACE(byAnAct);
        FileDesk fresh;
        fresh.put(single("A", at(10, 0), {15}));
        fresh.put(single("B", at(10, 0), {15}));
        fresh.check(at(9, 45));
        fresh.takeFileAway();
        fresh.program->acts.Snooze(fresh.listed.at("A"), 60);
        fresh.bringFileBack();
        fresh.file.change("A", {{"Dismissed", Variant(at(9, 46))}});
        if (byAnAct) {
            fresh.program->acts.Dismiss(fresh.listed.at("B"), DismissMode::This);
        }
        EXPECT_EQ(fresh.check(at(9, 47)), "");
        EXPECT_EQ(fresh.file.value("A", "Dismissed"), Variant(at(9, 46)));
        EXPECT_EQ(fresh.file.value("A", "NextReminder"), Variant(Null{}));
        EXPECT_EQ(fresh.program->state.waitingWrites, 0);
        EXPECT_EQ(fresh.check(at(10, 45)), "");
    }
}

TEST_F(Meanwhile, WhatTheHostMovesWhileItIsMarkedAsDoneComesAsWhatItIsNow) {
    const auto entry = [](bool repeats, int minute) {
        return repeats ? series("A", at(8, minute), "FREQ=DAILY;COUNT=1", {15})
                       : single("A", at(8, minute), {15});
    };
    for (const bool repeats : {false, true}) {
        SCOPED_TRACE(repeats);
        FileDesk fresh;
        fresh.put(entry(repeats, 30));
        EXPECT_EQ(fresh.check(at(9, 0)), "A 08:15");
        fresh.put(entry(repeats, 40));
        fresh.program->acts.Dismiss(fresh.listed.at("A"), DismissMode::This, true);
        EXPECT_EQ(fresh.check(at(9, 0, 10)) + fresh.check(at(9, 0, 20)), "A 08:25");
        fresh.program->acts.Dismiss(fresh.listed.at("A"), DismissMode::This, true);
        EXPECT_EQ(fresh.file.value("A", "status"), Variant("AllDone"));
    }
}

// Its row says what it said; only its moment is another one.
TEST_F(Meanwhile, WhatIsDoneWhileNobodyCanWriteStaysSoOnAJourney) {
    {
        const test::ZoneForTest berlin("Europe/Berlin");
        const auto call = single("A", at(16, 0), {15});
        call->JSON = R"({"start":{"timeZone":"America/New_York"}})";
        desk.put(call);
        EXPECT_EQ(desk.check(at(15, 45)), "A 15:45");
        desk.takeFileAway();
        desk.program->acts.Dismiss(desk.listed.at("A"), DismissMode::This, true);
        desk.bringFileBack();
    }
    const test::ZoneForTest there("Asia/Kolkata");
    EXPECT_EQ(twoChecks(at(20, 16)), "");
    EXPECT_EQ(desk.file.value("A", "status"), Variant("AllDone"));
}

TEST_F(Meanwhile, WhatIsWrittenInTheSecondOfTheLastCheckThatCouldReadIsNotLost) {
    desk.check(at(9, 0));
    desk.put(single("A", at(10, 0), {15}));
    desk.takeFileAway();
    EXPECT_EQ(desk.check(at(9, 0, 0, 22)), "");
    desk.bringFileBack();
    EXPECT_EQ(twoChecks(at(9, 0, 10, 22)), "A 09:45");
}

TEST_F(Meanwhile, NorIsItWhenItIsReactivatedBeforeACheckHasMetIt) {
    desk.check(at(9, 0));
    desk.put(single("A", at(10, 0), {15}));
    EXPECT_EQ(desk.check(at(12, 0, 0, 21)), "");
    desk.program->acts.Reactivate(rowOf("A"));
    EXPECT_EQ(desk.check(at(12, 0, 10, 21)), "A 09:45") << "neither of today, nor does it go on";
}

// Its stamp is older than the last check of the run that could not meet it any more.
TEST_F(Meanwhile, WhatAHostWithASlowClockWroteBeforeAnEndIsMetByTheNextRun) {
    desk.check(at(9, 0));
    const auto fair = single("A", at(8, 0, 0, 19), {15});
    fair->EndDateTime = at(18, 0, 0, 24);
    fair->Modified = at(8, 55);
    desk.file.put(*fair);
    desk.program.reset();
    EXPECT_EQ(desk.check(at(9, 1)), "A 07:45");
}

}  // namespace
}  // namespace vl
