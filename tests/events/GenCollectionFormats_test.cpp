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
using testing::ElementsAre;

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

}  // namespace
}  // namespace vl
