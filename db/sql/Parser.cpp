#include "Parser.h"

#include <array>
#include <limits>

#include "TokenStream.h"

namespace vl::sql {

namespace {

[[noreturn]] void failUnsupported(const Token& token, const std::string& instead) {
    fail(ErrNo::Unsupported, token.at, token.text + " is not supported, expected " + instead);
}

TableRef table(TokenStream& tokens) {
    Token token = tokens.expectName("a table");
    return {token.at, std::move(token.text)};
}

ExprPtr where(TokenStream& tokens) {
    return tokens.takeWord("WHERE") ? parseExpression(tokens) : nullptr;
}

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

SelectItem call(TokenStream& tokens) {
    const Token function = tokens.take();
    const auto kind = aggregate(function);
    if (!kind) {
        fail(ErrNo::Unsupported, function.at,
             "no function " + function.text + " exists here, expected COUNT, MIN or MAX");
    }
    tokens.expectSymbol("(");
    SelectItem item;
    if (*kind == ItemKind::Count && tokens.takeSymbol("*")) {
        item.kind = ItemKind::CountAll;
        item.column.at = function.at;
    } else {
        item.kind = *kind;
        item.column = tokens.expectColumn();
    }
    tokens.expectSymbol(")");
    return item;
}

SelectItem selectItem(TokenStream& tokens) {
    const Position at = tokens.current().at;
    if (tokens.takeSymbol("*")) {
        return {ItemKind::All, {at, {}, {}}, {}};
    }
    if (!tokens.atName()) {
        tokens.failExpected("a column or \"*\"");
    }
    SelectItem item;
    if (tokens.following().isSymbol("(")) {
        item = call(tokens);
    } else {
        item.kind = ItemKind::Column;
        item.column = {at, {}, tokens.take().text};
        if (tokens.takeSymbol(".")) {
            item.column.table = std::move(item.column.name);
            item.column.name.clear();
            if (tokens.takeSymbol("*")) {
                item.kind = ItemKind::All;
                return item;
            }
            item.column.name = tokens.expectName("a column or \"*\"").text;
        }
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
        OrderItem item{tokens.expectColumn(), false};
        if (!tokens.takeWord("ASC")) {
            item.descending = tokens.takeWord("DESC");
        }
        items.push_back(std::move(item));
    } while (tokens.takeSymbol(","));
    return items;
}

void refuseMoreTables(const TokenStream& tokens) {
    const Token& token = tokens.current();
    static constexpr std::array<const char*, 5> kJoins = {"INNER", "LEFT", "RIGHT", "JOIN", "AS"};
    for (const char* word : kJoins) {
        if (token.isWord(word)) {
            failUnsupported(token, "one table");
        }
    }
    if (token.isSymbol(",")) {
        fail(ErrNo::Unsupported, token.at, "more than one table is not supported");
    }
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

Select select(TokenStream& tokens) {
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
    statement.table = table(tokens);
    refuseMoreTables(tokens);
    statement.where = where(tokens);
    refuseMoreClauses(tokens);
    statement.order = orderBy(tokens);
    return statement;
}

Update update(TokenStream& tokens) {
    Update statement;
    statement.table = table(tokens);
    refuseMoreTables(tokens);
    tokens.expectWord("SET");
    do {
        Assignment assignment{tokens.expectColumn(), nullptr};
        tokens.expectSymbol("=");
        assignment.value = parseExpression(tokens);
        statement.assignments.push_back(std::move(assignment));
    } while (tokens.takeSymbol(","));
    statement.where = where(tokens);
    return statement;
}

// What may still follow depends on what is there already; the message says the likeliest.
void expectEnd(TokenStream& tokens) {
    if (tokens.takeSymbol(";")) {
        if (tokens.current().kind != TokenKind::End) {
            tokens.failExpected("nothing behind the semicolon");
        }
    } else if (tokens.current().kind != TokenKind::End) {
        tokens.failExpected("the end of the statement");
    }
}

Statement statementOf(TokenStream& tokens) {
    if (tokens.takeWord("SELECT")) {
        return select(tokens);
    }
    if (tokens.takeWord("UPDATE")) {
        return update(tokens);
    }
    static constexpr std::array<const char*, 5> kLater = {"INSERT", "DELETE", "CREATE", "ALTER",
                                                          "DROP"};
    for (const char* word : kLater) {
        if (tokens.current().isWord(word)) {
            fail(ErrNo::Unsupported, tokens.current().at,
                 std::string("the statement ") + word + " is not supported");
        }
    }
    tokens.failExpected("SELECT or UPDATE");
}

}  // namespace

Statement parse(std::string_view text) {
    TokenStream tokens(tokenize(text));
    Statement statement = statementOf(tokens);
    expectEnd(tokens);
    return statement;
}

}  // namespace vl::sql
