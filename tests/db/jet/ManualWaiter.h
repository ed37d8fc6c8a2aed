// Waiting in which a test decides what happens.
#pragma once

#include <functional>

#include "db/jet/Waiter.h"

namespace vl::test {

/// Time passes only by waiting. `onSleep`, when set, is what others do meanwhile.
class ManualWaiter final : public jet::Waiter {
public:
    std::chrono::steady_clock::time_point now() override { return now_; }
    void sleep(std::chrono::milliseconds time) override {
        now_ += time;
        slept += time;
        if (const auto others = onSleep) {  // a copy: it may put something else in its place
            others();
        }
    }

    std::chrono::milliseconds slept{0};
    std::function<void()> onSleep;

private:
    std::chrono::steady_clock::time_point now_;
};

}  // namespace vl::test
