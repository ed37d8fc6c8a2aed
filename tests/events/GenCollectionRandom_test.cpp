// Random operations against a plain model, and the cost at a hundred thousand items.
#include <gtest/gtest.h>

#include <chrono>
#include <random>

#include "base/Text.h"
#include "events/GenCollection.h"

namespace vl {
namespace {

// The same rules over two vectors and linear searches.
class Model {
public:
    void add(int value, const std::string& key, std::int64_t before, std::int64_t after,
             bool replace) {
        const std::size_t taken = find(key);
        if (taken != rows.size()) {
            if (!replace) {
                return;
            }
            rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(taken));
            rows.emplace_back(key, value);
            return;
        }
        const auto count = static_cast<std::int64_t>(rows.size());
        if (before == 0 && after == 0) {
            rows.emplace_back(key, value);
        } else if (after == 0 && before >= 1 && before <= count) {
            rows.insert(rows.begin() + before - 1, {key, value});
        } else if (before == 0 && after >= 1 && after <= count) {
            rows.insert(rows.begin() + after, {key, value});
        }
    }
    std::size_t find(const std::string& key) const {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (!key.empty() && text::equalsNoCase(rows[i].first, key)) {
                return i;
            }
        }
        return rows.size();
    }
    void removeAt(std::size_t i) { rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(i)); }

    std::vector<std::pair<std::string, int>> rows;
};

void expectSame(const GenCollection& col, const Model& model) {
    ASSERT_EQ(col.Count(), model.rows.size());
    auto walk = col.begin();
    for (std::size_t i = 0; i < model.rows.size(); ++i, ++walk) {
        const auto& [key, value] = model.rows[i];
        const auto position = static_cast<std::int64_t>(i) + 1;
        ASSERT_EQ(col.Key(position), key.empty() ? "z" : key);
        ASSERT_EQ(col.Item(position), Variant(value));
        ASSERT_EQ(*walk, Variant(value));
        if (!key.empty()) {
            ASSERT_EQ(col.Item(key), Variant(value));
            ASSERT_EQ(col.Position(key), i + 1);
        }
    }
    ASSERT_TRUE(walk == std::default_sentinel);
}

TEST(GenCollectionRandom, BehavesAsTwoPlainLists) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const auto below = [&](std::size_t n) { return static_cast<int>(random() % n); };
    for (int round = 0; round < 40; ++round) {
        GenCollection col;
        Model model;
        const int removing = 20 + below(40);
        for (int step = 0; step < 400; ++step) {
            const std::string letter(1, static_cast<char>((below(2) ? 'a' : 'A') + below(26)));
            const std::string key = below(4) == 0 ? "" : letter + std::to_string(below(3));
            if (below(100) < removing && !model.rows.empty()) {
                const std::size_t at = model.find(key);
                if (at != model.rows.size()) {
                    col.Remove(key);
                    model.removeAt(at);
                } else {
                    const int i = below(model.rows.size());
                    col.Remove(i + 1);
                    model.removeAt(static_cast<std::size_t>(i));
                }
            } else {
                const bool placed = below(4) == 0;
                const std::int64_t before = placed ? below(20) : 0;
                const std::int64_t after = placed && before == 0 ? below(20) : 0;
                const bool replace = below(3) == 0;
                col.Add(step, key, before, after, replace);
                model.add(step, key, before, after, replace);
            }
            if (step % 16 == 0) {
                ASSERT_NO_FATAL_FAILURE(expectSame(col, model)) << "step " << step;
            }
        }
        ASSERT_NO_FATAL_FAILURE(expectSame(col, model));
    }
}

// Large enough that the order's rings are cut anew several times, and changed at every place.
TEST(GenCollectionRandom, KeepsItsOrderWhileItGrowsAndShrinks) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    GenCollection col;
    std::vector<int> order;  // the values, each under its decimal text as key
    int next = 0;
    const auto insert = [&](std::size_t index) {
        const auto before = index == order.size() ? 0 : static_cast<std::int64_t>(index) + 1;
        col.Add(next, std::to_string(next), before);
        order.insert(order.begin() + static_cast<std::ptrdiff_t>(index), next++);
    };
    const auto remove = [&](std::size_t index) {
        if (random() % 2 == 0) {
            col.Remove(index + 1);
        } else {
            col.Remove(std::to_string(order[index]));
        }
        order.erase(order.begin() + static_cast<std::ptrdiff_t>(index));
    };
    const auto expectSameOrder = [&] {
        ASSERT_EQ(col.SaveAsArray(), std::vector<Variant>(order.begin(), order.end()));
        for (std::size_t i = 0; i < order.size(); ++i) {
            ASSERT_EQ(col.Item(i + 1), Variant(order[i]));
            ASSERT_EQ(col.Position(std::to_string(order[i])), i + 1);
        }
    };
    struct Phase {
        int steps;
        unsigned adds;    // of 100
        unsigned middle;  // of 100, the rest at the front (removals) or the end
    };
    static constexpr Phase phases[] = {
        {3000, 100, 0}, {2000, 90, 90},  {4000, 50, 0},
        {3000, 40, 50}, {2000, 100, 50}, {9000, 0, 60},
    };
    for (const Phase& phase : phases) {
        for (int step = 0; step < phase.steps; ++step) {
            const bool inside = random() % 100 < phase.middle;
            if (random() % 100 < phase.adds) {
                insert(inside ? random() % (order.size() + 1) : order.size());
            } else if (!order.empty()) {
                remove(inside ? random() % order.size()
                              : (random() % 8 == 0 ? order.size() - 1 : 0));
            }
            if (step % 500 == 0) {
                ASSERT_NO_FATAL_FAILURE(expectSameOrder()) << "step " << step;
            }
        }
        ASSERT_NO_FATAL_FAILURE(expectSameOrder());
    }
    EXPECT_EQ(col.Count(), 0U);
    insert(0);
    expectSameOrder();
}

// A quadratic operation takes minutes here; the limit is far above what slow machines need.
TEST(GenCollectionCost, StaysSmallAtAHundredThousandItems) {
    constexpr int n = 100'000;
    const auto start = std::chrono::steady_clock::now();
    GenCollection col;
    for (int i = 1; i <= n; ++i) {
        col.Add(i, "guid-" + std::to_string(i));
    }
    std::mt19937 random(1);
    std::int64_t sum = 0;
    for (int i = 0; i < n / 2; ++i) {
        col.Remove(random() % col.Count() + 1);  // from the middle, by position
        sum += col.Item(random() % col.Count() + 1).toInt32();
        sum += col.Exists("GUID-" + std::to_string(random() % n)) ? 1 : 0;
        col.Add(i, "new-" + std::to_string(i), 0, 0, true);
    }
    EXPECT_EQ(col.Count(), static_cast<std::size_t>(n));
    for (const Variant& v : col) {  // removing while walking, by key
        col.Remove("guid-" + std::to_string(v.toInt32()));
    }
    while (col.Count() > 0) {
        col.Remove(1);
    }
    EXPECT_GT(sum, 0);
    const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
    std::printf("%d items: %.2f s\n", n, spent.count());
    EXPECT_LT(spent.count(), 30.0);
}

}  // namespace
}  // namespace vl
