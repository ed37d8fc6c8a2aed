// How a system without end-of-session messages tells a program to end.
#pragma once

namespace vl::platform {

/// As long as it lives, SIGTERM, SIGINT and SIGHUP do not end the program but make a descriptor
/// readable, for an event loop to end it in order. Of each signal only the first: a program that
/// hangs is ended by the second. One that was ignored when the program started stays ignored.
/// There is one of these at a time.
class EndSignals {
public:
    EndSignals();
    ~EndSignals();
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;

    /// Readable once a signal has come; -1 where there are none, as on Windows, or when the system
    /// refused: then signals do what they always do.
    int descriptor() const noexcept { return descriptor_; }

private:
    int descriptor_ = -1;
};

}  // namespace vl::platform
