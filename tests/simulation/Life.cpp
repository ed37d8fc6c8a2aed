// Lives through a history: host, program, user and oracle side by side.
#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>

#include "Calendar.h"
#include "History.h"
#include "Oracle.h"
#include "Program.h"
#include "support/EventFile.h"
#include "support/ManualClock.h"
#include "support/Support.h"

namespace vl::simulation {

namespace {

namespace fs = std::filesystem;

constexpr int kInterval = 10;

const std::array<std::vector<int>, 8> kReminders = {
    {{15}, {10, 60}, {0}, {-20}, {5, 30, 1440}, {1, -10, -60}, {120}, {30, 0, -5, 600, 2}}};

struct Kept {
    std::string GUID;
    std::string id;
    Plan plan;
    bool gone = false;
};

class Life {
public:
    explicit Life(const History& history)
        : utc_(toUtc(kHere,
                     dateOf(history.year, history.month, history.day) + history.minute * kMinute)),
          clock_(dateTime(toWall(kHere, utc_))),
          file_((folder_ / "Velmora.RemindDB").string()) {
        start();
    }

    Outcome run(const History& history) {
        for (const Step& step : history.steps) {
            step_ = &step;
            take(step);
            if (!outcome_.wrong.empty()) {
                break;
            }
        }
        outcome_.decisions = oracle_.decisions();
        return outcome_;
    }

private:
    Seconds now() const { return toWall(kHere, utc_) + skew_; }
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

    void check() {
        Check check{now(), now() + kInterval, !hidden_, {}};
        oracle_.checking(check);
        program_->tick(kInterval * 1000);
        check.taken = program_->takeNew();
        outcome_.wrong = oracle_.verdict(check, program_->listed());
    }

    void wait(Seconds seconds) {
        // Long waits are checked at random moments: the rule knows no interval.
        const Seconds stride = std::max<Seconds>(kInterval, seconds / 8);
        for (Seconds left = seconds; left > 0 && outcome_.wrong.empty(); left -= stride) {
            pass(std::min(left, stride));
            check();
        }
    }

    Kept* chosen(int which, bool series) {
        std::vector<Kept*> fitting;
        for (Kept& kept : kept_) {
            if (!kept.gone && (kept.plan.isSeries() || !series)) {
                fitting.push_back(&kept);
            }
        }
        return fitting.empty() ? nullptr
                               : fitting[static_cast<std::size_t>(which) % fitting.size()];
    }

    void write(const Kept& kept) {
        file_.put(*rowOf(kept.plan, kept.GUID, kept.id, now() + hostOff_));
        oracle_.written(kept.GUID, kept.id, kept.plan);
    }

    Kept& add(Plan plan) {
        const std::string number = std::to_string(100 + kept_.size());
        kept_.push_back({"{A0000000-0000-0000-0000-000000000" + number + "}", "e" + number,
                         std::move(plan), false});
        write(kept_.back());
        return kept_.back();
    }

    static std::vector<int> remindersOf(int which) {
        return kReminders[static_cast<std::size_t>(which) % kReminders.size()];
    }

    void addSeries(const Step& step) {
        Plan plan;
        plan.zone = step.c % 3 == 0 ? Zone::NewYork : kHere;
        plan.everyDays = std::array{1, 2, 7, 14}[static_cast<std::size_t>(step.c / 3) % 4];
        plan.count = step.c / 12 % 3 == 0 ? 1 + step.c / 36 % 10 : 0;
        const Seconds first = now() + step.a * kMinute - (step.c / 100) * plan.everyDays * kDay;
        plan.start = toWall(plan.zone, toUtc(kHere, first));
        plan.length = (step.b % 90) * kMinute;
        plan.reminders = remindersOf(step.b);
        add(std::move(plan));
    }

    std::optional<Occurrence> occurrenceOf(const Kept& series, int which) const {
        const auto next = series.plan.occurrences(now() - kDay, now() + 20 * kDay);
        return next.empty() ? std::nullopt
                            : std::optional(next[static_cast<std::size_t>(which) %
                                                 std::min<std::size_t>(next.size(), 4)]);
    }

    void except(const Step& step, bool cancelled) {
        Kept* series = chosen(step.a, true);
        const auto one = series ? occurrenceOf(*series, step.b) : std::nullopt;
        const bool taken = !one || std::any_of(kept_.begin(), kept_.end(), [&](const Kept& other) {
            return other.plan.master == series->id && other.plan.replaces == one->start;
        });
        if (taken) {
            return;
        }
        Plan plan;
        plan.start = one->start + step.c * kMinute;
        plan.length = series->plan.length;
        plan.reminders = series->plan.reminders;
        plan.replaces = one->start;
        plan.master = series->id;
        plan.cancelled = cancelled;
        add(std::move(plan));
    }

