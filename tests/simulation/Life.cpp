#include "Life.h"

#include <exception>
#include <ostream>

namespace vl::simulation {

Life::Life(const History& history, std::ostream* trace)
    : trace_(trace),
      here_(history.zone),
      utc_(toUtc(here_,
                 dateOf(history.year, history.month, history.day) + history.minute * kMinute)),
      file_((folder_ / "Velmora.RemindDB").string()),
      oracle_(here_),
      host_(file_, oracle_) {
    useZone(here_);
    pass(0);
    start();
}

Outcome Life::run(const History& history) {
    for (const Step& step : history.steps) {
        take(step);
        if (!outcome_.wrong.empty()) {
            break;
        }
    }
    if (outcome_.wrong.empty()) {
        finish();
    }
    outcome_.decisions = oracle_.decisions();
    if (trace_ != nullptr) {
        *trace_ << test::readFile(folder_ / "VLReminders.ledger");
    }
    return outcome_;
}

void Life::pass(Seconds seconds) {
    utc_ += seconds;
    clock_.time = dateTime(now());
}

void Life::setClock(Seconds skew) {
    const Seconds before = now();
    skew_ = skew;
    pass(0);
    oracle_.clockTurned(now() - before);
}

void Life::start() {
    program_.reset();
    program_ = std::make_unique<Program>(file_.path(), folder_.path().string(), clock_);
    program_->load();
    oracle_.started(now(), !hidden_);
    check();
}

void Life::check(bool disturbed) {
    Check check{now(), now() + kInterval, !hidden_, disturbed, 0, {}};
    program_->takeSounds();
    program_->tick(kInterval * 1000);
    check.heard = program_->takeSounds();
    check.taken = program_->takeNew();
    if (trace_ != nullptr) {
        for (const Listing& row : check.taken) {
            *trace_ << "  " << formatDateTime(clock_.time) << " lists " << row.GUID << ' '
                    << formatDateTime(dateTime(row.start)) << ", reminder "
                    << formatDateTime(dateTime(row.reminder)) << '\n';
        }
    }
    outcome_.wrong += oracle_.judge(check, program_->listed());
}

void Life::wait(Seconds seconds) {
    // Long waits are checked now and then only: the rule knows no interval.
    const Seconds stride = std::max<Seconds>(kInterval, seconds / 8);
    for (Seconds left = seconds; left > 0 && outcome_.wrong.empty(); left -= stride) {
        pass(std::min(left, stride));
        check();
    }
}

void Life::take(const Step& step) {
    if (trace_ != nullptr) {
        *trace_ << formatDateTime(clock_.time) << ' ' << step;
    }
    if (Host::takes(step.what)) {
        return host(step);
    }
    switch (step.what) {
        case Do::Wait:
            return wait(step.a);
        case Do::Check:
            return wait(kInterval);
        case Do::Sleep:
            pass(step.a);
            return check();
        case Do::During:
            during_ = step.a;
            return;
        case Do::HostClock:
            host_.clockOff = step.a;
            return;
        case Do::TurnClock:
            skew_ += step.a;
            return pass(0);
        case Do::WrongClock:
            return setClock(step.a * kDay);
        case Do::Travel:
            return travel(step);
        case Do::Restart:
            return start();
        case Do::Kill:
            return kill(step);
        case Do::KillAct:
            return killInAct(step);
        case Do::KillCheck:
            return killInCheck(step);
        case Do::HideFile:
        case Do::ShowFile:
            return hide(step.what == Do::HideFile);
        case Do::Protect:
        case Do::Release:
            return setProtected(step.what == Do::Protect);
        case Do::Hold:
        case Do::LetGo:
            return hold(step.what == Do::Hold);
        case Do::Snooze:
            return snooze(listedRow(step.a), step.b);
        case Do::Dismiss:
            return dismiss(listedRow(step.a), step);
        case Do::ViewSnooze:
            return snooze(viewRow(step.a, step.c), step.b);
        case Do::Foreign:
            return foreign(step);
        case Do::ViewDismiss:
            return dismiss(viewRow(step.a, step.c), step);
        default:
            return other(step);
    }
}

Outcome live(const History& history, std::ostream* trace) {
    try {
        return Life(history, trace).run(history);
    } catch (const std::exception& error) {  // of the host's own writing
        return {std::string("it ended by an error: ") + error.what() + "\n", 0, 0};
    }
}

}  // namespace vl::simulation
