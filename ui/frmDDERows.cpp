// The rows of the lists.
#include "base/ErrorState.h"
#include "notify/PeriodRows.h"
#include "notify/Periods.h"
#include "ui/frmDDE.h"

namespace vl {

// Nobody sees what a hidden window lists, and there is a check every minute: the rows are made
// when somebody looks.
void frmDDE::DoPeriod() {
    periodWaits_ = true;
    if (isWatched()) {
        fillPeriod();
        return;
    }
    const ErrScope scope;
    attempt([&] { beginPeriod(); });
    attempt([&] { countPeriod(); });
    GetIconText();
}

DateTime frmDDE::beginPeriod() {
    const DateTime now = parts_.clock.now();
    const PeriodRange range = periodRange(state_.sPeriod, now);
    state_.dShownStart = range.from;
    state_.dShownEnd = range.to;
    return now;
}

// For the tooltip of the tray, which tells it of the selected tab.
void frmDDE::countPeriod() {
    waitingRows_ = {};
    if (tab() != kNewRemindersGrid) {
        listPeriod(parts_.period, state_.sPeriod, parts_.clock.now(),
                   [&](const auto&, const RowOccurrence&, int index) {
                       ++waitingRows_[static_cast<std::size_t>(index)];
                   });
    }
}

void frmDDE::fillPeriod() {
    if (!periodWaits_) {
        return;
    }
    periodWaits_ = false;
    fillLists();
    UpdateUI();
    wantFields();
}

void frmDDE::fillLists() {
    const ErrScope scope;
    attempt([&] {
        const DateTime now = beginPeriod();
        for (const auto& each : lists_) {
            each->setNow(now);
        }
        for (const int index : {kAllRemindersGrid, kEventsGrid}) {
            listOf(index).setDismissedView(isPeriod("Di"));
        }
        std::vector<GridRow> rows[kGridCount];
        const TimeZone here = TimeZone::local();
        listPeriod(parts_.period, state_.sPeriod, now,
                   [&](const auto& event, const RowOccurrence& occurrence, int index) {
                       rows[index].push_back(rowFor(event, occurrence, index, here));
                   });
        for (const int index : {kAllRemindersGrid, kEventsGrid}) {
            listOf(index).setRows(std::move(rows[index]));
            listOf(index).DoSort();
        }
    });
}

const GridList& frmDDE::list(int grid) {
    if (waits(grid)) {
        fillPeriod();
    }
    return listOf(grid);
}

GridList& frmDDE::selectedList() {
    list(tab());
    return listOf(tab());
}

std::size_t frmDDE::rowsOfTab() const {
    return waits(tab()) ? waitingRows_[static_cast<std::size_t>(tab())] : selectedList().rowCount();
}

bool frmDDE::waits(int grid) const { return periodWaits_ && grid != kNewRemindersGrid; }

GridRow frmDDE::rowFor(const std::shared_ptr<calEvent>& event, const RowOccurrence& occurrence,
                       int grid, const TimeZone& here) const {
    fields_.Recall(*event);
    GridRow row = rowOf(event, occurrence, grid, timeText_);
    if (grid == kAllRemindersGrid) {
        attempt([&] {
            const EventState* known = parts_.ledger.find(parts_.db.DBFullName, event->GUID);
            tellDue(row, askRow(*event, {occurrence.start, occurrence.reminder, parts_.clock.now(),
                                         known, parts_.reminders.Replaced(*event), here}));
        });
    }
    return row;
}

void frmDDE::AddItemR(const std::shared_ptr<calEvent>& event, int index) {
    const ErrScope scope;
    attempt([&] {
        if (waits(index)) {
            return;
        }
        if (index == kNewRemindersGrid || isListedIn(state_.sPeriod, *event)) {
            listOf(index).putRow(
                rowFor(event, recordedOccurrence(*event), index, TimeZone::local()));
            wantFields();
        }
    });
    if (index == kNewRemindersGrid && !TimerFlash.isActive()) {
        flashOn_ = true;
        TimerFlash.start();
    }
}

void frmDDE::UpdateItemR(const std::shared_ptr<calEvent>& event, int index) {
    if (listOf(index).contains(event->GUID)) {
        AddItemR(event, index);
    }
}

void frmDDE::RemoveGUID(std::string_view GUID, int index) { listOf(index).RemoveGUID(GUID); }

}  // namespace vl
