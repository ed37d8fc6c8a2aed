#include "TextCode.h"

#include <gtest/gtest.h>

#include "Pages.h"

namespace vl {
namespace {

const jet::Origin kOrigin{"memory", 7};

TEST(JetText, StandsInItsBytesWhereItIsCompressedAscii) {
    struct Case {
        const char* bytes;
        const char* text;  // null: not as it is
    };
    static constexpr Case cases[] = {
        {"", nullptr},
        {"61 00 62 00", nullptr},
        {"ff fe", ""},
        {"ff fe 61 62 63", "abc"},
        {"ff fe 01 7f 20", "\x01\x7F "},
        {"ff fe 61 80", nullptr},
        {"ff fe ff 61", nullptr},
        {"ff fe 61 62 63 64 65 66 67 68 69 6a 6b 6c 6d 6e 6f 70 71 72 73 00 1f 04", nullptr},
        {"ff fe 61 62 63 64 65 66 67 68 69 6a 6b 6c 6d 6e 6f 70 71 72 73 e9", nullptr},
        {"ff fe 61 62 63 64 65 66 67 68 69 6a 6b 6c 6d 6e 6f 70 71 72 73 74",
         "abcdefghijklmnopqrst"},
    };
    for (const Case& c : cases) {
        const std::vector<std::byte> bytes = test::hexBytes(c.bytes);
        const auto text = jet::plainTextIn(bytes);
        ASSERT_EQ(text.has_value(), c.text != nullptr) << c.bytes;
        if (text) {
            EXPECT_EQ(*text, c.text);
            EXPECT_EQ(*text, jet::decodeText(bytes, kOrigin)) << c.bytes;
        }
    }
}

TEST(JetText, ReadsWideCompressedAndMixed) {
    struct Case {
        const char* bytes;
        const char* text;
    };
    static constexpr Case cases[] = {
        {"", ""},
        {"61 00", "a"},
        {"61 00 62 00", "ab"},
        {"e9 00", "\xC3\xA9"},
        {"1f 04 40 04", "\xD0\x9F\xD1\x80"},
        {"3d d8 00 de", "\xF0\x9F\x98\x80"},  // a surrogate pair is one character
        {"61 00 3d d8", "a\xED\xA0\xBD"},     // half of one is kept
        {"ff fe", ""},
        {"ff fe 61 62 63", "abc"},
        {"ff fe e9 61",
         "\xC3\xA9"
         "a"},
        {"ff fe 80 ff", "\xC2\x80\xC3\xBF"},
        {"ff fe 61 00 1f 04 00 62",
         "a\xD0\x9F"
         "b"},                              // narrow, wide, narrow
        {"ff fe 00 1f 04", "\xD0\x9F"},     // ends wide
        {"ff fe 00 1f 04 40", "\xD0\x9F"},  // half a character at the end
        {"ff fe 00 00 61", "a"},            // an empty wide run
        {"ff fe 00 20 00 00 61",
         "\x20"
         "a"},  // 00 inside a character is none of a switch
        {"ff fe 61 00", "a"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.bytes);
        EXPECT_EQ(jet::decodeText(test::hexBytes(c.bytes), kOrigin), c.text);
    }
    EXPECT_EQ(jet::decodeText(test::hexBytes("00 00 61 00"), kOrigin), std::string("\0a", 2));
}

TEST(JetText, AnOddNumberOfWideBytesIsDamage) {
    EXPECT_EQ(test::errorOf([] { jet::decodeText(test::hexBytes("61"), kOrigin); }),
              ErrNo::Corrupt);
    EXPECT_EQ(test::errorOf([] { jet::decodeText(test::hexBytes("61 00 62"), kOrigin); }),
              ErrNo::Corrupt);
}

}  // namespace
}  // namespace vl
