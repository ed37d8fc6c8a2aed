// The names of the fields that events belong to: asked for when somebody can see them, never by a
// check, and never while the window is hidden.
#include <algorithm>

#include "ui/frmDDE.h"

namespace vl {

std::vector<std::shared_ptr<calEvent>> frmDDE::listedEvents() const {
    std::vector<std::shared_ptr<calEvent>> events;
    for (const auto& each : lists_) {
        for (const GridRow& row : each->rows().rows()) {
            events.push_back(row.event);
        }
    }
    return events;
}

bool frmDDE::showsFields() const {
    return isFurnished() && std::any_of(grids_.begin(), grids_.end(), [](const Grid* each) {
               return !each->isColumnHidden(columnIndex(each->list().rows().columns(), CIDField));
           });
}

void frmDDE::wantFields() {
    if (!loading_ && isWatched() && showsFields()) {
        fields_.want();
    }
}

void frmDDE::showFields() {
    for (const auto& each : lists_) {
        each->renewFields();
    }
}

}  // namespace vl
