// Random operations against a plain model, and the cost at a hundred thousand items.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <random>
#include <vector>

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

Variant atPlace(const GenCollection& col, GenCollection::Place place) {
    return place < col.PlaceCount() ? col.AtPlace(place) : Variant();
}

// One of what a list can be told to do.
void changeAnyhow(GenCollection& col, std::mt19937& random) {
    const auto below = [&](std::size_t n) { return random() % n; };
    const std::string key = "key" + std::to_string(below(600));
    const Variant value(static_cast<std::int32_t>(below(1'000'000)));
    switch (below(6)) {
        case 0:
            col.Remove(key);
            break;
        case 1:
            col.Add(value, key, static_cast<std::int64_t>(below(col.Count() + 1)));
            break;
        case 2:
            col.Add(value, key, 0, 0, true);
            break;
        case 3:
            col.UpdateItem(key, value, below(4) != 0);
            break;
        default:
            col.UpdateItem(key, value);
    }
}

TEST(GenCollectionRandom, TellsAtWhichPlacesItDiffersFromAnEarlierCopy) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    std::size_t sameOrder = 0;
    for (int round = 0; round < 60; ++round) {
        GenCollection col;
        for (int i = 0; i < 400; ++i) {
            col.Add(i, "key" + std::to_string(i));
        }
        const GenCollection before = col;
        const int changes = static_cast<int>(random() % 12);
        for (int i = 0; i < changes; ++i) {
            changeAnyhow(col, random);
        }
        std::vector<GenCollection::Place> expected;
        for (GenCollection::Place p = 0; p < std::max(col.PlaceCount(), before.PlaceCount()); ++p) {
            if (p >= col.PlaceCount() || p >= before.PlaceCount() ||
                atPlace(col, p) != atPlace(before, p)) {
                expected.push_back(p);
            }
        }
        ASSERT_EQ(col.PlacesThatDiffer(before), expected);
        ASSERT_EQ(before.PlacesThatDiffer(col), expected);
        ASSERT_TRUE(GenCollection(col).PlacesThatDiffer(col).empty());
        std::size_t items = 0;
        for (GenCollection::Place p = 0; p < col.PlaceCount(); ++p) {
            if (!col.AtPlace(p).isEmpty()) {
                ++items;
                ASSERT_EQ(col.Item(col.PositionOfPlace(p)), col.AtPlace(p));
            }
        }
        ASSERT_EQ(items, col.Count());
        if (col.HasSameOrder(before)) {
            ++sameOrder;
            ASSERT_EQ(col.Count(), before.Count());
            for (std::size_t i = 1; i <= col.Count(); ++i) {
                ASSERT_EQ(col.Key(static_cast<std::int64_t>(i)),
                          before.Key(static_cast<std::int64_t>(i)));
            }
        }
    }
    EXPECT_GT(sameOrder, 0U);
}

TEST(GenCollectionRandom, AddsManyAsOneAfterTheOther) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 100; ++round) {
        GenCollection together;
        GenCollection one;
        for (int batch = 0; batch < 20; ++batch) {
            std::vector<GenCollection::Keyed> values(random() % 12);
            for (auto& [value, key] : values) {
                value = static_cast<std::int32_t>(random() % 1000);
                const auto number = random() % 80;
                key = number == 0 ? "" : (number % 2 == 0 ? "k" : "K") + std::to_string(number / 2);
                if (!key.empty()) {
                    one.Remove(key);
                }
                one.Add(value, key);
            }
            together.AddLatest(values);
        }
        ASSERT_EQ(together.Count(), one.Count());
        for (std::size_t i = 1; i <= one.Count(); ++i) {
            const auto position = static_cast<std::int64_t>(i);
            ASSERT_EQ(together.Key(position), one.Key(position));
            ASSERT_EQ(together.Item(position), one.Item(position));
        }
    }
}

TEST(GenCollectionRandom, ValuesReplacedKeepTheOrderAndNothingElseDoes) {
    GenCollection col;
    for (int i = 0; i < 300; ++i) {
        col.Add(i, "key" + std::to_string(i));
    }
    const GenCollection before = col;
    col.UpdateItem("key7", 1007);
    col.UpdateItem("key200", 1200);
    EXPECT_TRUE(col.HasSameOrder(before));
    EXPECT_EQ(col.PlacesThatDiffer(before).size(), 2U);
    for (const auto& change : std::vector<std::function<void(GenCollection&)>>{
             [](GenCollection& c) { c.Remove("key7"); }, [](GenCollection& c) { c.Add(1, "new"); },
             [](GenCollection& c) { c.Add(1, "new", 5); },
             [](GenCollection& c) { c.UpdateItem("key7", 1, false); },
             [](GenCollection& c) { c.Clear(); }}) {
        GenCollection other = before;
        change(other);
        EXPECT_FALSE(other.HasSameOrder(before));
    }
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
