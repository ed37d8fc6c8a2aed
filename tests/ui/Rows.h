// Rows for the grids' tests.
#pragma once

#include <string>

#include "ui/GridRow.h"
#include "ui/QtText.h"

namespace vl::test {

/// Friday, 20 November 2026, 14:30.
inline DateTime someFriday() { return DateTime::fromCivil(2026, 11, 20, 14, 30); }

inline std::string clockText(DateTime d) {
    const Civil c = d.civil();
    const auto two = [](int n) { return (n < 10 ? "0" : "") + std::to_string(n); };
    return two(c.hour) + ":" + two(c.minute);
}

/// A reminder `minutes` after `someFriday()`, of a meeting a quarter of an hour later.
inline GridRow reminderRow(const std::string& GUID, const std::string& summary, int minutes) {
    GridRow row;
    row.GUID = qtText(GUID);
    row.summary = qtText(summary);
    row.detail = "(15 minutes)";
    row.reminder = row.due = someFriday().addMinutes(minutes);
    row.span = {row.due.addMinutes(15), row.due.addMinutes(60), false};
    return row;
}

}  // namespace vl::test
