#include <ostream>

#include "Command.h"
#include "Format.h"

namespace vl::tools {

namespace {

int run(const Arguments& arguments, const Streams& streams) {
    const auto db = jet::Database::open(arguments.words[0], jet::Access::Read);
    const char* between = "";
    for (const jet::TableInfo& info : db.tables()) {
        if (info.system) {
            continue;
        }
        const jet::Table table = db.table(info.name);
        if (arguments.flag("--json")) {
            streams.out << lineOf(tableJson(table)) << '\n';
        } else {
            streams.out << between << tableText(table);
            between = "\n";
        }
    }
    return kDone;
}

}  // namespace

Command tablesCommand() {
    return commandOnFile("tables", "columns, indexes and row counts of the tables in FILE", run);
}

}  // namespace vl::tools
