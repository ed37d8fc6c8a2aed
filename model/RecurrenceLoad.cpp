#include <algorithm>
#include <utility>

#include "base/ErrorState.h"

#include "Recurrence.h"
#include "RecurrenceLines.h"
#include "RecurrenceLists.h"
#include "Rule.h"

namespace vl {

using namespace recurrence;

/// Reads the lines of one event into a `Recurrence`.
class Recurrence::Reader {
public:
    Reader(Recurrence& target, const Source& source, std::string* RRULE)
        : target_(target),
          text_(RRULE),
          start_(startOnWall(target, source)),
          clock_(target.zone_, target.local_, target.allDay_) {}

    void read(std::string_view lines) {
        readLines(lines, [this](const ContentLine& line) { readLine(line); });
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

    void readLine(const ContentLine& line) {
        if (line.kind == LineKind::Rule) {
            readRuleLine(line.value);
            return;
        }
        std::optional<TimeZone> zone;
        if (const auto name = parameter(line.parameters, "TZID")) {
            zone = TimeZone::named(*name);
        }
        const auto type = parameter(line.parameters, "VALUE");
        const bool dates = type && equalsUpper(*type, "DATE");
        auto& values = line.kind == LineKind::ExDate ? exDates_ : rDates_;
        Pieces pieces{line.value, ','};
        for (std::string_view piece; pieces.next(piece);) {
            // Of a period only the start counts.
            if (const auto time = readTime(trimmed(piece.substr(0, piece.find('/'))))) {
                values.push_back(onWall(*time, zone ? *zone : target_.zone_, dates));
            }
        }
    }

    void readRuleLine(std::string_view text) {
        if (text_ != nullptr) {
            *text_ += text_->empty() ? "" : "\n";
            *text_ += text;
        }
        try {
            RuleParts parts = readRule(text);
            const std::optional<IcalTime> until = parts.until;
            const std::uint32_t count = parts.count;
            Rule rule = compileRule(std::move(parts), start_, target_.allDay_);
            if (count != 0 && !rule.neverMatches) {
                rule.end = endByCount(rule, count);
            }
            if (until) {
                rule.end = std::min(rule.end, untilOnWall(*until));
            }
            target_.rules_.push_back(std::move(rule));
        } catch (const Error& error) {
            // The event keeps its start and its other lines.
            trace(error.what());
            target_.rejected_ = true;
        }
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
    std::string* text_;   // null: nobody asks for it
    std::int64_t start_;  // wall clock of the series
    LocalClock clock_;
    std::vector<Value> exDates_;
    std::vector<Value> rDates_;
};

Recurrence Recurrence::load(const Source& source, const TimeZone& local, std::string* RRULE) {
    Recurrence loaded;
    loaded.local_ = local;
    loaded.zone_ = local;
    if (!source.zone.empty()) {
        loaded.zone_ = TimeZone::named(source.zone).value_or(local);
    }
    loaded.allDay_ = source.allDay;
    if (RRULE != nullptr) {
        RRULE->clear();
    }
    Reader(loaded, source, RRULE).read(source.lines);
    return loaded;
}

}  // namespace vl
