#include "ui/ColumnLayout.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "base/Text.h"

namespace vl {

namespace {

constexpr std::array<const char*, 3> kGridKeys{"NewReminders", "AllReminders", "Events"};
constexpr std::string_view kHidden = "hidden";
// A narrower column cannot be taken by its edge, a wider one is a mistake of the file.
constexpr int kNarrowest = 20;
constexpr int kWidest = 4000;

std::optional<int> widthOf(std::string_view text) {
    int width = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), width);
    const bool usable = error == std::errc() && end == text.data() + text.size() &&
                        width >= kNarrowest && width <= kWidest;
    return usable ? std::optional(width) : std::nullopt;
}

// Moves the column that `piece` speaks of from `rest` to the layout.
void readColumn(std::string_view piece, std::vector<ColumnLayout::Column>& rest,
                ColumnLayout& read) {
    const auto parts = text::split(piece, ":");
    const std::string_view id = text::trimBlanks(parts[0]);
    const auto at = std::find_if(rest.begin(), rest.end(), [id](const auto& column) {
        return text::equalsNoCase(column.id, id);
    });
    if (at == rest.end()) {
        return;
    }
    ColumnLayout::Column column = *at;
    rest.erase(at);
    if (parts.size() > 1) {
        const std::optional<int> width = widthOf(text::trimBlanks(parts[1]));
        column.width = width.value_or(column.width);
        read.sized = read.sized || width;
    }
    column.hidden = column.id != CIDSubject && parts.size() > 2 &&
                    text::equalsNoCase(text::trimBlanks(parts[2]), kHidden);
    read.columns.push_back(std::move(column));
}

}  // namespace

ColumnLayout firstLayout(int grid, int unit) {
    ColumnLayout layout;
    const auto columns = gridColumns(grid);
    for (const GridColumn& column : columns) {
        layout.columns.push_back({column.id, column.width * unit, false});
    }
    layout.sortedBy = columnIndex(columns, CIDReminderD) >= 0 ? CIDReminderD : CIDEventD;
    return layout;
}

void fitColumns(ColumnLayout& layout, int grid, int unit, int room) {
    const auto columns = gridColumns(grid);
    const auto first = [&](const ColumnLayout::Column& column) -> const GridColumn& {
        return columns[static_cast<std::size_t>(columnIndex(columns, column.id))];
    };
    int wanted = 0;
    int least = 0;
    for (const ColumnLayout::Column& column : layout.columns) {
        wanted += column.hidden ? 0 : first(column).width * unit;
        least += column.hidden ? 0 : first(column).least * unit;
    }
    // What each gives of what it can spare, so that all of it fits.
    const double given = wanted > room && wanted > least
                             ? std::min(1.0, static_cast<double>(wanted - room) / (wanted - least))
                             : 0.0;
    ColumnLayout::Column* subject = nullptr;
    int taken = 0;
    for (ColumnLayout::Column& column : layout.columns) {
        const GridColumn& of = first(column);
        column.width = static_cast<int>((of.width - given * (of.width - of.least)) * unit);
        if (column.id == CIDSubject) {
            subject = &column;
        } else if (!column.hidden) {
            taken += column.width;
        }
    }
    if (subject != nullptr) {
        subject->width = std::max(subject->width, room - taken);
    }
}

std::string columnsText(const ColumnLayout& layout) {
    std::string text;
    for (const ColumnLayout::Column& column : layout.columns) {
        text += (text.empty() ? "" : ",") + column.id;
        if (layout.sized) {
            text += ':' + std::to_string(column.width);
        }
        if (column.hidden) {
            text.append(layout.sized ? ":" : "::").append(kHidden);
        }
    }
    return text;
}

std::string sortText(const ColumnLayout& layout) {
    return (layout.descending ? "-" : "") + layout.sortedBy;
}

ColumnLayout readLayout(int grid, int unit, std::string_view columns, std::string_view sort) {
    ColumnLayout layout = firstLayout(grid, unit);
    std::vector<ColumnLayout::Column> rest = std::move(layout.columns);
    layout.columns.clear();
    for (const std::string_view piece : text::split(columns, ",")) {
        readColumn(piece, rest, layout);
    }
    layout.columns.insert(layout.columns.end(), rest.begin(), rest.end());

    const std::string_view by = text::trimBlanks(sort);
    const bool descending = by.starts_with('-');
    const std::string_view id = by.substr(descending ? 1 : 0);
    for (const ColumnLayout::Column& column : layout.columns) {
        if (text::equalsNoCase(column.id, id)) {
            layout.sortedBy = column.id;
            layout.descending = descending;
        }
    }
    return layout;
}

std::string columnsKey(int grid) { return kGridKeys[static_cast<std::size_t>(grid)]; }

std::string sortKey(int grid) { return columnsKey(grid) + "Sort"; }

}  // namespace vl
