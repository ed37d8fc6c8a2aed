#include <ostream>

#include "Command.h"
#include "Events.h"
#include "Format.h"
#include "Input.h"

namespace vl::tools {

namespace {

DateTime timeOf(const Arguments& arguments, const char* option) {
    if (!arguments.options.contains(option)) {
        throw UsageError(std::string("due expects ") + option);
    }
    return wallTime(arguments.option(option));
}

int run(const Arguments& arguments, const Streams& streams) {
    const DateTime from = timeOf(arguments, "--from");
    const DateTime to = timeOf(arguments, "--to");
    EventsOfFile file(arguments, from);
    writeEvents(listOf(*file.set.RemindCol(from, to)), Columns::Reminders, arguments.flag("--json"),
                streams.out);
    return kDone;
}

}  // namespace

Command dueCommand() {
    return {.name = "due",
            .synopsis = "FILE --from TIME --to TIME [--settings FILE] [--json]",
            .description =
                "the events of a reminders database that have a reminder from one time\n"
                "to the other, both included, each with the earliest one",
            .fewestWords = 1,
            .mostWords = 1,
            .words = "one file",
            .flags = {"--json"},
            .options = {"--from", "--to", "--settings"},
            .run = run};
}

}  // namespace vl::tools
