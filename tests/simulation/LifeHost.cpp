// What the host does, what becomes of its file, and where the computer is.
#include <filesystem>
#include <utility>

#include "Life.h"
#include "base/ErrorState.h"

namespace fs = std::filesystem;

namespace vl::simulation {

void Life::hostWrites(const Step& step) {
    if (isProtected_) {
        protect(false);
    }
    host_.take(step, now(), here_);
    if (isProtected_) {
        protect(true);
    }
}

// While the host's file is not there, or somebody has it, it cannot be written.
void Life::host(const Step& step) {
    if (hidden_ || holder_) {
        return;
    }
    if (!during_) {
        hostWrites(step);
        return;
    }
    bool isWritten = false;
    clock_.atLook = [&] {
        isWritten = attempt([&] { hostWrites(step); });
        clock_.looks = isWritten ? 0 : 1;
    };
    clock_.looks = 1 + *std::exchange(during_, std::nullopt);
    pass(kInterval);
    check(true);
    clock_.looks = 0;
    ErrorState::clear();
    if (!isWritten) {
        hostWrites(step);
    }
    wait(kInterval);  // what of it was read, is seen now
}

void Life::hide(bool hidden) {
    if (hidden != hidden_ && !holder_) {
        hidden_ = hidden;
        const fs::path shown = file_.path();
        const fs::path away = folder_ / "away";
        fs::rename(hidden ? shown : away, hidden ? away : shown);
    }
}

void Life::protect(bool on) {
    fs::permissions(file_.path(),
                    on ? fs::perms::owner_read : fs::perms::owner_read | fs::perms::owner_write);
}

void Life::setProtected(bool on) {
    if (!hidden_ && !holder_) {
        isProtected_ = on;
        protect(on);
    }
}

void Life::hold(bool on) {
    if (!on) {
        holder_.reset();
    } else if (!holder_ && !hidden_ && !isProtected_) {
        holder_ = std::make_unique<Holder>(file_.path());
    }
}

void Life::travel(const Step& step) {
    if (hidden_ || holder_ || isProtected_) {
        return;
    }
    const Zone there = here_;
    here_ = kAllZones[static_cast<std::size_t>(step.a) % kAllZones.size()];
    useZone(here_);
    pass(0);
    oracles_.tell([&](Oracle& one) { one.travelled(here_); });
    if (step.c % 4 == 0) {
        host_.keepAsWritten(there, here_);
        oracles_.tell([&](Oracle& one) { one.keptAsWritten(there); });
    } else {
        host_.writeAnew(now(), here_);
    }
    check();  // nobody acts in that moment
}

}  // namespace vl::simulation
