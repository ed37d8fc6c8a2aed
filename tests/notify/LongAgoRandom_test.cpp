// A year and more of starts and acts: what the ledger forgets of it changes nothing. The program
// goes beside one whose ledger knows no time, and so forgets nothing.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "Desk.h"

namespace vl {
namespace {

using namespace test;

class Year {
public:
    explicit Year(unsigned seed) : random_(seed) {
        remembering_.ledgerClock = &stopped_;
        for (Desk* desk : desks()) {
            desk->clock.time = kFirst.addMinutes(-60);
        }
        const char* rules[] = {"FREQ=YEARLY", "FREQ=MONTHLY;INTERVAL=6", "FREQ=MONTHLY;INTERVAL=3",
                               "FREQ=YEARLY;BYMONTH=10,11,12,1", "FREQ=YEARLY;COUNT=2"};
        int name = 0;
        for (const char* rule : rules) {
            const DateTime start = kFirst.addDays(below(60)).addMinutes(60 * below(12));
            put(series("S" + std::to_string(name++), start, rule, {15}));
            const int ahead = 1440 * (1 + below(25));
            put(series("S" + std::to_string(name++), start, rule, {15, ahead},
                       below(2) == 0 ? "Asia/Tokyo" : ""));
        }
        const int after = 1440 * (60 + below(80));
        put(single("E", kFirst.addDays(below(30)).addMinutes(600), {15, -after}));
        put(series("L", kFirst.addDays(below(30)), "FREQ=MONTHLY;INTERVAL=6", {15, -after}));
    }

    void live() {
        for (DateTime day = kFirst; day < kFirst.addDays(450); day = day.addDays(1 + below(12))) {
            for (Desk* desk : desks()) {
                desk->start();
            }
            const int checks = 1 + below(4);
            DateTime now = day.addMinutes(below(600));
            for (int i = 0; i < checks; ++i) {
                ASSERT_NO_FATAL_FAILURE(check(now));
                now = now.addMinutes(1 + below(200));
                act(now);
            }
            if (below(6) == 0) {
                change(now);
            }
        }
    }
    std::size_t taken() const { return taken_; }
    std::size_t acts() const { return acts_; }
    /// What only the program that forgets nothing still knows, in characters.
    std::size_t forgotten() const {
        return readFile(remembering_.ledgerPath).size() - readFile(forgetting_.ledgerPath).size();
    }

private:
    static inline const DateTime kFirst = DateTime::fromCivil(2026, 11, 20, 9, 0, 0);

    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    std::vector<Desk*> desks() { return {&forgetting_, &remembering_}; }
    void put(const std::shared_ptr<calEvent>& event) {
        for (Desk* desk : desks()) {
            desk->put(std::make_shared<calEvent>(*event));
        }
    }

    void check(DateTime now) {
        const std::string taken = forgetting_.check(now);
        log_ += formatDateTime(now) + " [" + taken + "]\n";
        ASSERT_EQ(taken, remembering_.check(now)) << log_;
        for (const Variant& item : *forgetting_.program->state.NewReminders) {
            const auto event = objectIn<calEvent>(item);
            if (event == nullptr) {
                continue;
            }
            const ActRow& row = forgetting_.listed.at(event->GUID);
            const auto dealt = dealtWith_.find({row.event->GUID, row.InstanceStart});
            ASSERT_TRUE(dealt == dealtWith_.end() || row.reminder > dealt->second)
                << row.event->GUID << " has come back\n"
                << log_;
            ++taken_;
        }
    }

    void act(DateTime now) {
        const auto rows = forgetting_.listed;
        for (const auto& [GUID, row] : rows) {
            const bool isListed = forgetting_.program->state.NewReminders->Exists(GUID);
            // Who snoozes what is no occurrence any more means it.
            const bool isThere = forgetting_.rows.contains(GUID) &&
                                 (isListed || !replaced_.contains({GUID, row.InstanceStart}));
            if (isThere && below(isListed ? 2 : 30) == 0) {
                actOn(GUID, row, now);
            }
        }
    }

