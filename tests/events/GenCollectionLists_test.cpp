// Lists read and written at random, held against the rules written down once more; what is written
// is read back.
#include <gtest/gtest.h>

#include <random>

#include "base/Text.h"
#include "events/GenCollection.h"

namespace vl {
namespace {

struct Row {
    std::string key;  // "z": none
    std::string value;
    bool operator==(const Row&) const = default;
};
using Rows = std::vector<Row>;

void PrintTo(const Row& row, std::ostream* out) { *out << row.key << '=' << row.value; }

Rows rowsOf(const GenCollection& col) {
    Rows rows;
    for (const auto& row : col.SaveAs2DArray()) {
        rows.push_back({row[0].toText(), row[1].toText()});
    }
    return rows;
}

struct LoadFlags {
    std::string prefix;
    bool clearFirst, useKey, trim, pairs, valAsKey;
};

void plainAdd(Rows& rows, const std::string& value, const std::string& key) {
    for (const Row& row : rows) {
        if (!key.empty() && text::equalsNoCase(row.key, key)) {
            return;
        }
    }
    rows.push_back({key.empty() ? "z" : key, value});
}

// Not for lists with the piece "z", which the placeholder would hide.
void plainLoad(Rows& rows, std::string list, const std::string& delimiter, const LoadFlags& flags) {
    std::vector<std::string> pieces;
    for (std::size_t at = list.find(delimiter); at != std::string::npos;
         at = list.find(delimiter)) {
        pieces.push_back(list.substr(0, at));
        list.erase(0, at + delimiter.size());
    }
    pieces.push_back(list);
    if (flags.clearFirst) {
        rows.clear();
    }
    for (std::size_t i = 0; i < pieces.size(); i += flags.pairs ? 2 : 1) {
        std::string piece = pieces[i];
        while (flags.trim && !piece.empty() && piece.front() == ' ') {
            piece.erase(0, 1);
        }
        while (flags.trim && !piece.empty() && piece.back() == ' ') {
            piece.pop_back();
        }
        if (piece.empty()) {
            continue;
        }
        if (!flags.useKey) {
            plainAdd(rows, piece, "");
        } else if (flags.valAsKey || !flags.pairs) {
            plainAdd(rows, piece, flags.prefix + piece);
        } else if (i + 1 < pieces.size()) {
            plainAdd(rows, pieces[i + 1], flags.prefix + piece);
        }
    }
}

std::string plainSave(const Rows& rows, const std::string& delimiter, bool endWith,
                      std::int64_t maxItemCount, bool pairs) {
    std::string list;
    std::int64_t n = 0;
    for (const Row& row : rows) {
        if (pairs) {
            list.append(row.key).append(delimiter);
        }
        list.append(row.value).append(delimiter);
        if (maxItemCount >= 1 && ++n == maxItemCount) {
            break;
        }
    }
    if (list.size() <= delimiter.size()) {
        return "";
    }
    return endWith ? list : list.substr(0, list.size() - delimiter.size());
}

class Random {
public:
    Random() : seed(std::random_device{}()), engine_(seed) {}
    std::size_t below(std::size_t n) { return engine_() % n; }
    bool coin() { return below(2) == 0; }
    std::string delimiter() {
        static constexpr const char* kAll[] = {",", "/", " || ", "\r\n", "\xE2\x82\xAC", "aa", " "};
        return kAll[below(std::size(kAll))];
    }
    // Short texts of few different characters, so that they repeat, and hold delimiters.
    std::string textUpTo(std::size_t longest) {
        static constexpr const char* kPieces[] = {"a", "A",        "b", " ", ",",
                                                  "/", "\xC3\xA4", "1", ".", "\xE2\x82\xAC"};
        std::string made;
        for (std::size_t n = below(longest + 1); n > 0; --n) {
            made += kPieces[below(std::size(kPieces))];
        }
        return made;
    }
    std::string textWithout(const std::string& delimiter, std::size_t longest) {
        std::string made = textUpTo(longest);
        // Neither in it nor begun by its end: "a" in front of "aa" would be cut a character early.
        while ((made + delimiter).find(delimiter) != made.size()) {
            made = textUpTo(longest);
        }
        return made;
    }

