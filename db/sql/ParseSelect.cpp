#include <algorithm>
#include <array>

#include "ParseParts.h"

namespace vl::sql {

namespace {

// Words that begin no item of the list.
bool endsItem(const Token& token) {
    static constexpr std::array<const char*, 4> kWords = {"FROM", "WHERE", "AS", "ORDER"};
    return token.kind == TokenKind::End || token.isSymbol(",") ||
           std::any_of(kWords.begin(), kWords.end(),
                       [&](const char* word) { return token.isWord(word); });
}

// A column may be called as one of these words is: then something else follows it.
bool isModifier(const TokenStream& tokens, std::string_view word) {
    const Token& next = tokens.following();
    return tokens.current().isWord(word) && !endsItem(next) && !next.isSymbol(".");
}

void allRows(TokenStream& tokens) {
    // With one table no row comes twice because of another.
    if (isModifier(tokens, "ALL") || isModifier(tokens, "DISTINCTROW")) {
        tokens.take();
    }
}

[[noreturn]] void failTop(const Token& token, const std::string& found, const char* range) {
    fail(ErrNo::Syntax, token.at,
         std::string("expected a whole number from 1") + range + " behind TOP, found " + found);
}

// [TOP n [PERCENT]]; a column called Top is one where no number follows.
void top(TokenStream& tokens, Select& statement) {
    if (!tokens.current().isWord("TOP")) {
        return;
    }
    const Token& sign = tokens.following();
    const Token& behind = tokens.following(3);
    if (sign.isSymbol("-") && tokens.following(2).kind == TokenKind::Number && !endsItem(behind) &&
        (behind.kind != TokenKind::Symbol || endsItem(tokens.following(4)))) {
        failTop(sign, "-" + tokens.following(2).text, "");
    }
    if (sign.kind != TokenKind::Number) {
        return;
    }
    tokens.take();
    const Token token = tokens.take();
    const auto* count = token.literal.get<std::int32_t>();
    if (count == nullptr || *count < 1) {
        failTop(token, token.text, "");
    }
    statement.top = *count;
    if (isModifier(tokens, "PERCENT")) {
        tokens.take();
        statement.percent = true;
        constexpr std::int32_t kAll = 100;
        if (*count > kAll) {
            failTop(token, token.text, " to 100");
        }
    }
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
    if (endsItem(tokens.current())) {
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
    if (token.isWord("LIMIT")) {
        failUnsupported(token, "TOP and the number behind SELECT");
    }
}

}  // namespace

Select parseSelect(TokenStream& tokens) {
    Select statement;
    statement.distinct = tokens.takeWord("DISTINCT");
    if (!statement.distinct) {
        allRows(tokens);
    }
    top(tokens, statement);
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
    refuseMoreClauses(tokens);
    return statement;
}

}  // namespace vl::sql
