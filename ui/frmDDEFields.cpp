// The names of the fields that events belong to. They stand in the hosts' own files, so they are
// asked for when somebody can see them, one at a time, between what else the window has to do:
// never by a check, and never while the window is hidden.
#include <algorithm>

#include "base/ErrorState.h"
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
        TimerFields.start();
    }
}

// One name each time: a file may be far away.
void frmDDE::TimerFields_Tick() {
    const ErrScope scope;
    if (!isWatched()) {
        unnamed_.clear();
        return;
    }
    if (unnamed_.empty()) {
        unnamed_ = fieldNames_.Unsure(listedEvents());
    }
    if (unnamed_.empty()) {
        return;
    }
    attempt([&] { fieldNames_.Ask(*unnamed_.back()); });
    unnamed_.pop_back();
    if (unnamed_.empty()) {
        showFields();
    } else {
        TimerFields.start();
    }
}

void frmDDE::showFields() {
    for (const auto& event : listedEvents()) {
        fieldNames_.Recall(*event);
    }
    for (const auto& each : lists_) {
        each->renewFields();
    }
}

}  // namespace vl
