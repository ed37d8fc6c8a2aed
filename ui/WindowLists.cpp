#include "ui/WindowLists.h"

#include <utility>

#include "base/ErrorState.h"
#include "base/Text.h"
#include "notify/Periods.h"
#include "ui/RowFill.h"

namespace vl {

WindowLists::WindowLists(const WindowParts& parts, TimeText time,
                         std::function<void(calEvent&)> recall)
    : parts_(parts), time_(std::move(time)), recall_(std::move(recall)) {
    for (int grid = 0; grid < kGridCount; ++grid) {
        lists_[static_cast<std::size_t>(grid)] = std::make_unique<GridList>(grid, time_);
    }
}

void WindowLists::takeRange(DateTime now) {
    ReminderState& state = parts_.state;
    const PeriodRange range = periodRange(state.sPeriod, now, state.OneMin);
    state.dShownStart = range.from;
    state.dShownEnd = range.to;
}

PeriodView WindowLists::takePeriod() {
    const ReminderState& state = parts_.state;
    const DateTime now = parts_.clock.now();
    takeRange(now);
    takeHidden();
    return {state.sPeriod, {state.dShownStart, state.dShownEnd}, now, *state.HiddenGUIDColR};
}

// What acts change in a set that stays as it is, they bring in themselves.
void WindowLists::takeHidden() {
    const std::uint64_t stamp = parts_.period.mCol ? parts_.period.mCol->Stamp() : 0;
    if (stamp != hiddenOf_) {
        parts_.state.HiddenGUIDColR = hiddenGUIDs(parts_.period);
        hiddenOf_ = stamp;
    }
}

void WindowLists::count(int grid) {
    counted_ = {};
    if (!waits(grid)) {  // nobody asks for rows, nor for who is hidden
        takeRange(parts_.clock.now());
        return;
    }
    listPeriod(parts_.period, takePeriod(), [&](const auto&, const RowOccurrence&, int index) {
        ++counted_[static_cast<std::size_t>(index)];
    });
}

bool WindowLists::fill() {
    if (!std::exchange(waits_, false)) {
        return false;
    }
    const ErrScope scope;
    attempt([&] {
        const PeriodView view = takePeriod();
        setNow(view.now);
        const bool dismissed = text::equalsNoCase(view.code, "Di");
        std::vector<GridRow> rows[kGridCount];
        const TimeZone here = TimeZone::local();
        leftOut_ = listPeriod(parts_.period, view,
                              [&](const auto& event, const RowOccurrence& occurrence, int grid) {
                                  rows[grid].push_back(rowFor(event, occurrence, grid, here));
                              });
        for (const int grid : {kAllRemindersGrid, kEventsGrid}) {
            of(grid).setDismissedView(dismissed);
            of(grid).setRows(std::move(rows[grid]));
            of(grid).DoSort();
        }
    });
    return true;
}

std::size_t WindowLists::rowCount(int grid) const {
    return waits(grid) ? counted_[static_cast<std::size_t>(grid)] : of(grid).rowCount();
}

GridRow WindowLists::rowFor(const std::shared_ptr<calEvent>& event, const RowOccurrence& occurrence,
                            int grid, const TimeZone& here) const {
    recall_(*event);
    GridRow row = rowOf(event, occurrence, grid, time_);
    if (grid == kAllRemindersGrid) {
        attempt([&] {
            const EventState* known = parts_.ledger.find(parts_.db.DBFullName, event->GUID);
            tellDue(row, askRow(*event, {occurrence.start, occurrence.reminder, parts_.clock.now(),
                                         known, parts_.reminders.Replaced(*event), here}));
        });
    }
    return row;
}

bool WindowLists::put(const std::shared_ptr<calEvent>& event, int grid) {
    const ReminderState& state = parts_.state;
    if (waits(grid) ||
        (grid != kNewRemindersGrid && !isListedIn(state.sPeriod, *event, *state.HiddenGUIDColR))) {
        return false;
    }
    of(grid).putRow(rowFor(event, recordedOccurrence(*event), grid, TimeZone::local()));
    return true;
}

void WindowLists::setNow(DateTime now) {
    for (const auto& each : lists_) {
        each->setNow(now);
    }
}

void WindowLists::setSearch(const QString& search) {
    for (const auto& each : lists_) {
        each->setSearch(search);
    }
}

std::vector<std::shared_ptr<calEvent>> WindowLists::events() const {
    std::vector<std::shared_ptr<calEvent>> events;
    for (const auto& each : lists_) {
        for (const GridRow& row : each->rows().rows()) {
            events.push_back(row.event);
        }
    }
    return events;
}

void WindowLists::renewFields() {
    for (const auto& each : lists_) {
        each->renewFields();
    }
}

}  // namespace vl
