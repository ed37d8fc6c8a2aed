#include "Recurrence.h"

#include <algorithm>
#include <utility>

#include "RecurrenceLists.h"
#include "RuleWalk.h"

namespace vl {

using namespace recurrence;

namespace {

thread_local std::uint64_t workOfThread = 0;

// Farther than any two zones' clocks are apart, and longer than any gap.
constexpr std::int64_t kWidest = 2 * kDaySeconds;

/// A window in local time, and what is found in it.
struct Window {
    std::int64_t from;
    std::int64_t to;
    std::size_t max;
    std::int64_t start;  ///< the event's own, which is in the result already; local
    const RecurrenceLists* lists;
    std::vector<DateTime>& out;
    bool sorted = true;
    std::int64_t last = std::numeric_limits<std::int64_t>::min();

    void add(std::int64_t local) {
        sorted = sorted && local > last;
        last = std::max(last, local);
        out.push_back(fromSeconds(local));
    }
};

/// Takes the instances of one rule into a window.
class Collector {
public:
    static constexpr bool kWholeDays = false;

    Collector(const Rule& rule, Window& window, LocalClock& clock)
        : time_(rule.time), window_(window), clock_(clock) {}

    bool days(DayChunk chunk) {
        for (std::uint32_t rest = chunk.mask; rest != 0; rest &= rest - 1) {
            if (!moment((chunk.firstDay + std::countr_zero(rest)) * kDaySeconds + time_)) {
                return false;
            }
        }
        return true;
    }

    bool moment(std::int64_t wall) {
        const std::int64_t local = clock_.toLocal(wall);
        if (local < window_.from || local > window_.to || local == window_.start ||
            (window_.lists != nullptr && window_.lists->excludes(wall, clock_))) {
            return true;
        }
        window_.add(local);
        // One that is not later than all before it may be a double of one of them.
        taken_ += local > last_ ? 1 : 0;
        last_ = std::max(last_, local);
        return taken_ < window_.max || earlierFollows(wall);
    }

private:
    /// Beyond the end of the stretch, where clocks change, a later wall time can be an earlier
    /// local time than the last one taken.
    bool earlierFollows(std::int64_t wall) const {
        LocalClock ahead = clock_;
        while (ahead.stretchEnd() < wall + kWidest) {
            const std::int64_t begin = ahead.stretchEnd();
            if (ahead.toLocal(begin) <= last_) {
                return true;
            }
        }
        return false;
    }

