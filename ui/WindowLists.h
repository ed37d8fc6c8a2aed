// The rows that the main window lists.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <QString>

#include "model/calEvent.h"
#include "notify/PeriodRows.h"
#include "ui/GridList.h"
#include "ui/GridRow.h"
#include "ui/WindowParts.h"
#include "ui/Wording.h"

namespace vl {

class TimeZone;

/// The three lists, whether there are grids that show them or not. What is new is listed at once.
/// The two lists of the period are filled when somebody looks: nobody sees those of a hidden
/// window, and there is a check every minute. Until then they hold what they were filled with last.
class WindowLists final {
public:
    /// `recall` gives an event what is known of the name of its field. What `parts` holds must
    /// outlive the lists.
    WindowLists(const WindowParts& parts, TimeText time, std::function<void(calEvent&)> recall);

    /// As they were filled last.
    const GridLists& all() const { return lists_; }
    GridList& of(int grid) { return *lists_[static_cast<std::size_t>(grid)]; }
    const GridList& of(int grid) const { return *lists_[static_cast<std::size_t>(grid)]; }

    /// What the period lists may have changed: its lists are to be filled.
    void letWait() { waits_ = true; }
    /// Takes up the period of now and counts what it lists, where the grid's rows wait.
    void count(int grid);
    /// Fills the lists of the period, with the period of now. False where none waits.
    bool fill();
    bool waits(int grid) const { return waits_ && grid != kNewRemindersGrid; }
    /// Where the rows wait, how many they were when they were counted last.
    std::size_t rowCount(int grid) const;
    /// How many rows the period has beside those, of hidden events.
    std::size_t leftOut(int grid) const { return leftOut_[static_cast<std::size_t>(grid)]; }

    /// Adds the event's row, or replaces the one it has in that grid; not where the rows wait, nor
    /// where the period does not list it. Whether it did.
    bool put(const std::shared_ptr<calEvent>& event, int grid);

    void setNow(DateTime now);
    void setSearch(const QString& search);
    /// Of all rows; an event may be in several lists.
    std::vector<std::shared_ptr<calEvent>> events() const;
    /// The events have got names of fields.
    void renewFields();

private:
    PeriodView takePeriod();
    void takeRange(DateTime now);
    void takeHidden();
    GridRow rowFor(const std::shared_ptr<calEvent>& event, const RowOccurrence& occurrence,
                   int grid, const TimeZone& here) const;

    WindowParts parts_;
    TimeText time_;
    std::function<void(calEvent&)> recall_;
    GridLists lists_;
    bool waits_ = false;
    std::array<std::size_t, kGridCount> counted_{};
    LeftOut leftOut_{};
    std::optional<std::uint64_t> hiddenOf_;  // the set's stamp when hidden events were looked for
};

}  // namespace vl
