// An event as the calendar service's event resource, both ways.
#include <algorithm>
#include <vector>

#include <nlohmann/json.hpp>

#include "JsonDepth.h"
#include "app/Timestamps.h"
#include "base/Text.h"
#include "model/calEvent.h"

namespace vl {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kDateLength = 10;  // "2024-05-01"

// Writing needs stack for every array in an array: nobody's event has so many.
bool isTooDeep(const Json& js) {
    constexpr int kDeepest = 500;
    std::vector<const Json*> level = {&js};
    for (int depth = 0; depth < kDeepest; ++depth) {
        std::vector<const Json*> below;
        for (const Json* one : level) {
            for (const Json& member : *one) {
                if (member.is_structured()) {
                    below.push_back(&member);
                }
            }
        }
        if (below.empty()) {
            return false;
        }
        level = std::move(below);
    }
    return true;
}

// Damaged text becomes U+FFFD, so that one bad byte does not cost the whole.
std::string compact(const Json& js) {
    if (js.is_structured() && isTooDeep(js)) {
        throw Error(ErrNo::Overflow, "JSON of an event: nested too deep");
    }
    return js.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// The member at a dotted path; null when it is not there.
const Json* memberAt(const Json& js, std::string_view path) {
    const Json* member = &js;
    for (const std::string_view name : text::split(path, ".")) {
        const auto found = member->find(std::string(name));
        if (found == member->end()) {
            return nullptr;
        }
        member = &*found;
    }
    return member;
}

// Empty when there is no such member, or when it is no text.
std::string textAt(const Json& js, std::string_view path) {
    const Json* member = memberAt(js, path);
    return member != nullptr && member->is_string() ? member->get<std::string>() : std::string();
}

// The service holds the recurrence as an array of lines: its text is what the property keeps.
std::string linesAt(const Json& js, std::string_view path) {
    const Json* member = memberAt(js, path);
    return member != nullptr && member->is_array() ? compact(*member) : textAt(js, path);
}

void putText(Json& js, std::string_view path, const std::string& value) {
    Json* member = &js;
    for (const std::string_view name : text::split(path, ".")) {
        member = &(*member)[std::string(name)];
    }
    *member = value;
}

void putTextUnlessEmpty(Json& js, std::string_view path, const std::string& value) {
    if (!value.empty()) {
        putText(js, path, value);
    }
}

std::string dateText(DateTime d) { return formatTimestamp(d, false).substr(0, kDateLength); }

// "dateTime" with its zone's label, under "start" or "end".
void putMoment(Json& js, const std::string& name, DateTime d) {
    const std::string timestamp = formatTimestamp(d, true);
    putText(js, name + ".dateTime", timestamp);
    putTextUnlessEmpty(js, name + ".timeZone", zoneLabel(timestamp));
}

// The texts of a JSON array, as an array. Throws when `array` is none.
Json textsOf(const std::string& array) {
    Json texts = Json::array();
    refuseDeepJson(array);
    const Json parsed = Json::parse(array);
    if (!parsed.is_array()) {
        throw Error(ErrNo::TypeMismatch, "\"recurrence\" is no array");
    }
    for (const Json& one : parsed) {
        if (one.is_string()) {
            texts.push_back(one);
        }
    }
    return texts;
}

Json objectOf(const std::string& text) {
    refuseDeepJson(text);
    Json object = Json::parse(text);
    if (!object.is_object()) {
        throw Error(ErrNo::TypeMismatch, "\"reminders\" is no object");
    }
    return object;
}

void loadTimes(calEvent& event, const Json& js) {
    std::string start = textAt(js, "start.dateTime");
    event.IsAllDayEvent = start.empty();
    if (event.IsAllDayEvent) {
        start = textAt(js, "start.date");
    }
    const bool toLocal = !event.IsAllDayEvent;
    attempt([&] { event.StartDateTime = parseTimestamp(start, toLocal); });
    attempt([&] {
        event.EndDateTime =
            parseTimestamp(textAt(js, toLocal ? "end.dateTime" : "end.date"), toLocal);
    });
    if (event.IsAllDayEvent) {
        // The service's end is exclusive, the event's is its last day.
        event.EndDateTime = std::max(event.EndDateTime.addDays(-1), event.StartDateTime);
    }
}

void loadOriginalStart(calEvent& event, const Json& js) {
    const std::string moment = textAt(js, "originalStartTime.dateTime");
    const std::string date = textAt(js, "originalStartTime.date");
    if (!moment.empty()) {
        event.RExceptionStartTimeOrig = parseTimestamp(moment, true);
    } else if (!date.empty()) {
        event.RExceptionStartTimeOrig = parseTimestamp(date, false);
    }
}

void saveTimes(const calEvent& event, Json& js) {
    if (event.IsAllDayEvent) {
        attempt([&] { putText(js, "start.date", dateText(event.StartDateTime)); });
        attempt([&] { putText(js, "end.date", dateText(event.EndDateTime.addDays(1))); });
    } else {
        attempt([&] { putMoment(js, "start", event.StartDateTime); });
        attempt([&] { putMoment(js, "end", event.EndDateTime); });
    }
    const DateTime original = event.RExceptionStartTimeOrig;
    if (original.isZero()) {
        return;
    }
    attempt([&] {
        if (original.hasTime()) {
            putText(js, "originalStartTime.dateTime", formatTimestamp(original, true));
        } else {
            putText(js, "originalStartTime.date", dateText(original));
        }
    });
}

}  // namespace

bool calEvent::LoadJSON(const Json& jsEvent) {
    const ErrScope scope;
    attempt([&] { JSON = compact(jsEvent); });
    for (const EventProperty& p : properties()) {
        if (p.json.empty()) {
            continue;
        }
        attempt([&] {
            if (std::holds_alternative<DateTime calEvent::*>(p.member)) {
                setProperty(p, parseTimestamp(textAt(jsEvent, p.json), true));
            } else {
                const bool isLines = p.json == "recurrence";
                setProperty(p, isLines ? linesAt(jsEvent, p.json) : textAt(jsEvent, p.json));
            }
        });
    }
    attempt([&] { loadTimes(*this, jsEvent); });
    attempt([&] { loadOriginalStart(*this, jsEvent); });
    if (!recurrence.empty()) {
        RecurrenceState = 1;
    } else if (!recurringEventId.empty()) {
        RecurrenceState = 3;
    }
    reminders.clear();
    attempt([&] {
        const Json* settings = memberAt(jsEvent, "reminders");
        if (settings != nullptr && settings->is_object()) {
            reminders = compact(*settings);
        }
    });
    if (status == "cancelled") {  // in this spelling only; any other status changes nothing
        deleted = true;
    }
    return false;
}

Json calEvent::SaveJSON() const {
    const ErrScope scope;
    Json js = Json::object();
    attempt([&] { putText(js, "kind", "calendar#event"); });
    attempt([&] { putText(js, "summary", Subject); });
    attempt([&] { putTextUnlessEmpty(js, "description", Body); });
    attempt([&] { putTextUnlessEmpty(js, "location", Location); });
    if (!RRULE.empty()) {  // only what has been read as a rule is written
        attempt([&] { js["recurrence"] = textsOf(recurrence); });
    }
    attempt([&] { putTextUnlessEmpty(js, "recurringEventId", recurringEventId); });
    attempt([&] { putText(js, "etag", etag); });
    attempt([&] { putTextUnlessEmpty(js, "id", id); });
    saveTimes(*this, js);
    if (!reminders.empty()) {
        attempt([&] { js["reminders"] = objectOf(reminders); });
    }
    attempt([&] { putText(js, "status", deleted ? "cancelled" : "confirmed"); });
    return js;
}

}  // namespace vl
