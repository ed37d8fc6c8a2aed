#include "Commands.h"

#include <ostream>

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

}  // namespace

void tables(const std::string& file, bool json, std::ostream& out) {
    const auto db = jet::Database::open(file, jet::Access::Read);
    const char* between = "";
    for (const jet::TableInfo& info : db.tables()) {
        if (info.system) {
            continue;
        }
        const jet::Table table = db.table(info.name);
        if (json) {
            out << lineOf(tableJson(table)) << '\n';
        } else {
            out << between << tableText(table);
            between = "\n";
        }
    }
}

void sql(const std::string& file, const std::string& statement, bool json, std::ostream& out) {
    const auto access = sql::isQuery(statement) ? jet::Access::Read : jet::Access::ReadWrite;
    auto db = jet::Database::open(file, access);
    const sql::Result result = sql::execute(db, statement);
    if (!result.isQuery) {
        const std::int64_t n = result.affected;
        if (json) {
            out << lineOf({{"affected", n}}) << '\n';
        } else {
            out << n << (n == 1 ? " row changed\n" : " rows changed\n");
        }
    } else if (json) {
        writeJson(result, out);
    } else {
        writeText(result, out);
    }
}

}  // namespace vl::tools
