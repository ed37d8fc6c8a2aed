#include "db/sql/Sql.h"

#include <ostream>

#include "Command.h"
#include "Format.h"

namespace vl::tools {

namespace {

void writeJson(const sql::Result& result, std::ostream& out) {
    for (const auto& row : result.rows) {
        Json object = Json::object();
        for (std::size_t i = 0; i < row.size(); ++i) {
            object[result.fields[i].name] = valueJson(row[i], result.fields[i].type);
        }
        out << lineOf(object) << '\n';
    }
}

void writeText(const sql::Result& result, std::ostream& out) {
    for (std::size_t i = 0; i < result.fields.size(); ++i) {
        out << (i == 0 ? "" : "\t") << result.fields[i].name;
    }
    out << '\n';
    for (const auto& row : result.rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            out << (i == 0 ? "" : "\t") << valueText(row[i], result.fields[i].type);
        }
        out << '\n';
    }
}

void writeAffected(std::int64_t rows, bool json, std::ostream& out) {
    if (json) {
        out << lineOf({{"affected", rows}}) << '\n';
    } else {
        out << rows << (rows == 1 ? " row changed\n" : " rows changed\n");
    }
}

int run(const Arguments& arguments, const Streams& streams) {
    const std::string& statement = arguments.words[1];
    const bool json = arguments.flag("--json");
    const auto access = sql::isQuery(statement) ? jet::Access::Read : jet::Access::ReadWrite;
    auto db = jet::Database::open(arguments.words[0], access);
    const sql::Result result = sql::execute(db, statement);
    if (!result.isQuery) {
        writeAffected(result.affected, json, streams.out);
    } else if (json) {
        writeJson(result, streams.out);
    } else {
        writeText(result, streams.out);
    }
    return kDone;
}

}  // namespace

Command sqlCommand() {
    return {.name = "sql",
            .synopsis = "FILE STATEMENT [--json]",
            .description =
                "runs one statement (SELECT or UPDATE) on FILE: prints the rows it\n"
                "finds, or how many it changed",
            .fewestWords = 2,
            .mostWords = 2,
            .words = "a file and one statement (in quotes)",
            .flags = {"--json"},
            .options = {},
            .run = run};
}

}  // namespace vl::tools
