#include "ui/RowFill.h"

#include "base/ErrorState.h"
#include "events/GenCollection.h"
#include "notify/ReminderScreen.h"
#include "ui/Direction.h"
#include "ui/QtText.h"

namespace vl {

namespace {

// The events of a series are as long as the first one.
Span spanAt(const calEvent& event, DateTime start) {
    const auto length = event.EndDateTime.milliseconds() - event.StartDateTime.milliseconds();
    const auto end = DateTime::fromMilliseconds(start.milliseconds() + (length > 0 ? length : 0));
    return {start, end, event.IsAllDayEvent};
}

// Of a path as either system writes it.
QString fileName(std::string_view path) {
    return qtText(path.substr(path.find_last_of("\\/") + 1));
}

std::string inParentheses(const std::string& text) {
    return text.empty() ? text : '(' + text + ')';
}

}  // namespace

GridRow rowOf(const std::shared_ptr<calEvent>& event, const RowOccurrence& occurrence, int grid,
              const TimeText& time) {
    const ErrScope scope;
    GridRow row;
    row.event = event;
    row.GUID = qtText(event->GUID);
    row.summary = rowSummary(shownSubject(event->Summary()));
    row.span = spanAt(*event, occurrence.start);
    row.ofEvent = grid == kEventsGrid;
    row.reminder = row.ofEvent ? DateTime() : occurrence.reminder;
    row.due = row.ofEvent ? occurrence.start : occurrence.reminder;
    row.dismissed = grid == kNewRemindersGrid ? DateTime() : event->Dismissed;
    row.location = qtText(event->Location).simplified();
    row.field = qtText(event->FieldName);
    row.source = fileName(event->VLBase);
    attempt([&] {
        row.detail =
            qtText(inParentheses(row.ofEvent ? durationText(row.span) : event->ReminderText()));
    });
    attempt([&] { row.repeats = qtText(event->RecurrenceInWords()); });
    attempt([&] { row.toolTip = qtText(event->ToolTip(occurrence.start, wordsOf(time))); });
    if (isBlank(event->Summary())) {
        row.toolTip = qtText(shownSubject({})) + u'\n' + row.toolTip.trimmed();
    }
    return row;
}

void tellDue(GridRow& row, const RowDue& due) {
    if (due.time != row.due) {
        row.due = due.time;
        row.detail = due.fate == Fate::Snoozed ? QStringLiteral("(snoozed)") : QString();
    }
    row.fate = due.fate;
}

QString eventLine(const calEvent& event, DateTime start, const DateWords& words) {
    QString line = qtText(event.SBMessage(start, words));
    if (isBlank(event.Summary())) {
        return qtText(shownSubject({})) + QStringLiteral(", ") + line;
    }
    // Subject and location may be written from right to left, what stands beside them is not.
    const QString when = QStringLiteral(", ") + qtText(event.WhenText(start, words));
    const qsizetype at = line.indexOf(when);
    if (at < 0) {
        return line;
    }
    QString behind = line.mid(at + when.size());
    const QString location = qtText(event.Location).simplified();
    const qsizetype place = location.isEmpty() ? -1 : behind.indexOf(location);
    if (place >= 0) {
        behind.replace(place, location.size(), apart(location));
    }
    return apart(line.left(at)) + when + behind;
}

DateWords wordsOf(const TimeText& time) {
    return {[](DateTime d) { return fullMomentText(d, false, {}); }, time};
}

DateWords wordsOf(const TimeText& time, DateTime now) {
    return {[now](DateTime d) { return dayText(d, now); }, time};
}

}  // namespace vl
