#include "Lexer.h"

#include <gmock/gmock.h>

#include "Memory.h"

namespace vl::sql {
namespace {

using test::caught;

std::vector<std::string> textsOf(std::string_view statement) {
    std::vector<std::string> texts;
    for (const Token& token : tokenize(statement)) {
        texts.push_back(token.text);
    }
    texts.pop_back();  // the end
    return texts;
}

TEST(SqlLexer, PartsAStatement) {
    EXPECT_THAT(textsOf("SELECT a,[b c] FROM T WHERE(x<=1)AND y<>.5&z;"),
                testing::ElementsAre("SELECT", "a", ",", "b c", "FROM", "T", "WHERE", "(", "x",
                                     "<=", "1", ")", "AND", "y", "<>", ".5", "&", "z", ";"));
    EXPECT_THAT(textsOf("T.*"), testing::ElementsAre("T", ".", "*"));
    EXPECT_THAT(textsOf("T.5"), testing::ElementsAre("T", ".", "5"));
    EXPECT_THAT(textsOf("\u00AFItems"), testing::ElementsAre("\u00AFItems"));
    EXPECT_TRUE(textsOf(" \t\r\n").empty());
}

TEST(SqlLexer, ReadsLiterals) {
    struct Case {
        const char* text;
        Variant value;
    };
    const Case cases[] = {
        {"0", 0},
        {"2147483647", 2147483647},
        {"2147483648", 2147483648.0},
        {"1.5", 1.5},
        {"2.", 2.0},
        {".25", 0.25},
        {"1e3", 1000.0},
        {"1E-2", 0.01},
        {R"("")", ""},
        {R"("a")", "a"},
        {R"('a')", "a"},
        {R"("say ""hi""")", R"(say "hi")"},
        {R"("""")", R"(")"},
        {"'it''s'", "it's"},
        {R"("it's")", "it's"},
        {"\"two\nlines\"", "two\nlines"},
        {"\"\xC3\xA4\xF0\x9F\x94\x94\"", "\xC3\xA4\xF0\x9F\x94\x94"},
        {"#2026-11-15#", DateTime::fromCivil(2026, 11, 15)},
        {"#2026-11-15 14:30:00#", DateTime::fromCivil(2026, 11, 15, 14, 30)},
        {"#1899-12-30#", DateTime()},
        {"# 2026-11-15 #", DateTime::fromCivil(2026, 11, 15)},
        {"0x", Bytes{}},
        {"0x00fFA1", Bytes{std::byte{0}, std::byte{0xFF}, std::byte{0xA1}}},
        {"0XAB", Bytes{std::byte{0xAB}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const std::vector<Token> tokens = tokenize(c.text);
        ASSERT_EQ(tokens.size(), 2U);
        EXPECT_EQ(tokens[0].literal, c.value);
    }
}

TEST(SqlLexer, ReadsDatesMonthFirstAndYearFirst) {
    const auto on = [](int hour, int minute = 0, int second = 0) {
        return DateTime::fromCivil(2026, 11, 20, hour, minute, second);
    };
    const auto at = [](int hour, int minute, int second = 0) {
        return DateTime::fromCivil(1899, 12, 30, hour, minute, second);
    };
    const struct {
        const char* text;
        DateTime value;
    } cases[] = {
        {"#11/20/2026#", on(0)},
        {"#11-20-2026#", on(0)},
        {"#2026/11/20#", on(0)},
        {"#1/2/2026#", DateTime::fromCivil(2026, 1, 2)},
        {"#2026-1-2#", DateTime::fromCivil(2026, 1, 2)},
        {"#02/29/2028#", DateTime::fromCivil(2028, 2, 29)},
        {"#11/20/2026 14:30#", on(14, 30)},
        {"#11/20/2026 2:30 PM#", on(14, 30)},
        {"#11/20/2026  02:30:05pm #", on(14, 30, 5)},
        {"#2026-11-20T14:30:05#", on(14, 30, 5)},
        {"#2026-11-20 12 am#", on(0)},
        {"#2026-11-20 12:00 PM#", on(12)},
        {"#2026-11-20 11:59:59 PM#", on(23, 59, 59)},
        {"#2:30 PM#", at(14, 30)},
        {"#14:30#", at(14, 30)},
        {"#0:00#", at(0, 0)},
        {"#23:59:59#", at(23, 59, 59)},
        {"#12/29/1899 6:00 AM#", DateTime(-1.25)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(tokenize(c.text)[0].literal, Variant(c.value));
    }
    for (const char* none : {"#20/11/2026#",
                             "#11/20/26#",
                             "#11/20#",
                             "#11/2026#",
                             "#2026#",
                             "#13/01/2026#",
                             "#00/10/2026#",
                             "#11/00/2026#",
                             "#02/29/2026#",
                             "#11/20-2026#",
                             "#111/20/2026#",
                             "#11/20/02026#",
                             "#2026-11-020#",
                             "#11/20/2026 24:00#",
                             "#11/20/2026 2#",
                             "#2#",
                             "#13:00 PM#",
                             "#0:30 AM#",
                             "#14:60#",
                             "#14:5#",
                             "#14:30:60#",
                             "#14:30:#",
                             "#14:30 XM#",
                             "#11/20/2026 14:30 x#",
                             "#11/20/2026T#",
                             "#11/20/2026,14:30#",
                             "#x#",
                             "#-#"}) {
        SCOPED_TRACE(none);
        const auto error = caught([&] { tokenize(none); });
        EXPECT_EQ(error.number, ErrNo::Syntax);
        EXPECT_THAT(error.text, testing::StartsWith("line 1, column 1: expected a date as "));
    }
}

// It would be stored as another text than the one that was given.
TEST(SqlLexer, WhatIsNoTextIsRefusedWhereverItStands) {
    for (const char* text : {"a = \"x\xFF\"", "a = 'x\xFF'", "[\xC3x\xFF]", "a, b \xFF"}) {
        SCOPED_TRACE(text);
        const auto error = caught([&] { tokenize(text); });
        EXPECT_EQ(error.number, ErrNo::Syntax);
        EXPECT_THAT(error.text, testing::HasSubstr("expected a text in UTF-8, found the byte 0x"));
    }
    EXPECT_THAT(caught([] { tokenize("\xC3\xA4\n = 'y\xC3'"); }).text,
                testing::StartsWith("line 2, column 6: expected a text in UTF-8, found the byte "
                                    "0xc3"));
    // Half a pair, as a file may hold it: read from there and written back.
    EXPECT_EQ(tokenize("'\xED\xA0\x80'")[0].literal, Variant("\xED\xA0\x80"));
}

TEST(SqlLexer, NamesThePlaceOfWhatIsWrong) {
    struct Case {
        const char* text;
        const char* message;
    };
    static constexpr Case cases[] = {
        {"a = \"x", "line 1, column 5: expected a closing quote for the text that begins here"},
        {"a = 'x\"", "line 1, column 5: expected a closing quote for the text that begins here"},
        {"a\n = \"x\"\"", "line 2, column 4: expected a closing quote"},
        {"[a", "line 1, column 1: expected \"]\""},
        {"x []", "line 1, column 3: expected a name between the brackets"},
        {"#2026-11-15", "line 1, column 1: expected \"#\""},
        {"#15/11/2026#", "line 1, column 1: expected a date as #2026-11-15#"},
        {"#2026-02-30#", "line 1, column 1: expected a date"},
        {"##", "line 1, column 1: expected a date"},
        {"12abc", "line 1, column 1: expected a number, found 12a"},
        {"1.2.3", nullptr},  // two numbers: for the parser to refuse
        {"a ! b", "line 1, column 3: expected a name, a literal or an operator, found !"},
        {"\xC3\xA4 \x01",
         "line 1, column 3: expected a name, a literal or an operator, found the "
         "character with the code 1"},
        {"0xA", "line 1, column 1: expected bytes as 0x0A1B"},
        {" 0xABG", "line 1, column 2: expected bytes as 0x0A1B"},
        {"1e999", "line 1, column 1: expected a number"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const auto error = caught([&] { tokenize(c.text); });
        if (c.message == nullptr) {
            EXPECT_EQ(error.number, ErrNo::None);
            continue;
        }
        EXPECT_EQ(error.number, ErrNo::Syntax);
        EXPECT_THAT(error.text, testing::StartsWith(c.message));
    }
}

TEST(SqlLexer, ANullCharacterEndsNothing) {
    using namespace std::string_view_literals;
    EXPECT_EQ(caught([] { tokenize("a \0 b"sv); }).number, ErrNo::Syntax);
    EXPECT_EQ(tokenize("\"a\0b\""sv)[0].literal, Variant("a\0b"sv));
}

}  // namespace
}  // namespace vl::sql
