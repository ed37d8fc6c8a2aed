#include "ui/ColumnLayout.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
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

// What a column gets, and when it gives some of it away.
struct Share {
    int wanted;
    int least;
    int turn;
};

Share shareOf(const GridColumn& column, int unit, int need) {
    const int first = column.width * unit;
    const int least = column.least * unit;
    if (column.says == Says::Text) {
        return {first, least, column.id == std::string_view(CIDSubject) ? 1 : 0};
    }
    if (column.says == Says::Moment && need > 0) {
        return {need, need, 2};
    }
    return {std::max(first, need), least, 2};
}

// Takes up to `over` pixels from the columns whose turn it is, from each in proportion to what it
// can spare; tells how many.
int giveAway(ColumnLayout& layout, const std::vector<Share>& shares, int turn, int over) {
    int spare = 0;
    for (std::size_t i = 0; i < shares.size(); ++i) {
        const bool isAsked = shares[i].turn == turn && !layout.columns[i].hidden;
        spare += isAsked ? shares[i].wanted - shares[i].least : 0;
    }
    if (over <= 0 || spare == 0) {
        return 0;
    }
    const double part = std::min(1.0, static_cast<double>(over) / spare);
    int given = 0;
    for (std::size_t i = 0; i < shares.size(); ++i) {
        if (shares[i].turn == turn) {
            const double of = shares[i].wanted - shares[i].least;
            const int gives = static_cast<int>(std::ceil(part * of));
            layout.columns[i].width -= gives;
            given += layout.columns[i].hidden ? 0 : gives;
        }
    }
    return given;
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

void fitColumns(ColumnLayout& layout, int grid, int unit, int room, const std::vector<int>& needs) {
    std::vector<Share> shares;
    int wanted = 0;
    for (ColumnLayout::Column& column : layout.columns) {
        const int index = columnIndex(gridColumns(grid), column.id);
        const auto at = static_cast<std::size_t>(index);
        const Share share = shareOf(gridColumns(grid)[at], unit, at < needs.size() ? needs[at] : 0);
        column.width = share.wanted;
        shares.push_back(share);
        wanted += column.hidden ? 0 : share.wanted;
    }
    int over = wanted - room;
    for (const int turn : {0, 1, 2}) {
        over -= giveAway(layout, shares, turn, over);
    }
    if (over < 0) {
        const auto subject =
            std::find_if(layout.columns.begin(), layout.columns.end(),
                         [](const ColumnLayout::Column& c) { return c.id == CIDSubject; });
        subject->width -= over;
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
