#include "RecurrenceCase.h"

#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace vl::test {

DateTime isoTime(const std::string& text) {
    const auto number = [&](std::size_t at, std::size_t length) {
        return at < text.size() ? std::stoi(text.substr(at, length)) : 0;
    };
    return DateTime::fromCivil(number(0, 4), number(5, 2), number(8, 2), number(11, 2),
                               number(14, 2), number(17, 2));
}

std::string isoText(DateTime time) {
    const Civil c = time.civil();
    char text[80];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", c.year, c.month, c.day,
                  c.hour, c.minute, c.second);
    return text;
}

std::string isoOrNull(DateTime time) { return time.isZero() ? "null" : isoText(time); }

RecurrenceCase RecurrenceCase::read(const nlohmann::json& json) {
    const auto text = [&](const char* name) {
        return json.contains(name) && json[name].is_string() ? json[name].get<std::string>()
                                                             : std::string();
    };
    const auto orNull = [](const nlohmann::json& value) {
        return value.is_null() ? std::string("null") : isoText(isoTime(value.get<std::string>()));
    };
    RecurrenceCase c;
    c.id = text("id");
    c.title = text("title");
    c.lines = json.at("lines").dump();
    c.start = text("dtstart");
    c.allDay = json.value("allday", false);
    c.zone = text("tz");
    c.localZone = text("local_tz");
    c.from = isoTime(text("from"));
    c.to = isoTime(text("to"));
    c.max = json.at("max").get<std::size_t>();
    for (const auto& instance : json.value("expected", nlohmann::json::array())) {
        c.expected.push_back(orNull(instance));
    }
    for (const auto& next : json.value("next", nlohmann::json::array())) {
        c.nexts.push_back({isoTime(next.at("after").get<std::string>()), orNull(next.at("next"))});
    }
    if (json.contains("last")) {
        c.last = orNull(json["last"]);
    }
    return c;
}

TimeZone RecurrenceCase::local() const {
    const std::string& name = localZone.empty() ? zone : localZone;
    if (name.empty()) {
        return TimeZone::utc();
    }
    const std::optional<TimeZone> found = TimeZone::named(name);
    if (!found) {
        throw std::runtime_error("no zone " + name);
    }
    return *found;
}

Recurrence RecurrenceCase::load() const {
    const TimeZone user = local();
    DateTime begin = isoTime(start);
    if (!allDay && !zone.empty()) {
        begin = user.fromUtc(TimeZone::named(zone).value_or(user).toUtc(begin));
    }
    return Recurrence::load({lines, begin, allDay, zone}, user);
}

std::vector<RecurrenceCase> readCases(const std::filesystem::path& file) {
    std::vector<RecurrenceCase> cases;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.front() == '{') {
            cases.push_back(RecurrenceCase::read(nlohmann::json::parse(line)));
        }
    }
    return cases;
}

}  // namespace vl::test
