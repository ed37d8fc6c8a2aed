#include "Bounds.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <string>
#include <vector>

#include "Allocations.h"

namespace vl::bench {

namespace {

const DateTime kMonday = DateTime::fromCivil(2026, 1, 5, 10, 0, 0);
const DateTime kFirst = DateTime::fromCivil(1900, 1, 1);
const DateTime kLast = DateTime::fromCivil(9999, 12, 31, 23, 59, 59);

/// Processor time of one call, the best of three, in microseconds.
template <class Call>
double microseconds(Call&& call) {
    double best = 1e12;
    for (int turn = 0; turn < 3; ++turn) {
        const std::clock_t begin = std::clock();
        call();
        best = std::min(best, 1e6 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
    }
    return best;
}

Recurrence loaded(const std::string& rule, const TimeZone& local) {
    return Recurrence::load({"[\"RRULE:" + rule + "\"]", kMonday, false, ""}, local);
}

void printMemory(std::span<const Recurrence::Source> sources, const TimeZone& local,
                 std::ostream& out) {
    std::vector<Recurrence> rules;
    rules.reserve(sources.size());
    const std::int64_t before = allocations().bytes;
    for (const Recurrence::Source& source : sources) {
        rules.push_back(Recurrence::load(source, local));
    }
    const auto count = static_cast<double>(rules.size());
    const double heap = static_cast<double>(allocations().bytes - before) / count;
    out << "memory of a loaded rule: " << sizeof(Recurrence) << " bytes and on average " << heap
        << " more\n";
}

void printAllocations(std::span<const Recurrence::Source> sources, const TimeZone& local,
                      std::ostream& out) {
    std::vector<DateTime> found;
    found.reserve(10'000'000);
    std::int64_t windows = 0;
    std::int64_t whole = 0;
    std::size_t instances = 0;
    for (const Recurrence::Source& source : sources) {
        const Recurrence rule = Recurrence::load(source, local);
        const DateTime far = source.start.date().addDays(3652);
        const std::int64_t before = allocations().count;
        rule.between(far, far.addDays(1), SIZE_MAX, found);
        windows += allocations().count - before;
        const std::int64_t between = allocations().count;
        rule.between(source.start, far, SIZE_MAX, found);
        whole += allocations().count - between;
        instances += found.size();
    }
    out << "allocations: " << windows << " in " << sources.size() << " windows of one day, "
        << whole << " while " << instances << " instances were given\n";
}

void printNeverMatching(const TimeZone& local, std::ostream& out) {
    double worst = 0;
    std::string which;
    const auto note = [&](double time, const std::string& call) {
        if (time > worst) {
            worst = time;
            which = call;
        }
    };
    int calls = 0;
    for (const char* text :
         {"FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30", "FREQ=DAILY;BYMONTH=2;BYMONTHDAY=30",
          "FREQ=MONTHLY;INTERVAL=12;BYMONTHDAY=31;BYMONTH=4", "FREQ=HOURLY;INTERVAL=2;BYHOUR=1,3",
          "FREQ=MINUTELY;INTERVAL=1440;BYHOUR=11", "FREQ=SECONDLY;INTERVAL=60;BYSECOND=1",
          "FREQ=SECONDLY;BYSECOND=60", "FREQ=DAILY;INTERVAL=7;BYDAY=TU", "FREQ=DAILY;BYSETPOS=2",
          "FREQ=WEEKLY;BYDAY=MO,TU;BYSETPOS=3", "FREQ=MONTHLY;BYDAY=1TH;BYSETPOS=2",
          "FREQ=YEARLY;BYDAY=1TH;BYSETPOS=2", "FREQ=YEARLY;BYWEEKNO=1;BYMONTH=6",
          "FREQ=YEARLY;BYWEEKNO=53;BYMONTHDAY=15", "FREQ=YEARLY;BYYEARDAY=366;BYMONTHDAY=30",
          "FREQ=WEEKLY;INTERVAL=3;BYDAY=MO;BYMONTHDAY=31;BYMONTH=2,4",
          "FREQ=HOURLY;BYYEARDAY=1;BYMONTH=2", "FREQ=SECONDLY;BYMONTHDAY=31;BYDAY=MO;BYYEARDAY=40",
          "FREQ=SECONDLY;INTERVAL=86399;BYYEARDAY=60;BYMONTHDAY=2"}) {
        for (const char* end : {"", ";COUNT=5", ";COUNT=4000000000", ";UNTIL=99991231"}) {
            const std::string rule = std::string(text) + end;
            const Recurrence r = loaded(rule, local);
            note(microseconds([&] { loaded(rule, local); }), "load " + rule);
            note(microseconds([&] { r.between(kFirst, kLast); }), "between " + rule);
            note(microseconds([&] { r.next(kMonday); }), "next " + rule);
            note(microseconds([&] { r.last(); }), "last " + rule);
            calls += 4;
        }
    }
    out << "rules that never match: of " << calls << " calls the longest took " << worst
        << " us: " << which << '\n';
}

void printLargeCount(const TimeZone& local, std::ostream& out) {
    constexpr int kTurns = 100'000;
    for (const char* rule : {"FREQ=DAILY;COUNT=100000", "FREQ=DAILY"}) {
        const Recurrence r = loaded(rule, local);
        const DateTime end = kMonday.addDays(99'999);
        std::vector<DateTime> found;
        const double time = microseconds([&] {
            for (int turn = 0; turn < kTurns; ++turn) {
                r.between(end.date(), end.date().addDays(2), SIZE_MAX, found);
            }
        });
        out << "a window after 99,999 days of " << rule << ": " << time * 1000 / kTurns << " ns, "
            << found.size() << " found\n";
    }
}

}  // namespace

void printBounds(std::span<const Recurrence::Source> sources, const TimeZone& local,
                 std::ostream& out) {
    printMemory(sources, local, out);
    printAllocations(sources, local, out);
    printNeverMatching(local, out);
    printLargeCount(local, out);
}

}  // namespace vl::bench