    void exclude(const Step& step) {
        Kept* series = chosen(step.a, true);
        if (const auto one = series ? occurrenceOf(*series, step.b) : std::nullopt) {
            series->plan.excluded.insert(one->key);
            write(*series);
        }
    }

    void move(const Step& step) {
        Kept* kept = chosen(step.a, false);
        // What replaced occurrences of a series at other times would mean, only the host knows.
        const bool isAhead =
            kept && kept->plan.start > now() && kept->plan.start + step.b * kMinute > now();
        if (isAhead && !kept->plan.isSeries()) {
            kept->plan.start += step.b * kMinute;
            write(*kept);
        }
    }

    void remove(const Step& step) {
        if (Kept* kept = chosen(step.a, false)) {
            kept->gone = true;
            file_.change(kept->GUID, {{"Deleted", true}});
            oracle_.deleted(kept->GUID);
        }
    }

    void act(const Step& step) {
        std::vector<Listing> rows;
        for (const auto& [GUID, row] : program_->rows()) {
            if (program_->listed().contains(GUID)) {
                rows.push_back(row);
            }
        }
        if (rows.empty()) {
            return;
        }
        const Listing row = rows[static_cast<std::size_t>(step.a) % rows.size()];
        ++outcome_.acts;
        if (step.what == Do::Snooze) {
            program_->snooze(row, step.b);
            oracle_.acted(row, Act::Snooze, now(), now() + step.b * kMinute);
            return;
        }
        static constexpr std::array kActs = {
            std::pair{Act::DismissThis, DismissMode::This},
            std::pair{Act::DismissAllButAfter, DismissMode::AllButAfter},
            std::pair{Act::DismissAll, DismissMode::All}};
        const auto& [act, mode] = kActs.at(static_cast<std::size_t>(step.b) % kActs.size());
        const bool done = step.c % 8 == 0;
        program_->dismiss(row, mode, done);
        oracle_.acted(row, act, now());
        if (done) {
            oracle_.acted(row, Act::Done, now());
        }
    }

    void hide(bool hidden) {
        if (hidden != hidden_) {
            hidden_ = hidden;
            const fs::path shown = file_.path();
            const fs::path away = folder_ / "away";
            fs::rename(hidden ? shown : away, hidden ? away : shown);
        }
    }

    void take(const Step& step) {
        // While the host's file is not there it cannot be written either.
        const bool writes = step.what >= Do::AddSingle && step.what <= Do::Delete;
        const bool excepts = step.what == Do::Except || step.what == Do::Cancel;
        if ((writes && hidden_) || (excepts && !Program::kRemembers)) {
            return;
        }
        switch (step.what) {
            case Do::Wait:
                wait(step.a);
                break;
            case Do::Check:
                wait(kInterval);
                break;
            case Do::Sleep:
                pass(step.a);
                check();
                break;
            case Do::AddSingle: {
                Plan plan;
                plan.start = now() + step.a * kMinute;
                plan.length = (step.c % 120) * kMinute;
                plan.reminders = remindersOf(step.b);
                add(std::move(plan));
                break;
            }
            case Do::AddSeries:
                addSeries(step);
                break;
            case Do::Move:
                move(step);
                break;
            case Do::Touch:
                if (Kept* kept = chosen(step.a, false)) {
                    write(*kept);
                }
                break;
            case Do::Except:
                except(step, false);
                break;
            case Do::Cancel:
                except(step, true);
                break;
            case Do::Exclude:
                exclude(step);
                break;
            case Do::Delete:
                remove(step);
                break;
            case Do::HostClock:
                hostOff_ = step.a;
                break;
            case Do::TurnClock:
                skew_ += step.a;
                pass(0);
                break;
            case Do::Restart:
                start();
                break;
            case Do::Snooze:
            case Do::Dismiss:
                act(step);
                break;
            case Do::HideFile:
                hide(true);
                break;
            case Do::ShowFile:
                hide(false);
                break;
            default:
                break;
        }
    }

    test::TempFolder folder_;
    Seconds utc_;
    Seconds skew_ = 0;     // the computer's clock is off by this
    Seconds hostOff_ = 0;  // and the host's by this more
    test::ManualClock clock_;
    test::EventFile file_;
    bool hidden_ = false;
    std::vector<Kept> kept_;
    Oracle oracle_{Program::kRemembers};
    std::unique_ptr<Program> program_;
    const Step* step_ = nullptr;
    Outcome outcome_;
};

}  // namespace

Outcome live(const History& history) { return Life(history).run(history); }

}  // namespace vl::simulation
