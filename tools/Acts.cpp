// What the user does to reminders, from the command line: the same acts as in the window.
#include <algorithm>
#include <filesystem>
#include <ostream>

#include "Command.h"
#include "Format.h"
#include "Input.h"
#include "Program.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "events/Ledger.h"
#include "model/clsReminder.h"
#include "notify/Acts.h"

namespace vl::tools {

namespace {

constexpr std::string_view kFileAndGuids = "a file and one or more GUIDs";

struct ModeName {
    const char* name;
    DismissMode mode;
};
constexpr ModeName kModes[] = {{"this", DismissMode::This},
                               {"except-after", DismissMode::AllButAfter},
                               {"all", DismissMode::All}};

/// The database, and in it the events that are acted upon.
class Desk {
public:
    explicit Desk(const Arguments& arguments)
        : ledger_(clock_, ledgerPath(arguments)),
          set_(db_, clock_, defaultReminders(arguments)),
          acts_(set_, set_, db_, clock_, ledger_, state_) {
        // By its full path the program knows it, too.
        const std::filesystem::path file = std::filesystem::absolute(arguments.words.front());
        db_.DBFullName = file.lexically_normal().string();
        db_.Patience = jet::OpenOptions().patience;
        set_.mCol = std::make_shared<GenCollection>();
        set_.UseLedger(ledger_, {});
        std::vector<std::shared_ptr<calEvent>> events;
        for (std::size_t i = 1; i < arguments.words.size(); ++i) {
            events.push_back(eventOf(arguments.words[i]));
        }
        set_.FindReplaced();
        for (const auto& event : events) {
            rows_.push_back(rowOf(event, arguments.option("--at")));
        }
        acts_.RestoreWaiting();
    }

    Acts& acts() { return acts_; }
    const std::vector<ActRow>& rows() const { return rows_; }

    /// The events as they are now. Fails when a row could not be written.
    int report(const Arguments& arguments, const Streams& streams) {
        for (const ActRow& row : rows_) {
            const calEvent& event = *row.event;
            const Json object = {{"guid", event.GUID},
                                 {"start", wallText(row.InstanceStart)},
                                 {"NextReminder", date(event.NextReminder)},
                                 {"Dismissed", date(event.Dismissed)},
                                 {"Hidden", event.Hidden},
                                 {"status", event.status}};
            if (arguments.flag("--json")) {
                streams.out << lineOf(object) << '\n';
                continue;
            }
            const char* between = "";
            for (const auto& [name, value] : object.items()) {
                streams.out << between << name << '='
                            << (value.is_string() ? value.get<std::string>() : value.dump());
                between = "\t";
            }
            streams.out << '\n';
        }
        if (!ledger_.onDisk()) {
            throw Error(ErrNo::Io, "the ledger cannot be written");
        }
        if (!acts_.Trouble().empty()) {
            throw Error(ErrNo::Io, acts_.Waiting() > 0
                                       ? "noted, but not written into the row: " + acts_.Trouble()
                                       : acts_.Trouble());
        }
        return kDone;
    }

private:
    static Json date(DateTime time) { return time.isZero() ? Json() : Json(wallText(time)); }

    std::shared_ptr<calEvent> eventOf(const std::string& GUID) {
        auto event = set_.EventByGUID(GUID);
        if (!event) {
            const std::string& why = db_.LastErrorText();
            throw Error(ErrNo::NotFound, why.empty() ? "there is no event " + GUID : why);
        }
        set_.Add(event, event->GUID);
        return event;
    }

    ActRow rowOf(const std::shared_ptr<calEvent>& event, const std::string& at) {
        const DateTime start = at.empty() ? occurrenceOf(*event) : wallTime(at);
        if (start.isZero() && at.empty() && !event->IsRepeating()) {
            return undated(event);
        }
        if (start.isZero()) {
            throw Error(ErrNo::NotFound, event->GUID + " has no occurrence");
        }
        if (event->ICalRecEvents(start, start, 1).empty()) {
            throw Error(ErrNo::NotFound, event->GUID + " has no occurrence at " + wallText(start));
        }
        if (isReplaced(*event, start)) {
            throw Error(ErrNo::NotFound, "an exception has taken the place of the occurrence of " +
                                             event->GUID + " at " + wallText(start));
        }
        event->InstanceStart = start;
        const bool scheduled = event->RemindersCol && event->RemindersCol->Count() > 0;
        return {event, start,
                scheduled ? event->PrevReminderD(clock_.now(), DateTime()) : DateTime()};
    }

    // It has no reminder of its own, but may have been put off.
    static ActRow undated(const std::shared_ptr<calEvent>& event) {
        event->InstanceStart = DateTime();
        const bool isPutOff = event->NextReminder > event->Dismissed;
        return {event, DateTime(), isPutOff ? event->NextReminder : DateTime()};
    }

    bool isReplaced(const calEvent& event, DateTime start) const {
        const auto replaced = set_.Replaced(event);
        return std::binary_search(replaced.begin(), replaced.end(), start);
    }

