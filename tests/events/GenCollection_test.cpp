#include "events/GenCollection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "base/ErrorState.h"

namespace vl {
namespace {

using testing::ElementsAre;

struct Thing : Object {
    explicit Thing(int n) : number(n) {}
    int number;
};

std::string keysOf(const GenCollection& col) {
    std::string all;
    for (std::size_t i = 1; i <= col.Count(); ++i) {
        all += (i == 1 ? "" : ",") + col.Key(static_cast<std::int64_t>(i));
    }
    return all;
}

GenCollection filled(std::string_view list) {
    GenCollection col;
    col.LoadFromList(list, ",", {}, false, true);
    return col;
}

GenCollection numbered(int n) {
    GenCollection col;
    for (int i = 1; i <= n; ++i) {
        col.Add(i, "key" + std::to_string(i));
    }
    return col;
}

TEST(GenCollectionAdd, KeepsTheFirstUnderAKeyWithoutRegardToCase) {
    GenCollection col;
    EXPECT_EQ(col.Add("first", "abc"), Variant("first"));
    EXPECT_EQ(col.Add("second", "ABC"), Variant("second"));  // given back, not added
    EXPECT_EQ(col.Count(), 1U);
    EXPECT_EQ(col.Item("Abc"), Variant("first"));
    EXPECT_EQ(col.Key(1), "abc");

    col.Add("umlaut",
            "Stra\xC3\x9F"
            "e \xC3\x84");
    EXPECT_EQ(col.Item("STRA\xC3\x9F"
                       "E \xC3\xA4"),
              Variant("umlaut"));
}

TEST(GenCollectionAdd, PutsAnItemWhereItIsAskedFor) {
    GenCollection col = filled("a,b,c");
    col.Add("x", "x", 1);
    EXPECT_EQ(keysOf(col), "x,a,b,c");
    col.Add("y", "y", 0, 4);
    EXPECT_EQ(keysOf(col), "x,a,b,c,y");
    col.Add("u", {}, 3);
    EXPECT_EQ(keysOf(col), "x,a,z,b,c,y");
    EXPECT_EQ(col.Item(3), Variant("u"));
    col.Add("w", "w", 0, 1);
    EXPECT_EQ(keysOf(col), "x,w,a,z,b,c,y");
    for (const char* key : {"x", "w", "a", "b", "c", "y"}) {
        EXPECT_EQ(col.Item(key), Variant(key));
    }
}

TEST(GenCollectionAdd, AddsNothingAtAPlaceThatIsNotThere) {
    GenCollection col = filled("a,b");
    col.Add("x", "x", 3);
    col.Add("x", "x", -1);
    col.Add("x", "x", 0, 3);
    col.Add("x", {}, 0, -1);
    col.Add("x", "x", 1, 1);
    EXPECT_EQ(keysOf(col), "a,b");
    GenCollection none;
    none.Add("x", "x", 1);
    EXPECT_EQ(none.Count(), 0U);
}

TEST(GenCollectionAdd, ReplacesAnObjectInItsPlace) {
    GenCollection col = filled("a,b,c");
    const auto thing = std::make_shared<Thing>(7);
    EXPECT_EQ(col.Add(thing, "B", 0, 0, true), Variant(thing));
    EXPECT_EQ(keysOf(col), "a,b,c");
    EXPECT_EQ(objectAt<Thing>(col, 2), thing);
}

TEST(GenCollectionAdd, MovesAReplacedValueToTheEnd) {
    GenCollection col = filled("a,b,c");
    EXPECT_EQ(col.Add("new", "A", 1, 0, true), Variant("new"));  // the position does not count
    EXPECT_EQ(keysOf(col), "b,c,A");
    EXPECT_EQ(col.Item(3), Variant("new"));

    col.Add(std::make_shared<ValueList>(), "b", 0, 0, true);  // an array is a value
    EXPECT_EQ(keysOf(col), "c,A,b");
    col.Add(col.Item("c"), col.Key(1), 0, 0, true);
    EXPECT_EQ(keysOf(col), "A,b,c");
    EXPECT_EQ(col.Item("c"), Variant("c"));
}

TEST(GenCollectionAdd, ReplacesByWhatComesNotByWhatWasThere) {
    GenCollection col;
    col.Add(std::make_shared<Thing>(1), "a");
    col.Add(std::make_shared<Thing>(2), "b");
    col.Add("text", "a", 0, 0, true);  // no object: to the end
    EXPECT_EQ(keysOf(col), "b,a");
    col.Add(std::make_shared<Thing>(3), "b", 0, 0, true);
    EXPECT_EQ(keysOf(col), "b,a");
    EXPECT_EQ(objectAt<Thing>(col, "b")->number, 3);
}

TEST(GenCollectionAdd, TakesValuesOfEveryKind) {
    const auto thing = std::make_shared<Thing>(1);
    const Variant values[] = {"text", 7, std::int64_t{1} << 40, 2.5, DateTime(3.25), true,
                              thing,  ""};
    GenCollection col;
    for (const Variant& value : values) {
        EXPECT_EQ(col.Add(value), value);
    }
    EXPECT_THAT(col.SaveAsArray(), testing::ElementsAreArray(values));
}

TEST(GenCollectionAdd, ReplaceOfAnAbsentKeyAdds) {
    GenCollection col = filled("a");
    col.Add("b", "b", 1, 0, true);
    EXPECT_EQ(keysOf(col), "b,a");
}

TEST(GenCollectionAdd, ShowsThePlaceholderForAnItemWithoutKey) {
    GenCollection col;
    col.Add("one");
    col.Add("two");
    EXPECT_EQ(col.Count(), 2U);
    EXPECT_EQ(keysOf(col), "z,z");
    EXPECT_EQ(col.Item("z"), Variant());  // no key that could be looked up
    col.Add("three", "Z");
    EXPECT_EQ(col.Item("z"), Variant("three"));
    col.Remove("z");
    EXPECT_EQ(keysOf(col), "z,z");
}

TEST(GenCollectionCounter, Counts) {
    GenCollection col;
    EXPECT_EQ(col.AddCounter("k"), Variant(1));
    EXPECT_EQ(col.AddCounter("K"), Variant(2));
    EXPECT_EQ(col.AddCounter("k"), Variant(3));
    EXPECT_EQ(col.Item("k"), Variant(3));
    EXPECT_EQ(col.Count(), 1U);
    EXPECT_EQ(col.AddCounter(""), Variant(1));
    EXPECT_EQ(col.AddCounter(""), Variant(1));
    EXPECT_EQ(col.Count(), 3U);
}

TEST(GenCollectionCounter, AddsToWhatIsThere) {
    struct Case {
        Variant before;
        Variant after;
    };
    const Case cases[] = {
        {Variant("41"), Variant(42)},
        {Variant("0.5"), Variant(1.5)},
        {Variant(2.5), Variant(3.5)},
        {Variant(), Variant(1)},
        {Variant(INT32_MAX), Variant(std::int64_t{INT32_MAX} + 1)},
        {Variant(INT64_MAX), Variant(INT64_MAX)},  // no room: stays
        {Variant("many"), Variant("many")},
        {Variant(Null{}), Variant(Null{})},
    };
    for (const Case& c : cases) {
        GenCollection col;
        col.Add("first", "first");
        col.Add(c.before, "k");
        col.Add("last", "last");
        EXPECT_EQ(col.AddCounter("k"), c.after);
        EXPECT_EQ(col.Item(2), c.after);
    }
}

TEST(GenCollectionExists, WalksTheKeyListBelowThirtyItems) {
    GenCollection col = numbered(28);
    col.Add("x");
    ASSERT_EQ(col.Count(), 29U);
    EXPECT_TRUE(col.Exists("KEY7"));
    EXPECT_FALSE(col.Exists("KEY7", true));
    EXPECT_TRUE(col.Exists("key7", true));
    EXPECT_TRUE(col.Exists("z"));
    EXPECT_FALSE(col.Exists("Z", true));
    EXPECT_FALSE(col.Exists("key29"));
    EXPECT_FALSE(col.Exists(""));
}

TEST(GenCollectionExists, LooksTheKeyUpFromThirtyItemsOn) {
    GenCollection col = numbered(29);
    col.Add("x");
    ASSERT_EQ(col.Count(), 30U);
    EXPECT_TRUE(col.Exists("KEY7"));
    EXPECT_TRUE(col.Exists("KEY7", true));  // never with regard to case
    EXPECT_FALSE(col.Exists("z"));
    EXPECT_FALSE(col.Exists(""));
    col.Add("y", "Z");  // a key like any other
    EXPECT_TRUE(col.Exists("z", true));
    col.Remove("z");
    col.Remove(30);
    EXPECT_FALSE(col.Exists("KEY7", true));
}

TEST(GenCollectionItem, GivesNothingForWhatIsNotThere) {
    GenCollection col = filled("a,b");
    EXPECT_EQ(col.Item(1), Variant("a"));
    EXPECT_EQ(col.Item(std::size_t{2}), Variant("b"));
    EXPECT_EQ(col.Item(0), Variant());
    EXPECT_EQ(col.Item(3), Variant());
    EXPECT_EQ(col.Item(-1), Variant());
    EXPECT_EQ(col.Item(INT64_MIN), Variant());
    EXPECT_EQ(col.Item("c"), Variant());
    EXPECT_EQ(col.Item("1"), Variant());  // a text is a key, never a position
    EXPECT_EQ(col.Item(""), Variant());
    EXPECT_EQ(col.Item("c", false, "none"), Variant("none"));
    EXPECT_EQ(col.Item("a", false, "none"), Variant("a"));
    EXPECT_EQ(col.Item("c", false), Variant());
    EXPECT_EQ(keysOf(col), "a,b");
}

TEST(GenCollectionItem, AddsTheDefaultWhenAsked) {
    GenCollection col = filled("a");
    EXPECT_EQ(col.Item("b", true, 5), Variant(5));
    EXPECT_EQ(col.Item("B", true, 6), Variant(5));
    EXPECT_EQ(col.Item("c", true), Variant());
    EXPECT_EQ(col.Item(9, true, "nine"), Variant("nine"));
    EXPECT_EQ(col.Item(1, true, "nine"), Variant("a"));
    EXPECT_EQ(col.Item("", true, "bare"), Variant("bare"));
    EXPECT_EQ(keysOf(col), "a,b,c,9,z");
}

TEST(GenCollectionUpdateItem, ReplacesInPlaceOrAtTheEnd) {
    GenCollection col = filled("a,b,c");
    col.UpdateItem("B", "new", true);
    EXPECT_EQ(keysOf(col), "a,b,c");
    EXPECT_EQ(col.Item(2), Variant("new"));
    col.UpdateItem("A", "end", false);
    EXPECT_EQ(keysOf(col), "b,c,a");
    EXPECT_EQ(col.Item("a"), Variant("end"));
    col.UpdateItem("missing", "x", true);
    col.UpdateItem("missing", "x", false);
    col.UpdateItem("", "x", false);
    EXPECT_EQ(keysOf(col), "b,c,a");
}

TEST(GenCollectionLoadFromList, ReadsEveryFlag) {
    struct Case {
        const char* list;
        const char* delimiter;
        const char* prefix;
        bool useKey, trim, pairs, valAsKey;
        const char* keys;
        const char* values;
    };
    static constexpr Case cases[] = {
        {"/a/b/a", "/", "", true, false, false, false, "a,b", "a,b"},
        {"/a/b/a", "/", "", false, false, false, false, "z,z,z", "a,b,a"},
        {"a,A,b", ",", "", true, false, false, false, "a,b", "a,b"},
        {" a , b,,  ", ",", "", false, true, false, false, "z,z", "a,b"},
        {" a , b,,  ", ",", "", false, false, false, false, "z,z,z", " a , b,  "},
        {"a,b", ",", "P-", true, false, false, false, "P-a,P-b", "a,b"},
        {"a,b", ",", "P-", true, false, false, true, "P-a,P-b", "a,b"},
        {"k,v,K,w,l,x", ",", "", true, false, true, false, "k,l", "v,x"},
        {"k,v,l,w", ",", "p", true, false, true, false, "pk,pl", "v,w"},
        {"k,v,l,w", ",", "p", true, false, true, true, "pk,pl", "k,l"},
        {"k,v,l,w", ",", "", false, false, true, false, "z,z", "k,l"},
        {" k , v ", ",", "", true, true, true, false, "k", " v "},  // only the key is trimmed
        {"k,,,w,l,x", ",", "", true, false, true, false, "k,l", ",x"},
        {"k,v,l", ",", "", true, false, true, false, "k", "v"},
        {"k,v,l", ",", "", false, false, true, false, "z,z", "k,l"},
        {"aXbxc", "x", "", true, false, false, false, "aXb,c", "aXb,c"},  // exact
        {"a || b", " || ", "", false, false, false, false, "z,z", "a,b"},
        {"a,b", "", "", true, false, false, false, "a,b", "a,b"},  // one piece
        {"", ",", "P", true, false, false, false, "", ""},
        {",,,", ",", "P", true, false, true, false, "", ""},
        {"z,a", ",", "", true, false, false, false, "z,a", "z,a"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << '"' << c.list << "\" at \"" << c.delimiter << '"');
        GenCollection col;
        const std::size_t n = col.LoadFromList(c.list, c.delimiter, c.prefix, false, c.useKey,
                                               c.trim, c.pairs, c.valAsKey);
        EXPECT_EQ(n, col.Count());
        EXPECT_EQ(keysOf(col), c.keys);
        std::string values;
        for (const Variant& v : col) {
            values += (values.empty() && &v == &*col.begin() ? "" : ",") + v.toText();
        }
        EXPECT_EQ(values, c.values);
    }
}

TEST(GenCollectionLoadFromList, AddsToWhatIsThereUnlessItClearsFirst) {
    GenCollection col = filled("a,b");
    EXPECT_EQ(col.LoadFromList("b,c", ",", {}, false, true), 3U);
    EXPECT_EQ(keysOf(col), "a,b,c");
    EXPECT_EQ(col.LoadFromList("d", ",", {}, true, true), 1U);
    EXPECT_EQ(keysOf(col), "d");
    EXPECT_EQ(col.LoadFromList("", ",", {}, true), 0U);
}

TEST(GenCollectionLoadFromParamList, ReadsKeysAndValues) {
    GenCollection col;
    col.LoadFromParamList({"a", 1, "b", DateTime(2.5), "A", 3, 7, true, Null{}, 1, "last"});
    EXPECT_EQ(keysOf(col), "a,b,7");
    EXPECT_EQ(col.Item("a"), Variant(1));
    EXPECT_EQ(col.Item("b"), Variant(DateTime(2.5)));
    EXPECT_EQ(col.Item("7"), Variant(true));

    GenCollection again;
    again.LoadFromParamList(filled("x,y").SaveAsList("|", -1, false, 0, true), "|");
    EXPECT_EQ(keysOf(again), "x,y");
}

TEST(GenCollectionSaveAsList, JoinsTheValues) {
    const GenCollection abc = filled("a,b,c");
    EXPECT_EQ(abc.SaveAsList(","), "a,b,c");
    EXPECT_EQ(abc.SaveAsList(",", -1, true), "a,b,c,");
    EXPECT_EQ(abc.SaveAsList(""), "abc");
    EXPECT_EQ(abc.SaveAsList(" || "), "a || b || c");
    EXPECT_EQ(abc.SaveAsList(",", -1, false, 2), "a,b");
    EXPECT_EQ(abc.SaveAsList(",", -1, false, 1), "a");
    EXPECT_EQ(abc.SaveAsList(",", -1, false, 9), "a,b,c");
    EXPECT_EQ(abc.SaveAsList(",", -1, false, -1), "a,b,c");
    EXPECT_EQ(abc.SaveAsList(",", -1, true, 2, true), "a,a,b,b,");
    EXPECT_EQ(abc.SaveAsList(",", 0), "");  // texts have no elements
}

TEST(GenCollectionSaveAsList, IsEmptyForOneEmptyItem) {
    GenCollection col;
    EXPECT_EQ(col.SaveAsList(",", -1, true), "");
    col.Add("");
    EXPECT_EQ(col.SaveAsList(","), "");
    EXPECT_EQ(col.SaveAsList(",", -1, true), "");
    col.Add(Null{});
    EXPECT_EQ(col.SaveAsList(","), ",");
    EXPECT_EQ(col.SaveAsList(",", -1, true), ",,");
}

TEST(GenCollectionSaveAsList, TakesAnElementOfArrays) {
    GenCollection col;
    col.Add(std::make_shared<ValueList>(std::vector<Variant>{"a0", "a1"}), "A");
    col.Add("plain", "B");
    col.Add(std::make_shared<ValueList>(std::vector<Variant>{"c0"}), "C");
    EXPECT_EQ(col.SaveAsList(",", 0), "a0,c0");
    EXPECT_EQ(col.SaveAsList(",", 1), "a1");
    EXPECT_EQ(col.SaveAsList(",", 2), "");
    EXPECT_EQ(col.SaveAsList(",", -2), "");
    EXPECT_EQ(col.SaveAsList(","), "plain");  // an array as a whole has no text
    EXPECT_EQ(col.SaveAsList("|", 0, false, 0, true), "A|a0|C|c0");
    EXPECT_EQ(col.SaveAsList("|", 0, false, 2, true), "A|a0");
}

TEST(GenCollectionSaveAsList, PairsReadBack) {
    GenCollection col;
    col.Add("1", "k");
    col.Add("", "empty");
    col.Add(3, "n");
    const std::string list = col.SaveAsList(";", -1, false, 0, true);
    EXPECT_EQ(list, "k;1;empty;;n;3");
    GenCollection again;
    EXPECT_EQ(again.LoadFromList(list, ";", {}, false, true, false, true), 3U);
    EXPECT_EQ(again.SaveAsList(";", -1, false, 0, true), list);
}

TEST(GenCollectionSave, GivesArraysInListOrder) {
    GenCollection col;
    col.Add(1, "a");
    col.Add("two");
    EXPECT_THAT(col.SaveAsArray(), ElementsAre(Variant(1), Variant("two")));
    EXPECT_THAT(col.SaveAs2DArray(), ElementsAre(ElementsAre(Variant("a"), Variant(1)),
                                                 ElementsAre(Variant("z"), Variant("two"))));
    EXPECT_THAT(col.SaveAs2DArray(true), ElementsAre(ElementsAre(Variant("a"), Variant("z")),
                                                     ElementsAre(Variant(1), Variant("two"))));
    EXPECT_THAT(col.SaveAsCol()->items, ElementsAre(Variant(1), Variant("two")));
    col.Clear();
    EXPECT_TRUE(col.SaveAsArray().empty());
    EXPECT_TRUE(col.SaveAs2DArray().empty());
    EXPECT_THAT(col.SaveAs2DArray(true), ElementsAre(ElementsAre(), ElementsAre()));
}

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

TEST(GenCollectionRemove, TakesItemAndKeyByPositionOrKey) {
    GenCollection col = filled("a,b,c,d");
    col.Remove(2);
    EXPECT_EQ(keysOf(col), "a,c,d");
    col.Remove("D");
    EXPECT_EQ(keysOf(col), "a,c");
    col.Remove(3);
    col.Remove(0);
    col.Remove("b");
    EXPECT_EQ(keysOf(col), "a,c");
    col.Add("again", "b");
    EXPECT_EQ(keysOf(col), "a,c,b");
    EXPECT_EQ(col.Position("B"), 3U);
    EXPECT_EQ(col.Position("x"), 0U);
    col.Clear();
    EXPECT_EQ(col.Count(), 0U);
    EXPECT_EQ(col.Key(1), "");
    EXPECT_FALSE(col.Exists("a"));
}

TEST(GenCollectionWalk, ShowsWhatWasThereWhenItBegan) {
    GenCollection col = filled("a,b,c,d");
    std::string seen;
    for (const Variant& v : col) {
        seen += v.toText();
        col.Remove(v.toText());
        col.Add("new", "new" + v.toText(), 0, 0, true);
    }
    EXPECT_EQ(seen, "abcd");
    EXPECT_EQ(keysOf(col), "newa,newb,newc,newd");
}

// By position from the end to the front, and from the front while the first one goes.
TEST(GenCollectionWalk, RemovesByPosition) {
    constexpr int n = 1000;
    GenCollection col = numbered(n);
    for (int i = n; i >= 1; --i) {
        ASSERT_EQ(col.Item(i), Variant(i));
        if (i % 3 != 0) {
            col.Remove(i);
        }
    }
    ASSERT_EQ(col.Count(), static_cast<std::size_t>(n / 3));
    for (int i = 3; i <= n; i += 3) {
        ASSERT_EQ(col.Position("key" + std::to_string(i)), static_cast<std::size_t>(i / 3));
        ASSERT_EQ(col.Item(i / 3), Variant(i));
    }
    for (int i = 3; col.Count() > 0; i += 3) {
        ASSERT_EQ(col.Item(1), Variant(i));
        col.Remove(1);
    }
}

TEST(GenCollectionWalk, OutlivesClearingAndDestruction) {
    auto col = std::make_unique<GenCollection>(filled("a,b"));
    auto walk = col->begin();
    col->Clear();
    EXPECT_EQ(*walk, Variant("a"));
    col.reset();
    ++walk;
    EXPECT_EQ(*walk, Variant("b"));
    ++walk;
    EXPECT_TRUE(walk == std::default_sentinel);
    EXPECT_EQ(std::ranges::distance(GenCollection()), 0);
    const GenCollection abc = filled("a,b,c");
    EXPECT_EQ(std::ranges::count(abc, Variant("b")), 1);
}

TEST(GenCollection, CopiesAreIndependent) {
    GenCollection col = filled("a,b");
    GenCollection copy = col;
    copy.Add("c", "c");
    col.Remove("a");
    EXPECT_EQ(keysOf(col), "b");
    EXPECT_EQ(keysOf(copy), "a,b,c");
}

TEST(GenCollection, ObjectAtGivesOnlyItsType) {
    GenCollection col;
    const auto thing = std::make_shared<Thing>(1);
    col.Add(thing, "t");
    col.Add("text", "x");
    EXPECT_EQ(objectAt<Thing>(col, "T"), thing);
    EXPECT_EQ(objectAt<Thing>(col, 1), thing);
    EXPECT_EQ(objectAt<ValueList>(col, 1), nullptr);
    EXPECT_EQ(objectAt<Thing>(col, "x"), nullptr);
    EXPECT_EQ(objectAt<Thing>(col, 3), nullptr);
}

// Every operation, failing ones above all, leaves the caller's pending error.
TEST(GenCollection, KeepsPendingError) {
    const std::function<void(GenCollection&)> operations[] = {
        [](GenCollection& c) { c.Add("x", "a"); },
        [](GenCollection& c) { c.Add("x", "new", 99); },
        [](GenCollection& c) { c.Add("x", "b", 0, 0, true); },
        [](GenCollection& c) { c.AddCounter("a"); },
        [](GenCollection& c) { c.Exists("a"); },
        [](GenCollection& c) { c.Item("missing"); },
        [](GenCollection& c) { c.Item(99, true, 1); },
        [](GenCollection& c) { c.UpdateItem("missing", 1); },
        [](GenCollection& c) { c.UpdateItem("a", 1, false); },
        [](GenCollection& c) { c.LoadFromParamList("k,v,k", ","); },
        [](GenCollection& c) { c.Position("missing"); },
        [](GenCollection& c) {
            for (const Variant& v : c) {
                c.Remove(v.toText());
            }
        },
        [](GenCollection& c) {
            c.LoadFromParamList({Null{}, 1});
        },
        [](GenCollection& c) { c.LoadFromList("a,b,c", ",", {}, false, true, false, true); },
        [](GenCollection& c) { c.SaveAsList(",", 5); },
        [](GenCollection& c) { c.SaveAsArray(); },
        [](GenCollection& c) { c.SaveAs2DArray(true); },
        [](GenCollection& c) { c.SaveAsCol(); },
        [](GenCollection& c) { c.SortByItem("D"); },
        [](GenCollection& c) { c.SortByItem("N"); },
        [](GenCollection& c) { c.Remove(99); },
        [](GenCollection& c) { c.Clear(); },
        [](GenCollection& c) { c.Key(99); },
        [](GenCollection& c) { objectAt<Thing>(c, 1); },
    };
    for (const ErrNo pending : {ErrNo::None, ErrNo::Locked}) {
        for (std::size_t i = 0; i < std::size(operations); ++i) {
            SCOPED_TRACE(i);
            GenCollection col = filled("a,b");
            ErrorState::set(pending);
            operations[i](col);
            EXPECT_EQ(ErrorState::number(), pending);
            ErrorState::clear();
        }
    }
}

}  // namespace
}  // namespace vl
