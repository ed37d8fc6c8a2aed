// A clock that tests turn by hand.
#pragma once

#include <functional>

#include "base/Clock.h"

namespace vl::test {

class ManualClock final : public Clock {
public:
    explicit ManualClock(DateTime start) : time(start) {}
    DateTime now() const override {
        if (whenAsked) {
            whenAsked();
        }
        return time;
    }

    DateTime time;
    std::function<void()> whenAsked;  // to look at what has been done by then
};

}  // namespace vl::test
