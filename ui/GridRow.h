// What one row of a grid shows.
#pragma once

#include <memory>

#include <QString>

#include "base/DateTime.h"
#include "events/RowDue.h"
#include "ui/Wording.h"

namespace vl {

class calEvent;

/// A snapshot, taken from the event when the row is filled: both queries of the event sets write
/// their working values into shared events, so what a row shows must not depend on them later.
struct GridRow {
    QString GUID;
    QString summary;    ///< at most 50 UTF-16 units, on one line
    QString detail;     ///< the second line, in parentheses; may be empty
    DateTime due;       ///< what "Due" counts to: the reminder or its snooze, the event's start
    DateTime reminder;  ///< 0 in the events grid
    Fate fate = Fate::Comes;  ///< of the reminder
    bool ofEvent = false;     ///< a row of the events grid: it is never overdue
    Span span;                ///< the occurrence shown
    DateTime dismissed;       ///< the event's; 0: never
    QString repeats;
    QString location;
    QString field;
    QString source;
    QString toolTip;

    /// For what is done to the row; not shown, and left out of comparisons.
    std::shared_ptr<calEvent> event;
};

/// True when a reader could not tell the two apart.
bool showsTheSame(const GridRow& a, const GridRow& b);

/// "summary" cut to 50 UTF-16 units, its line breaks turned into blanks.
QString rowSummary(std::string_view subject);

}  // namespace vl
