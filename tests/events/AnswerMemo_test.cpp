// The views ask the same again after every check.
#include "AnswerMemo.h"

#include <gtest/gtest.h>

#include "support/Events.h"

namespace vl {
namespace {

using test::at;
using test::single;

const Window kToday{at(0, 0), at(23, 59)};

class Memo : public testing::Test {
protected:
    Memo() {
        for (const char* GUID : {"A", "B", "C"}) {
            events.Add(Variant(single(GUID, at(10, 0), {15})), GUID);
        }
        forget();
    }
    calEvent& event(const char* GUID) { return *objectAt<calEvent>(events, GUID); }
    void forget() { index.forgetQueries(events); }
    /// As a question does: the answer is "A", and something is left in A and in C.
    void ask() {
        leave("A", at(10, 0), at(9, 45), 15, 5);
        leave("C", at(11, 0), at(10, 30), 30, -100000);
        GenCollection answer;
        answer.Add(Variant(objectAt<calEvent>(events, "A")), "A");
        memo.keep(index, kToday, 7, answer);
    }
    void leave(const char* GUID, DateTime start, DateTime reminder, int minutes, int next) {
        calEvent& e = event(GUID);
        e.InstanceStart = start;
        e.dReminder = reminder;
        e.iRemMinutes = minutes;
        e.iRemMinutesNext = next;
        index.noteLeft(events.Position(GUID) - 1, true);
    }
    bool holds(const char* GUID, DateTime start, DateTime reminder, int minutes, int next) {
        const calEvent& e = event(GUID);
        return e.InstanceStart == start && e.dReminder == reminder && e.iRemMinutes == minutes &&
               e.iRemMinutesNext == next;
    }

    GenCollection events;
    EventIndex index;
    AnswerMemo memo;
};

TEST_F(Memo, KnowsTheAnswerAndWhatItLeftInTheEvents) {
    ask();
    forget();
    ASSERT_TRUE(isForgotten(event("A")));
    const auto answer = memo.recall(index, kToday, 7);
    ASSERT_TRUE(answer);
    ASSERT_EQ(answer->Count(), 1U);
    EXPECT_EQ(answer->Key(1), "A");
    EXPECT_TRUE(holds("A", at(10, 0), at(9, 45), 15, 5));
    EXPECT_TRUE(holds("C", at(11, 0), at(10, 30), 30, -100000));
    EXPECT_TRUE(isForgotten(event("B")));
    forget();
    EXPECT_TRUE(isForgotten(event("A")) && isForgotten(event("C"))) << "what is put back is noted";
}

TEST_F(Memo, WhoGetsTheAnswerMayChangeIt) {
    ask();
    memo.recall(index, kToday, 7)->Remove("A");
    EXPECT_EQ(memo.recall(index, kToday, 7)->Count(), 1U);
}

TEST_F(Memo, AnotherQuestionItDoesNotKnow) {
    EXPECT_EQ(memo.recall(index, {}, 0), nullptr) << "nothing was kept yet";
    ask();
    EXPECT_EQ(memo.recall(index, {kToday.from.addSeconds(1), kToday.to}, 7), nullptr);
    EXPECT_EQ(memo.recall(index, {kToday.from, kToday.to.addSeconds(1)}, 7), nullptr);
    EXPECT_EQ(memo.recall(index, kToday, 8), nullptr) << "the events held something else";
    EXPECT_TRUE(memo.recall(index, kToday, 7));
}

TEST_F(Memo, AfterAnyChangeItKnowsNothing) {
    ask();
    index.look("B");
    EXPECT_EQ(memo.recall(index, kToday, 7), nullptr) << "changed in place";
    ask();
    EXPECT_TRUE(memo.recall(index, kToday, 7));
    events.Remove("B");
    index.bring(events);
    EXPECT_EQ(memo.recall(index, kToday, 7), nullptr) << "another collection";
}

TEST_F(Memo, WhatItKeepsHasANameOfItsOwn) {
    EXPECT_EQ(memo.id(), 0U);
    ask();
    const auto first = memo.id();
    EXPECT_NE(first, 0U);
    ask();
    EXPECT_NE(memo.id(), first);
}

}  // namespace
}  // namespace vl
