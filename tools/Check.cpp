#include "db/jet/check/Check.h"

#include <ostream>

#include "Command.h"
#include "Format.h"
#include "db/jet/Database.h"

namespace vl::tools {

namespace {

int run(const Arguments& arguments, const Streams& streams) {
    const std::string& file = arguments.words[0];
    auto db = jet::Database::open(file, jet::Access::Read);
    const std::vector<jet::Finding> findings = checkDatabase(db);
    for (const jet::Finding& finding : findings) {
        if (arguments.flag("--json")) {
            streams.out << lineOf({{"page", finding.page}, {"what", finding.what}}) << '\n';
        } else {
            streams.out << "page " << finding.page << ": " << finding.what << '\n';
        }
    }
    if (findings.empty() && !arguments.flag("--json")) {
        streams.out << file << ": nothing is wrong\n";
    }
    return findings.empty() ? kDone : kFailed;
}

}  // namespace

Command checkCommand() {
    return commandOnFile("check",
                         "looks at all that is in FILE and tells what is damaged, by page;\n"
                         "exit code 1 when anything is",
                         run);
}

}  // namespace vl::tools
