#include <algorithm>
#include <optional>
#include <ostream>

#include "Command.h"
#include "Format.h"
#include "Input.h"
#include "app/TimeZone.h"
#include "base/ErrorState.h"
#include "model/JsonDepth.h"
#include "model/Recurrence.h"

namespace vl::tools {

namespace {

std::string textAt(const Json& object, const char* name) {
    const auto member = object.find(name);
    return member != object.end() && member->is_string() ? member->get<std::string>()
                                                         : std::string();
}

DateTime timeAt(const Json& object, const char* name) {
    const std::string text = textAt(object, name);
    if (text.empty()) {
        throw Error(ErrNo::TypeMismatch, std::string("\"") + name + "\" is missing");
    }
    return wallTime(text);
}

// Nobody's clock changes where neither zone is named.
TimeZone localZone(const std::string& local, const std::string& series) {
    const std::string& name = local.empty() ? series : local;
    if (name.empty()) {
        return TimeZone::utc();
    }
    if (auto zone = TimeZone::named(name)) {
        return *std::move(zone);
    }
    throw Error(ErrNo::NotFound, "there is no time zone \"" + name + "\"");
}

Recurrence seriesOf(const Json& object) {
    const bool allDay = object.value("allday", false);
    const std::string zone = textAt(object, "tz");
    const TimeZone local = localZone(textAt(object, "local_tz"), zone);
    DateTime start = timeAt(object, "dtstart");
    DateTime utc;
    if (!allDay && !zone.empty()) {
        utc = TimeZone::named(zone).value_or(local).toUtc(start);
        start = local.fromUtc(utc);
    }
    const auto lines = object.find("lines");
    if (lines == object.end() || !lines->is_array()) {
        throw Error(ErrNo::TypeMismatch, "\"lines\" is no array");
    }
    return Recurrence::load({lines->dump(), start, allDay, zone, utc}, local);
}

Json orNull(DateTime time) { return time.isZero() ? Json() : Json(wallText(time)); }

std::size_t mostOf(const Json& object) {
    const auto most = object.find("max");
    if (most == object.end()) {
        return SIZE_MAX;
    }
    if (!most->is_number_unsigned()) {
        throw Error(ErrNo::TypeMismatch, "\"max\" is no whole number from 0 on");
    }
    return most->get<std::size_t>();
}

void answer(const Json& object, Json& out) {
    const Recurrence series = seriesOf(object);
    Json occurrences = Json::array();
    for (const DateTime time :
         series.between(timeAt(object, "from"), timeAt(object, "to"), mostOf(object))) {
        occurrences.push_back(wallText(time));
    }
    out["occurrences"] = std::move(occurrences);
    out["last"] = orNull(series.last());
    if (const auto asked = object.find("next"); asked != object.end()) {
        Json next = Json::array();
        for (const Json& question : *asked) {
            const DateTime after = timeAt(question, "after");
            next.push_back({{"after", wallText(after)}, {"next", orNull(series.next(after))}});
        }
        out["next"] = std::move(next);
    }
}

std::string answerLine(const std::string& line) {
    Json out;
    try {
        refuseDeepJson(line);
        const Json object = Json::parse(line);
        if (!object.is_object()) {
            throw Error(ErrNo::TypeMismatch, "the line holds no JSON object");
        }
        out["id"] = object.value("id", Json());
        Json found = out;
        answer(object, found);
        out = std::move(found);
    } catch (const Json::exception& e) {
        out["error"] = e.what();
    } catch (const Error& e) {
        out["error"] = e.what();
    }
    return lineOf(out);
}

int run(const Arguments& arguments, const Streams& streams) {
    Input input(arguments, streams);
    for (std::string line; std::getline(input.stream(), line);) {
        if (line.find_first_not_of(" \t\r") != std::string::npos) {
            streams.out << answerLine(line) << '\n';
        }
    }
    return kDone;
}

}  // namespace

Command occurrencesCommand() {
    return {.name = "occurrences",
            .synopsis = "[FILE]",
            .description =
                "when series happen: reads a JSON object a line with \"lines\" (RRULE,\n"
                "EXDATE, RDATE), \"dtstart\", \"from\", \"to\" and maybe \"id\", \"max\",\n"
                "\"allday\", \"tz\", \"local_tz\", \"next\" (a list of {\"after\": TIME});\n"
                "prints a line for each with \"occurrences\" and \"last\", \"next\", or\n"
                "\"error\"; times are local, \"dtstart\" is on the clock of \"tz\"",
            .fewestWords = 0,
            .mostWords = 1,
            .words = "one file at most",
            .flags = {},
            .options = {},
            .run = run};
}

}  // namespace vl::tools
