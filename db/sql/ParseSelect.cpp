#include <array>

#include "ParseParts.h"

namespace vl::sql {

namespace {

std::int32_t top(TokenStream& tokens) {
    const Token token = tokens.take();
    const auto* count = token.literal.get<std::int32_t>();
    if (count == nullptr || *count < 1) {
        fail(ErrNo::Syntax, token.at,
             "expected a whole number from 1 behind TOP, found " + token.text);
    }
    return *count;
}

std::optional<ItemKind> aggregate(const Token& token) {
    struct Name {
        const char* text;
        ItemKind kind;
    };
    static constexpr std::array<Name, 3> kNames = {
        {{"COUNT", ItemKind::Count}, {"MIN", ItemKind::Min}, {"MAX", ItemKind::Max}}};
    for (const Name& name : kNames) {
        if (token.isWord(name.text)) {
            return name.kind;
        }
    }
    return std::nullopt;
}

SelectItem call(TokenStream& tokens, ItemKind kind) {
    SelectItem item;
    item.kind = kind;
    item.at = tokens.take().at;
    tokens.expectSymbol("(");
    if (kind == ItemKind::Count && tokens.takeSymbol("*")) {
        item.kind = ItemKind::CountAll;
    } else {
        item.value = parseExpression(tokens);
    }
    if (!tokens.takeSymbol(")")) {
        tokens.failExpected("an operator or \")\"");
    }
    return item;
}

// `*` or `Table.*`, when that is what stands here.
std::optional<SelectItem> all(TokenStream& tokens) {
    SelectItem item;
    item.at = tokens.current().at;
    if (tokens.takeSymbol("*")) {
        return item;
    }
    if (tokens.atName() && tokens.following().isSymbol(".") && tokens.following(2).isSymbol("*")) {
        item.table = tokens.take().text;
        tokens.take();
        tokens.take();
        return item;
    }
    return std::nullopt;
}

void expectItem(const TokenStream& tokens) {
    static constexpr std::array<const char*, 4> kNever = {"FROM", "WHERE", "AS", "ORDER"};
    const Token& token = tokens.current();
    bool never = token.kind == TokenKind::End || token.isSymbol(",");
    for (const char* word : kNever) {
        never = never || token.isWord(word);
    }
    if (never) {
        tokens.failExpected("a column or \"*\"");
    }
}

SelectItem selectItem(TokenStream& tokens) {
    expectItem(tokens);
    if (auto item = all(tokens)) {
        return std::move(*item);
    }
    SelectItem item;
    const auto kind = aggregate(tokens.current());
    if (kind && tokens.following().isSymbol("(")) {
        item = call(tokens, *kind);
    } else {
        item.kind = ItemKind::Value;
        item.at = tokens.current().at;
        item.value = parseExpression(tokens);
    }
    if (tokens.takeWord("AS")) {
        item.alias = tokens.expectName("a name behind AS").text;
    }
    return item;
}

std::vector<OrderItem> orderBy(TokenStream& tokens) {
    std::vector<OrderItem> items;
    if (!tokens.takeWord("ORDER")) {
        return items;
    }
    tokens.expectWord("BY");
    do {
        if (tokens.current().kind == TokenKind::End) {
            tokens.failExpected("a column");
        }
        OrderItem item{parseExpression(tokens), false};
        if (!tokens.takeWord("ASC")) {
            item.descending = tokens.takeWord("DESC");
        }
        items.push_back(std::move(item));
    } while (tokens.takeSymbol(","));
    return items;
}

void refuseMoreClauses(const TokenStream& tokens) {
    const Token& token = tokens.current();
    static constexpr std::array<const char*, 3> kClauses = {"GROUP", "HAVING", "UNION"};
    for (const char* word : kClauses) {
        if (token.isWord(word)) {
            failUnsupported(token, "WHERE, ORDER BY or the end of the statement");
        }
    }
}

}  // namespace

Select parseSelect(TokenStream& tokens) {
    Select statement;
    statement.distinct = tokens.takeWord("DISTINCT");
    if (tokens.current().isWord("TOP") && tokens.following().kind == TokenKind::Number) {
        tokens.take();
        statement.top = top(tokens);
    }
    do {
        statement.items.push_back(selectItem(tokens));
    } while (tokens.takeSymbol(","));
    if (!tokens.takeWord("FROM")) {
        tokens.failExpected("\",\" or FROM");
    }
    statement.table = parseTable(tokens, Alias::Bare);
    statement.where = parseWhere(tokens);
    refuseMoreClauses(tokens);
    statement.order = orderBy(tokens);
    return statement;
}

}  // namespace vl::sql