    std::int64_t time_;
    Window& window_;
    LocalClock& clock_;
    std::size_t taken_ = 0;
    std::int64_t last_ = std::numeric_limits<std::int64_t>::min();
};

void collect(const Rule& rule, Window& window, LocalClock& clock) {
    // Where clocks do not change around an end of the window, its wall time is known exactly.
    const auto onWall = [&clock](std::int64_t local, std::int64_t otherwise) {
        clock.toLocal(local);
        const bool sure =
            clock.stretchBegin() <= local - kWidest && local + kWidest < clock.stretchEnd();
        return sure ? local - clock.shift() : otherwise;
    };
    const std::int64_t upper = onWall(window.to, window.to + kWidest);
    const std::int64_t lower = onWall(window.from, window.from - kWidest);
    Collector collector(rule, window, clock);
    RuleWalk<Collector> walk(rule, collector);
    walk.run(lower, upper);
    workOfThread += walk.steps;
}

constexpr std::int64_t kCalendarCycle = std::int64_t{400} * 366 * kDaySeconds;

/// About how long a rule takes from one instance to the next, at least.
std::int64_t shortestStep(const Rule& rule) {
    std::int64_t unit = rule.unit();
    if (rule.frequency > Frequency::Daily) {
        unit *= rule.frequency == Frequency::Weekly    ? 7
                : rule.frequency == Frequency::Monthly ? 31
                                                       : 366;
    }
    return std::min(unit * rule.interval, kCalendarCycle);
}

}  // namespace

Recurrence::Recurrence() : zone_(TimeZone::utc()), local_(zone_) {}
Recurrence::Recurrence(const Recurrence&) = default;
Recurrence::Recurrence(Recurrence&&) noexcept = default;
Recurrence& Recurrence::operator=(const Recurrence&) = default;
Recurrence& Recurrence::operator=(Recurrence&&) noexcept = default;
Recurrence::~Recurrence() = default;

const std::vector<DateTime>& Recurrence::ExDates() const noexcept {
    static const std::vector<DateTime> none;
    return lists_ ? lists_->exDates : none;
}

const std::vector<DateTime>& Recurrence::RDates() const noexcept {
    static const std::vector<DateTime> none;
    return lists_ ? lists_->rDates : none;
}

bool Recurrence::repeats() const noexcept {
    return !rules_.empty() || (lists_ && !lists_->rDates.empty());
}

bool Recurrence::endless() const noexcept {
    return std::any_of(rules_.begin(), rules_.end(), [](const Rule& rule) { return rule.endless; });
}

bool Recurrence::excludes(DateTime local) const {
    if (!lists_) {
        return false;
    }
    const std::int64_t wall = toSeconds(toWall(local));
    LocalClock clock(zone_, local_, allDay_);
    return lists_->excludes(allDay_ ? floorDiv(wall, kDaySeconds) * kDaySeconds : wall, clock);
}

std::uint64_t Recurrence::workDone() noexcept { return workOfThread; }

void Recurrence::between(DateTime from, DateTime to, std::size_t max,
                         std::vector<DateTime>& out) const {
    out.clear();
    const std::int64_t first = std::max(toSeconds(from), earliest_);
    const std::int64_t last = std::min(toSeconds(to), latest_);
    if (first > last || max == 0) {
        return;
    }
    Window window{first, last, max, start_, lists_.get(), out};
    if (startKept_ && first <= start_ && start_ <= last) {
        window.add(start_);
    }
    if (lists_) {
        for (const std::int64_t added : lists_->added) {
            if (first <= added && added <= last) {
                window.add(added);
            }
        }
    }
    if (!rules_.empty()) {
        LocalClock clock(zone_, local_, allDay_);
        for (const Rule& rule : rules_) {
            collect(rule, window, clock);
        }
    }
    if (!window.sorted) {
        std::sort(out.begin(), out.end());
        out.erase(std::unique(out.begin(), out.end()), out.end());
    }
    if (out.size() > max) {
        out.resize(max);
    }
}

std::vector<DateTime> Recurrence::between(DateTime from, DateTime to, std::size_t max) const {
    std::vector<DateTime> out;
    between(from, to, max, out);
    return out;
}

DateTime Recurrence::next(DateTime after) const {
    std::vector<DateTime> found;
    between(fromSeconds(toSeconds(after) + 1), fromSeconds(kLastMoment), 1, found);
    return found.empty() ? DateTime() : found.front();
}

DateTime Recurrence::lastUpTo(std::int64_t end) const {
    std::int64_t span = kCalendarCycle;
    for (const Rule& rule : rules_) {
        span = std::min(span, 2 * shortestStep(rule));
    }
    std::vector<DateTime> found;
    end = std::min(end, latest_);
    // Each stretch looked at is four times as long as the one after it, so sparse rules end soon
    // and dense ones never fill a long list.
    while (end >= earliest_) {
        const std::int64_t begin = std::max(end - span, earliest_);
        between(fromSeconds(begin), fromSeconds(end), std::numeric_limits<std::size_t>::max(),
                found);
        if (!found.empty()) {
            return found.back();
        }
        end = begin - 1;
        span = std::min(4 * span, kLastMoment);
    }
    return {};
}

DateTime Recurrence::previous(DateTime before) const { return lastUpTo(toSeconds(before) - 1); }

DateTime Recurrence::last() const { return endless() ? DateTime() : lastUpTo(latest_); }

DateTime Recurrence::toWall(DateTime local) const {
    return !hasOwnZone() ? local : zone_.fromUtc(local_.toUtc(local));
}

DateTime Recurrence::fromWall(DateTime wall) const {
    return !hasOwnZone() ? wall : local_.fromUtc(zone_.toUtc(wall));
}

}  // namespace vl
