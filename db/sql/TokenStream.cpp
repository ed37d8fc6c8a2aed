#include "TokenStream.h"

#include <algorithm>
#include <array>

namespace vl::sql {

namespace {

// Words that a bare name may not be; in brackets it may.
constexpr std::array<std::string_view, 22> kReserved = {
    "SELECT", "DISTINCT", "FROM",  "WHERE",   "AND",   "OR",   "NOT", "IS",
    "NULL",   "LIKE",     "IN",    "BETWEEN", "ORDER", "BY",   "AS",  "UPDATE",
    "SET",    "TRUE",     "GROUP", "HAVING",  "UNION", "FALSE"};

bool isReserved(const Token& token) noexcept {
    return std::any_of(kReserved.begin(), kReserved.end(),
                       [&](std::string_view word) { return token.isWord(word); });
}

std::string describe(const Token& token) {
    constexpr std::size_t kShown = 40;
    switch (token.kind) {
        case TokenKind::End:
            return "the end of the statement";
        case TokenKind::Bracketed:
            return '[' + token.text + ']';
        default:
            return token.text.size() <= kShown ? token.text : "a long literal or name";
    }
}

}  // namespace

Token TokenStream::take() {
    Token token = current();
    if (index_ + 1 < tokens_.size()) {
        ++index_;
    }
    return token;
}

bool TokenStream::takeWord(std::string_view word) {
    if (!current().isWord(word)) {
        return false;
    }
    take();
    return true;
}

bool TokenStream::takeSymbol(std::string_view symbol) {
    if (!current().isSymbol(symbol)) {
        return false;
    }
    take();
    return true;
}

void TokenStream::expectWord(std::string_view word) {
    if (!takeWord(word)) {
        failExpected(std::string(word));
    }
}

void TokenStream::expectSymbol(std::string_view symbol) {
    if (!takeSymbol(symbol)) {
        failExpected('"' + std::string(symbol) + '"');
    }
}

bool TokenStream::atName() const noexcept {
    return current().kind == TokenKind::Bracketed ||
           (current().kind == TokenKind::Name && !isReserved(current()));
}

Token TokenStream::expectName(std::string_view what) {
    if (!atName()) {
        failExpected(std::string(what));
    }
    return take();
}

ColumnRef TokenStream::expectColumn() {
    Token first = expectName("a column");
    ColumnRef ref{first.at, {}, std::move(first.text)};
    if (takeSymbol(".")) {
        ref.table = std::move(ref.name);
        ref.name = expectName("a column").text;
    }
    return ref;
}

void TokenStream::failExpected(const std::string& what) const {
    fail(ErrNo::Syntax, current().at, "expected " + what + ", found " + describe(current()));
}

}  // namespace vl::sql
