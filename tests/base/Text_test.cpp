#include "base/Text.h"

#include <gtest/gtest.h>

#include <random>

#include "base/ErrorState.h"

namespace vl::text {
namespace {

TEST(TextUtf16, CountsAndCutsInUnits) {
    EXPECT_EQ(utf16Length("Café 会議 🎉"), 10U);
    EXPECT_EQ(leftUtf16("Café", 4), "Café");
    EXPECT_EQ(leftUtf16("Café", 3), "Caf");
    EXPECT_EQ(leftUtf16("ab🎉", 3), "ab") << "half a character is none";
    EXPECT_EQ(leftUtf16("ab🎉", 4), "ab🎉");
    EXPECT_EQ(leftUtf16("", 4), "");
    EXPECT_EQ(leftUtf16("abc", 0), "");
}

TEST(TextUtf16, GoesThereAndBackForEveryUnit) {
    std::mt19937 random(7);
    std::uniform_int_distribution<int> unit(0, 0xFFFF);
    for (int i = 0; i < 20'000; ++i) {
        std::u16string units;
        for (int k = 0; k < 8; ++k) {
            units.push_back(static_cast<char16_t>(unit(random)));
        }
        ASSERT_EQ(toUtf16(fromUtf16(units)), units) << "round " << i;
    }
}

TEST(TextUtf16, BrokenBytesBecomeReplacements) {
    EXPECT_EQ(toUtf16("a\xFFz"), u"a\uFFFDz");
    EXPECT_EQ(toUtf16("\xE2\x82"), u"\uFFFD\uFFFD");
    EXPECT_EQ(toUtf16("\xC0\x80"), u"\uFFFD\uFFFD") << "overlong";
    EXPECT_EQ(utf16Length("\xFF\xFE"), 2U);
}

TEST(TextCase, FoldsUnicode) {
    EXPECT_TRUE(equalsNoCase("GRÜSSE", "grüsse"));
    EXPECT_TRUE(equalsNoCase("ΣΊΣΥΦΟΣ", "σίσυφος"));
    EXPECT_TRUE(equalsNoCase("ŁUKASZ", "łukasz"));
    EXPECT_TRUE(equalsNoCase("ẞ", "ß"));
    EXPECT_FALSE(equalsNoCase("straße", "strasse")) << "simple folding keeps lengths";
    EXPECT_FALSE(equalsNoCase("a\xFF", "a\xFE")) << "different damage is different";
    EXPECT_LT(compareNoCase("abc", "ABD"), 0);
    EXPECT_GT(compareNoCase("abc", "AB"), 0);
    EXPECT_EQ(compareNoCase("", ""), 0);
    EXPECT_EQ(foldCase("ÄÖÜ-xYz"), "äöü-xyz");
}

TEST(TextSearch, FindsWithoutRegardToCase) {
    const auto hit = findNoCase("3D (E) x", "(e)");
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->at, 3U);
    EXPECT_EQ(hit->length, 3U);
    EXPECT_FALSE(findNoCase("3d (e", "(e)"));
    EXPECT_TRUE(containsNoCase("abc", ""));
    EXPECT_EQ(replaceAllNoCase("a(e)b(E)", "(e)", ""), "ab");
    EXPECT_EQ(replaceAll("a && b", "&", "&amp;"), "a &amp;&amp; b");
    EXPECT_EQ(replaceAll("abc", "", "x"), "abc");
}

TEST(TextSplit, KeepsEmptyPieces) {
    EXPECT_EQ(split("/a//b", "/"), (std::vector<std::string_view>{"", "a", "", "b"}));
    EXPECT_EQ(split("", "/"), (std::vector<std::string_view>{""}));
    EXPECT_EQ(split("a || b", " || "), (std::vector<std::string_view>{"a", "b"}));
    EXPECT_EQ(split("abc", ""), (std::vector<std::string_view>{"abc"}));
    EXPECT_EQ(trimBlanks("  a b \t"), "a b \t");
}

TEST(TextNumber, ReadsAsANumericLiteral) {
    struct Case {
        const char* text;
        double value;
    };
    static constexpr Case cases[] = {
        {"15m", 15},  {" 1 5 m", 15}, {"2.5h", 2.5}, {"-3x", -3},    {"+4", 4},  {".5", 0.5},
        {"5.", 5},    {"1.2.3", 1.2}, {"soon", 0},   {"", 0},        {"-", 0},   {"1e3", 1000},
        {"1d2", 100}, {"1d", 1},      {"3e", 3},     {"1e+", 1},     {"--3", 0}, {"1,5", 1},
        {"0x10", 0},  {"inf", 0},     {"nan", 0},    {"1 e 2", 100}, {"1w", 1},  {"9e-1", 0.9},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_DOUBLE_EQ(leadingNumber(c.text), c.value);
    }
    EXPECT_TRUE(std::isinf(leadingNumber("1e999")));
    EXPECT_EQ(leadingNumber("1e-999"), 0.0);
}

TEST(TextNumber, WholeTextOrNothing) {
    EXPECT_EQ(number(" 12.5 "), 12.5);
    EXPECT_EQ(number("+3"), 3.0);
    EXPECT_EQ(number("-.5"), -0.5);
    for (const char* bad : {"", " ", "12x", "inf", "nan", "-inf", "0x1", "1 2", "+-1", "-", "."}) {
        SCOPED_TRACE(bad);
        EXPECT_FALSE(number(bad));
    }
}

TEST(TextNumber, WritesTheShortestForm) {
    EXPECT_EQ(fromNumber(0.0), "0");
    EXPECT_EQ(fromNumber(-0.0), "0");
    EXPECT_EQ(fromNumber(0.1), "0.1");
    EXPECT_EQ(fromNumber(-3), "-3");
    EXPECT_EQ(fromNumber(463415000), "463415000");
    EXPECT_EQ(fromNumber(1e20), "1E+20");
}

TEST(TextNumber, RoundsHalvesToEven) {
    EXPECT_EQ(roundHalfEven(1.5), 2);
    EXPECT_EQ(roundHalfEven(2.5), 2);
    EXPECT_EQ(roundHalfEven(-2.5), -2);
    EXPECT_EQ(roundHalfEven(-3.5), -4);
    EXPECT_EQ(roundHalfEven(0.49999999999999994), 0);
    EXPECT_EQ(toInt32(2147483647.4), 2147483647);
    EXPECT_EQ(toInt32(-2147483648.5), -2147483647 - 1);
    for (const double bad : {2147483647.5, -2147483649.0, 1e300, std::nan("")}) {
        SCOPED_TRACE(bad);
        try {
            toInt32(bad);
            ADD_FAILURE() << "no error";
        } catch (const Error& e) {
            EXPECT_EQ(e.number(), ErrNo::Overflow);
        }
    }
}

}  // namespace
}  // namespace vl::text
