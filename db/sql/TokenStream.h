// What both halves of the parser ask of the tokens.
#pragma once

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
    const Token& following() const noexcept {
        return tokens_[index_ + 1 < tokens_.size() ? index_ + 1 : index_];
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

    /// "expected `what`, found ..." at the current token.
    [[noreturn]] void failExpected(const std::string& what) const;

private:
    std::vector<Token> tokens_;
    std::size_t index_ = 0;
};

/// AND, OR, comparisons, arithmetic; stops at the first token that continues no expression.
ExprPtr parseExpression(TokenStream& tokens);

}  // namespace vl::sql
