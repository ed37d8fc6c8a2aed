// What the check knows of an event stays with it, and with no other.
#include "DueBook.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Events.h"
#include "support/ManualClock.h"

namespace vl {
namespace {

using test::at;
using test::single;

class Book : public testing::Test {
protected:
    Book() {
        for (const char* GUID : {"A", "B", "C"}) {
            put(GUID);
        }
        // What is there at the start was met by an earlier run.
        EXPECT_EQ(ask(at(14, 0)), Names());
        // With nothing ahead they are not even looked at from now on.
        EXPECT_EQ(ask(at(14, 5)), Names());
    }
    /// With a reminder that was due before the first question.
    void put(const std::string& GUID) { events.Add(Variant(rung(GUID)), GUID); }
    static std::shared_ptr<calEvent> rung(const std::string& GUID) {
        return single(GUID, at(15, 0), {90});
    }
    using Names = std::vector<std::string>;
    Names ask(DateTime now) {
        clock.time = now;
        const DateTime from = now.addMinutes(-10);
        Names names;
        for (const auto& found : book.ask(events, {from, now, now, from, "base", ledger, {}})) {
            names.push_back(found.event->GUID);
        }
        return names;
    }

    test::ManualClock clock{at(14, 0)};
    Ledger ledger{clock};
    GenCollection events;
    DueBook book;
};

TEST_F(Book, WhoTakesAnothersPlaceIsMetForTheFirstTime) {
    const auto places = events.PlaceCount();
    events.Remove("B");
    put("D");
    ASSERT_EQ(events.PlaceCount(), places) << "there is no other place";
    EXPECT_EQ(ask(at(14, 10)), Names{"D"});
}

TEST_F(Book, AnotherObjectOfAnEventIsNot) {
    events.UpdateItem("B", Variant(rung("B")));
    EXPECT_EQ(ask(at(14, 10)), Names());
    events.Remove("A");
    events.Add(Variant(rung("A")), "A");
    EXPECT_EQ(ask(at(14, 20)), Names()) << "nor one that stands elsewhere";
}

TEST_F(Book, EventsThatChangePlacesKeepWhatIsKnownOfThem) {
    const auto a = rung("A");
    const auto c = rung("C");
    events.Remove("A");
    events.Remove("C");
    events.Add(Variant(a), "A");
    events.Add(Variant(c), "C");
    ASSERT_EQ(events.Key(1), "B");
    EXPECT_EQ(ask(at(14, 10)), Names());
}

TEST_F(Book, AnEventWithOtherTimesIsMetAnew) {
    events.UpdateItem("B", Variant(single("B", at(15, 0), {80})));
    EXPECT_EQ(ask(at(14, 10)), Names{"B"});
}

TEST_F(Book, WhatLeavesAndComesBackLaterIsMetAnew) {
    events.Remove("B");
    EXPECT_EQ(ask(at(14, 10)), Names());
    put("B");
    EXPECT_EQ(ask(at(14, 20)), Names{"B"});
}

TEST_F(Book, AnEventWithNothingAheadIsAskedWhenItWasChangedInPlace) {
    EXPECT_EQ(ask(at(14, 10)), Names());
    objectAt<calEvent>(events, "B")->StartDateTime = at(15, 50);
    book.look("B");
    EXPECT_EQ(ask(at(14, 20)), Names{"B"});
}

TEST_F(Book, AnEventWithNothingAheadIsAskedWhenItIsReactivated) {
    EXPECT_EQ(ask(at(14, 10)), Names());
    const std::vector<Ledger::Change> changes = {
        {"C", [](EventState& state) { state.newlyMet = true; }}};
    ledger.change("base", "reactivated", changes);
    EXPECT_EQ(ask(at(14, 20)), Names{"C"});
}

TEST_F(Book, AClockTurnedBackBringsTimesAgain) {
    EXPECT_EQ(ask(at(14, 10)), Names());
    EXPECT_EQ(ask(at(13, 35)), (Names{"A", "B", "C"}));
}

TEST_F(Book, ASeriesReadAgainKeepsItsReplacedStartsAndOneWithAnotherIdGetsThem) {
    const DateTime start = at(9, 0).addDays(1);
    ledger.keepReplaced("base", SeriesName{"kept"}, start);
    const auto series = test::series("S", start, "FREQ=DAILY", {15});
    events.Add(Variant(series), "S");
    EXPECT_EQ(ask(at(14, 10)), Names());
    EXPECT_TRUE(book.replaced(*series).empty());
    const auto renamed = std::make_shared<calEvent>(*series);
    renamed->id = "kept";
    for (const auto& again : {renamed, std::make_shared<calEvent>(*renamed)}) {
        events.UpdateItem("S", Variant(again));
        ask(at(14, 20));
        const auto replaced = book.replaced(*again);
        ASSERT_EQ(replaced.size(), 1U);
        EXPECT_EQ(replaced[0], start);
    }
}

}  // namespace
}  // namespace vl
