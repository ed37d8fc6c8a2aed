#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "events/GenCollection.h"
#include "model/calEvent.h"
#include "model/clsReminder.h"
#include "support/ManualClock.h"

namespace vl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();

DateTime at(int hour, int minute, int second = 0, int day = 20) {
    return DateTime::fromCivil(2026, 11, day, hour, minute, second);
}

std::vector<std::pair<std::string, std::int32_t>> listed(const calEvent& event) {
    std::vector<std::pair<std::string, std::int32_t>> list;
    for (std::size_t i = 1; event.RemindersCol && i <= event.RemindersCol->Count(); ++i) {
        if (const auto r = objectAt<clsReminder>(*event.RemindersCol, i)) {
            list.emplace_back(r->Method, r->Minutes);
        }
    }
    return list;
}

// An instance at 10:00 with reminders at these offsets, in this order. Every other one is an
// e-mail: nothing in the schedule asks for the method.
calEvent withOffsets(const std::vector<std::int32_t>& offsets, DateTime start = at(10, 0)) {
    calEvent event;
    event.InstanceStart = start;
    event.RemindersCol = std::make_shared<GenCollection>();
    for (const std::int32_t minutes : offsets) {
        auto reminder = std::make_shared<clsReminder>();
        reminder->Minutes = minutes;
        reminder->Method = event.RemindersCol->Count() % 2 == 1 ? "email" : "popup";
        event.RemindersCol->Add(reminder);
    }
    return event;
}

// ---- SetRemindersCol

TEST(SetRemindersCol, ListsTheOverridesAscendingWithBothLimits) {
    calEvent event;
    event.reminders = R"({"useDefault":false,"overrides":[{"method":"popup","minutes":30},)"
                      R"({"method":"email","minutes":1440},{"method":"popup","minutes":900},)"
                      R"({"method":"popup","minutes":-10},{"method":"popup","minutes":1000}]})";
    event.SetRemindersCol();
    EXPECT_THAT(listed(event),
                ElementsAre(Pair("popup", -10), Pair("popup", 30), Pair("popup", 900),
                            Pair("popup", 1000), Pair("email", 1440)));
    EXPECT_EQ(event.RemindersMinOffsetMin, -10);
    EXPECT_EQ(event.RemindersMaxOffsetMin, 1440);
}

TEST(SetRemindersCol, KeepsEveryReminderOfALongList) {
    calEvent event;
    std::string overrides;
    for (int i = 40; i > 0; --i) {
        overrides += R"({"method":"popup","minutes":)" + std::to_string(i * 10) + "},";
    }
    overrides.pop_back();
    event.reminders = R"({"overrides":[)" + overrides + "]}";
    event.SetRemindersCol();
    const auto list = listed(event);
    ASSERT_EQ(list.size(), 40U);
    for (std::size_t i = 0; i < list.size(); ++i) {
        EXPECT_EQ(list[i].second, static_cast<std::int32_t>(i + 1) * 10);
    }
}

TEST(SetRemindersCol, DropsExactDuplicatesOnly) {
    calEvent event;
    event.reminders = R"({"useDefault":false,"overrides":[{"method":"popup","minutes":10},)"
                      R"({"method":"email","minutes":10},{"method":"popup","minutes":10},)"
                      R"({"method":"popup","minutes":10},{"method":"email","minutes":10}]})";
    event.SetRemindersCol();
    EXPECT_THAT(listed(event), ElementsAre(Pair("popup", 10), Pair("email", 10)));
}

