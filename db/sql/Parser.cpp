#include "Parser.h"

#include <array>

#include "ParseParts.h"

namespace vl::sql {

namespace {

void refuseMoreTables(const TokenStream& tokens) {
    const Token& token = tokens.current();
    static constexpr std::array<const char*, 4> kJoins = {"INNER", "LEFT", "RIGHT", "JOIN"};
    for (const char* word : kJoins) {
        if (token.isWord(word)) {
            failUnsupported(token, "one table");
        }
    }
    if (token.isSymbol(",")) {
        fail(ErrNo::Unsupported, token.at, "more than one table is not supported");
    }
}

Update update(TokenStream& tokens) {
    Update statement;
    statement.table = parseTable(tokens, Alias::WithAs);
    tokens.expectWord("SET");
    do {
        Assignment assignment{tokens.expectColumn(), nullptr};
        tokens.expectSymbol("=");
        assignment.value = parseExpression(tokens);
        statement.assignments.push_back(std::move(assignment));
    } while (tokens.takeSymbol(","));
    statement.where = parseWhere(tokens);
    return statement;
}

Insert insert(TokenStream& tokens) {
    Insert statement;
    tokens.expectWord("INTO");
    statement.table = parseTable(tokens);
    if (tokens.current().isSymbol("(")) {
        parseList(tokens, [&] { statement.columns.push_back(tokens.expectColumn()); });
    }
    statement.at = tokens.current().at;
    if (tokens.takeWord("SELECT")) {
        statement.rows = parseSelect(tokens);
    } else if (tokens.takeWord("VALUES")) {
        parseList(tokens, [&] { statement.values.push_back(parseExpression(tokens)); });
    } else {
        tokens.failExpected(statement.columns.empty() ? "\"(\", VALUES or SELECT"
                                                      : "VALUES or SELECT");
    }
    return statement;
}

Delete remove(TokenStream& tokens) {
    Delete statement;
    if (!tokens.takeSymbol("*") && !tokens.current().isWord("FROM")) {
        Token table = tokens.expectName("\"*\" or FROM");
        tokens.expectSymbol(".");
        tokens.expectSymbol("*");
        statement.named = ColumnRef{table.at, std::move(table.text), {}};
    }
    tokens.expectWord("FROM");
    statement.table = parseTable(tokens, Alias::WithAs);
    statement.where = parseWhere(tokens);
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

template <auto Read>
Statement read(TokenStream& tokens) {
    return Read(tokens);
}

Statement statementOf(TokenStream& tokens) {
    struct Kind {
        const char* word;
        Statement (*read)(TokenStream&);
    };
    static constexpr std::array<Kind, 7> kKinds = {{{"SELECT", read<parseSelect>},
                                                    {"INSERT", read<insert>},
                                                    {"UPDATE", read<update>},
                                                    {"DELETE", read<remove>},
                                                    {"CREATE", parseCreate},
                                                    {"ALTER", parseAlter},
                                                    {"DROP", parseDrop}}};
    for (const Kind& kind : kKinds) {
        if (tokens.takeWord(kind.word)) {
            return kind.read(tokens);
        }
    }
    tokens.failExpected("SELECT, INSERT, UPDATE, DELETE, CREATE, ALTER or DROP");
}

}  // namespace

TableRef parseTable(TokenStream& tokens, Alias alias) {
    Token token = tokens.expectName("a table");
    TableRef table{token.at, std::move(token.text), {}};
    refuseMoreTables(tokens);
    if (alias != Alias::None && tokens.takeWord("AS")) {
        table.alias = tokens.expectName("a name behind AS").text;
    } else if (tokens.current().isWord("LIMIT") && tokens.following().kind == TokenKind::Number) {
        failUnsupported(tokens.current(), "TOP and the number behind SELECT");
    } else if (alias == Alias::Bare && tokens.atName()) {
        table.alias = tokens.take().text;
    }
    refuseMoreTables(tokens);
    return table;
}

ExprPtr parseWhere(TokenStream& tokens) {
    return tokens.takeWord("WHERE") ? parseExpression(tokens) : nullptr;
}

void failUnsupported(const Token& token, const std::string& instead) {
    fail(ErrNo::Unsupported, token.at, token.text + " is not supported, expected " + instead);
}

Statement parse(std::string_view text) {
    TokenStream tokens(tokenize(text));
    Statement statement = statementOf(tokens);
    expectEnd(tokens);
    return statement;
}

}  // namespace vl::sql
