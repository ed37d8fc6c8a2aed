#include "ui/GridColumns.h"

#include <algorithm>

#include "ui/QtText.h"

namespace vl {

namespace {

using Row = const GridRow&;
using Context = const GridContext&;

bool saysTime(Row r) { return !r.span.allDay; }

QString moment(DateTime d, bool withTime, Context c) {
    return qtText(momentText(d, withTime, c.now, c.timeText));
}

QString fullMoment(DateTime d, bool withTime, Context c) {
    return qtText(fullMomentText(d, withTime, c.timeText));
}

SortKey inTime(DateTime d) { return d.milliseconds(); }

QString subject(Row r, Context) {
    return r.detail.isEmpty() ? r.summary : r.summary + u'\n' + r.detail;
}

QString due(Row r, Context c) {
    if (isDealtWith(r)) {
        return r.fate == Fate::Moved ? QStringLiteral("moved") : QStringLiteral("dismissed");
    }
    return qtText(r.ofEvent ? eventDueText(r.span, c.now) : dueText(r.due, c.now));
}

SortKey dueKey(Row r, Context) { return inTime(r.due); }

QString dueTip(Row r, Context c) { return fullMoment(r.due, !r.ofEvent || saysTime(r), c); }

QString reminder(Row r, Context c) { return moment(r.reminder, true, c); }
QString reminderTip(Row r, Context c) { return fullMoment(r.reminder, true, c); }

QString eventDate(Row r, Context c) {
    return c.dismissedView ? moment(r.dismissed, true, c) : moment(r.span.start, saysTime(r), c);
}
SortKey eventDateKey(Row r, Context c) {
    return inTime(c.dismissedView ? r.dismissed : r.span.start);
}
QString eventDateTip(Row r, Context c) {
    return c.dismissedView ? fullMoment(r.dismissed, true, c)
                           : fullMoment(r.span.start, saysTime(r), c);
}

QString ends(Row r, Context c) { return moment(r.span.end, saysTime(r), c); }
QString endsTip(Row r, Context c) { return fullMoment(r.span.end, saysTime(r), c); }

template <QString GridRow::*member>
QString plain(Row r, Context) {
    return r.*member;
}
template <QString GridRow::*member>
SortKey byText(Row r, Context) {
    return r.*member;
}

constexpr GridColumn kSubject{CIDSubject, "Subject",  "Subject", 42,
                              22,         Says::Text, subject,   byText<&GridRow::summary>,
                              nullptr};
constexpr GridColumn kDue{CIDDue, "Due", "Due", 19, 18, Says::Moment, due, dueKey, dueTip};
constexpr GridColumn kEventDate{CIDEventD,    "Event Date", "Dismissed",  20,          18,
                                Says::Moment, eventDate,    eventDateKey, eventDateTip};
constexpr GridColumn kRepeats{CIDRepeats,
                              "Repeats",
                              "Repeats",
                              17,
                              9,
                              Says::Text,
                              plain<&GridRow::repeats>,
                              byText<&GridRow::repeats>,
                              plain<&GridRow::repeats>};
constexpr GridColumn kLocation{CIDLocation,
                               "Location",
                               "Location",
                               16,
                               9,
                               Says::Text,
                               plain<&GridRow::location>,
                               byText<&GridRow::location>,
                               plain<&GridRow::location>};
constexpr GridColumn kField{CIDField,
                            "Field",
                            "Field",
                            13,
                            7,
                            Says::Word,
                            plain<&GridRow::field>,
                            byText<&GridRow::field>,
                            plain<&GridRow::field>};
constexpr GridColumn kSource{CIDSource,
                             "Source",
                             "Source",
                             9,
                             8,
                             Says::Word,
                             plain<&GridRow::source>,
                             byText<&GridRow::source>,
                             plain<&GridRow::source>};

constexpr GridColumn kReminderColumns[] = {
    kSubject,
    kDue,
    {CIDReminderD, "Reminder", "Reminder", 20, 18, Says::Moment, reminder,
     [](Row r, Context) { return inTime(r.reminder); }, reminderTip},
    kEventDate,
    kRepeats,
    kLocation,
    kField,
    kSource,
};

constexpr GridColumn kEventColumns[] = {
    kSubject,
    kDue,
    kEventDate,
    {CIDEnds, "Ends", "Ends", 20, 18, Says::Moment, ends,
     [](Row r, Context) { return inTime(r.span.end); }, endsTip},
    kRepeats,
    kLocation,
    kField,
    kSource,
};

}  // namespace

std::span<const GridColumn> reminderColumns() { return kReminderColumns; }
std::span<const GridColumn> eventColumns() { return kEventColumns; }

std::span<const GridColumn> gridColumns(int grid) {
    return grid == 2 ? eventColumns() : reminderColumns();
}

int columnIndex(std::span<const GridColumn> columns, std::string_view id) {
    const auto at =
        std::find_if(columns.begin(), columns.end(), [id](const auto& c) { return c.id == id; });
    return at == columns.end() ? -1 : static_cast<int>(at - columns.begin());
}

bool isDealtWith(const GridRow& row) {
    return !row.ofEvent && (row.fate == Fate::DealtWith || row.fate == Fate::Moved);
}

DueState rowState(const GridRow& row, DateTime now) {
    if (isDealtWith(row)) {
        return DueState::None;
    }
    return row.ofEvent ? eventState(row.span, now) : dueState(row.due, now);
}

}  // namespace vl
