// A check that lets quiet events rest finds what a check finds that asks each of them every time.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "DueBook.h"
#include "support/Events.h"
#include "support/ManualClock.h"

namespace vl {
namespace {

using test::at;

std::vector<std::string> told(const std::vector<DueBook::Found>& found, const DueBook& book) {
    std::vector<std::string> lines;
    lines.reserve(found.size() + book.moved().size());
    const auto line = [](const char* what, const calEvent& event, const Due& due) {
        return what + event.GUID.str() + " " + formatDateTime(due.instance) + " " +
               formatDateTime(due.time);
    };
    for (const DueBook::Found& one : found) {
        lines.push_back(line("", *one.event, one.due) + " " +
                        formatDateTime(book.openSince(*one.event)));
    }
    for (const DueBook::Moved& one : book.moved()) {
        lines.push_back(line(one.isElsewhere ? "elsewhere " : "moved ", *one.event, one.due));
    }
    return lines;
}

class DueBookRandom : public testing::TestWithParam<unsigned> {
protected:
    int upTo(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    std::shared_ptr<calEvent> made(const std::string& GUID) {
        const DateTime start = clock_.time.addMinutes(upTo(3 * 1440) - 1440);
        auto event = upTo(3) == 0
                         ? test::series(GUID, start.addDays(-upTo(5)), "FREQ=DAILY", {upTo(120), 5})
                         : test::single(GUID, start, {upTo(600), 15, -20});
        event->Modified = clock_.time.addMinutes(-upTo(60));
        return event;
    }

    void changeEvents() {
        const std::string GUID = "E" + std::to_string(upTo(40));
        const auto known = objectAt<calEvent>(events_, GUID);
        switch (known ? upTo(5) : 0) {
            case 0:
                events_.Add(Variant(made(GUID)), GUID, 0, 0, true);
                break;
            case 1:
                events_.Remove(GUID);
                break;
            case 2:  // its row was written, and says the same
                events_.UpdateItem(GUID, Variant(std::make_shared<calEvent>(*known)));
                break;
            case 3:  // elsewhere in the list
                events_.Remove(GUID);
                events_.Add(Variant(known), GUID);
                break;
            default:
                known->StartDateTime = known->StartDateTime.addMinutes(upTo(300));
                known->LoadRecurrence();
                resting_.look(GUID);
                plain_.look(GUID);
        }
    }

    void act(const std::string& GUID) {
        const DateTime now = clock_.time;
        const DateTime snoozed = now.addMinutes(upTo(200));
        const int what = upTo(3);
        const auto event = objectAt<calEvent>(events_, GUID);
        const std::vector<Ledger::Change> changes = {
            {GUID, [&](EventState& state) {
                 if (what == 0 || !event) {
                     state = EventState();
                     state.newlyMet = true;
                     return;
                 }
                 OccurrenceState& one = state.at(event->StartDateTime);
                 one.handled = what == 1 ? now : one.handled;
                 one.snoozed = what == 2 ? snoozed : DateTime();
             }}};
        ledger_.change("base", "act", changes);
    }

    void changeList(const std::vector<DueBook::Found>& found) {
        for (const DueBook::Found& one : found) {
            if (upTo(5) > 0) {
                listed_.Add(Variant(one.event), one.event->GUID, 0, 0, true);
            }
        }
        if (listed_.Count() > 0 && upTo(4) == 0) {
            const std::string GUID = listed_.Key(1 + upTo(static_cast<int>(listed_.Count())));
            if (upTo(2) == 0) {
                act(GUID);
            }
            listed_.Remove(GUID);
        }
        if (upTo(10) == 0) {  // the same, made anew
            GenCollection again;
            for (const Variant& item : listed_) {
                again.Add(item, objectIn<calEvent>(item)->GUID);
            }
            listed_ = again;
        }
    }

    std::mt19937 random_{GetParam()};
    test::ManualClock clock_{at(9, 0)};
    Ledger ledger_{clock_};
    GenCollection events_;
    GenCollection listed_;
    DueBook resting_;
    DueBook plain_;
};

TEST_P(DueBookRandom, FindsWhatOneFindsThatLetsNothingRest) {
    for (int i = 0; i < 40; ++i) {
        const std::string GUID = "E" + std::to_string(i);
        events_.Add(Variant(made(GUID)), GUID);
    }
    std::size_t count = 0;
    std::size_t most = 0;
    DateTime last = clock_.time;
    for (int step = 0; step < 600; ++step) {
        SCOPED_TRACE(testing::Message() << "seed " << GetParam() << ", step " << step);
        const bool back = upTo(40) == 0;
        clock_.time =
            back ? clock_.time.addMinutes(-upTo(200)) : clock_.time.addSeconds(upTo(1200));
        for (int i = upTo(3); i > 1; --i) {
            changeEvents();
        }
        const DateTime from = std::min(last, clock_.time);
        const DateTime to = clock_.time.addSeconds(10);
        for (const Variant& item : events_) {
            plain_.look(objectIn<calEvent>(item)->GUID);
        }
        const auto found =
            resting_.ask(events_, {from, to, clock_.time, from, "base", ledger_, &listed_});
        const auto expected =
            plain_.ask(events_, {from, to, clock_.time, from, "base", ledger_, &listed_});
        ASSERT_EQ(told(found, resting_), told(expected, plain_));
        count += found.size();
        changeList(found);
        most = std::max(most, listed_.Count());
        last = clock_.time;
    }
    EXPECT_GT(count, 100U);
    EXPECT_GT(most, 5U);
}

INSTANTIATE_TEST_SUITE_P(Seeds, DueBookRandom, testing::Range(1U, 13U));

}  // namespace
}  // namespace vl
