// The parts of the parser that read whole statements. Each begins behind the words that lead to it.
#pragma once

#include "Ast.h"
#include "TokenStream.h"

namespace vl::sql {

/// Whether a table may get another name without AS: where a mistyped keyword would then pass for
/// one, only queries are that generous.
enum class Alias { None, WithAs, Bare };

TableRef parseTable(TokenStream& tokens, Alias alias = Alias::None);

/// The condition when WHERE follows, else null.
ExprPtr parseWhere(TokenStream& tokens);

Select parseSelect(TokenStream& tokens);
Statement parseCreate(TokenStream& tokens);
Statement parseAlter(TokenStream& tokens);
Statement parseDrop(TokenStream& tokens);

/// "... is not supported, expected `instead`".
[[noreturn]] void failUnsupported(const Token& token, const std::string& instead);

/// Between brackets, parted by commas: what `item` reads, once or more.
template <class Item>
void parseList(TokenStream& tokens, Item&& item) {
    tokens.expectSymbol("(");
    do {
        item();
    } while (tokens.takeSymbol(","));
    if (!tokens.takeSymbol(")")) {
        tokens.failExpected("\",\" or \")\"");
    }
}

}  // namespace vl::sql
