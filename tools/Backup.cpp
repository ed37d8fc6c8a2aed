#include "Command.h"
#include "Rewrite.h"
#include "db/jet/Database.h"

namespace vl::tools {

namespace {

int run(const Arguments& arguments, const Streams& streams) {
    const auto db = jet::Database::open(arguments.words[0], jet::Access::Read);
    nameLeftOvers(jet::systemFiles().fileBehind(arguments.words[1]), streams.err);
    db.backUp(arguments.words[1]);
    return kDone;
}

}  // namespace

Command backupCommand() {
    return {.name = "backup",
            .synopsis = "FILE TARGET",
            .description =
                "copies FILE as it is at one moment, also while others write to it;\n"
                "TARGET is replaced when the copy is whole and on the disk",
            .fewestWords = 2,
            .mostWords = 2,
            .words = "a file and the name of its copy",
            .flags = {},
            .options = {},
            .run = run};
}

}  // namespace vl::tools
