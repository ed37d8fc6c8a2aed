#include "db/jet/Waiter.h"

#include <thread>

namespace vl::jet {

namespace {

class SystemWaiter final : public Waiter {
public:
    std::chrono::steady_clock::time_point now() override {
        return std::chrono::steady_clock::now();
    }
    void sleep(std::chrono::milliseconds time) override { std::this_thread::sleep_for(time); }
};

}  // namespace

Waiter& systemWaiter() {
    static SystemWaiter waiter;
    return waiter;
}

}  // namespace vl::jet
