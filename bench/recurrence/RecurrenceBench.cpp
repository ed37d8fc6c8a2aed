// The recurrence engine beside libical and python3-dateutil in one run: windows far on, full
// expansion, parsing; then its bounds. The rules are a mix as calendars hold them, with DTSTART,
// TAB, RRULE a line. All rates are of processor time.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "benchmark/benchmark.h"
#include "libical/ical.h"

#include "Bounds.h"
#include "app/TimeZone.h"
#include "model/Recurrence.h"

namespace vl {
namespace {

struct Line {
    std::string start;
    std::string rule;
    DateTime begin;
    Recurrence::Source source;
    Recurrence loaded;
    icaltimetype icalBegin{};
    icalrecurrencetype icalRule{};
};

DateTime readStart(const std::string& text) {
    const auto number = [&](std::size_t at, std::size_t length) {
        return std::stoi(text.substr(at, length));
    };
    return DateTime::fromCivil(number(0, 4), number(4, 2), number(6, 2), number(9, 2),
                               number(11, 2), number(13, 2));
}

const TimeZone& localZone() {
    static const TimeZone zone = TimeZone::named("Europe/Berlin").value();
    return zone;
}

const std::vector<Line>& lines() {
    static const std::vector<Line> all = [] {
        std::vector<Line> read;
        std::ifstream in(VL_BENCH_RULES);
        for (std::string text; std::getline(in, text);) {
            const std::size_t tab = text.find('\t');
            Line line;
            line.start = text.substr(0, tab);
            line.rule = text.substr(tab + 1);
            line.begin = readStart(line.start);
            line.source = {"[\"RRULE:" + line.rule + "\"]", line.begin, false, ""};
            line.loaded = Recurrence::load(line.source, localZone());
            line.icalBegin = icaltime_from_string(line.start.c_str());
            line.icalRule = icalrecurrencetype_from_string(line.rule.c_str());
            read.push_back(line);
        }
        if (read.empty()) {
            std::cerr << "no rules in " << VL_BENCH_RULES << '\n';
            std::exit(1);
        }
        return read;
    }();
    return all;
}

DateTime yearsOn(DateTime begin, int years) {
    const Civil c = begin.civil();
    return DateTime::fromCivil(c.year + years, c.month, c.day);
}

void done(benchmark::State& state, std::size_t each, std::size_t found) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(each));
    state.counters["found"] = static_cast<double>(found);
}