    const unsigned seed;

private:
    std::mt19937 engine_;
};

TEST(GenCollectionListsRandom, LoadFromListFollowsItsRules) {
    Random random;
    SCOPED_TRACE(testing::Message() << "seed " << random.seed);
    for (int round = 0; round < 2000; ++round) {
        GenCollection col;
        Rows rows;
        for (int list = 0; list < 3; ++list) {  // the later ones meet what is there
            const std::string delimiter = random.delimiter();
            std::string text = random.textUpTo(30);
            if (random.coin()) {
                text = text::replaceAll(text, ",", delimiter);
            }
            const LoadFlags flags{random.coin() ? "" : "P-",
                                  random.below(4) == 0,
                                  random.coin(),
                                  random.coin(),
                                  random.coin(),
                                  random.coin()};
            const std::size_t count =
                col.LoadFromList(text, delimiter, flags.prefix, flags.clearFirst, flags.useKey,
                                 flags.trim, flags.pairs, flags.valAsKey);
            plainLoad(rows, text, delimiter, flags);
            ASSERT_EQ(rowsOf(col), rows) << '"' << text << "\" at \"" << delimiter << '"';
            ASSERT_EQ(count, rows.size());
        }
    }
}

TEST(GenCollectionListsRandom, SaveAsListFollowsItsRules) {
    Random random;
    SCOPED_TRACE(testing::Message() << "seed " << random.seed);
    for (int round = 0; round < 2000; ++round) {
        GenCollection col;
        Rows rows;
        GenCollection arrays;  // the value is the second of three elements
        for (std::size_t n = random.below(8); n > 0; --n) {
            const std::string key = random.coin() ? "" : random.textUpTo(2);
            const std::string value = random.textUpTo(4);
            col.Add(value, key);
            arrays.Add(std::make_shared<ValueList>(std::vector<Variant>{1, value, Null{}}), key);
            plainAdd(rows, value, key);
        }
        const std::string delimiter = random.coin() ? random.delimiter() : "";
        const bool endWith = random.coin();
        const bool pairs = random.coin();
        const auto max = static_cast<std::int64_t>(random.below(10)) - 1;
        const std::string list = plainSave(rows, delimiter, endWith, max, pairs);
        ASSERT_EQ(col.SaveAsList(delimiter, -1, endWith, max, pairs), list);
        ASSERT_EQ(arrays.SaveAsList(delimiter, 1, endWith, max, pairs), list);
    }
}

TEST(GenCollectionListsRandom, PairsReadBackAsTheyWereWritten) {
    Random random;
    SCOPED_TRACE(testing::Message() << "seed " << random.seed);
    for (int round = 0; round < 2000; ++round) {
        const std::string delimiter = random.delimiter();
        GenCollection col;
        for (std::size_t n = random.below(12); n > 0; --n) {
            col.Add(random.textWithout(delimiter, 3),
                    random.textWithout(delimiter, 2) + std::to_string(n));
        }
        const bool endWith = random.coin();
        const std::string list = col.SaveAsList(delimiter, -1, endWith, 0, true);
        GenCollection again;
        ASSERT_EQ(again.LoadFromList(list, delimiter, {}, true, true, false, true), col.Count());
        ASSERT_EQ(again.SaveAs2DArray(), col.SaveAs2DArray()) << list;
        GenCollection params;
        params.LoadFromParamList(list, delimiter);
        ASSERT_EQ(params.SaveAs2DArray(), col.SaveAs2DArray()) << list;
    }
}

TEST(GenCollectionListsRandom, ValuesReadBackWithoutTheEmptyOnes) {
    Random random;
    SCOPED_TRACE(testing::Message() << "seed " << random.seed);
    for (int round = 0; round < 2000; ++round) {
        const std::string delimiter = random.delimiter();
        GenCollection col;
        std::vector<Variant> filled;
        for (std::size_t n = random.below(12); n > 0; --n) {
            const std::string value = random.textWithout(delimiter, 3);
            col.Add(value);
            if (!value.empty()) {
                filled.emplace_back(value);
            }
        }
        GenCollection again;
        again.LoadFromList(col.SaveAsList(delimiter, -1, random.coin()), delimiter);
        ASSERT_EQ(again.SaveAsArray(), filled);
    }
}

}  // namespace
}  // namespace vl
