// The order of texts, by keys that other programs have stored.
#include <random>

#include <gtest/gtest.h>

#include "Collation.h"
#include "Hex.h"
#include "TextKey.h"
#include "base/Text.h"

namespace vl {
namespace {

using jet::compareText;

std::string keyOf(std::string_view text) {
    jet::KeyBytes key;
    jet::appendTextKey(key, text);
    return test::hex(key);
}

TEST(TextKey, IsWhatOtherProgramsStore) {
    struct Case {
        const char* text;
        const char* key;
    };
    static constexpr Case cases[] = {
        {"", "01 00"},
        {"abc", "4a 4c 4d 01 00"},
        {"ABC", "4a 4c 4d 01 00"},
        {"abc   ", "4a 4c 4d 01 00"},
        {"Résumé", "69 51 6b 6f 60 51 01 02 0e 02 02 02 0e 00"},
        {"co-op", "4d 64 64 66 01 01 01 01 80 0f 06 82 00"},
        {"don't", "4f 64 62 6d 01 01 01 01 80 13 06 80 00"},
        {"naïve-é x", "62 4a 59 71 51 51 07 75 01 02 02 13 02 02 0e 01 01 01 80 1b 06 82 00"},
        {"Straße", "6b 6d 69 4a 6b 6b 51 01 00"},
        {"\U0001F600a", "b0 3f b6 fc 4a 01 3f 3f 00"},
        {"only ascii chars", "64 62 5e 76 07 4a 6b 4d 59 59 07 4d 57 4a 69 6b 01 00"},
        {"ääkkösiä", "4a 4a 5c 5c 64 6b 59 4a 01 13 13 02 02 13 02 02 13 00"},
        {"ümlaut", "6f 60 5e 4a 6f 6d 01 13 00"},
        {"Мир", "79 43 79 3b 79 48 01 00"},
        {"漢字仮名交じり文",
         "c0 b6 ac ac a0 0d a5 47 9f be 7f 13 7f 43 b6 f6 01 02 02 02 02 02 03 01 01 ff 02 80 ff "
         "80 00"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(keyOf(c.text), c.key);
    }
}

TEST(TextKey, CountsTheFirst255Units) {
    const std::string full(255, 'x');
    EXPECT_EQ(keyOf(full + "y"), keyOf(full));
    EXPECT_NE(keyOf(full.substr(1)), keyOf(full));
    EXPECT_EQ(keyOf(std::string(254, 'x') + " y"), keyOf(std::string(254, 'x')));
    EXPECT_EQ(compareText(full, full + "y"), -1);
}

TEST(CompareText, OrdersAsTheDatabaseDoes) {
    // Each is less than the next.
    static constexpr const char* kAscending[] = {"",      "\t",     "_",      "1",   "12",  "2",
                                                 "a",     "a b",    "ab",     "abc", "co",  "coop",
                                                 "co-op", "résumé", "Straße", "z",   "Мир", "漢字"};
    for (std::size_t i = 0; i < std::size(kAscending); ++i) {
        for (std::size_t k = 0; k < std::size(kAscending); ++k) {
            SCOPED_TRACE(std::string(kAscending[i]) + " and " + kAscending[k]);
            EXPECT_EQ(compareText(kAscending[i], kAscending[k]), i < k ? -1 : i > k ? 1 : 0);
        }
    }
}

TEST(CompareText, TakesTextsWithOneKeyForTheSame) {
    static constexpr const char* kSame[][2] = {
        {"Meeting", "mEETING  "}, {"STRASSE", "straße"}, {"ÄÖ", "äö"}, {"", "   "}, {"ａ", "a"},
    };
    for (const auto& pair : kSame) {
        SCOPED_TRACE(pair[0]);
        EXPECT_EQ(compareText(pair[0], pair[1]), 0);
    }
    EXPECT_NE(compareText("resume", "résumé"), 0);
    EXPECT_NE(compareText("coop", "co-op"), 0);
}

TEST(CompareText, GoesByWholeKeysAlsoWhereLettersDecideAtOnce) {
    std::mt19937 random(20261120);  // fixed: the same texts each time
    static constexpr const char* kPieces[] = {"a",  "B",  "b", " ",         "-",    "'",
                                              "é",  "E",  "1", "ß",         "\x01", "\t",
                                              "漢", "の", "_", "\U0001F600"};
    const auto any = [&] {
        std::string s;
        for (std::size_t n = random() % 5; n > 0; --n) {
            s += kPieces[random() % std::size(kPieces)];
        }
        return s;
    };
    for (int i = 0; i < 40000; ++i) {
        const std::string common = any();
        const std::string a = common + any();
        const std::string b = common + any();
        SCOPED_TRACE(testing::Message() << '"' << a << "\" and \"" << b << '"');
        jet::KeyBytes left;
        jet::KeyBytes right;
        jet::appendTextKey(left, a);
        jet::appendTextKey(right, b);
        ASSERT_EQ(compareText(a, b), left < right ? -1 : left > right ? 1 : 0);
    }
}

TEST(CharacterWeight, AgreesWithTextsOfOneCharacter) {
    static constexpr char32_t kLetters[] = {U'+', U'!', U'0',  U'9',      U'a',      U'A',  U'z',
                                            U'_', U'~', U'é',  U'É',      U'ø',      U'ß',  U'²',
                                            U'Ж', U'ж', U'Ａ', U'\u3042', U'\u30A2', U'漢', U'σ'};
    for (const char32_t a : kLetters) {
        for (const char32_t b : kLetters) {
            std::string left;
            std::string right;
            text::appendCharacter(left, a);
            text::appendCharacter(right, b);
            SCOPED_TRACE(left + " and " + right);
            const auto x = jet::characterWeight(a);
            const auto y = jet::characterWeight(b);
            EXPECT_EQ(x < y ? -1 : x > y ? 1 : 0, compareText(left, right));
        }
    }
    EXPECT_NE(jet::characterWeight(U'-'), jet::characterWeight(U'\''));
    EXPECT_NE(jet::characterWeight(U'\U0001F600'), jet::characterWeight(U'\U0001F601'));
}

}  // namespace
}  // namespace vl