TEST(SetRemindersCol, ReadsWhatItCanOfTheText) {
    struct Case {
        const char* text;
        std::vector<std::pair<std::string, std::int32_t>> list;
    };
    const std::vector<Case> cases = {
        {"", {}},
        {"{}", {}},
        {"[]", {}},
        {"null", {}},
        {"not JSON", {}},
        {R"({"useDefault":false})", {}},
        {R"({"useDefault":false,"overrides":[]})", {}},
        {R"({"useDefault":false,"overrides":{"method":"popup","minutes":5}})", {}},
        {R"({"overrides":[{"method":"popup","minutes":5}]})", {{"popup", 5}}},
        {R"({"useDefault":"true","overrides":[{"method":"popup","minutes":5}]})", {{"popup", 5}}},
        {R"({"useDefault":false,"overrides":[{"method":"popup"}]})", {{"popup", 0}}},
        {R"({"overrides":[{"minutes":7}]})", {{"popup", 7}}},
        {R"({"overrides":[{"method":"sms","minutes":"15"}]})", {{"sms", 15}}},
        {R"({"overrides":[{"method":"popup","minutes":2.5}]})", {{"popup", 2}}},
        // What stands for no offset costs itself alone.
        {R"({"overrides":[5,{"minutes":"soon"},{"minutes":true},{"minutes":3000000000},)"
         R"({"minutes":[1]},{"minutes":20}]})",
         {{"popup", 20}}},
        {R"({"overrides":[{"minutes":2147483647},{"minutes":-2147483648}]})",
         {{"popup", kSmallest}, {"popup", 2147483647}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        calEvent event;
        event.RemindersMinOffsetMin = event.RemindersMaxOffsetMin = 99;
        event.reminders = c.text;
        event.SetRemindersCol("1d");
        ASSERT_NE(event.RemindersCol, nullptr);
        EXPECT_EQ(listed(event), c.list);
        EXPECT_EQ(event.RemindersMinOffsetMin, c.list.empty() ? 0 : c.list.front().second);
        EXPECT_EQ(event.RemindersMaxOffsetMin, c.list.empty() ? 0 : c.list.back().second);
    }
}

TEST(SetRemindersCol, SurvivesEndlessNesting) {
    const std::string deep = std::string(100000, '[') + std::string(100000, ']');
    calEvent event;
    event.reminders = R"({"x":)" + deep + R"(,"y":)" + deep + "}";
    event.SetRemindersCol();
    EXPECT_EQ(event.RemindersCol->Count(), 0U);
}

TEST(SetRemindersCol, TakesTheEventsOwnMinutesForTheDefault) {
    calEvent event;
    event.reminders = R"({"useDefault":true,"overrides":[{"method":"email","minutes":5}]})";
    event.ReminderMinutesBeforeStart = 15;
    event.SetRemindersCol("1d");
    EXPECT_THAT(listed(event), ElementsAre(Pair("popup", 15)));
    EXPECT_EQ(event.RemindersMinOffsetMin, 15);
    EXPECT_EQ(event.RemindersMaxOffsetMin, 15);
}

TEST(SetRemindersCol, TakesTheSettingWhereTheEventHasNoMinutes) {
    calEvent event;
    event.reminders = R"({"useDefault":true})";
    for (const std::int32_t minutes : {0, -5}) {
        event.ReminderMinutesBeforeStart = minutes;
        event.SetRemindersCol("1d (e), 15m,, 1h ,15m,99999999w");
        EXPECT_THAT(listed(event),
                    ElementsAre(Pair("popup", 15), Pair("popup", 60), Pair("email", 1440)));
        event.SetRemindersCol();
        EXPECT_THAT(listed(event), IsEmpty());
        EXPECT_EQ(event.RemindersMaxOffsetMin, 0);
    }
}

TEST(SetRemindersCol, MakesANewListEachTime) {
    calEvent event;
    event.reminders = R"({"overrides":[{"minutes":5}]})";
    event.SetRemindersCol();
    const auto first = event.RemindersCol;
    event.SetRemindersCol();
    EXPECT_NE(event.RemindersCol, first);
    EXPECT_EQ(event.RemindersCol->Count(), 1U);
}

// ---- The schedule

TEST(Schedule, OfThreeRemindersAskedAnHourBefore) {
    const calEvent event = withOffsets({15, 30, 120});
    EXPECT_EQ(event.GetNextReminder(at(9, 0)), -30);
    EXPECT_EQ(event.NextReminderD(at(9, 0)), at(9, 30));
    EXPECT_EQ(event.PrevReminder(at(9, 0)), -120);
    EXPECT_EQ(event.PrevReminderD(at(9, 0), at(9, 0)), at(8, 0));
    EXPECT_EQ(event.FirstReminder(), -120);
    EXPECT_EQ(event.LastReminder(), -15);
    EXPECT_EQ(event.FirstReminderD(), at(8, 0));
    EXPECT_EQ(event.LastReminderD(), at(9, 45));
}

TEST(Schedule, AReminderOnTheMinuteIsThePreviousOneNotTheNext) {
    const calEvent event = withOffsets({15, 30, 120});
    EXPECT_EQ(event.GetNextReminder(at(9, 30)), -15);
    EXPECT_EQ(event.PrevReminder(at(9, 30)), -30);
    // Minute boundaries count: within the minute of 09:30 it stays so, a second earlier it is not.
    EXPECT_EQ(event.GetNextReminder(at(9, 30, 59)), -15);
    EXPECT_EQ(event.PrevReminder(at(9, 30, 59)), -30);
    EXPECT_EQ(event.GetNextReminder(at(9, 29, 59)), -30);
    EXPECT_EQ(event.PrevReminder(at(9, 29, 59)), -120);
}

TEST(Schedule, HasNoNextReminderAfterTheLast) {
    const calEvent event = withOffsets({15, 30, 120});
    for (const DateTime now : {at(9, 45), at(9, 45, 1), at(9, 46), at(10, 0), at(0, 0, 0, 21)}) {
        EXPECT_EQ(event.GetNextReminder(now), 10000000);
        EXPECT_TRUE(event.NextReminderD(now).isZero());
        EXPECT_EQ(event.PrevReminder(now), -15);
    }
}

TEST(Schedule, HasNoPreviousReminderBeforeTheFirst) {
    const calEvent event = withOffsets({15, 30, 120});
    for (const DateTime now : {at(7, 59, 59), at(7, 0), at(23, 0, 0, 19)}) {
        EXPECT_EQ(event.PrevReminder(now), -10000000);
        EXPECT_EQ(event.PrevReminderD(now, now), at(8, 0));
        EXPECT_EQ(event.GetNextReminder(now), -120);
    }
    EXPECT_EQ(event.PrevReminder(at(8, 0)), -120);
}

TEST(Schedule, WithoutReminders) {
    calEvent absent;
    absent.InstanceStart = at(10, 0);
    const calEvent empty = withOffsets({});
    for (const calEvent* event : {&std::as_const(absent), &empty}) {
        EXPECT_EQ(event->FirstReminder(), 0);
        EXPECT_EQ(event->LastReminder(), 0);
        EXPECT_EQ(event->FirstReminderD(), at(10, 0));
        EXPECT_EQ(event->LastReminderD(), at(10, 0));
        EXPECT_EQ(event->GetNextReminder(at(9, 0)), 10000000);
        EXPECT_TRUE(event->NextReminderD(at(9, 0)).isZero());
        EXPECT_EQ(event->PrevReminder(at(11, 0)), -10000000);
        EXPECT_EQ(event->PrevReminderD(at(11, 0), at(11, 0)), at(10, 0));
        EXPECT_TRUE(event->FirstReminderAfterEventStart().isZero());
    }
}

TEST(Schedule, AReminderAfterTheStartIsAheadUntilItsTime) {
    const calEvent event = withOffsets({-20, -5, 15});
    EXPECT_EQ(event.GetNextReminder(at(9, 50)), 5);
    EXPECT_EQ(event.NextReminderD(at(9, 50)), at(10, 5));
    EXPECT_EQ(event.GetNextReminder(at(10, 5)), 20);
    EXPECT_EQ(event.PrevReminder(at(10, 5)), 5);
    EXPECT_EQ(event.GetNextReminder(at(10, 20)), 10000000);
    EXPECT_EQ(event.FirstReminder(), -15);
    EXPECT_EQ(event.LastReminder(), 20);
    EXPECT_EQ(event.LastReminderD(), at(10, 20));
}

TEST(Schedule, FindsTheFirstReminderAfterTheStart) {
    EXPECT_EQ(withOffsets({-20, -5, 0, 15}).FirstReminderAfterEventStart(), at(10, 5));
    EXPECT_EQ(withOffsets({15, -5, -20}).FirstReminderAfterEventStart(), at(10, 5));
    EXPECT_TRUE(withOffsets({0, 15}).FirstReminderAfterEventStart().isZero()) << "0 is the start";
    EXPECT_EQ(withOffsets({-1}).FirstReminderAfterEventStart(), at(10, 1));
}

TEST(Schedule, OfAnAllDayEventCountsFromMidnight) {
    calEvent event = withOffsets({360, -540}, at(0, 0));
    event.IsAllDayEvent = true;
    EXPECT_EQ(event.FirstReminderD(), at(18, 0, 0, 19));
    EXPECT_EQ(event.NextReminderD(at(0, 0)), at(9, 0));
    EXPECT_EQ(event.FirstReminderAfterEventStart(), at(9, 0));
}

TEST(Schedule, KeepsTheSecondsOfTheStart) {
    const calEvent event = withOffsets({15}, at(10, 0, 30));
    EXPECT_EQ(event.NextReminderD(at(9, 0)), at(9, 45, 30));
    EXPECT_EQ(event.GetNextReminder(at(9, 45, 10)), 10000000) << "the same minute";
}

TEST(Schedule, AStoredTimeTakesThePreviousOnesPlaceOnceItHasCome) {
    calEvent event = withOffsets({15, 30});
    const DateTime now = at(11, 0);
    const DateTime computed = at(9, 45);
    struct Case {
        DateTime stored;
        DateTime expected;
    };
    const Case cases[] = {
        {DateTime(), computed},       {at(9, 44, 59), computed}, {at(9, 45), computed},
        {at(9, 45, 1), at(9, 45, 1)}, {at(10, 30), at(10, 30)},  {at(11, 0), at(11, 0)},
        {at(11, 0, 1), computed},
    };
    const test::ManualClock clock(now);
    for (const Case& c : cases) {
        SCOPED_TRACE(formatDateTime(c.stored));
        event.NextReminder = c.stored;
        EXPECT_EQ(event.PrevReminderD(now, now), c.expected);
        EXPECT_EQ(event.PrevReminderD(now, clock), c.expected);
    }
    // It does not stand in for a first reminder that is still ahead.
    event.NextReminder = at(8, 59);
    EXPECT_EQ(event.PrevReminderD(at(9, 0), at(9, 0)), at(9, 30));
}

TEST(Schedule, SurvivesTheLimitsOfOffsets) {
    const calEvent least = withOffsets({kSmallest});
    EXPECT_EQ(least.FirstReminder(), 0) << "its negation is no 32-bit number";
    EXPECT_EQ(least.LastReminder(), 0);
    EXPECT_EQ(least.GetNextReminder(at(9, 0)), 10000000);
    EXPECT_EQ(least.PrevReminder(DateTime(4e6)), -10000000);
    EXPECT_GT(least.FirstReminderAfterEventStart(), at(10, 0));
    const calEvent most = withOffsets({2147483647});
    EXPECT_EQ(most.FirstReminder(), -2147483647);
    EXPECT_EQ(most.PrevReminder(at(9, 0)), -10000000) << "beyond the value that means none";
}

// The rules once more, in days and whole minutes, to hold the code against.
struct Rules {
    std::vector<std::int32_t> minutes;
    DateTime start;

    static std::int64_t minuteOf(DateTime d) {
        return static_cast<std::int64_t>(
            std::floor(static_cast<double>(d.milliseconds()) / 60000.0));
    }
    std::int64_t distance(DateTime d) const { return minuteOf(start) - minuteOf(d); }
    std::int64_t next(DateTime d) const {
        std::int64_t best = -10000000;
        for (const std::int64_t m : minutes) {
            best = m < distance(d) && m > best ? m : best;
        }
        return -best;
    }
    std::int64_t previous(DateTime d) const {
        std::int64_t best = 10000000;
        for (const std::int64_t m : minutes) {
            best = m >= distance(d) && m < best ? m : best;
        }
        return -best;
    }
    DateTime plus(std::int64_t offset) const {
        return DateTime::fromMilliseconds(start.milliseconds() + offset * 60000);
    }
};

void agree(const calEvent& event, const Rules& rules, DateTime now) {
    const auto& m = rules.minutes;
    const std::int64_t first = m.empty() ? 0 : -*std::max_element(m.begin(), m.end());
    const std::int64_t last = m.empty() ? 0 : -*std::min_element(m.begin(), m.end());
    ASSERT_EQ(event.FirstReminder(), first);
    ASSERT_EQ(event.LastReminder(), last);
    ASSERT_EQ(event.FirstReminderD(), rules.plus(first));
    ASSERT_EQ(event.LastReminderD(), rules.plus(last));
    const std::int64_t next = rules.next(now);
    ASSERT_EQ(event.GetNextReminder(now), next);
    ASSERT_EQ(event.NextReminderD(now), next == 10000000 ? DateTime() : rules.plus(next));
    const std::int64_t previous = rules.previous(now);
    ASSERT_EQ(event.PrevReminder(now), previous);
    ASSERT_EQ(event.PrevReminderD(now, now), rules.plus(previous == -10000000 ? first : previous));
    std::int64_t after = 0;
    for (const std::int32_t minutes : m) {
        after = minutes < 0 && (after == 0 || -minutes < after) ? -minutes : after;
    }
    ASSERT_EQ(event.FirstReminderAfterEventStart(), after == 0 ? DateTime() : rules.plus(after));
}

TEST(Schedule, FollowsTheRulesForRandomReminders) {
    const auto seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const auto between = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    for (int round = 0; round < 20000; ++round) {
        const int span = round % 2 == 0 ? 30 : 20000;  // few offsets meet the same minute
        Rules rules;
        rules.start = at(10, 0).addSeconds(round % 3 == 0 ? 0 : between(0, 59));
        for (int n = between(0, 5); n > 0; --n) {
            rules.minutes.push_back(between(-span, span));
        }
        const DateTime now = at(10, 0).addSeconds(between(-span * 60, span * 60));
        const calEvent event = withOffsets(rules.minutes, rules.start);
        ASSERT_NO_FATAL_FAILURE(agree(event, rules, now))
            << "round " << round << " start " << formatDateTime(rules.start) << " now "
            << formatDateTime(now) << " offsets " << testing::PrintToString(rules.minutes);
    }
}

// ---- The recorded reminder

TEST(RecordedReminder, IsTheTimeAQueryLeft) {
    calEvent event = withOffsets({15}, at(10, 0, 30));
    event.iRemMinutes = calEvent::kNoReminder;
    EXPECT_TRUE(event.RecordedReminderD().isZero());
    event.iRemMinutes = 15;
    EXPECT_EQ(event.RecordedReminderD(), at(9, 45, 30));
    event.dReminder = at(9, 45, 7);
    EXPECT_EQ(event.RecordedReminderD(), at(9, 45, 7)) << "to the second";
    event.InstanceStart = at(12, 0);
    EXPECT_EQ(event.RecordedReminderD(), at(11, 45)) << "left over from another instance";
    EXPECT_TRUE(calEvent().RecordedReminderD().isZero());
    event.iRemMinutes = -100001;
    EXPECT_EQ(event.RecordedReminderD(), at(12, 0).addMinutes(100001));
}

TEST(RecordedReminder, OfAnEventWithoutADateIsItsSnooze) {
    calEvent event;
    EXPECT_TRUE(event.RecordedReminderD().isZero());
    event.dReminder = at(8, 5);
    event.iRemMinutes = static_cast<std::int32_t>(minutesBetween(event.dReminder, DateTime()));
    EXPECT_EQ(event.RecordedReminderD(), at(8, 5));
    event.iRemMinutes = 15;
    EXPECT_TRUE(event.RecordedReminderD().isZero()) << "left over from another query";
}

TEST(calEventReminders, KeepsPendingError) {
    ErrorState::set(ErrNo::Locked);
    calEvent event = withOffsets({kSmallest, 5});
    event.FirstReminder();
    event.LastReminder();
    event.PrevReminder(DateTime(4e6));
    event.PrevReminderD(at(9, 0), at(9, 0));
    event.reminders = "not JSON";
    event.SetRemindersCol();
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    event.reminders = R"({"overrides":[{"minutes":"soon"}]})";
    event.SetRemindersCol();
    event.reminders = R"({"useDefault":true})";
    event.SetRemindersCol("99999999w");
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

}  // namespace
}  // namespace vl