    // What stands in the window's list; else the last one whose reminders have begun, else the
    // first to come. 0: there is none.
    DateTime occurrenceOf(const calEvent& event) const {
        if (!event.IsRepeating()) {
            return event.StartDateTime;
        }
        const EventState* known = ledger_.find(db_.DBFullName, event.GUID);
        if (const auto* one = known != nullptr ? known->listed() : nullptr) {
            const DateTime listed = event.FromWall(one->start);
            if (!event.ICalRecEvents(listed, listed, 1).empty() && !isReplaced(event, listed)) {
                return listed;
            }
        }
        const DateTime begun = clock_.now().addMinutes(event.RemindersMaxOffsetMin).addSeconds(1);
        DateTime last = event.PreviousInstance(begun);
        while (!last.isZero() && isReplaced(event, last)) {
            last = event.PreviousInstance(last);
        }
        if (!last.isZero()) {
            return last;
        }
        DateTime next = event.NextInstance(begun.addSeconds(-1));
        while (!next.isZero() && isReplaced(event, next)) {
            next = event.NextInstance(next);
        }
        return next;
    }

    SystemClock clock_;
    DBRemindUtils db_;
    Ledger ledger_;
    CalEvents set_;
    ReminderState state_;
    Acts acts_;
    std::vector<ActRow> rows_;
};

int snooze(const Arguments& arguments, const Streams& streams) {
    const std::string given = arguments.option("--for");
    clsReminder offset;
    offset.FromText(given.empty() ? "15m" : given);
    if (offset.Minutes <= 0) {
        throw UsageError("--for expects a time such as 5m, 3h, 1d, 1w");
    }
    Desk desk(arguments);
    for (const ActRow& row : desk.rows()) {
        desk.acts().Snooze(row, offset.Minutes);
    }
    return desk.report(arguments, streams);
}

int dismiss(const Arguments& arguments, const Streams& streams) {
    const std::string given = arguments.option("--mode");
    const auto* named =
        std::find_if(std::begin(kModes), std::end(kModes),
                     [&](const ModeName& mode) { return given == mode.name || given.empty(); });
    if (named == std::end(kModes)) {
        throw UsageError("--mode expects this, except-after or all");
    }
    Desk desk(arguments);
    for (const ActRow& row : desk.rows()) {
        desk.acts().Dismiss(row, named->mode, arguments.flag("--done"));
    }
    return desk.report(arguments, streams);
}

int reactivate(const Arguments& arguments, const Streams& streams) {
    Desk desk(arguments);
    for (const ActRow& row : desk.rows()) {
        desk.acts().Reactivate(row);
    }
    return desk.report(arguments, streams);
}

int hide(const Arguments& arguments, const Streams& streams) {
    Desk desk(arguments);
    for (const ActRow& row : desk.rows()) {
        desk.acts().Hide(row, !arguments.flag("--show"));
    }
    return desk.report(arguments, streams);
}

Command act(std::string_view name, std::string_view synopsis, std::string_view description,
            std::vector<std::string_view> flags, std::vector<std::string_view> options,
            int (*run)(const Arguments&, const Streams&)) {
    constexpr std::size_t kMostGuids = 1000;
    flags.push_back("--json");
    options.push_back("--ledger");
    options.push_back("--settings");
    return {.name = name,
            .synopsis = synopsis,
            .description = description,
            .fewestWords = 2,
            .mostWords = 1 + kMostGuids,
            .words = kFileAndGuids,
            .flags = std::move(flags),
            .options = std::move(options),
            .run = run};
}

}  // namespace

Command snoozeCommand() {
    return act("snooze",
               "FILE GUID ... [--for 15m] [--at START] [--ledger FILE]\n"
               "               [--settings FILE] [--json]",
               "reminds of the events again after a time from now; --at names the\n"
               "occurrence (yyyy-mm-ddThh:mm:ss, local), else it is the one that the\n"
               "window shows; --ledger and --settings are the program's own unless\n"
               "they are given",
               {}, {"--for", "--at"}, snooze);
}

Command dismissCommand() {
    return act("dismiss",
               "FILE GUID ... [--mode this|except-after|all] [--done] [--at START]\n"
               "               [--ledger FILE] [--settings FILE] [--json]",
               "deals with this reminder of the occurrence, with all but those after\n"
               "its start, or with all; --done marks it as done",
               {"--done"}, {"--mode", "--at"}, dismiss);
}

Command reactivateCommand() {
    return act("reactivate", "FILE GUID ... [--ledger FILE] [--settings FILE] [--json]",
               "lets the reminders of dismissed events come again", {}, {}, reactivate);
}

Command hideCommand() {
    return act("hide", "FILE GUID ... [--show] [--ledger FILE] [--settings FILE] [--json]",
               "hides events from the window's lists, or with --show does not", {"--show"}, {},
               hide);
}

}  // namespace vl::tools
