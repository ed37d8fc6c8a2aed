// The columns of the grids, as the settings keep them.
#pragma once

#include <array>
#include <string>

#include "notify/ReminderScreen.h"
#include "ui/ColumnLayout.h"

namespace vl {

class Settings;

/// Written is what has changed since it was last read or written, and nothing else.
class KeptColumns {
public:
    /// `settings` must outlive it.
    explicit KeptColumns(Settings& settings) : settings_(settings) {}

    void read();
    /// As it was read; `unit` as in `readLayout`.
    ColumnLayout layout(int grid, int unit) const;
    /// The grid has taken its layout: that is what stands in the settings.
    void taken(int grid, const ColumnLayout& layout) { one(grid).saved = layout; }
    void write(int grid, const ColumnLayout& now);

private:
    struct One {
        std::string columns;  // the texts at the start
        std::string sort;
        ColumnLayout saved;
    };
    One& one(int grid) { return kept_[static_cast<std::size_t>(grid)]; }

    Settings& settings_;
    std::array<One, kGridCount> kept_;
};

}  // namespace vl
