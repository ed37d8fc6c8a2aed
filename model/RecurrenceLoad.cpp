#include <algorithm>
#include <utility>

#include "base/ErrorState.h"

#include "Recurrence.h"
#include "RecurrenceLists.h"
#include "RecurrenceText.h"
#include "RecurrenceTextParts.h"
#include "Rule.h"

namespace vl {

using namespace recurrence;

/// Lays what the lines of one event say on its start.
class Recurrence::Reader {
public:
    Reader(Recurrence& target, const Source& source)
        : target_(target),
          start_(startOnWall(target, source)),
          clock_(target.zone_, target.local_, target.allDay_) {}

    void read(const TextParts& parts) {
        for (const RuleLine& line : parts.rules) {
            readRule(line);
        }
        for (const DateLine& line : parts.dates) {
            readDates(line);
        }
        finish();
    }

private:
    /// A value of EXDATE or RDATE on the wall clock of the series.
    struct Value {
        std::int64_t wall;
        bool date;
    };

    static std::int64_t startOnWall(const Recurrence& target, const Source& source) {
        const std::int64_t local = toSeconds(source.start);
        if (target.allDay_) {
            return floorDiv(local, kDaySeconds) * kDaySeconds;
        }
        const std::int64_t utc = toSeconds(source.utc);
        const bool known = !source.utc.isZero() && target.local_.fromUtc(utc) == local;
        return target.zone_.fromUtc(known ? utc : target.local_.toUtc(local));
    }

    void readDates(const DateLine& line) {
        auto& values = line.excludes ? exDates_ : rDates_;
        for (const IcalTime& time : line.times) {
            values.push_back(onWall(time, line.zone ? *line.zone : target_.zone_, line.dates));
        }
    }

    void readRule(const RuleLine& line) {
        if (!line.rejected.empty()) {
            reject(line.rejected);
            return;
        }
        try {
            Rule rule = compileRule(line.parts, start_, target_.allDay_);
            if (line.parts.count != 0 && !rule.neverMatches) {
                rule.end = endByCount(rule, line.parts.count);
            }
            if (line.parts.until) {
                rule.end = std::min(rule.end, untilOnWall(*line.parts.until));
            }
            target_.rules_.push_back(std::move(rule));
        } catch (const Error& error) {
            reject(error.what());
        }
    }

    /// The event keeps its start and its other lines.
    void reject(const std::string& why) {
        trace(why);
        target_.rejected_ = true;
    }

    std::int64_t untilOnWall(const IcalTime& until) const {
        if (target_.allDay_) {
            return dateOf(until) * kDaySeconds;
        }
        if (!until.hasTime) {
            return until.seconds() + kDaySeconds - 1;
        }
        return until.utc ? target_.zone_.fromUtc(until.seconds()) : until.seconds();
    }

    /// The day that a value means on an all-day event: midnight UTC is a date that some service
    /// wrote as a moment.
    std::int64_t dateOf(const IcalTime& time) const {
        if (!time.utc || time.second == 0) {
            return time.day;
        }
        return floorDiv(target_.zone_.fromUtc(time.seconds()), kDaySeconds);
    }

    Value onWall(const IcalTime& time, const TimeZone& zone, bool date) const {
        if (date || !time.hasTime) {
            return {time.day * kDaySeconds, true};
        }
        if (target_.allDay_) {
            return {dateOf(time) * kDaySeconds, true};
        }
        if (time.utc) {
            return {target_.zone_.fromUtc(time.seconds()), false};
        }
        const bool own = zone.same(target_.zone_);
        return {own ? time.seconds() : target_.zone_.fromUtc(zone.toUtc(time.seconds())), false};
    }

    void finish() {
        target_.start_ = clock_.toLocal(start_);
        target_.startKept_ = target_.start_ <= kLastMoment;
        if (!exDates_.empty() || !rDates_.empty()) {
            target_.lists_ = makeLists();
        }
        setBounds();
    }

    std::shared_ptr<const RecurrenceLists> makeLists() {
        auto lists = std::make_shared<RecurrenceLists>();
        for (const Value& value : exDates_) {
            const bool day = value.date && !target_.allDay_;
            lists->exDates.push_back(fromSeconds(day ? value.wall : clock_.toLocal(value.wall)));
            if (day) {
                lists->exDays.push_back(floorDiv(value.wall, kDaySeconds));
            } else {
                lists->exMoments.push_back(clock_.toUtc(value.wall));
            }
        }
        std::sort(lists->exMoments.begin(), lists->exMoments.end());
        std::sort(lists->exDays.begin(), lists->exDays.end());
        std::sort(lists->exDates.begin(), lists->exDates.end());
        for (const Value& value : rDates_) {
            const bool day = value.date && !target_.allDay_;
            const std::int64_t wall = value.wall + (day ? floorMod(start_, kDaySeconds) : 0);
            const std::int64_t local = clock_.toLocal(wall);
            lists->rDates.push_back(fromSeconds(local));
            if (local <= kLastMoment && !lists->excludes(wall, clock_)) {
                lists->added.push_back(local);
            }
        }
        std::sort(lists->rDates.begin(), lists->rDates.end());
        std::sort(lists->added.begin(), lists->added.end());
        target_.startKept_ = target_.startKept_ && !lists->excludes(start_, clock_);
        return lists;
    }

    /// Two days more on each side cover every pair of zones and every gap.
    void setBounds() {
        constexpr std::int64_t kMargin = 2 * kDaySeconds;
        target_.earliest_ = start_ - kMargin;
        target_.latest_ = start_ + kMargin;
        for (const Rule& rule : target_.rules_) {
            target_.latest_ = std::max(target_.latest_, rule.end + kMargin);
        }
        if (target_.lists_ && !target_.lists_->added.empty()) {
            target_.earliest_ = std::min(target_.earliest_, target_.lists_->added.front());
            target_.latest_ = std::max(target_.latest_, target_.lists_->added.back());
        }
        target_.latest_ = std::min(target_.latest_, kLastMoment);
    }

    Recurrence& target_;
    std::int64_t start_;  // wall clock of the series
    LocalClock clock_;
    std::vector<Value> exDates_;
    std::vector<Value> rDates_;
};

Recurrence Recurrence::load(const Source& source, const RecurrenceText& text,
                            const TimeZone& local) {
    Recurrence loaded;
    loaded.local_ = local;
    loaded.zone_ = local;
    if (!source.zone.empty()) {
        loaded.zone_ = TimeZone::named(source.zone).value_or(local);
    }
    loaded.allDay_ = source.allDay;
    Reader(loaded, source).read(text.parts());
    return loaded;
}

Recurrence Recurrence::load(const Source& source, const TimeZone& local, std::string* RRULE) {
    const RecurrenceText text(source.lines);
    if (RRULE != nullptr) {
        *RRULE = text.RRULE();
    }
    return load(source, text, local);
}

}  // namespace vl
