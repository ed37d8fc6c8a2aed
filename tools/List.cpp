#include <ostream>

#include "Command.h"
#include "Events.h"
#include "Format.h"
#include "Input.h"
#include "notify/PeriodRows.h"
#include "notify/Periods.h"
#include "notify/ReminderScreen.h"

namespace vl::tools {

namespace {

int run(const Arguments& arguments, const Streams& streams) {
    const std::string code = arguments.option("--period");
    if (!periodIndex(code)) {
        std::string known;
        for (const Period& period : periods()) {
            known += (known.empty() ? "" : ", ") + std::string(period.code);
        }
        throw UsageError("list expects --period with one of " + known);
    }
    const DateTime now = arguments.options.contains("--now") ? wallTime(arguments.option("--now"))
                                                             : SystemClock().now();
    const Columns columns = arguments.flag("--events") ? Columns::Events : Columns::Reminders;
    const int wanted = columns == Columns::Events ? kEventsGrid : kAllRemindersGrid;
    EventsOfFile file(arguments, now);
    EventList events;
    const auto hidden = hiddenGUIDs(file.set);
    const PeriodView view{code, periodRange(code, now), now, *hidden};
    listPeriod(file.set, view, [&](const auto& event, const RowOccurrence&, int grid) {
        if (grid == wanted) {
            events.push_back(std::make_shared<calEvent>(*event));
        }
    });
    writeEvents(events, columns, arguments.flag("--json"), streams.out);
    return kDone;
}

}  // namespace

Command listCommand() {
    return {.name = "list",
            .synopsis = "FILE --period CODE [--events] [--now TIME] [--settings FILE] [--json]",
            .description =
                "what the window lists for a period (T today, D+7 the next 7 days, W0\n"
                "this week ...): reminders, or with --events the events themselves",
            .fewestWords = 1,
            .mostWords = 1,
            .words = "one file",
            .flags = {"--events", "--json"},
            .options = {"--period", "--now", "--settings"},
            .run = run};
}

}  // namespace vl::tools
