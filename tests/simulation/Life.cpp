// A history, lived through by the program and followed by the oracle.
#include <array>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "Calendar.h"
#include "History.h"
#include "Host.h"
#include "Oracle.h"
#include "Program.h"
#include "base/ErrorState.h"
#include "base/Variant.h"
#include "db/jet/Database.h"
#include "db/jet/Transaction.h"
#include "support/EventFile.h"
#include "support/Support.h"

namespace vl::simulation {

namespace {

namespace fs = std::filesystem;

constexpr int kInterval = 10;

constexpr std::array kZones = {Zone::Berlin, Zone::NewYork, Zone::Kolkata};

void useZone(Zone zone) {
    setenv("TZ", nameOf(zone), 1);
    tzset();
}

/// Time stands still unless it is turned, but things can happen at a look at it.
class WatchedClock final : public Clock {
public:
    DateTime now() const override {
        if (looks > 0 && --looks == 0) {
            atLook();
        }
        return time;
    }
    DateTime time;
    mutable int looks = 0;  // until `atLook`; 0: it does not come
    std::function<void()> atLook;
};

/// Somebody who is in the middle of a change.
class Holder {
public:
    explicit Holder(const std::string& path)
        : db_(jet::Database::open(path, jet::Access::ReadWrite)), change_(db_) {}

private:
    jet::Database db_;
    jet::Transaction change_;
};

class Life {
public:
    Life(const History& history, std::ostream* trace)
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

    Outcome run(const History& history) {
        for (const Step& step : history.steps) {
            take(step);
            if (!outcome_.wrong.empty()) {
                break;
            }
        }
        outcome_.decisions = oracle_.decisions();
        if (trace_ != nullptr) {
            *trace_ << test::readFile(folder_ / "VLReminders.ledger");
        }
        return outcome_;
    }

private:
    // The computer's clock is off by `skew_`.
    Seconds now() const { return toWall(here_, utc_ + skew_); }
    void pass(Seconds seconds) {
        utc_ += seconds;
        clock_.time = dateTime(now());
    }

    void start() {
        program_.reset();
        program_ = std::make_unique<Program>(file_.path(), folder_.path().string(), clock_);
        program_->load();
        oracle_.started(now(), !hidden_);
        check();
    }