// One day, so many years after the start: rules a second.
void engineWindow(benchmark::State& state) {
    std::vector<DateTime> out;
    std::size_t found = 0;
    for ([[maybe_unused]] const auto& turn : state) {
        found = 0;
        for (const Line& line : lines()) {
            const DateTime from = yearsOn(line.begin, static_cast<int>(state.range(0)));
            line.loaded.between(from, from.addDays(1).addSeconds(-1), 100'000, out);
            found += static_cast<std::size_t>(!out.empty());
        }
    }
    done(state, lines().size(), found);
}
BENCHMARK(engineWindow)->Arg(10)->Arg(100);

void libicalWindow(benchmark::State& state) {
    std::size_t found = 0;
    for ([[maybe_unused]] const auto& turn : state) {
        found = 0;
        for (const Line& line : lines()) {
            icaltimetype from = line.icalBegin;
            from.year += static_cast<int>(state.range(0));
            from.hour = from.minute = from.second = 0;
            from = icaltime_normalize(from);
            icaltimetype to = from;
            icaltime_adjust(&to, 1, 0, 0, 0);
            icalrecur_iterator* at = icalrecur_iterator_new(line.icalRule, line.icalBegin);
            if (at == nullptr) {
                continue;
            }
            // Refused for rules with COUNT, which are then walked from their start.
            icalrecur_iterator_set_start(at, from);
            icaltimetype next = icalrecur_iterator_next(at);
            while (icaltime_is_null_time(next) == 0 && icaltime_compare(next, from) < 0) {
                next = icalrecur_iterator_next(at);
            }
            const bool inside = icaltime_is_null_time(next) == 0 && icaltime_compare(next, to) < 0;
            found += static_cast<std::size_t>(inside);
            icalrecur_iterator_free(at);
        }
    }
    done(state, lines().size(), found);
}
BENCHMARK(libicalWindow)->Arg(10)->Arg(100);

// A hundred thousand rules against one and the same day: how long a check takes.
void engineHundredThousand(benchmark::State& state) {
    std::vector<Recurrence> rules;
    while (rules.size() < 100'000) {
        for (const Line& line : lines()) {
            rules.push_back(Recurrence::load(line.source, localZone()));
        }
    }
    const DateTime from = DateTime::fromCivil(2026, 11, 20);
    std::vector<DateTime> out;
    std::size_t found = 0;
    for ([[maybe_unused]] const auto& turn : state) {
        found = 0;
        for (const Recurrence& rule : rules) {
            rule.between(from, from.addDays(1).addSeconds(-1), 100'000, out);
            found += static_cast<std::size_t>(!out.empty());
        }
    }
    done(state, rules.size(), found);
}
BENCHMARK(engineHundredThousand)->Unit(benchmark::kMillisecond);

// Everything in the first ten years: instances a second.
void engineExpand(benchmark::State& state) {
    std::vector<DateTime> out;
    std::size_t found = 0;
    for ([[maybe_unused]] const auto& turn : state) {
        found = 0;
        for (const Line& line : lines()) {
            line.loaded.between(line.begin, yearsOn(line.begin, 10), 10'000'000, out);
            found += out.size();
        }
    }
    done(state, found, found);
}
BENCHMARK(engineExpand)->Unit(benchmark::kMillisecond);

void libicalExpand(benchmark::State& state) {
    std::size_t found = 0;
    std::vector<icaltimetype> out;
    for ([[maybe_unused]] const auto& turn : state) {
        found = 0;
        for (const Line& line : lines()) {
            out.clear();
            icaltimetype end = line.icalBegin;
            end.year += 10;
            end.hour = end.minute = end.second = 0;
            icalrecur_iterator* at = icalrecur_iterator_new(line.icalRule, line.icalBegin);
            if (at == nullptr) {
                continue;
            }
            for (icaltimetype next = icalrecur_iterator_next(at);
                 icaltime_is_null_time(next) == 0 && icaltime_compare(next, end) <= 0;
                 next = icalrecur_iterator_next(at)) {
                out.push_back(next);
            }
            found += out.size();
            icalrecur_iterator_free(at);
        }
    }
    done(state, found, found);
}
BENCHMARK(libicalExpand)->Unit(benchmark::kMillisecond);

// From the event's JSON text to a rule that can be asked; libical from the rule's value alone.
void engineParse(benchmark::State& state) {
    for ([[maybe_unused]] const auto& turn : state) {
        for (const Line& line : lines()) {
            benchmark::DoNotOptimize(Recurrence::load(line.source, localZone()));
        }
    }
    done(state, lines().size(), lines().size());
}
BENCHMARK(engineParse);

void libicalParse(benchmark::State& state) {
    for ([[maybe_unused]] const auto& turn : state) {
        for (const Line& line : lines()) {
            icalrecurrencetype rule = icalrecurrencetype_from_string(line.rule.c_str());
            benchmark::DoNotOptimize(rule);
        }
    }
    done(state, lines().size(), lines().size());
}
BENCHMARK(libicalParse);

/// Prints as usual, and keeps what was measured.
class Keeper : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            const auto items = run.counters.find("items_per_second");
            if (items != run.counters.end()) {
                perSecond[run.benchmark_name()] = items->second;
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    std::map<std::string, double> perSecond;
};

/// The other one's rates by the names of ours; empty when it cannot be run.
std::map<std::string, double> dateutilRates() {
    std::map<std::string, double> perSecond;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> run(
        popen("/usr/bin/python3 " VL_BENCH_DATEUTIL " " VL_BENCH_RULES, "r"), pclose);
    std::array<char, 200> line{};
    while (run && std::fgets(line.data(), line.size(), run.get()) != nullptr) {
        std::istringstream in(line.data());
        std::string name;
        double rate = 0;
        if (in >> name >> rate) {
            perSecond[name] = rate;
        }
    }
    return perSecond;
}

void printRatios(const std::map<std::string, double>& perSecond) {
    const std::map<std::string, double> dateutil = dateutilRates();
    for (const auto& [name, ours] : perSecond) {
        if (!name.starts_with("engine")) {
            continue;
        }
        const std::string what = name.substr(6);
        std::cout << what << ": " << ours << " /s";
        if (const auto theirs = perSecond.find("libical" + what); theirs != perSecond.end()) {
            std::cout << ", libical " << theirs->second << " /s, ratio " << ours / theirs->second;
        }
        if (const auto theirs = dateutil.find(what); theirs != dateutil.end()) {
            std::cout << ", dateutil " << theirs->second << " /s, ratio " << ours / theirs->second;
        }
        std::cout << '\n';
    }
    if (dateutil.empty()) {
        std::cout << "python3-dateutil could not be asked\n";
    }
}

void printBounds() {
    std::vector<Recurrence::Source> sources;
    for (const Line& line : lines()) {
        sources.push_back(line.source);
    }
    bench::printBounds(sources, localZone(), std::cout);
}

}  // namespace
}  // namespace vl

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    vl::Keeper keeper;
    benchmark::RunSpecifiedBenchmarks(&keeper);
    vl::printRatios(keeper.perSecond);
    vl::printBounds();
    return 0;
}
