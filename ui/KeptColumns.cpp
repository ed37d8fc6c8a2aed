#include "ui/KeptColumns.h"

#include "app/Settings.h"

namespace vl {

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