    void check(bool disturbed = false) {
        Check check{now(), now() + kInterval, !hidden_, disturbed, {}};
        program_->tick(kInterval * 1000);
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

    void wait(Seconds seconds) {
        // Long waits are checked now and then only: the rule knows no interval.
        const Seconds stride = std::max<Seconds>(kInterval, seconds / 8);
        for (Seconds left = seconds; left > 0 && outcome_.wrong.empty(); left -= stride) {
            pass(std::min(left, stride));
            check();
        }
    }

    // ---- the host

    void hostWrites(const Step& step) {
        if (isProtected_) {
            protect(false);
        }
        host_.take(step, now(), here_);
        if (isProtected_) {
            protect(true);
        }
    }

    // While the host's file is not there, or somebody has it, it cannot be written.
    void host(const Step& step) {
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

    // ---- the file

    void hide(bool hidden) {
        if (hidden != hidden_ && !holder_) {
            hidden_ = hidden;
            const fs::path shown = file_.path();
            const fs::path away = folder_ / "away";
            fs::rename(hidden ? shown : away, hidden ? away : shown);
        }
    }

    void protect(bool on) {
        fs::permissions(file_.path(), on ? fs::perms::owner_read
                                         : fs::perms::owner_read | fs::perms::owner_write);
    }

    void setProtected(bool on) {
        if (!hidden_ && !holder_) {
            isProtected_ = on;
            protect(on);
        }
    }

    void hold(bool on) {
        if (!on) {
            holder_.reset();
        } else if (!holder_ && !hidden_ && !isProtected_) {
            holder_ = std::make_unique<Holder>(file_.path());
        }
    }

    void travel(const Step& step) {
        if (hidden_ || holder_ || isProtected_) {
            return;
        }
        const Zone there = here_;
        here_ = kZones[static_cast<std::size_t>(step.a) % kZones.size()];
        useZone(here_);
        pass(0);
        oracle_.travelled(here_);
        if (step.c % 4 == 0) {
            host_.keepAsWritten(there, here_);
            oracle_.keptAsWritten(there);
        } else {
            host_.writeAnew(now(), here_);
        }
        check();  // nobody acts in that moment
    }

    // ---- the user

    std::optional<Listing> listedRow(int which) const {
        std::vector<Listing> rows;
        for (const auto& [GUID, row] : program_->rows()) {
            if (program_->listed().contains(GUID)) {
                rows.push_back(row);
            }
        }
        return rows.empty() ? std::nullopt
                            : std::optional(rows[static_cast<std::size_t>(which) % rows.size()]);
    }

    // An occurrence of these days, of an event that the views show.
    std::optional<Listing> viewRow(int which, int occurrence) {
        const Host::Kept* kept = host_.chosen(which);
        if (kept == nullptr || !program_->shows(kept->GUID)) {
            return std::nullopt;
        }
        const auto all = kept->plan.occurrences(now() - 2 * kDay, now() + 4 * kDay, here_);
        if (all.empty()) {
            return std::nullopt;
        }
        const Occurrence& one = all[static_cast<std::size_t>(occurrence) % all.size()];
        return Listing{kept->GUID, one.start, one.start - kept->plan.reminders.front() * kMinute};
    }

    void snooze(const std::optional<Listing>& row, int minutes) {
        if (row) {
            ++outcome_.acts;
            program_->snooze(*row, minutes);
            oracle_.acted(*row, Act::Snooze, now(), now() + minutes * kMinute);
        }
    }

    void dismiss(const std::optional<Listing>& row, const Step& step) {
        if (!row) {
            return;
        }
        static constexpr std::array kActs = {
            std::pair{Act::DismissThis, DismissMode::This},
            std::pair{Act::DismissAllButAfter, DismissMode::AllButAfter},
            std::pair{Act::DismissAll, DismissMode::All}};
        const auto& [act, mode] = kActs.at(static_cast<std::size_t>(step.b) % kActs.size());
        const bool done = step.c % 8 == 0;
        ++outcome_.acts;
        program_->dismiss(*row, mode, done);
        oracle_.acted(*row, act, now());
        if (done) {
            oracle_.acted(*row, Act::Done, now());
        }
    }

    // On the event as a whole.
    void other(const Step& step) {
        Host::Kept* kept = host_.chosen(step.a);
        if (kept == nullptr || !program_->shows(kept->GUID)) {
            return;
        }
        const Listing row{kept->GUID, kept->plan.toLocal(kept->plan.start, here_), 0};
        ++outcome_.acts;
        if (step.what == Do::Reactivate) {
            program_->reactivate(row);
            oracle_.reactivated(kept->GUID, now());
        } else if (step.what == Do::HideEvent) {
            program_->hide(row);
        } else if (program_->deleteItem(row)) {
            kept->gone = true;
            oracle_.itemDeleted(kept->GUID);
        }
    }

    // Between ledger and row.
    void kill(const Step& step) {
        if (hidden_ || holder_ || isProtected_) {
            return;
        }
        protect(true);
        dismiss(listedRow(step.a), step);
        program_.reset();
        protect(false);
        start();
    }

    void take(const Step& step) {
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
            case Do::Travel:
                return travel(step);
            case Do::Restart:
                return start();
            case Do::Kill:
                return kill(step);
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
            case Do::ViewDismiss:
                return dismiss(viewRow(step.a, step.c), step);
            default:
                return other(step);
        }
    }

    std::ostream* trace_;
    test::TempFolder folder_;
    Zone here_;
    Seconds utc_;
    Seconds skew_ = 0;
    WatchedClock clock_;
    test::EventFile file_;
    bool hidden_ = false;
    bool isProtected_ = false;
    std::unique_ptr<Holder> holder_;
    std::optional<int> during_;  // looks at the clock before the host's next step
    Oracle oracle_;
    Host host_;
    std::unique_ptr<Program> program_;
    Outcome outcome_;
};

}  // namespace

Outcome live(const History& history, std::ostream* trace) {
    try {
        return Life(history, trace).run(history);
    } catch (const std::exception& error) {  // of the host's own writing
        return {std::string("it ended by an error: ") + error.what() + "\n", 0, 0};
    }
}

}  // namespace vl::simulation
