// How the engine waits for others, and how long.
#pragma once

#include <algorithm>
#include <chrono>

namespace vl::jet {

/// Time that passes while the engine waits. Tests let it pass by hand.
class Waiter {
public:
    virtual ~Waiter() = default;
    virtual std::chrono::steady_clock::time_point now() = 0;
    virtual void sleep(std::chrono::milliseconds time) = 0;

protected:
    Waiter() = default;
    Waiter(const Waiter&) = default;
    Waiter& operator=(const Waiter&) = default;
};

/// The machine's own.
Waiter& systemWaiter();

/// What is left of the time that somebody is ready to wait, over all that he waits for.
class Patience {
public:
    Patience(Waiter& waiter, std::chrono::milliseconds most) : waiter_(&waiter), left_(most) {}

    /// Tries at once, then again and again; false when the time is up. The pauses grow, since who
    /// holds a file for long does not care when we ask.
    template <class Try>
    bool until(Try&& succeeds) {
        using std::chrono::milliseconds;
        constexpr milliseconds kLongestPause{16};
        for (milliseconds pause{1};; pause = std::min(2 * pause, kLongestPause)) {
            if (succeeds()) {
                return true;
            }
            if (left_ <= milliseconds::zero()) {
                return false;
            }
            const auto start = waiter_->now();
            waiter_->sleep(std::min(pause, left_));
            // At least the pause itself: a clock that stands still must not make it endless.
            left_ -=
                std::max(pause, std::chrono::duration_cast<milliseconds>(waiter_->now() - start));
        }
    }

private:
    Waiter* waiter_;
    std::chrono::milliseconds left_;
};

}  // namespace vl::jet
