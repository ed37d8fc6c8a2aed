#include "ui/KeptColumns.h"

#include <chrono>

#include "app/Settings.h"
#include "base/ErrorState.h"

namespace vl {

namespace {

using namespace std::chrono_literals;

constexpr auto kRest = 500ms;

}  // namespace

KeptColumns::KeptColumns(Settings& settings) : settings_(settings) {
    rest_.setSingleShot(true);
    rest_.setInterval(kRest);
    connect(&rest_, &QTimer::timeout, this, qOverload<>(&KeptColumns::write));
}

void KeptColumns::read() {
    for (int grid = 0; grid < kGridCount; ++grid) {
        one(grid).columns = settings_.GetIni(kColumnsSection, columnsKey(grid), "");
        one(grid).sort = settings_.GetIni(kColumnsSection, sortKey(grid), "");
    }
}

ColumnLayout KeptColumns::layout(int grid, int unit) const {
    const One& kept = kept_[static_cast<std::size_t>(grid)];
    return readLayout(grid, unit, kept.columns, kept.sort);
}

void KeptColumns::arrange(Grid& grid) {
    One& kept = one(grid.list().grid());
    kept.shown = &grid;
    grid.arrange(layout(grid.list().grid(), grid.unit()));
    kept.saved = grid.columnLayout();
}

void KeptColumns::writeWhatWaits() {
    if (rest_.isActive()) {
        write();
    }
}

void KeptColumns::write() {
    const ErrScope scope;
    rest_.stop();
    for (int grid = 0; grid < kGridCount; ++grid) {
        if (const Grid* shown = one(grid).shown) {
            write(grid, shown->columnLayout());
        }
    }
}

void KeptColumns::write(int grid, const ColumnLayout& now) {
    ColumnLayout& saved = one(grid).saved;
    if (columnsText(now) != columnsText(saved)) {
        settings_.SaveIni(kColumnsSection, columnsKey(grid), columnsText(now));
    }
    if (sortText(now) != sortText(saved)) {
        settings_.SaveIni(kColumnsSection, sortKey(grid), sortText(now));
    }
    saved = now;
}

}  // namespace vl
