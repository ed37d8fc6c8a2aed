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
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const std::vector<Token> tokens = tokenize(c.text);
        ASSERT_EQ(tokens.size(), 2U);
        EXPECT_EQ(tokens[0].literal, c.value);
    }
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
        {"#11/15/2026#", "line 1, column 1: expected a date as #2026-11-15#"},
        {"#2026-02-30#", "line 1, column 1: expected a date"},
        {"##", "line 1, column 1: expected a date"},
        {"12abc", "line 1, column 1: expected a number, found 12a"},
        {"1.2.3", nullptr},  // two numbers: for the parser to refuse
        {"a ! b", "line 1, column 3: expected a name, a literal or an operator, found !"},
        {"\xC3\xA4 \x01",
         "line 1, column 3: expected a name, a literal or an operator, found the "
         "character with the code 1"},
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
