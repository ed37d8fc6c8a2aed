// The occurrences of an event.
#include <algorithm>
#include <string_view>

#include <nlohmann/json.hpp>

#include "app/Timestamps.h"
#include "events/GenCollection.h"
#include "model/Recurrence.h"
#include "model/RecurrenceText.h"
#include "model/calEvent.h"

namespace vl {

namespace {

// Picks a text inside "start" out of a JSON text without building a tree, and stops there.
class StartMember final : public nlohmann::json_sax<nlohmann::json> {
public:
    explicit StartMember(std::string_view name) : name_(name) {}

    std::string text;

    bool key(string_t& name) override {
        here_ = (depth_ == 1 && name == "start") || (depth_ == 2 && inStart_ && name == name_);
        return true;
    }
    bool string(string_t& value) override {
        if (here_ && depth_ == 2) {
            text = value;
            return false;
        }
        return scalar();
    }
    bool start_object(std::size_t) override {
        inStart_ = inStart_ || (here_ && depth_ == 1);
        return open();
    }
    bool start_array(std::size_t) override { return open(); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }
    bool null() override { return scalar(); }
    bool boolean(bool) override { return scalar(); }
    bool number_integer(number_integer_t) override { return scalar(); }
    bool number_unsigned(number_unsigned_t) override { return scalar(); }
    bool number_float(number_float_t, const string_t&) override { return scalar(); }
    bool binary(binary_t&) override { return scalar(); }
    bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception&) override {
        return false;
    }

private:
    bool scalar() {
        here_ = false;
        return true;
    }
    bool open() {
        here_ = false;
        ++depth_;
        return true;
    }
    // After "start" nothing else is of interest.
    bool close() { return !(--depth_ == 1 && inStart_); }

    std::string_view name_;
    int depth_ = 0;
    bool here_ = false;     // the value that follows is the one looked for
    bool inStart_ = false;  // inside the object "start"
};

// Most series have none: these share one, which like all of them is never changed in place.
std::shared_ptr<GenCollection> collectionOf(const std::vector<DateTime>& dates) {
    static const auto kNone = std::make_shared<GenCollection>();
    if (dates.empty()) {
        return kNone;
    }
    auto collection = std::make_shared<GenCollection>();
    for (const DateTime date : dates) {
        collection->Add(date);
    }
    return collection;
}

// The moment that "start.dateTime" names, in UTC; without an offset it is on the clock of `zone`.
DateTime utcOfStart(std::string_view json, const TimeZone& zone) {
    StartMember moment("dateTime");
    nlohmann::json::sax_parse(json, &moment);
    const std::string& text = moment.text;
    const DateTime written = parseTimestamp(text, false);
    if (text.ends_with('Z') || text.ends_with('z')) {
        return written;
    }
    constexpr std::size_t kOffset = 6;  // "+02:00"
    const std::size_t at = text.size() - std::min(text.size(), kOffset);
    if (text.size() <= kOffset || text[at + 3] != ':' || (text[at] != '+' && text[at] != '-')) {
        return zone.toUtc(written);
    }
    const int minutes = std::stoi(text.substr(at + 1, 2)) * 60 + std::stoi(text.substr(at + 4, 2));
    return written.addMinutes(text[at] == '+' ? -minutes : minutes);
}

// Times that clocks skip are those at which they do: moved forward they would be later than times
// that come after them.
DateTime inOrder(const TimeZone& zone, DateTime local) {
    const DateTime moment = zone.toUtc(local);
    if (zone.fromUtc(moment) < local.addMinutes(1)) {
        return moment;
    }
    constexpr std::int64_t kSecond = 1000;
    return DateTime::fromMilliseconds(kSecond *
                                      zone.utcStretch(moment.milliseconds() / kSecond).begin);
}

}  // namespace

std::string calEvent::zoneName() const {
    StartMember zone("timeZone");
    if (!IsAllDayEvent && !JSON.empty()) {
        nlohmann::json::sax_parse(JSON.view(), &zone);
    }
    return !zone.text.empty() && TimeZone::named(zone.text) ? zone.text : std::string();
}

void calEvent::LoadRecurrence() {
    if (recurrence.empty()) {
        LoadRecurrence(TimeZone::utc());  // not asked for
    } else {
        LoadRecurrence(TimeZone::local());
    }
}

void calEvent::LoadRecurrence(const TimeZone& local) {
    const ErrScope scope;
    attempt([&] { LoadRecurrence(local, RecurrenceText::ofColumn(recurrence)); });
}

