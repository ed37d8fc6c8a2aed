// Statement text to tokens.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/ErrorState.h"
#include "base/Variant.h"

namespace vl::sql {

/// A place in a statement; both count from 1, columns in characters.
struct Position {
    int line = 1;
    int column = 1;
};

/// Throws `Error` with `text` behind "line n, column n: ".
[[noreturn]] void fail(ErrNo number, Position at, const std::string& text);

/// Whether a byte may stand in a bare name behind its first.
bool continuesName(char c) noexcept;

enum class TokenKind {
    Name,       ///< a bare word: keyword or name, whatever the grammar wants there; or @a word
    Bracketed,  ///< [a name], which is never a keyword
    Text,       ///< "text" or 'text'; `literal` without quotes, doubled ones halved
    Number,     ///< `literal` is an int32, or a double when it has a fraction or does not fit
    Date,       ///< #2026-11-15 14:30:00#, see `dateLiteral`; `literal` is the date-time
    Bytes,      ///< 0x0A1B, two digits a byte
    Symbol,
    End,
};

struct Token {
    TokenKind kind = TokenKind::End;
    Position at;
    std::string text;  ///< names without brackets; literals as they are written
    Variant literal;

    bool isSymbol(std::string_view symbol) const noexcept {
        return kind == TokenKind::Symbol && text == symbol;
    }
    /// A bare word, without regard to case.
    bool isWord(std::string_view word) const noexcept;
};

/// All tokens, the last of kind `End`. One pass over the text. Throws `Error` (`ErrNo::Syntax`)
/// where a character begins no token or a literal is not closed or not what its signs promise, and
/// for bytes that are no UTF-8.
std::vector<Token> tokenize(std::string_view statement);

}  // namespace vl::sql
