// What a collection of 100,000 items costs, beside std::unordered_map<std::string, Variant>.
//
// Keys are GUIDs, as events have them. A map has no positions: where those are asked for, a vector
// of pointers to the map's entries stands beside it. The map compares keys exactly, a collection
// without regard to case. Time is per item; the last lines say how many times the map's it is.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <map>
#include <numeric>
#include <random>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "events/GenCollection.h"

namespace {

using vl::GenCollection;
using vl::Variant;

constexpr std::size_t kItems = 100'000;

std::string guid(std::mt19937& random) {
    char text[40];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%04X-%04X%08X}",
                  static_cast<unsigned>(random()), static_cast<unsigned>(random() & 0xFFFFU),
                  static_cast<unsigned>(random() & 0xFFFFU),
                  static_cast<unsigned>(random() & 0xFFFFU),
                  static_cast<unsigned>(random() & 0xFFFFU), static_cast<unsigned>(random()));
    return text;
}

const std::vector<std::string>& keys() {
    static const std::vector<std::string> all = [] {
        std::mt19937 random(11);
        std::vector<std::string> made(kItems);
        for (std::string& key : made) {
            key = guid(random);
        }
        return made;
    }();
    return all;
}

// The numbers below kItems, shuffled.
const std::vector<std::size_t>& anyOrder() {
    static const std::vector<std::size_t> order = [] {
        std::vector<std::size_t> all(kItems);
        std::iota(all.begin(), all.end(), std::size_t{0});
        std::shuffle(all.begin(), all.end(), std::mt19937(12));
        return all;
    }();
    return order;
}

// Each item's value is the index of another one; all of them are one circle.
const std::vector<std::int32_t>& values() {
    static const std::vector<std::int32_t> all = [] {
        const std::vector<std::size_t>& order = anyOrder();
        std::vector<std::int32_t> next(kItems);
        for (std::size_t i = 0; i < kItems; ++i) {
            next[order[i]] = static_cast<std::int32_t>(order[(i + 1) % kItems]);
        }
        return next;
    }();
    return all;
}

std::size_t number(const Variant& value) {
    return static_cast<std::size_t>(*value.get<std::int32_t>());
}

class Collection {
public:
    void add(const std::string& key, std::int32_t value) { items_.Add(value, key); }
    std::size_t count() const { return items_.Count(); }
    Variant under(const std::string& key) const { return items_.Item(key); }
    Variant at(std::size_t index) const { return items_.Item(index + 1); }
    void removeAt(std::size_t index) { items_.Remove(index + 1); }
    void removeUnder(const std::string& key) { items_.Remove(key); }
    template <class Look>
    void walk(Look look) const {
        for (const Variant& value : items_) {
            look(value);
        }
    }

private:
    GenCollection items_;
};

class MapAndVector {
public:
    void add(const std::string& key, std::int32_t value) {
        const auto [entry, isNew] = map_.try_emplace(key, value);
        if (isNew) {
            order_.push_back(&*entry);
        }
    }
    std::size_t count() const { return order_.size(); }
    const Variant& under(const std::string& key) const { return map_.find(key)->second; }
    const Variant& at(std::size_t index) const { return order_[index]->second; }
    void removeAt(std::size_t index) {
        const auto place = order_.begin() + static_cast<std::ptrdiff_t>(index);
        map_.erase((*place)->first);
        order_.erase(place);
    }
    // From the map alone: the vector would have to be searched.
    void removeUnder(const std::string& key) { map_.erase(key); }
    template <class Look>
    void walk(Look look) const {
        for (const auto* entry : order_) {
            look(entry->second);
        }
    }

private:
    std::unordered_map<std::string, Variant> map_;
    std::vector<std::pair<const std::string, Variant>*> order_;
};

template <class Container>
void fill(Container& all) {
    for (std::size_t i = 0; i < kItems; ++i) {
        all.add(keys()[i], values()[i]);
    }
}

void perItem(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kItems));
}

// With the release of all that was added.
template <class Container>
void add(benchmark::State& state) {
    keys();
    for ([[maybe_unused]] const auto& turn : state) {
        Container all;
        fill(all);
        benchmark::DoNotOptimize(all);
    }
    perItem(state);
}

// Each look-up asks for what the one before gave: it is the time until the value is there. All
// are looked up once.
template <class Container>
void lookUpByKey(benchmark::State& state) {
    Container all;
    fill(all);
    std::size_t i = 0;
    for ([[maybe_unused]] const auto& turn : state) {
        for (std::size_t n = 0; n < kItems; ++n) {
            i = number(all.under(keys()[i]));
        }
        benchmark::DoNotOptimize(i);
    }
    perItem(state);
}

