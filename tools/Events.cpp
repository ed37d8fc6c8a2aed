#include "Events.h"

#include <ostream>

#include "Format.h"
#include "Input.h"
#include "Program.h"
#include "base/ErrorState.h"

namespace vl::tools {

namespace {

DateTime endOf(const calEvent& event) {
    const auto length = event.EndDateTime.milliseconds() - event.StartDateTime.milliseconds();
    return DateTime::fromMilliseconds(event.InstanceStart.milliseconds() +
                                      (length > 0 ? length : 0));
}

Json rowOf(const calEvent& event, Columns columns) {
    Json row = Json::object();
    if (columns == Columns::Reminders) {
        row["Reminder"] = wallText(event.RecordedReminderD());
        row["Start"] = wallText(event.InstanceStart);
        row["iRemMinutes"] = event.iRemMinutes;
        row["iRemMinutesNext"] = event.iRemMinutesNext;
    } else {
        row["Start"] = wallText(event.InstanceStart);
        row["End"] = wallText(endOf(event));
    }
    row["Subject"] = event.Subject;
    row["GUID"] = event.GUID;
    return row;
}

std::string cellOf(const Json& value) {
    return value.is_string() ? valueText(value.get<std::string>(), jet::ColumnType::Text)
                             : value.dump();
}

void writeLine(const Json& row, bool names, std::ostream& out) {
    const char* between = "";
    for (const auto& [name, value] : row.items()) {
        out << between << (names ? name : cellOf(value));
        between = "\t";
    }
    out << '\n';
}

}  // namespace

EventsOfFile::EventsOfFile(const Arguments& arguments, DateTime now)
    : clock_(now), set(db_, clock_, defaultReminders(arguments)) {
    const std::string& path = arguments.words.front();
    db_.DBFullName = path;
    db_.Patience = jet::OpenOptions().patience;
    set.ReadDB(true, false);
    if (!set.IsRead()) {
        const auto& trouble = db_.ReadTrouble();
        throw trouble.number != ErrNo::None
            ? Error(trouble.number, trouble.text)
            : Error(ErrNo::Locked, path + " is being written by others");
    }
}

EventList listOf(const GenCollection& found) {
    EventList events;
    for (const Variant& item : found) {
        if (auto event = objectIn<calEvent>(item)) {
            events.push_back(std::move(event));
        }
    }
    return events;
}

void writeEvents(const EventList& events, Columns columns, bool json, std::ostream& out) {
    if (!json) {
        calEvent none;
        none.InstanceStart = DateTime(1);
        writeLine(rowOf(none, columns), true, out);
    }
    for (const auto& event : events) {
        const Json row = rowOf(*event, columns);
        if (json) {
            out << lineOf(row) << '\n';
        } else {
            writeLine(row, false, out);
        }
    }
}

}  // namespace vl::tools
