#include <ostream>

#include "Command.h"
#include "Events.h"
#include "Format.h"
#include "Input.h"
#include "base/Text.h"
#include "notify/Periods.h"

namespace vl::tools {

namespace {

bool isPeriod(const std::string& code, const char* other) {
    return text::equalsNoCase(code, other);
}

// The period of hidden events has no range: it lists each at its next occurrence, else its last.
EventList hidden(const EventList& all, Columns columns, DateTime now) {
    EventList events;
    for (const auto& event : all) {
        if (!event->Hidden) {
            continue;
        }
        const DateTime next = event->NextInstance(now);
        event->InstanceStart = next.isZero() ? event->LastInstance() : next;
        event->iRemMinutes = event->iRemMinutesNext = calEvent::kNoReminder;
        const bool reminded = event->RemindersCol && event->RemindersCol->Count() > 0;
        if (reminded) {
            const DateTime coming = event->NextReminderD(now);
            event->dReminder = coming.isZero() ? event->FirstReminderD() : coming;
            event->iRemMinutes =
                static_cast<std::int32_t>(minutesBetween(event->dReminder, event->InstanceStart));
        }
        if (reminded || columns == Columns::Events) {
            events.push_back(event);
        }
    }
    return events;
}

EventList shown(EventList events, const std::string& code) {
    const bool dismissedOnly = isPeriod(code, "Di");
    std::erase_if(events, [&](const auto& event) {
        return event->Hidden || (dismissedOnly && !(event->Dismissed > DateTime()));
    });
    return events;
}

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
    const PeriodRange range = periodRange(code, now);
    EventsOfFile file(arguments.words[0], now);
    EventList events;
    if (isPeriod(code, "H")) {
        events = hidden(listOf(*file.set.mCol), columns, now);
    } else if (columns == Columns::Events) {
        // Asked after the reminders, as the window does: their question resets what the events
        // hold.
        file.set.RemindCol(range.from, range.to);
        events = shown(listOf(*file.set.EventCol(range.from, range.to)), code);
    } else {
        events = shown(listOf(*file.set.RemindCol(range.from, range.to)), code);
    }
    writeEvents(events, columns, arguments.flag("--json"), streams.out);
    return kDone;
}

}  // namespace

Command listCommand() {
    return {.name = "list",
            .synopsis = "FILE --period CODE [--events] [--now TIME] [--json]",
            .description =
                "what the window lists for a period (T today, D+7 the next 7 days, W0\n"
                "this week ...): reminders, or with --events the events themselves",
            .fewestWords = 1,
            .mostWords = 1,
            .words = "one file",
            .flags = {"--events", "--json"},
            .options = {"--period", "--now"},
            .run = run};
}

}  // namespace vl::tools
