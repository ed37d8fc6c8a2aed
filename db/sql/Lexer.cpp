#include "Lexer.h"

#include <algorithm>
#include <array>
#include <limits>

#include "DateLiteral.h"
#include "base/Text.h"

namespace vl::sql {

namespace {

constexpr bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

// Every character outside ASCII may stand in a bare name: hosts have tables such as U+00AFItems.
constexpr bool startsName(char c) noexcept {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

// Its value, or -1.
constexpr int hexDigit(char c) noexcept {
    return isDigit(c)             ? c - '0'
           : c >= 'a' && c <= 'f' ? c - 'a' + 10
           : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                  : -1;
}

std::string hexText(unsigned char byte) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    return {'0', 'x', kDigits[byte >> 4U], kDigits[byte & 15U]};
}

constexpr bool isSpace(char c) noexcept {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v';
}

class Lexer {
public:
    explicit Lexer(std::string_view text) : text_(text) {}

    std::vector<Token> run() {
        requireCharacters();
        while (skipSpace()) {
            tokens_.push_back(next());
        }
        tokens_.push_back(Token{TokenKind::End, at_, {}, {}});
        return std::move(tokens_);
    }

private:
    // What is no text would be stored as another one.
    void requireCharacters() {
        for (; !atEnd(); advance()) {
            std::size_t next = index_;
            const char32_t c = text::nextCharacter(text_, next);
            if (next == index_ + 1 && c >= 0x80) {
                fail(ErrNo::Syntax, at_,
                     "expected a text in UTF-8, found the byte " +
                         hexText(static_cast<unsigned char>(peek())));
            }
        }
        index_ = 0;
        at_ = {};
    }

    char peek(std::size_t ahead = 0) const noexcept {
        return index_ + ahead < text_.size() ? text_[index_ + ahead] : '\0';
    }
    bool atEnd() const noexcept { return index_ >= text_.size(); }

    void advance() noexcept {
        if (text_[index_] == '\n') {
            ++at_.line;
            at_.column = 0;
        }
        text::nextCharacter(text_, index_);
        ++at_.column;
    }

    bool skipSpace() noexcept {
        while (!atEnd() && isSpace(peek())) {
            advance();
        }
        return !atEnd();
    }

    // `1` after a name and a point is no fraction: a table's column may begin with a digit only in
    // brackets, but the message should then speak of a name.
    bool startsNumber() const noexcept {
        if (isDigit(peek())) {
            return true;
        }
        return peek() == '.' && isDigit(peek(1)) &&
               (tokens_.empty() || (tokens_.back().kind != TokenKind::Name &&
                                    tokens_.back().kind != TokenKind::Bracketed));
    }

    Token next() {
        const char c = peek();
        if (startsName(c) || (c == '@' && startsName(peek(1)))) {
            return name();
        }
        if (c == '0' && (peek(1) == 'x' || peek(1) == 'X')) {
            return bytes();
        }
        if (startsNumber()) {
            return number();
        }
        switch (c) {
            case '[':
                return bracketed();
            case '"':
            case '\'':
                return quoted();
            case '#':
                return date();
            default:
                return symbol();
        }
    }

    Token name() {
        Token token{TokenKind::Name, at_, {}, {}};
        const std::size_t start = index_;
        advance();
        while (!atEnd() && continuesName(peek())) {
            advance();
        }
        token.text = text_.substr(start, index_ - start);
        return token;
    }

    Token bracketed() {
        Token token{TokenKind::Bracketed, at_, {}, {}};
        token.text = upTo(']', token.at, "expected \"]\" behind the name that begins here");
        if (text::trimBlanks(token.text).empty()) {
            fail(ErrNo::Syntax, token.at, "expected a name between the brackets");
        }
        return token;
    }

    // Between the current character and the next `close`; `opened` is the place to complain about.
    std::string upTo(char close, Position opened, const char* otherwise) {
        advance();
        const std::size_t start = index_;
        while (!atEnd() && peek() != close) {
            advance();
        }
        if (atEnd()) {
            fail(ErrNo::Syntax, opened, otherwise);
        }
        std::string inner(text_.substr(start, index_ - start));
        advance();
        return inner;
    }

