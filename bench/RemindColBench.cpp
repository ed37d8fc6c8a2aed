// What a check asks of 100,000 events in memory: which of them have a reminder in a window.
// A fifth of the events repeat; every tenth has three reminders.
#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <random>
#include <string>

#include "base/Clock.h"
#include "db/DBRemindUtils.h"
#include "events/CalEvents.h"
#include "events/Ledger.h"

namespace {

using vl::calEvent;
using vl::DateTime;

const DateTime kNow = DateTime::fromCivil(2026, 11, 20, 14, 0);

class FixedClock final : public vl::Clock {
public:
    DateTime now() const override { return kNow; }
};

constexpr std::array<const char*, 5> kRules = {
    R"(["RRULE:FREQ=DAILY"])", R"(["RRULE:FREQ=WEEKLY;BYDAY=MO,WE,FR"])",
    R"(["RRULE:FREQ=WEEKLY;INTERVAL=2;BYDAY=TU"])", R"(["RRULE:FREQ=MONTHLY;BYDAY=2TH"])",
    R"(["RRULE:FREQ=YEARLY"])"};

class Events {
public:
    explicit Events(int count) {
        std::mt19937 random(7);
        std::uniform_int_distribution<int> minute(-2 * 365 * 1440, 365 * 1440);
        for (int i = 0; i < count; ++i) {
            auto event = std::make_shared<calEvent>();
            event->GUID = "{" + std::to_string(i) + "}";
            event->StartDateTime = kNow.addMinutes(minute(random));
            event->reminders =
                i % 10 == 0 ? R"({"overrides":[{"minutes":5},{"minutes":60},{"minutes":1440}]})"
                            : R"({"overrides":[{"minutes":15}]})";
            event->SetRemindersCol();
            if (i % 5 == 0) {
                event->recurrence = kRules[static_cast<std::size_t>(i / 5) % kRules.size()];
                event->LoadRecurrence();
                event->RecurrenceState = 1;
            }
            set.Add(event, event->GUID);
        }
    }

    FixedClock clock;
    vl::DBRemindUtils db;
    vl::CalEvents set{db, clock};
};

void dueInWindow(benchmark::State& state) {
    Events events(static_cast<int>(state.range(0)));
    const DateTime to = kNow.addSeconds(state.range(1));
    std::size_t due = 0;
    for (auto _ : state) {
        due = events.set.RemindCol(kNow, to)->Count();
        benchmark::DoNotOptimize(due);
    }
    state.counters["due"] = static_cast<double>(due);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The first check of a run: every event is looked at.
void firstCheck(benchmark::State& state) {
    Events events(static_cast<int>(state.range(0)));
    vl::Ledger ledger(events.clock);
    for (auto _ : state) {
        events.set.UseLedger(ledger, {});
        benchmark::DoNotOptimize(events.set.RemindCol(kNow.date(), kNow.addSeconds(10), true));
    }
}

// A check in which nothing has happened, with what the first one found still listed.
void idleCheck(benchmark::State& state) {
    Events events(static_cast<int>(state.range(0)));
    vl::Ledger ledger(events.clock);
    auto listed = std::make_shared<vl::GenCollection>();
    events.set.UseLedger(ledger, [&listed] { return listed; });
    const DateTime to = kNow.addSeconds(10);
    listed = events.set.RemindCol(kNow, to, true);
    for (auto _ : state) {
        benchmark::DoNotOptimize(events.set.RemindCol(kNow, to, true));
    }
}

}  // namespace

BENCHMARK(dueInWindow)
    ->ArgNames({"events", "seconds"})
    ->Args({100'000, 20})
    ->Args({100'000, 86'400})
    ->Unit(benchmark::kMillisecond);

BENCHMARK(firstCheck)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(idleCheck)->Arg(100'000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