void calEvent::LoadRecurrence(const TimeZone& local, const RecurrenceText& text) {
    const ErrScope scope;
    RRULE.clear();
    ExDates.reset();
    RDates.reset();
    compiled_.reset();
    if (!recurrence.empty()) {
        Recurrence::Source source{{}, StartDateTime, IsAllDayEvent, {}};
        attempt([&] { source.zone = zoneName(); });
        attempt([&] {
            if (!source.zone.empty()) {
                source.utc = utcOfStart(JSON, TimeZone::named(source.zone).value_or(local));
            }
        });
        attempt([&] {
            compiled_ = std::make_shared<const Recurrence>(Recurrence::load(source, text, local));
            ExDates = collectionOf(compiled_->ExDates());
            RDates = collectionOf(compiled_->RDates());
            RRULE = text.RRULE();
        });
    }
    isRecurrenceLoaded = true;
}

bool calEvent::IsRepeating() const { return compiled_ && compiled_->repeats(); }

std::vector<DateTime> calEvent::ICalRecEvents(DateTime dStart, DateTime dEnd,
                                              std::size_t iMax) const {
    const ErrScope scope;
    std::vector<DateTime> starts;
    attempt([&] {
        if (compiled_) {
            starts = compiled_->between(dStart, dEnd, iMax);
        } else if (iMax > 0 && dStart <= StartDateTime && StartDateTime <= dEnd) {
            starts.push_back(StartDateTime);
        }
    });
    return starts;
}

std::vector<DateTime> calEvent::ICalDelExceptions(std::vector<DateTime> dates) const {
    const ErrScope scope;
    if (compiled_) {
        attempt([&] { std::erase_if(dates, [&](DateTime d) { return compiled_->excludes(d); }); });
    }
    return dates;
}

DateTime calEvent::NextInstance(DateTime dCurrent) const {
    const ErrScope scope;
    DateTime next;
    attempt([&] {
        if (compiled_) {
            next = compiled_->next(dCurrent);
        } else if (StartDateTime > dCurrent) {
            next = StartDateTime;
        }
    });
    return next;
}

DateTime calEvent::PreviousInstance(DateTime dCurrent) const {
    const ErrScope scope;
    DateTime previous;
    attempt([&] {
        if (compiled_) {
            previous = compiled_->previous(dCurrent);
        } else if (StartDateTime < dCurrent) {
            previous = StartDateTime;
        }
    });
    return previous;
}

DateTime calEvent::LastInstance() const {
    const ErrScope scope;
    DateTime last = compiled_ ? DateTime() : StartDateTime;
    attempt([&] {
        if (compiled_) {
            last = compiled_->last();
        }
    });
    return last;
}

bool calEvent::IsExcluded(DateTime start) const { return ICalDelExceptions({start}).empty(); }

DateTime calEvent::EndOf(DateTime start) const {
    const std::int64_t length = EndDateTime.milliseconds() - StartDateTime.milliseconds();
    const DateTime end = DateTime::fromMilliseconds(
        start.milliseconds() + (EndDateTime.isZero() ? 0 : std::max(length, std::int64_t{0})));
    return IsAllDayEvent ? end.addDays(1) : end;
}

// Of an event that is no series. Most texts name no zone, and a look is cheaper than a parser.
std::optional<TimeZone> calEvent::zoneOfOne() const {
    if (JSON.view().find("timeZone") == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string name = zoneName();
    return name.empty() ? std::nullopt : TimeZone::named(name);
}

DateTime calEvent::ToWall(DateTime local) const {
    if (compiled_ || local.isZero()) {
        return local.isZero() ? local : compiled_->toWall(local);
    }
    const auto zone = zoneOfOne();
    return zone ? zone->fromUtc(TimeZone::local().toUtc(local)) : local;
}

DateTime calEvent::FromWall(DateTime wall) const {
    if (compiled_ || wall.isZero()) {
        return wall.isZero() ? wall : compiled_->fromWall(wall);
    }
    const auto zone = zoneOfOne();
    return zone ? TimeZone::local().fromUtc(zone->toUtc(wall)) : wall;
}

DateTime calEvent::ToMoment(DateTime local) const {
    return HasOwnZone() && !local.isZero() ? inOrder(TimeZone::local(), local) : local;
}

DateTime calEvent::FromMoment(DateTime moment) const {
    return HasOwnZone() && !moment.isZero() ? TimeZone::local().fromUtc(moment) : moment;
}

bool calEvent::HasOwnZone() const {
    return compiled_ ? compiled_->hasOwnZone() : zoneOfOne().has_value();
}

std::string calEvent::RecurrenceInWords() const {
    const ErrScope scope;
    std::string words;
    attempt([&] { words = compiled_ ? compiled_->inWords(RRULE) : std::string(); });
    return words;
}

}  // namespace vl
