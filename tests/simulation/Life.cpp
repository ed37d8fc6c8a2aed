#include "Life.h"

#include <cstdlib>
#include <exception>
#include <ostream>
#include <utility>

namespace vl::simulation {

Life::Life(const History& history, std::ostream* trace)
    : trace_(trace),
      here_(history.zone),
      utc_(toUtc(here_,
                 dateOf(history.year, history.month, history.day) + history.minute * kMinute)),
      file_((folder_ / "Velmora.RemindDB").string()),
      oracles_(here_),
      host_(file_, oracles_) {
    useZone(here_);
    pass(0);
    start();
}

Outcome Life::run(const History& history) {
    for (const Step& step : history.steps) {
        take(step);
        tellRows();
        if (!outcome_.wrong.empty()) {
            break;
        }
    }
    if (outcome_.wrong.empty()) {
        finish();
    }
    oracles_.tell([&](const Oracle& one) { outcome_.decisions += one.decisions(); });
    if (trace_ != nullptr) {
        *trace_ << test::readFile(folder_ / "VLReminders.ledger");
    }
    return outcome_;
}

// Where it can be read.
void Life::tellRows() {
    if (trace_ == nullptr || hidden_ || holder_) {
        return;
    }
    for (const auto& [GUID, values] : columnsNow()) {
        *trace_ << "    row " << GUID;
        for (const auto& [column, value] : values) {
            *trace_ << ' ' << column << '=' << (value.isNull() ? "null" : value.toText());
        }
        *trace_ << '\n';
    }
}

void Life::pass(Seconds seconds) {
    utc_ += seconds;
    clock_.time = dateTime(now());
}

void Life::setClock(Seconds skew) {
    const Seconds before = now();
    skew_ = skew;
    pass(0);
    oracles_.tell([&](Oracle& one) { one.clockTurned(now() - before); });
}

void Life::start() {
    program_.reset();
    program_ = std::make_unique<Program>(file_.path(), folder_.path().string(), clock_);
    program_->load();
    oracles_.used.started(now(), !hidden_);
    check();
}

void Life::check(bool disturbed) {
    Oracle* other = oracles_.other ? &*oracles_.other : nullptr;
    checkOf(*program_, oracles_.used, other, disturbed);
    if (other_ && !disturbed) {
        ++outcome_.copies;
        checkOf(*other_, *other, &oracles_.used, false);
    }
}

void Life::checkOf(Program& program, Oracle& oracle, Oracle* other, bool disturbed) {
    Check check{now(), now() + kInterval, !hidden_, disturbed, 0, {}};
    program.takeSounds();
    program.tick(kInterval * 1000);
    check.heard = program.takeSounds();
    check.taken = program.takeNew();
    outcome_.clocks += std::abs(skew_) >= kDay ? 1U : 0U;
    if (trace_ != nullptr) {
        for (const Listing& row : check.taken) {
            *trace_ << "  " << formatDateTime(clock_.time)
                    << (&program == other_.get() ? " the other copy lists " : " lists ") << row.GUID
                    << ' ' << formatDateTime(dateTime(row.start)) << ", reminder "
                    << formatDateTime(dateTime(row.reminder)) << '\n';
        }
    }
    outcome_.wrong += oracle.judge(check, program.listed());
    if (other != nullptr) {
        other->checkedByOther(check, oracle);
    }
}

// Both copies go by the same file and the same ledger.
void Life::turnToCopy(const Step& step) {
    if (!other_) {
        other_ = std::make_unique<Program>(file_.path(), folder_.path().string(), clock_);
        other_->load();
        oracles_.other = oracles_.used;
        oracles_.other->started(now(), !hidden_);
        check();
    } else if (step.a % 4 == 0) {
        other_.reset();
        oracles_.other.reset();
    } else {
        std::swap(program_, other_);
        std::swap(oracles_.used, *oracles_.other);
    }
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
        case Do::Copy:
            return turnToCopy(step);
        case Do::LoseLedger:
            return loseLedger(step);
        case Do::TearLedger:
            return step.c % 3 == 0 ? tearCheck(step) : killInLine(step);
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
        return {std::string("it ended by an error: ") + error.what() + "\n"};
    }
}

}  // namespace vl::simulation
