// How a user has arranged the columns of a grid, and how the settings keep it.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ui/GridColumns.h"

namespace vl {

/// Section of the settings file. Each grid has two keys there, see `columnsKey` and `sortKey`.
inline constexpr const char* kColumnsSection = "Columns";

struct ColumnLayout {
    struct Column {
        std::string id;
        int width = 0;  ///< in pixels of the layout; kept while hidden
        bool hidden = false;
        friend bool operator==(const Column&, const Column&) = default;
    };
    std::vector<Column> columns;  ///< from left to right
    std::string sortedBy;         ///< id
    bool descending = false;
    /// The user has chosen widths. Until then they follow from the room there is, see
    /// `fitColumns`.
    bool sized = false;
    friend bool operator==(const ColumnLayout&, const ColumnLayout&) = default;
};

/// As the grid is at first. `unit` is the width of an average character.
ColumnLayout firstLayout(int grid, int unit);

/// Widths for what is shown of `layout` in `room` pixels: each column as at first, or as wide as it
/// `needs` to be where that is told, the subject with what is left over. Where that is not enough,
/// columns give of theirs down to their least: first those of texts, then the subject, then what is
/// left; only then it is more than the room. `needs` is by column, in pixels, 0 where the first
/// width will do; dates give nothing of it.
void fitColumns(ColumnLayout& layout, int grid, int unit, int room,
                const std::vector<int>& needs = {});

/// "Subject:252,Due:147,Ends:161:hidden"; without the widths, "Ends::hidden", where they are not
/// the user's.
std::string columnsText(const ColumnLayout& layout);
/// "ReminderD", descending "-ReminderD".
std::string sortText(const ColumnLayout& layout);

/// What the texts say, as far as they say something for this grid: a column that is unknown or
/// named twice is passed over, one that is not named stands at the end, a width that is none or
/// cannot be used is the first one, and the subject is never hidden. Any text is allowed.
ColumnLayout readLayout(int grid, int unit, std::string_view columns, std::string_view sort);

/// The key of the columns' order and widths, and that of the sorting.
std::string columnsKey(int grid);
std::string sortKey(int grid);

}  // namespace vl
