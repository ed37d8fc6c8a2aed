// Who knows what time it is.
#pragma once

#include "base/DateTime.h"

namespace vl {

/// Asked for the time everywhere; tests hand in one that they turn by hand.
class Clock {
public:
    virtual ~Clock() = default;
    /// Local time in whole seconds: what the database can hold.
    virtual DateTime now() const = 0;
    /// Midnight of the current day.
    DateTime today() const { return now().date(); }
};

/// The system's clock in the system's zone (`TZ` honoured, also when it changes while running).
class SystemClock final : public Clock {
public:
    DateTime now() const override;
};

}  // namespace vl