template <class Container>
void lookUpByPosition(benchmark::State& state) {
    Container all;
    fill(all);
    std::size_t i = 0;
    for ([[maybe_unused]] const auto& turn : state) {
        for (std::size_t n = 0; n < kItems; ++n) {
            i = number(all.at(i));
        }
        benchmark::DoNotOptimize(i);
    }
    perItem(state);
}

// The usual loop from the first position to the last.
template <class Container>
void loopOverPositions(benchmark::State& state) {
    Container all;
    fill(all);
    for ([[maybe_unused]] const auto& turn : state) {
        std::size_t sum = 0;
        for (std::size_t i = 0; i < all.count(); ++i) {
            sum += number(all.at(i));
        }
        benchmark::DoNotOptimize(sum);
    }
    perItem(state);
}

// `step` takes something out of `all`; it is called for every number below kItems, shuffled.
template <class Container, class Step>
void emptyOut(benchmark::State& state, Step step) {
    for ([[maybe_unused]] const auto& turn : state) {
        state.PauseTiming();
        {
            Container all;
            fill(all);
            state.ResumeTiming();
            for (const std::size_t i : anyOrder()) {
                step(all, i);
            }
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
    perItem(state);
}

template <class Container>
void removeFront(benchmark::State& state) {
    emptyOut<Container>(state, [](Container& all, std::size_t) { all.removeAt(0); });
}

template <class Container>
void removeMiddle(benchmark::State& state) {
    emptyOut<Container>(state, [](Container& all, std::size_t) { all.removeAt(all.count() / 2); });
}

template <class Container>
void removeEnd(benchmark::State& state) {
    emptyOut<Container>(state, [](Container& all, std::size_t) { all.removeAt(all.count() - 1); });
}

template <class Container>
void removeAnywhereLookingUp(benchmark::State& state) {
    emptyOut<Container>(state, [](Container& all, std::size_t i) {
        benchmark::DoNotOptimize(number(all.at(i * 31 % all.count())));
        all.removeAt(i % all.count());
    });
}

template <class Container>
void removeByKey(benchmark::State& state) {
    emptyOut<Container>(state, [](Container& all, std::size_t i) { all.removeUnder(keys()[i]); });
}

template <class Container>
void walk(benchmark::State& state) {
    Container all;
    fill(all);
    for ([[maybe_unused]] const auto& turn : state) {
        std::size_t sum = 0;
        all.walk([&](const Variant& value) { sum += number(value); });
        benchmark::DoNotOptimize(sum);
    }
    perItem(state);
}

// Half of the items go while all are walked; a map's walk does not allow it.
void removeWhileWalking(benchmark::State& state) {
    for ([[maybe_unused]] const auto& turn : state) {
        state.PauseTiming();
        {
            Collection all;
            fill(all);
            state.ResumeTiming();
            all.walk([&](const Variant& value) {
                if (number(value) % 2 != 0) {
                    all.removeUnder(keys()[number(value)]);
                }
            });
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
    perItem(state);
}

/// Prints as usual, and keeps the nanoseconds an item took.
class Keeper : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            const auto items = run.counters.find("items_per_second");
            if (items != run.counters.end()) {
                nanoseconds[run.benchmark_name()] = 1e9 / items->second;
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    std::map<std::string, double> nanoseconds;
};

void printRatios(const std::map<std::string, double>& nanoseconds) {
    for (const auto& [name, ours] : nanoseconds) {
        const std::size_t kind = name.find("<Collection>");
        if (kind == std::string::npos) {
            continue;
        }
        const auto map = nanoseconds.find(name.substr(0, kind) + "<MapAndVector>");
        if (map != nanoseconds.end()) {
            std::printf("%-24s collection %9.1f ns, map %9.1f ns, ratio %.3f\n",
                        name.substr(0, kind).c_str(), ours, map->second, ours / map->second);
        }
    }
}

}  // namespace

BENCHMARK_TEMPLATE(add, Collection)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(add, MapAndVector)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(lookUpByKey, Collection)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(lookUpByKey, MapAndVector)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(lookUpByPosition, Collection)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(lookUpByPosition, MapAndVector)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(loopOverPositions, Collection)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(loopOverPositions, MapAndVector)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(removeFront, Collection)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(removeFront, MapAndVector)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(removeMiddle, Collection)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(removeMiddle, MapAndVector)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(removeEnd, Collection)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(removeEnd, MapAndVector)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(removeAnywhereLookingUp, Collection)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(removeAnywhereLookingUp, MapAndVector)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(removeByKey, Collection)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(removeByKey, MapAndVector)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(walk, Collection)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(walk, MapAndVector)->Unit(benchmark::kMillisecond);
BENCHMARK(removeWhileWalking)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    Keeper keeper;
    benchmark::RunSpecifiedBenchmarks(&keeper);
    printRatios(keeper.nanoseconds);
    return 0;
}
