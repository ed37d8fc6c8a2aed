// CREATE, ALTER and DROP.
#include "ParseParts.h"
#include "TypeWords.h"

namespace vl::sql {

namespace {

// Words that begin a table's constraint where a column could stand too.
bool atConstraint(const TokenStream& tokens) {
    const Token& token = tokens.current();
    return token.isWord("CONSTRAINT") ||
           (token.isWord("PRIMARY") && tokens.following().isWord("KEY")) ||
           (token.isWord("UNIQUE") && tokens.following().isSymbol("(")) ||
           (token.isWord("FOREIGN") && tokens.following().isWord("KEY")) ||
           (token.isWord("CHECK") && tokens.following().isSymbol("("));
}

[[noreturn]] void failConstraint(const TokenStream& tokens) {
    static constexpr const char* kKnown[] = {"FOREIGN", "REFERENCES", "CHECK", "DEFAULT"};
    for (const char* word : kKnown) {
        if (tokens.current().isWord(word)) {
            failUnsupported(tokens.current(), "PRIMARY KEY, UNIQUE or NOT NULL");
        }
    }
    tokens.failExpected("PRIMARY KEY or UNIQUE");
}

// [CONSTRAINT name] PRIMARY KEY | UNIQUE, up to where the columns of a table's constraint stand.
IndexSpec constraintHead(TokenStream& tokens) {
    IndexSpec index;
    index.at = tokens.current().at;
    if (tokens.takeWord("CONSTRAINT")) {
        index.name = tokens.expectName("a name behind CONSTRAINT").text;
    }
    index.unique = true;
    if (tokens.takeWord("PRIMARY")) {
        tokens.expectWord("KEY");
        index.primary = true;
        index.required = true;
    } else if (!tokens.takeWord("UNIQUE")) {
        failConstraint(tokens);
    }
    return index;
}

IndexSpec tableConstraint(TokenStream& tokens) {
    IndexSpec index = constraintHead(tokens);
    parseList(tokens, [&] { index.keys.push_back({tokens.expectColumn(), false}); });
    return index;
}

// What stands behind a column's type, in any order.
void columnConstraints(TokenStream& tokens, ColumnSpec& column, std::vector<IndexSpec>& indexes) {
    for (;;) {
        if (tokens.takeWord("NOT")) {
            tokens.expectWord("NULL");
            column.required = true;
        } else if (!tokens.takeWord("NULL")) {
            const Token& token = tokens.current();
            if (token.kind == TokenKind::End || token.isSymbol(",") || token.isSymbol(")") ||
                token.isSymbol(";")) {
                return;
            }
            IndexSpec& index = indexes.emplace_back(constraintHead(tokens));
            index.keys.push_back({column.name, false});
        }
    }
}

void column(TokenStream& tokens, ColumnSpec& column, std::vector<IndexSpec>& indexes) {
    Token name = tokens.expectName("a column");
    column.name = {name.at, {}, std::move(name.text)};
    parseType(tokens, column);
    columnConstraints(tokens, column, indexes);
}

Statement createTable(TokenStream& tokens) {
    CreateTable statement;
    statement.table = parseTable(tokens);
    parseList(tokens, [&] {
        if (atConstraint(tokens)) {
            statement.indexes.push_back(tableConstraint(tokens));
        } else {
            column(tokens, statement.columns.emplace_back(), statement.indexes);
        }
    });
    if (statement.columns.empty()) {
        fail(ErrNo::Syntax, statement.table.at, "expected a column or more of the table");
    }
    return statement;
}

// WITH PRIMARY | DISALLOW NULL | IGNORE NULL
void indexOption(TokenStream& tokens, IndexSpec& index) {
    if (tokens.takeWord("PRIMARY")) {
        index.primary = true;
        index.unique = true;
        index.required = true;
    } else if (tokens.takeWord("DISALLOW")) {
        tokens.expectWord("NULL");
        index.required = true;
    } else if (tokens.takeWord("IGNORE")) {
        tokens.expectWord("NULL");
        index.ignoreNulls = true;
    } else {
        tokens.failExpected("PRIMARY, DISALLOW NULL or IGNORE NULL");
    }
}

Statement createIndex(TokenStream& tokens, bool unique) {
    CreateIndex statement;
    IndexSpec& index = statement.index;
    index.unique = unique;
    Token name = tokens.expectName("a name for the index");
    index.at = name.at;
    index.name = std::move(name.text);
    tokens.expectWord("ON");
    statement.table = parseTable(tokens);
    parseList(tokens, [&] {
        KeySpec key{tokens.expectColumn(), false};
        if (!tokens.takeWord("ASC")) {
            key.descending = tokens.takeWord("DESC");
        }
        index.keys.push_back(std::move(key));
    });
    if (tokens.takeWord("WITH")) {
        indexOption(tokens, index);
    }
    return statement;
}

Statement addTo(TokenStream& tokens, TableRef table) {
    if (atConstraint(tokens)) {
        CreateIndex statement;
        statement.table = std::move(table);
        statement.index = tableConstraint(tokens);
        return statement;
    }
    if (tokens.current().isWord("COLUMN") && !tokens.following().isSymbol("(")) {
        tokens.take();
    }
    AddColumn statement;
    statement.table = std::move(table);
    column(tokens, statement.column, statement.indexes);
    return statement;
}

}  // namespace

Statement parseCreate(TokenStream& tokens) {
    if (tokens.takeWord("TABLE")) {
        return createTable(tokens);
    }
    const bool unique = tokens.takeWord("UNIQUE");
    if (!tokens.takeWord("INDEX")) {
        tokens.failExpected(unique ? "INDEX" : "TABLE, INDEX or UNIQUE INDEX");
    }
    return createIndex(tokens, unique);
}

Statement parseAlter(TokenStream& tokens) {
    tokens.expectWord("TABLE");
    TableRef table = parseTable(tokens);
    if (tokens.takeWord("ADD")) {
        return addTo(tokens, std::move(table));
    }
    if (tokens.current().isWord("DROP") || tokens.current().isWord("ALTER")) {
        failUnsupported(tokens.current(), "ADD");
    }
    tokens.failExpected("ADD");
}

Statement parseDrop(TokenStream& tokens) {
    if (tokens.takeWord("INDEX")) {
        DropIndex statement;
        Token name = tokens.expectName("a name of an index");
        statement.at = name.at;
        statement.name = std::move(name.text);
        tokens.expectWord("ON");
        statement.table = parseTable(tokens);
        return statement;
    }
    if (!tokens.takeWord("TABLE")) {
        tokens.failExpected("TABLE or INDEX");
    }
    return DropTable{parseTable(tokens)};
}

}  // namespace vl::sql
