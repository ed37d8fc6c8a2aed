#include "db/sql/Sql.h"

#include <istream>
#include <iterator>
#include <ostream>
#include <utility>

#include "Command.h"
#include "Format.h"

namespace vl::tools {

namespace {

using Fields = std::vector<sql::Field>;
using Row = std::vector<Variant>;

void writeJson(const Fields& fields, const Row& row, std::ostream& out) {
    Json object = Json::object();
    for (std::size_t i = 0; i < row.size(); ++i) {
        object[fields[i].name] = valueJson(row[i], fields[i].type);
    }
    out << lineOf(object) << '\n';
}

void writeText(const Fields& fields, const Row& row, std::ostream& out) {
    for (std::size_t i = 0; i < row.size(); ++i) {
        out << (i == 0 ? "" : "\t") << valueText(row[i], fields[i].type);
    }
    out << '\n';
}

void writeNames(const Fields& fields, std::ostream& out) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        out << (i == 0 ? "" : "\t") << fields[i].name;
    }
    out << '\n';
}

void writeAffected(std::int64_t rows, bool json, std::ostream& out) {
    if (json) {
        out << lineOf({{"affected", rows}}) << '\n';
    } else {
        out << rows << (rows == 1 ? " row changed\n" : " rows changed\n");
    }
}

void writeDone(const std::string& what, bool json, std::ostream& out) {
    if (json) {
        out << lineOf({{"done", what}}) << '\n';
    } else {
        out << what << '\n';
    }
}

std::string statementOf(const Arguments& arguments, const Streams& streams) {
    if (arguments.words[1] != "-") {
        return arguments.words[1];
    }
    return {std::istreambuf_iterator<char>(streams.in), {}};
}

int run(const Arguments& arguments, const Streams& streams) {
    const std::string statement = statementOf(arguments, streams);
    const bool json = arguments.flag("--json");
    const auto access = sql::isQuery(statement) ? jet::Access::Read : jet::Access::ReadWrite;
    auto db = jet::Database::open(arguments.words[0], access);
    bool named = json;
    const sql::Result result =
        sql::execute(db, statement, [&](const Fields& fields, const Row& row) {
            if (!std::exchange(named, true)) {
                writeNames(fields, streams.out);
            }
            (json ? writeJson : writeText)(fields, row, streams.out);
        });
    if (!result.done.empty()) {
        writeDone(result.done, json, streams.out);
    } else if (!result.isQuery) {
        writeAffected(result.affected, json, streams.out);
    } else if (!named) {
        writeNames(result.fields, streams.out);
    }
    return kDone;
}

}  // namespace

Command sqlCommand() {
    return {.name = "sql",
            .synopsis = "FILE STATEMENT|- [--json]",
            .description =
                "runs one statement on FILE, with \"-\" the one on the standard input: prints\n"
                "the rows that a SELECT finds, or how many rows were inserted, changed or\n"
                "removed, or what was made or dropped (docs/sql.md)",
            .fewestWords = 2,
            .mostWords = 2,
            .words = "a file and one statement (in quotes)",
            .flags = {"--json"},
            .options = {},
            .run = run};
}

}  // namespace vl::tools
