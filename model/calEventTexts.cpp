// What an event says of itself.
#include <array>

#include "base/Text.h"
#include "events/GenCollection.h"
#include "model/calEvent.h"
#include "model/clsReminder.h"

namespace vl {

namespace {

constexpr double kMillisecondsADay = 86400000.0;

// "90 minutes after start": the largest unit that leaves nothing over.
std::string afterStart(const clsReminder& reminder) {
    struct Unit {
        std::int64_t minutes;
        const char* name;
    };
    static constexpr std::array<Unit, 4> kUnits = {
        {{10080, "week"}, {1440, "day"}, {60, "hour"}, {1, "minute"}}};
    const std::int64_t minutes = -static_cast<std::int64_t>(reminder.Minutes);
    const Unit* unit = kUnits.data();
    while (minutes % unit->minutes != 0) {
        ++unit;
    }
    const std::int64_t count = minutes / unit->minutes;
    const std::string mail = text::equalsNoCase(reminder.Method, "email") ? " (email)" : "";
    return std::to_string(count) + " " + unit->name + (count > 1 ? "s" : "") + " after start" +
           mail;
}

// All-day events are passed as scheduled too: their reminders count from midnight.
std::string inWords(const clsReminder& reminder) {
    return reminder.Minutes < 0 ? afterStart(reminder) : reminder.ToText(true, false);
}

void append(std::string& list, std::string_view separator, std::string_view item) {
    if (!item.empty()) {
        list.append(list.empty() ? std::string_view() : separator).append(item);
    }
}

// Texts that others typed may hold several lines.
std::string onOneLine(std::string_view s) {
    std::string out;
    for (const char c : s) {
        const bool blank = c == ' ' || c == '\r' || c == '\n' || c == '\t';
        if (!blank) {
            out.push_back(c);
        } else if (!out.empty() && out.back() != ' ') {
            out.push_back(' ');
        }
    }
    return std::string(text::trimBlanks(out));
}

DateTime shownStart(const calEvent& event, DateTime RepDate) {
    if (!RepDate.isZero()) {
        return RepDate;
    }
    return event.InstanceStart.isZero() ? event.StartDateTime : event.InstanceStart;
}

}  // namespace

double calEvent::Duration() const {
    const std::int64_t span = EndDateTime.milliseconds() - StartDateTime.milliseconds();
    return static_cast<double>(span) / kMillisecondsADay;
}

std::string calEvent::ReminderText() const {
    const ErrScope scope;
    std::string words;
    attempt([&] {
        if (iRemMinutes == kNoReminder || InstanceStart.isZero()) {
            return;
        }
        const DateTime time = RecordedReminderD();
        const std::size_t count = RemindersCol ? RemindersCol->Count() : 0;
        // From the last, as the queries look for what is due.
        for (std::size_t position = count; position >= 1; --position) {
            const auto reminder = objectAt<clsReminder>(*RemindersCol, position);
            if (reminder && InstanceStart.addMinutes(-std::int64_t{reminder->Minutes}) == time) {
                words = inWords(*reminder);
                return;
            }
        }
        words = "snoozed";
    });
    return words;
}

std::string calEvent::RemindersText() const {
    const ErrScope scope;
    std::string list;
    const std::size_t count = RemindersCol ? RemindersCol->Count() : 0;
    for (std::size_t position = 1; position <= count; ++position) {
        attempt([&] {
            if (const auto reminder = objectAt<clsReminder>(*RemindersCol, position)) {
                append(list, ", ", inWords(*reminder));
            }
        });
    }
    return list;
}

std::string calEvent::WhenText(DateTime RepDate, const DateWords& words) const {
    const ErrScope scope;
    std::string when;
    attempt([&] {
        const DateTime start = shownStart(*this, RepDate);
        if (start.isZero()) {
            return;
        }
        const std::int64_t span = EndDateTime.milliseconds() - StartDateTime.milliseconds();
        // An event without an end, or with one before its start, is shown as a point in time.
        const DateTime end =
            span > 0 ? DateTime::fromMilliseconds(start.milliseconds() + span) : start;
        const bool oneDay = start.date() == end.date();
        std::string text = words.date(start);
        if (!IsAllDayEvent) {
            text += " " + words.time(start);
        }
        if (!oneDay) {
            text += " - " + words.date(end) + (IsAllDayEvent ? "" : " " + words.time(end));
        } else if (!IsAllDayEvent && end > start) {
            text += "-" + words.time(end);
        }
        when = std::move(text);
    });
    return when;
}

std::string calEvent::ToolTip(DateTime RepDate, const DateWords& words) const {
    const ErrScope scope;
    std::string tip;
    attempt([&] { append(tip, "\n", Summary()); });
    attempt([&] { append(tip, "\n", WhenText(RepDate, words)); });
    attempt([&] { append(tip, "\n", Location); });
    attempt([&] { append(tip, "\n", RemindersText()); });
    attempt([&] { append(tip, "\n", RecurrenceInWords()); });
    attempt([&] { append(tip, "\n", VLBase); });
    return tip;
}

std::string calEvent::SBMessage(DateTime RepDate, const DateWords& words) const {
    const ErrScope scope;
    std::string line;
    attempt([&] { append(line, ", ", onOneLine(Summary())); });
    attempt([&] { append(line, ", ", WhenText(RepDate, words)); });
    attempt([&] { append(line, ", ", onOneLine(Location)); });
    attempt([&] { append(line, ", ", RecurrenceInWords()); });
    return line;
}

}  // namespace vl
