// Calendars of any size, as people have them.
#pragma once

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "model/calEvent.h"

namespace vl::test {

/// Makes one event after the other around `now`: a fifth repeat, one in ten has five reminders,
/// some are exceptions to the series before them, some are snoozed. The same seed gives the same
/// events.
class ManyEvents {
public:
    explicit ManyEvents(DateTime now, unsigned seed = 7) : now_(now), random_(seed) {}

    std::shared_ptr<calEvent> next();
    std::vector<std::shared_ptr<calEvent>> next(std::size_t count);

private:
    int upTo(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }
    void repeat(calEvent& event);
    void replace(calEvent& event);

    DateTime now_;
    std::mt19937 random_;
    int made_ = 0;
    std::string lastSeries_;
    DateTime lastSeriesStart_;
};

}  // namespace vl::test
