// A clock that tests turn by hand.
#pragma once

#include "base/Clock.h"

namespace vl::test {

class ManualClock final : public Clock {
public:
    explicit ManualClock(DateTime start) : time(start) {}
    DateTime now() const override { return time; }

    DateTime time;
};

}  // namespace vl::test
