// What a host writes, at random.
#pragma once

#include <memory>
#include <random>
#include <string>

#include "base/DateTime.h"
#include "model/calEvent.h"

namespace vl::exact {

/// The same numbers everywhere.
class Dice {
public:
    explicit Dice(unsigned seed) : random_(seed) {}
    /// From 0 to `limit` - 1.
    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    bool oneIn(int n) { return below(n) == 0; }

private:
    std::mt19937 random_;
};

/// Events and what becomes of them. All of it lies around the present.
class ExactHost {
public:
    explicit ExactHost(Dice& dice) : dice_(dice) {}

    std::shared_ptr<calEvent> enter(const std::string& GUID, DateTime now);

    /// One change of many; false where it does not apply to such an event.
    bool change(calEvent& event, DateTime now);

    /// To an occurrence of the series that is near: moved, or cancelled. Null: there is none.
    std::shared_ptr<calEvent> except(const std::string& GUID, const calEvent& series, DateTime now);

    /// An event as its row says it.
    static std::string say(const calEvent& event);

private:
    std::string rule(const calEvent& event);
    std::string reminders();
    void setLength(calEvent& event);
    bool move(calEvent& event);
    bool turnAllDay(calEvent& event);
    bool turnSeries(calEvent& event);
    bool exclude(calEvent& event, DateTime now);
    bool include(calEvent& event) const;
    bool addDate(calEvent& event, DateTime now);

    Dice& dice_;
};

}  // namespace vl::exact
