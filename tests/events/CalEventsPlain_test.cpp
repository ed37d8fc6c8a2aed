// The two questions beside the plain way to answer them, over random calendars and windows.
#include <gtest/gtest.h>

#include <random>

#include "PlainQueries.h"
#include "events/CalEvents.h"
#include "support/ManualClock.h"
#include "support/ManyEvents.h"

namespace vl {
namespace {

using test::Answered;
using test::Events;

const DateTime kNow = DateTime::fromCivil(2026, 11, 20, 14, 0);

std::vector<Answered> answersOf(const GenCollection& found, bool reminders) {
    std::vector<Answered> answers;
    for (const Variant& item : found) {
        const auto e = objectIn<calEvent>(item);
        answers.push_back(reminders ? Answered{e->GUID, e->InstanceStart, e->dReminder,
                                               e->iRemMinutes, e->iRemMinutesNext}
                                    : Answered{e->GUID, e->InstanceStart, {}, 0, 0});
    }
    return answers;
}

/// One calendar twice: in a set, and for the plain way. Some ids stand more than once, as where two
/// of the host's databases hold the same calendar.
struct Both {
    explicit Both(unsigned seed, std::size_t count) {
        std::mt19937 random(seed);
        std::string series;
        for (const auto& event : test::ManyEvents(kNow, seed).next(count)) {
            if (event->IsRepeating()) {
                if (!series.empty() && random() % 2 == 0) {
                    event->id = series;
                } else {
                    series = random() % 2 == 0 ? event->id.str() : "EV" + event->id.str().substr(2);
                }
            }
            plain.push_back(std::make_shared<calEvent>(*event));
            set.Add(event, event->GUID);
        }
    }
    calEvent& inSet(std::size_t i) { return *objectAt<calEvent>(*set.mCol, i + 1); }

    test::ManualClock clock{kNow};
    DBRemindUtils db;
    CalEvents set{db, clock};
    Events plain;
};

class PlainTwin : public testing::TestWithParam<unsigned> {};

// Windows that move on like checks, jump, shrink to a second, and look back; between them events
// are snoozed, moved and given other reminders, as acts and tests do it, in place.
TEST_P(PlainTwin, AnswersAlike) {
    Both both(GetParam(), 400);
    std::mt19937 random(GetParam() + 1000);
    const auto upTo = [&](int limit) {
        return std::uniform_int_distribution<int>(0, limit - 1)(random);
    };
    DateTime from = kNow;
    std::size_t found = 0;
    for (int step = 0; step < 400; ++step) {
        SCOPED_TRACE(testing::Message() << "seed " << GetParam() << ", step " << step);
        switch (upTo(8)) {
            case 0:
                from = kNow.addMinutes(upTo(800 * 1440) - 400 * 1440);
                break;
            case 1:
                from = from.addDays(-upTo(20));
                break;
            default:
                from = from.addSeconds(upTo(7200));
                break;
        }
        const DateTime to = from.addSeconds(upTo(3) == 0 ? upTo(40 * 86400) : upTo(40));
        if (upTo(3) == 0) {
            ASSERT_EQ(answersOf(*both.set.EventCol(from, to), false),
                      test::plainEventCol(both.plain, from, to));
        } else {
            const auto answers = answersOf(*both.set.RemindCol(from, to), true);
            ASSERT_EQ(answers, test::plainRemindCol(both.plain, from, to));
            found += answers.size();
        }
        const auto i = static_cast<std::size_t>(upTo(400));
        const DateTime when = from.addMinutes(upTo(2000) - 500);
        const int change = upTo(7);
        const std::string id = "ev" + std::to_string(1'000'000'000 + upTo(400)).substr(1);
        for (calEvent* event : {&both.inSet(i), both.plain[i].get()}) {
            if (change == 0) {
                event->NextReminder = when;
            } else if (change == 1 && event->RRULE.empty()) {
                event->StartDateTime = when;
            } else if (change == 2) {
                event->reminders = R"({"overrides":[{"minutes":7},{"minutes":2000}]})";
                event->SetRemindersCol();
            } else if (change == 3) {
                event->ISRecurrenceExceptionDeleted ^= 1;
            } else if (change == 4) {
                event->InstanceStart = when;
            } else if (change == 5 && event->RRULE.empty() && !event->IsException()) {
                event->recurrence = R"(["RRULE:FREQ=DAILY;INTERVAL=3"])";
                event->LoadRecurrence();
            } else if (change == 6) {
                event->id = id;
            }
        }
        both.set.LookAgain(both.inSet(i).GUID);
    }
    EXPECT_GT(found, 0U);
}

INSTANTIATE_TEST_SUITE_P(Seeds, PlainTwin, testing::Range(1U, 13U));

TEST(RemindCol, LeavesTheMarkForNoReminderInEveryEvent) {
    Both both(3, 100);
    both.set.RemindCol(kNow, kNow);
    both.set.RemindCol(kNow.addDays(-3000), kNow.addDays(-2999));
    for (std::size_t i = 0; i < 100; ++i) {
        const calEvent& event = both.inSet(i);
        if (event.ISRecurrenceExceptionDeleted == 0) {
            ASSERT_EQ(event.iRemMinutes, -100000);
            ASSERT_EQ(event.iRemMinutesNext, -100000);
            ASSERT_TRUE(event.InstanceStart.isZero());
        }
    }
}

}  // namespace
}  // namespace vl
