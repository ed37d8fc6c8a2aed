// What all parts of the parser ask of the tokens.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "Ast.h"
#include "Lexer.h"

namespace vl::sql {

class TokenStream {
public:
    explicit TokenStream(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}

    /// The end stays current for ever.
    const Token& current() const noexcept { return tokens_[index_]; }
    const Token& following(std::size_t ahead = 1) const noexcept {
        return tokens_[std::min(index_ + ahead, tokens_.size() - 1)];
    }
    Token take();

    bool takeWord(std::string_view word);
    bool takeSymbol(std::string_view symbol);
    void expectWord(std::string_view word);
    void expectSymbol(std::string_view symbol);

    /// A name in brackets, or a bare one that is no keyword; `what` says what it should name.
    Token expectName(std::string_view what);
    bool atName() const noexcept;
    /// `Column` or `Table.Column`.
    ColumnRef expectColumn();

    /// The number of the `?` that was just taken, from 0.
    std::size_t countParameter() noexcept { return parameters_++; }

    /// "expected `what`, found ..." at the current token.
    [[noreturn]] void failExpected(const std::string& what) const;

private:
    std::vector<Token> tokens_;
    std::size_t index_ = 0;
    std::size_t parameters_ = 0;
};

/// AND, OR, comparisons, arithmetic; stops at the first token that continues no expression.
ExprPtr parseExpression(TokenStream& tokens);

}  // namespace vl::sql
