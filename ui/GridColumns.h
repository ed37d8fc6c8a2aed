// The columns of the three grids, as a table.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <variant>

#include <QString>

#include "ui/GridRow.h"

namespace vl {

/// What a column's text depends on beside the row.
struct GridContext {
    DateTime now;
    bool dismissedView = false;  ///< the period "Di" is shown
    TimeText timeText;
};

/// Numbers and dates (in milliseconds) compare as numbers, texts as the user's language does.
using SortKey = std::variant<std::int64_t, QString>;

// Column identifiers; they also stand in the settings file.
inline constexpr const char* CIDSubject = "Subject";
inline constexpr const char* CIDDue = "Due";
inline constexpr const char* CIDReminderD = "ReminderD";
inline constexpr const char* CIDEventD = "EventD";
inline constexpr const char* CIDEnds = "Ends";
inline constexpr const char* CIDRepeats = "Repeats";
inline constexpr const char* CIDLocation = "Location";
inline constexpr const char* CIDField = "Field";
inline constexpr const char* CIDSource = "Source";

/// How long a column's texts are: a moment's and a word's are to be read whole.
enum class Says : std::uint8_t { Text, Moment, Word };

struct GridColumn {
    const char* id;
    const char* heading;
    const char* dismissedHeading;  ///< in the dismissed view
    int width;                     ///< at first, in average characters; what it says may need more
    int least;                     ///< where the room is short
    Says says;
    QString (*text)(const GridRow&, const GridContext&);
    SortKey (*key)(const GridRow&, const GridContext&);
    /// The full form for the tool tip; null: the row's own tool tip.
    QString (*toolTip)(const GridRow&, const GridContext&);
};

/// Grids 0 and 1.
std::span<const GridColumn> reminderColumns();
/// Grid 2.
std::span<const GridColumn> eventColumns();
std::span<const GridColumn> gridColumns(int grid);

/// The position of a column, -1 when there is none of that id.
int columnIndex(std::span<const GridColumn> columns, std::string_view id);

/// The row's own reminder will not come, whatever else of its event does.
bool isDealtWith(const GridRow& row);

/// How far away the row is, and in which tone that is said; of what is dealt with nothing.
DueState rowState(const GridRow& row, DateTime now);

}  // namespace vl
