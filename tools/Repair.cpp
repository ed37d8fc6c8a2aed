#include <ostream>

#include "Command.h"
#include "Rewrite.h"

namespace vl::tools {

namespace {

int run(const Arguments& arguments, const Streams& streams) {
    nameLeftOvers(arguments.words[1], streams.err);
    const jet::CopyReport report = makeAnew(arguments.words[1], [&](jet::Database& target) {
        return jet::salvage(arguments.words[0], target);
    });
    for (const jet::Finding& lost : report.lost) {
        streams.out << "page " << lost.page << ": " << lost.what << '\n';
    }
    streams.out << arguments.words[1] << ": " << countText(report) << '\n';
    return kDone;
}

}  // namespace

Command repairCommand() {
    return {.name = "repair",
            .synopsis = "FILE TARGET",
            .description =
                "saves what can be read of the damaged FILE into a new database\n"
                "TARGET, and tells what is lost; FILE stays as it is",
            .fewestWords = 2,
            .mostWords = 2,
            .words = "a file and one to make",
            .flags = {},
            .options = {},
            .run = run};
}

}  // namespace vl::tools
