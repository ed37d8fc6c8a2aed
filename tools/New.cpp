#include "Command.h"
#include "model/RemindersTable.h"

namespace vl::tools {

namespace {

int run(const Arguments& arguments, const Streams&) {
    makeRemindersDatabase(arguments.words[0]);
    return kDone;
}

}  // namespace

Command newCommand() {
    return {.name = "new",
            .synopsis = "FILE",
            .description =
                "makes FILE, a database with the empty table Reminders; nothing is\n"
                "replaced",
            .fewestWords = 1,
            .mostWords = 1,
            .words = "a file",
            .flags = {},
            .options = {},
            .run = run};
}

}  // namespace vl::tools
