#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "Collections.h"
#include "base/ErrorState.h"

namespace vl {
namespace {

using test::filled;
using test::keysOf;
using test::numbered;
using test::Thing;

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

// Letters whose other case takes more bytes, wherever in a key they stand.
TEST(GenCollectionAdd, TakesKeysForTheSameWhereverTheirLettersDiffer) {
    const std::string kelvin = "\xE2\x84\xAA";  // lower case: "k"
    for (std::size_t length = 1; length <= 20; ++length) {
        for (std::size_t at = 0; at < length; ++at) {
            const std::string before = std::string("abcdefghij-{}@[`z_90").substr(0, at);
            const std::string after = std::string(length - at - 1, 'y');
            GenCollection col;
            col.Add("first", before + "K" + after);
            EXPECT_EQ(col.Item(before + "k" + after), Variant("first")) << length << ' ' << at;
            EXPECT_EQ(col.Item(before + kelvin + after), Variant("first")) << length << ' ' << at;
            EXPECT_EQ(col.Item(before + "K" + after + "y"), Variant());
            col.Add("second", before + "\xC3\x84" + after);
            EXPECT_EQ(col.Item(before + "\xC3\xA4" + after), Variant("second"));
            col.Add("third", before + "+" + after);
            EXPECT_EQ(col.Item(before + "\x0B" + after), Variant());
            EXPECT_EQ(col.Count(), 3U);
        }
    }
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

TEST(GenCollectionWalk, IsWhatNewEnumGives) {
    const GenCollection col = filled("a,b,c");
    std::string all;
    for (auto each = col.NewEnum(); each != GenCollection::end(); ++each) {
        all += each->toText();
    }
    EXPECT_EQ(all, "abc");
    EXPECT_TRUE(GenCollection().NewEnum() == GenCollection::end());
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
