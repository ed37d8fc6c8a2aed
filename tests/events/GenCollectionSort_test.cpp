#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "Collections.h"
#include "base/ErrorState.h"

namespace vl {
namespace {

using test::keysOf;
using test::numbered;

GenCollection keyed(std::initializer_list<Variant> values) {
    GenCollection col;
    for (const Variant& v : values) {
        col.Add(v, "k" + std::to_string(col.Count() + 1));
    }
    return col;
}

TEST(GenCollectionSortByItem, SortsNumbersAndKeepsThemWhole) {
    GenCollection col = keyed({30, "9", 2.5, 3.5, -1, "many", true, Null{}, std::int64_t{1} << 40});
    col.SortByItem("N", "ASC");
    EXPECT_EQ(keysOf(col), "k6,k8,k5,k7,k3,k4,k2,k1,k9");
    EXPECT_EQ(col.Item("k6"), Variant());
    EXPECT_EQ(col.Item("k3"), Variant(std::int64_t{2}));  // halves to even
    EXPECT_EQ(col.Item("k4"), Variant(std::int64_t{4}));
    EXPECT_EQ(col.Item("k2"), Variant(std::int64_t{9}));
}

TEST(GenCollectionSortByItem, SortsTextsCutAndWithoutRegardToCase) {
    const std::string common(255, 'x');
    GenCollection col = keyed({"b", "A", common + "2", common + "1", "B", 10, 9});
    col.SortByItem("t");
    EXPECT_EQ(keysOf(col), "k6,k7,k2,k1,k5,k3,k4");
    EXPECT_EQ(col.Item("k3"), Variant(common));
    EXPECT_EQ(col.Item("k4"), Variant(common));
    EXPECT_EQ(col.Item("k6"), Variant("10"));

    // A character of two units that would be split is left out.
    GenCollection wide = keyed({std::string(254, 'x') + "\xF0\x9F\x94\x94"});
    wide.SortByItem("T");
    EXPECT_EQ(wide.Item(1), Variant(std::string(254, 'x')));
}

TEST(GenCollectionSortByItem, SortsDatesAndLeavesTheRestUnset) {
    GenCollection col =
        keyed({DateTime(2), "2026-11-15 12:00", DateTime(0), "x", 5, "", Variant()});
    col.SortByItem("D", "asc");
    EXPECT_EQ(keysOf(col), "k4,k5,k6,k7,k3,k1,k2");
    EXPECT_EQ(col.Item("k5"), Variant());
    EXPECT_EQ(col.Item("k2"), Variant(DateTime::fromCivil(2026, 11, 15, 12)));
}

TEST(GenCollectionSortByItem, DescendsWithUnsetLastAndEqualOnesInOrder) {
    GenCollection col = keyed({1, "x", 3, 1, "y", 2, 1});
    col.SortByItem("N", " desc ");
    EXPECT_EQ(keysOf(col), "k3,k6,k1,k4,k7,k2,k5");
    col.SortByItem("N", "");
    EXPECT_EQ(keysOf(col), "k2,k5,k1,k4,k7,k6,k3");
}

TEST(GenCollectionSortByItem, KeepsTheOrderOfManyEqualValues) {
    GenCollection col = numbered(200);
    for (int i = 1; i <= 200; ++i) {
        col.UpdateItem("key" + std::to_string(i), i % 2);
    }
    col.SortByItem("N");
    for (int i = 1; i <= 100; ++i) {
        EXPECT_EQ(col.Key(i), "key" + std::to_string(2 * i));
        EXPECT_EQ(col.Key(100 + i), "key" + std::to_string(2 * i - 1));
    }
}

TEST(GenCollectionSortByItem, LeavesEmptyValuesUnsetOnlyWhenAsked) {
    GenCollection col = keyed({"a", "", Variant()});
    GenCollection ignoring = col;
    col.SortByItem("T");
    EXPECT_EQ(col.Item("k2"), Variant(""));
    EXPECT_EQ(col.Item("k3"), Variant(""));
    ignoring.SortByItem("T", "", true);
    EXPECT_EQ(ignoring.Item("k2"), Variant());
    EXPECT_EQ(keysOf(ignoring), "k2,k3,k1");

    GenCollection numbers = keyed({-1, Variant()});
    numbers.SortByItem("N");
    EXPECT_EQ(numbers.Item("k2"), Variant(std::int64_t{0}));
    EXPECT_EQ(keysOf(numbers), "k1,k2");
    numbers = keyed({-1, Variant()});
    numbers.SortByItem("N", "", true);
    EXPECT_EQ(keysOf(numbers), "k2,k1");
}

TEST(GenCollectionSortByItem, CarriesThePlaceholderAsAKeyAndTheFirstWins) {
    GenCollection col;
    for (const int n : {3, 1, 2}) {
        col.Add(n);
    }
    col.Add(0, "own");
    col.SortByItem("N", "ASC");
    EXPECT_EQ(keysOf(col), "own,z");
    EXPECT_EQ(col.Item("z"), Variant(std::int64_t{1}));

    GenCollection cut;  // keys that differ behind their 255th character
    cut.Add(2, std::string(255, 'k') + "a");
    cut.Add(1, std::string(255, 'k') + "b");
    cut.SortByItem("N");
    EXPECT_EQ(cut.Count(), 1U);
    EXPECT_EQ(cut.Item(std::string(255, 'k')), Variant(std::int64_t{1}));
}

TEST(GenCollectionSortByItem, KnowsThreeTypesAndChangesNothingForOthers) {
    GenCollection col = keyed({2, 1});
    col.SortByItem("X");
    col.SortByItem("");
    EXPECT_EQ(keysOf(col), "k1,k2");
    EXPECT_EQ(col.Item(1), Variant(2));
    GenCollection none;
    none.SortByItem("T");
    EXPECT_EQ(none.Count(), 0U);
}

}  // namespace
}  // namespace vl
