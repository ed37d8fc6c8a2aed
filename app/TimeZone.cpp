#include "app/TimeZone.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "date/tz.h"

#include "ZoneRule.h"
#include "ZoneTable.h"

namespace vl {

namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kDay = 86'400;
constexpr std::int64_t kUnixEpoch = 25'569 * kDay;  // 1970-01-01 in seconds since 1899-12-30

std::int64_t firstMoment() { return daysFromCivil(kFirstZoneYear, 1, 1) * kDay; }
std::int64_t lastMoment() { return daysFromCivil(kLastZoneYear + 1, 1, 1) * kDay; }

// ---- The system's zone, as the C library knows it

/// What the clocks of the system's zone show minus UTC; none where the C library cannot say.
std::optional<std::int64_t> systemOffset(std::int64_t utc) {
    const auto moment = static_cast<std::time_t>(utc - kUnixEpoch);
    std::tm tm{};
#ifdef _WIN32
    if (localtime_s(&tm, &moment) != 0) {
        return std::nullopt;
    }
#else
    if (localtime_r(&moment, &tm) == nullptr) {
        return std::nullopt;
    }
#endif
    const std::int64_t wall = daysFromCivil(tm.tm_year + 1900LL, tm.tm_mon + 1, tm.tm_mday) * kDay +
                              tm.tm_hour * 3600LL + tm.tm_min * 60LL + tm.tm_sec;
    return wall - utc;
}

/// Where between `low` and `high` the offset stops being `offset`.
std::int64_t changeBetween(std::int64_t low, std::int64_t high, std::int64_t offset) {
    while (high - low > 1) {
        const std::int64_t middle = low + (high - low) / 2;
        (systemOffset(middle) == offset ? low : high) = middle;
    }
    return high;
}

std::shared_ptr<const ZoneTable> readSystemZone() {
    // The shortest time after which a zone came back to an offset is four days (Freetown, 1939).
    constexpr std::int64_t kStep = 3 * kDay;
    std::vector<ClockChange> changes;
    std::int64_t before = firstMoment();
    for (std::int64_t at = before; at < lastMoment(); at += kStep) {
        const std::optional<std::int64_t> offset = systemOffset(at);
        if (!offset) {
            continue;
        }
        if (changes.empty()) {
            changes.push_back({at, *offset});
        }
        while (changes.back().offset != *offset) {
            const std::int64_t change = changeBetween(before, at, changes.back().offset);
            changes.push_back({change, systemOffset(change).value_or(*offset)});
            before = change;
        }
        before = at;
    }
    if (changes.empty()) {
        changes.push_back({firstMoment(), 0});
    }
    return std::make_shared<const ZoneTable>(changes);
}

/// A text that is another one when the system's zone is another one.
std::string systemZoneMark() {
#ifdef _WIN32
    _tzset();
#else
    tzset();
#endif
    const char* variable = std::getenv("TZ");
    std::string mark = variable != nullptr ? std::string("TZ=") + variable : std::string();
    if (variable == nullptr) {
        const fs::path file = "/etc/localtime";
        std::error_code error;
        mark += fs::read_symlink(file, error).string() + '|';
        const fs::file_time_type written = fs::last_write_time(file, error);
        mark += error ? std::string() : std::to_string(written.time_since_epoch().count());
    }
    // Where neither tells them apart, some spread moments do.
    for (int year = 1976; year < 2036; year += 4) {
        for (const int month : {1, 7}) {
            const auto offset = systemOffset(daysFromCivil(year, month, 1) * kDay);
            mark += '|' + std::to_string(offset.value_or(0));
        }
    }
    return mark;
}

// ---- Zones by name

/// The rule in the last line of a zone's file; none where there are no such files.
/// The date library reads the changes a file lists (mostly up to 2037) and not this line.
std::optional<ZoneRule> ruleOfFile(const std::string& name) {
    const char* folder = std::getenv("TZDIR");
    std::ifstream file(fs::path(folder != nullptr ? folder : "/usr/share/zoneinfo") / name,
                       std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    if (bytes.size() < 2 || !bytes.starts_with("TZif") || bytes.back() != '\n') {
        return std::nullopt;
    }
    const std::size_t begin = bytes.rfind('\n', bytes.size() - 2);
    if (begin == std::string::npos) {
        return std::nullopt;
    }
    return ZoneRule::parse(std::string_view(bytes).substr(begin + 1, bytes.size() - begin - 2));
}

std::shared_ptr<const ZoneTable> readZone(const date::time_zone& zone) {
    std::vector<ClockChange> changes;
    std::int64_t at = firstMoment();
    while (at < lastMoment()) {
        const date::sys_info info =
            zone.get_info(date::sys_seconds(std::chrono::seconds(at - kUnixEpoch)));
        changes.push_back({at, info.offset.count()});
        const std::int64_t end = info.end.time_since_epoch().count() + kUnixEpoch;
        if (end <= at) {
            break;
        }
        at = end;
    }
    const ClockChange last = changes.back();
    if (const std::optional<ZoneRule> rule = ruleOfFile(zone.name())) {
        const int year = civilFromDays(last.utc / kDay).year;
        rule->appendChanges(year, kLastZoneYear, last.utc, changes);
    }
    return std::make_shared<const ZoneTable>(changes);
}

DateTime fromSeconds(std::int64_t seconds) { return DateTime::fromMilliseconds(seconds * 1000); }

std::int64_t toSeconds(DateTime time) {
    const std::int64_t ms = time.milliseconds() + 500;
    return ms >= 0 ? ms / 1000 : -((-ms + 999) / 1000);
}

}  // namespace

TimeZone TimeZone::local() {
    static std::mutex mutex;
    static std::string lastMark;
    static std::shared_ptr<const ZoneTable> lastTable;
    const std::lock_guard lock(mutex);
    std::string mark = systemZoneMark();
    if (!lastTable || mark != lastMark) {
        lastTable = readSystemZone();
        lastMark = std::move(mark);
    }
    return TimeZone(lastTable);
}

TimeZone TimeZone::utc() {
    static const auto table =
        std::make_shared<const ZoneTable>(std::vector<ClockChange>{{firstMoment(), 0}});
    return TimeZone(table);
}

std::optional<TimeZone> TimeZone::named(std::string_view ianaName) {
    static std::mutex mutex;
    static std::map<std::string, std::shared_ptr<const ZoneTable>, std::less<>> known;
    static std::set<std::string, std::less<>> unknown;
    const std::lock_guard lock(mutex);
    const auto found = known.find(ianaName);
    if (found != known.end()) {
        return TimeZone(found->second);
    }
    if (unknown.contains(ianaName)) {
        return std::nullopt;
    }
    try {
        const date::time_zone* zone = date::locate_zone(ianaName);
        return TimeZone(known.emplace(std::string(ianaName), readZone(*zone)).first->second);
    } catch (const std::runtime_error&) {
        // The only way to be told that a name is unknown, and a dear one: every event of a calendar
        // may name its zone by the same label.
        constexpr std::size_t kMostUnknown = 100;
        if (unknown.size() < kMostUnknown) {
            unknown.emplace(ianaName);
        }
        return std::nullopt;
    }
}

std::int64_t TimeZone::toUtc(std::int64_t wallSeconds) const noexcept {
    return wallSeconds - wallStretch(wallSeconds).offset;
}

std::int64_t TimeZone::fromUtc(std::int64_t utcSeconds) const noexcept {
    return utcSeconds + utcStretch(utcSeconds).offset;
}

DateTime TimeZone::toUtc(DateTime wall) const noexcept {
    return fromSeconds(toUtc(toSeconds(wall)));
}

DateTime TimeZone::fromUtc(DateTime utc) const noexcept {
    return fromSeconds(fromUtc(toSeconds(utc)));
}

TimeZone::Stretch TimeZone::wallStretch(std::int64_t wallSeconds) const noexcept {
    return table_->wallStretch(wallSeconds);
}

TimeZone::Stretch TimeZone::utcStretch(std::int64_t utcSeconds) const noexcept {
    return table_->utcStretch(utcSeconds);
}

}  // namespace vl