    void actOn(const std::string& GUID, const ActRow& row, DateTime now) {
        static constexpr int kSnoozes[] = {15, 1440, 14 * 1440, 40 * 1440, 120 * 1440};
        const int what = below(12);
        const int minutes = kSnoozes[below(5)];
        for (Desk* desk : desks()) {
            desk->clock.time = now;
            if (what < 5) {
                desk->snooze(GUID, minutes);
            } else if (what < 11) {
                static constexpr DismissMode kModes[] = {
                    DismissMode::This, DismissMode::AllButAfter, DismissMode::All};
                desk->dismiss(GUID, kModes[(what - 5) % 3], what == 10);
            } else {
                desk->reactivate(GUID);
            }
        }
        const std::pair key(GUID, row.InstanceStart);
        if (what < 5) {
            dealtWith_.erase(key);  // it comes back at its time
        } else if (what < 11) {
            dealtWith_[key] = now;
        } else {
            std::erase_if(dealtWith_, [&](const auto& one) { return one.first.first == GUID; });
        }
        log_ += "   act " + std::to_string(what) + " on " + GUID + " " +
                formatDateTime(row.InstanceStart) + (what < 5 ? ", " : "") +
                (what < 5 ? std::to_string(minutes) : "") + "\n";
        ++acts_;
    }

    // The host moves an occurrence that is to come, or one whose row was last shown; or it takes
    // such an exception away, while the program runs.
    void change(DateTime now) {
        if (!exceptions_.empty() && below(2) == 0) {
            for (Desk* desk : desks()) {
                desk->remove(exceptions_.back());
            }
            log_ += "   without " + exceptions_.back() + "\n";
            exceptions_.pop_back();
            return check(now.addMinutes(1));
        }
        const std::string GUID = "S" + std::to_string(below(10));
        const calEvent& event = *forgetting_.rows.at(GUID);
        const auto shown = forgetting_.listed.find(GUID);
        const DateTime start = shown != forgetting_.listed.end() && below(2) == 0
                                   ? shown->second.InstanceStart
                                   : event.NextInstance(now);
        if (start.isZero()) {
            return;
        }
        const auto exception =
            single("X" + std::to_string(++exceptionCount_), start.addDays(2), {15});
        exception->RecurrenceState = 3;
        exception->recurringEventId = event.id;
        exception->RExceptionStartTimeOrig = start;
        put(exception);
        replaced_.insert({GUID, start});
        exceptions_.push_back(exception->GUID);
        log_ += "   " + exception->GUID + " for " + GUID + " " + formatDateTime(start) + "\n";
    }

    std::mt19937 random_;
    ManualClock stopped_{kFirst};
    Desk forgetting_;
    Desk remembering_;
    std::map<std::pair<std::string, DateTime>, DateTime> dealtWith_;  // by GUID and occurrence
    std::set<std::pair<std::string, DateTime>> replaced_;
    std::vector<std::string> exceptions_;  // that are there
    int exceptionCount_ = 0;
    std::string log_;
    std::size_t taken_ = 0;
    std::size_t acts_ = 0;
};

TEST(LongAgoRandom, WhatTheLedgerForgetsChangesNothing) {
    const char* wanted = std::getenv("VL_YEARS");
    const auto years = wanted != nullptr ? std::strtoul(wanted, nullptr, 10) : 6UL;
    std::size_t taken = 0;
    std::size_t acts = 0;
    std::size_t forgotten = 0;
    for (unsigned seed = 1; seed <= years; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Year year(seed);
        year.live();
        if (testing::Test::HasFailure()) {
            return;
        }
        taken += year.taken();
        acts += year.acts();
        forgotten += year.forgotten();
    }
    EXPECT_GT(taken, 100 * years);
    EXPECT_GT(acts, 20 * years);
    EXPECT_GT(forgotten, 1000 * years);
}

}  // namespace
}  // namespace vl