    Token quoted() {
        Token token{TokenKind::Text, at_, {}, {}};
        const char quote = peek();
        const std::size_t start = index_;
        std::string value;
        do {  // a doubled quote is one quote: the piece behind it goes on
            if (index_ != start) {
                value.push_back(quote);
            }
            value +=
                upTo(quote, token.at, "expected a closing quote for the text that begins here");
        } while (peek() == quote);
        token.text = text_.substr(start, index_ - start);
        token.literal = std::move(value);
        return token;
    }

    Token date() {
        Token token{TokenKind::Date, at_, {}, {}};
        const std::string inner =
            upTo('#', token.at, "expected \"#\" behind the date that begins here");
        token.text = '#' + inner + '#';
        const auto value = dateLiteral(inner);
        if (!value) {
            fail(ErrNo::Syntax, token.at,
                 "expected a date as #2026-11-15#, #11/15/2026# or #2026-11-15 14:30:00#, found " +
                     token.text);
        }
        token.literal = *value;
        return token;
    }

    void digits() noexcept {
        while (isDigit(peek())) {
            advance();
        }
    }

    Token bytes() {
        Token token{TokenKind::Bytes, at_, {}, {}};
        const std::size_t start = index_;
        advance();
        advance();
        Bytes value;
        while (hexDigit(peek()) >= 0 && hexDigit(peek(1)) >= 0) {
            value.push_back(static_cast<std::byte>(hexDigit(peek()) * 16 + hexDigit(peek(1))));
            advance();
            advance();
        }
        if (!atEnd() && continuesName(peek())) {
            fail(ErrNo::Syntax, token.at, "expected bytes as 0x0A1B, two digits each");
        }
        token.text = text_.substr(start, index_ - start);
        token.literal = std::move(value);
        return token;
    }

    Token number() {
        Token token{TokenKind::Number, at_, {}, {}};
        const std::size_t start = index_;
        digits();
        if (peek() == '.') {
            advance();
            digits();
        }
        if (peek() == 'e' || peek() == 'E') {
            const std::size_t sign = peek(1) == '+' || peek(1) == '-' ? 1 : 0;
            if (isDigit(peek(1 + sign))) {
                advance();
                advance();
                digits();
            }
        }
        token.text = text_.substr(start, index_ - start);
        const auto value = text::number(token.text);
        if (!value || (!atEnd() && startsName(peek()))) {
            fail(ErrNo::Syntax, token.at, "expected a number, found " + token.text + peek());
        }
        const bool whole = token.text.find_first_of(".eE") == std::string::npos;
        if (whole && *value <= std::numeric_limits<std::int32_t>::max()) {
            token.literal = static_cast<std::int32_t>(*value);
        } else {
            token.literal = *value;
        }
        return token;
    }

    Token symbol() {
        static constexpr std::array<std::string_view, 3> kDouble = {"<>", "<=", ">="};
        Token token{TokenKind::Symbol, at_, {}, {}};
        const auto two = text_.substr(index_, 2);
        if (std::find(kDouble.begin(), kDouble.end(), two) != kDouble.end()) {
            token.text = two;
            advance();
        } else if (std::string_view("=<>+-*/\\^&(),.;?").find(peek()) != std::string_view::npos) {
            token.text = peek();
        } else {
            const auto code = static_cast<unsigned char>(peek());
            const bool printable = code > 0x20 && code < 0x7F;
            fail(ErrNo::Syntax, at_,
                 "expected a name, a literal or an operator, found " +
                     (printable ? std::string(1, peek())
                                : "the character with the code " + std::to_string(code)));
        }
        advance();
        return token;
    }

    std::string_view text_;
    std::size_t index_ = 0;
    Position at_;
    std::vector<Token> tokens_;
};

}  // namespace

void fail(ErrNo number, Position at, const std::string& text) {
    throw Error(number, "line " + std::to_string(at.line) + ", column " +
                            std::to_string(at.column) + ": " + text);
}

bool continuesName(char c) noexcept { return startsName(c) || isDigit(c); }

bool Token::isWord(std::string_view word) const noexcept {
    return kind == TokenKind::Name && text::equalsNoCase(text, word);
}

std::vector<Token> tokenize(std::string_view statement) { return Lexer(statement).run(); }

}  // namespace vl::sql
