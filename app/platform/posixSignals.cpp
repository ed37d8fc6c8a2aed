// Signals are turned into bytes in a pipe: next to nothing may be done in a handler itself.
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>

#include "EndSignals.h"

namespace vl::platform {

namespace {

constexpr std::array kSignals = {SIGTERM, SIGINT, SIGHUP};

std::atomic<int> writeEnd = -1;
static_assert(std::atomic<int>::is_always_lock_free, "read in a signal handler");

extern "C" void noteSignal(int) {
    const int error = errno;
    const char byte = 1;
    // A full pipe already says it.
    [[maybe_unused]] const ssize_t n = ::write(writeEnd, &byte, 1);
    errno = error;
}

}  // namespace

EndSignals::EndSignals() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    descriptor_ = ends[0];
    writeEnd = ends[1];
    for (const int number : kSignals) {
        struct sigaction before {};
        if (::sigaction(number, nullptr, &before) == 0 && before.sa_handler == SIG_DFL) {
            struct sigaction ours {};
            ours.sa_handler = noteSignal;
            ours.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
            ::sigaction(number, &ours, nullptr);
        }
    }
}

EndSignals::~EndSignals() {
    if (descriptor_ < 0) {
        return;
    }
    for (const int number : kSignals) {
        struct sigaction now {};
        if (::sigaction(number, nullptr, &now) == 0 && now.sa_handler == noteSignal) {
            ::signal(number, SIG_DFL);
        }
    }
    ::close(writeEnd.exchange(-1));
    ::close(descriptor_);
}

}  // namespace vl::platform
