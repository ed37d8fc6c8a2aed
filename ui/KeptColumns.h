// The columns of the grids, as the settings keep them.
#pragma once

#include <array>
#include <string>

#include <QTimer>

#include "notify/ReminderScreen.h"
#include "ui/ColumnLayout.h"
#include "ui/Grid.h"

namespace vl {

class Settings;

/// Written is what has changed since it was last read or written, and nothing else; an edge that is
/// dragged moves by every pixel, so it is written when it has come to rest.
class KeptColumns final : public QObject {
    Q_OBJECT

public:
    /// `settings` must outlive it.
    explicit KeptColumns(Settings& settings);

    void read();
    /// As it was read; `unit` as in `readLayout`.
    ColumnLayout layout(int grid, int unit) const;
    /// Arranges the grid as it was read. The grid must live as long as changes are told.
    void arrange(Grid& grid);

    /// The user has changed columns of a grid.
    void changed() { rest_.start(); }
    /// Writes what has not come to rest yet.
    void writeWhatWaits();

private:
    struct One {
        std::string columns;  // the texts at the start
        std::string sort;
        ColumnLayout saved;
        const Grid* shown = nullptr;
    };
    One& one(int grid) { return kept_[static_cast<std::size_t>(grid)]; }
    void write();
    void write(int grid, const ColumnLayout& now);

    Settings& settings_;
    std::array<One, kGridCount> kept_;
    QTimer rest_;  // once, when columns have come to rest
};

}  // namespace vl
