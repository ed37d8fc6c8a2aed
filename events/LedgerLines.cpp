#include "LedgerLines.h"

#include <algorithm>
#include <utility>

#include "base/ErrorState.h"
#include "base/Text.h"
#include "base/Variant.h"

namespace vl::ledger {

namespace {

struct MutedName {
    Muted muted;
    const char* name;
};
constexpr MutedName kMutedNames[] = {{Muted::ThroughStart, "start"}, {Muted::ForEver, "ever"}};

void put(Json& json, const char* name, DateTime time) {
    if (!time.isZero()) {
        json[name] = formatDateTime(time);
    }
}

DateTime time(const Json& json, const char* name) {
    const auto member = json.find(name);
    return member == json.end() ? DateTime() : parseDateTime(member->get<std::string>());
}

// `"start"` is there also where it is 0: an event without a date has an occurrence, too.
Json occurrenceJson(const OccurrenceState& one) {
    Json json = Json::object();
    json["start"] = formatDateTime(one.start);
    put(json, "end", one.end);
    put(json, "handled", one.handled);
    put(json, "snoozed", one.snoozed);
    for (const auto& [muted, name] : kMutedNames) {
        if (one.muted == muted) {
            json["muted"] = name;
        }
    }
    put(json, "listed", one.listed);
    put(json, "acted", one.acted);
    put(json, "reminder", one.reminder);
    put(json, "local", one.local);
    if (one.spared) {
        json["spared"] = true;
    }
    return json;
}

OccurrenceState occurrenceOf(const Json& json) {
    OccurrenceState one;
    one.start = parseDateTime(json.at("start").get<std::string>());
    one.end = time(json, "end");
    one.handled = time(json, "handled");
    one.snoozed = time(json, "snoozed");
    one.listed = time(json, "listed");
    one.acted = time(json, "acted");
    one.reminder = time(json, "reminder");
    one.local = time(json, "local");
    one.spared = json.value("spared", false);
    for (const auto& [muted, name] : kMutedNames) {
        if (json.value("muted", "") == name) {
            one.muted = muted;
        }
    }
    return one;
}

Json rowJson(const EventState& state) {
    Json row = Json::object();
    for (const auto& [column, note] : state.row) {
        Json texts = note.before;
        texts.push_back(note.after);
        row[column] = std::move(texts);
    }
    return row;
}

decltype(EventState::row) rowOf(const Json& json) {
    decltype(EventState::row) row;
    for (const auto& [column, texts] : json.items()) {
        auto list = texts.get<std::vector<std::string>>();
        if (list.empty()) {
            throw Error(ErrNo::Syntax, "ledger: a note of a column without a text");
        }
        ColumnNote note;
        note.after = std::move(list.back());
        list.pop_back();
        note.before = std::move(list);
        row[column] = std::move(note);
    }
    return row;
}

Json doubtsJson(const EventState& state) {
    Json doubts = Json::object();
    for (const auto& [acted, seen] : state.doubted) {
        Json noted = Json::object();
        put(noted, "seen", seen.local);
        put(noted, "utc", seen.utc);
        doubts[formatDateTime(acted)] = std::move(noted);
    }
    return doubts;
}

decltype(EventState::doubted) doubtsOf(const Json& json) {
    decltype(EventState::doubted) doubts;
    for (const auto& [acted, seen] : json.items()) {
        doubts[parseDateTime(acted)] = {time(seen, "seen"), time(seen, "utc")};
    }
    return doubts;
}

void takeEvent(Content& content, const Json& json) {
    Entry entry{json.at("db").get<std::string>(), json.at("guid").get<std::string>(), {}};
    const std::string key = keyOf(entry.database, entry.GUID);
    const auto known = content.events.find(key);
    if (known != content.events.end() && !json.value("forget", false)) {
        entry.state.occurrences = known->second.state.occurrences;
    }
    EventState& state = entry.state;
    for (const Json& one : json.value("occurrences", Json::array())) {
        const OccurrenceState occurrence = occurrenceOf(one);
        state.at(occurrence.start) = occurrence;
    }
    state.endedBefore = time(json, "endedBefore");
    state.endedAt = time(json, "endedAt");
    state.openSince = time(json, "openSince");
    state.openOf = time(json, "openOf");
    state.acted = time(json, "acted");
    state.doubted = doubtsOf(json.value("doubted", Json::object()));
    const Json said = json.value("said", Json::object());
    state.word = {time(said, "NextReminder"), time(said, "Dismissed")};
    state.newlyMet = json.value("newlyMet", false);
    state.waits = json.value("waits", false);
    state.deleting = json.value("deleting", false);
    state.row = rowOf(json.value("row", Json::object()));
    state.tidy();
    content.events[key] = std::move(entry);
}

}  // namespace

std::string keyOf(std::string_view database, std::string_view id) {
    return std::string(database) + '\n' + text::foldCase(id);
}

std::string keyOf(std::string_view database, const SeriesName& series) {
    return keyOf(database, series.id) + '\n' + text::foldCase(series.VLBase);
}

void Content::take(const std::string& line) {
    const Json json = Json::parse(line);
    if (!json.is_object()) {
        throw Error(ErrNo::Syntax, "ledger: a line that is no object");
    }
    if (json.contains("guid")) {
        takeEvent(*this, json);
    } else if (json.contains("checked")) {
        const Noted check{time(json, "checked"), time(json, "utc")};
        addCheck(checked[json.at("db").get<std::string>()], check);
    } else if (json.contains("replaced")) {
        const auto database = json.at("db").get<std::string>();
        const SeriesName series{json.at("master").get<std::string>(), json.value("base", "")};
        const Noted start{time(json, "replaced"), time(json, "utc")};
        masters[keyOf(database, series)] = {database, series};
        replaced[keyOf(database, series)].insert(start);
    } else {
        foreign.push_back(line);
    }
}

void addCheck(std::vector<Noted>& checks, const Noted& check) {
    constexpr std::size_t kKeptChecks = 31;
    checks.push_back(check);
    if (checks.size() > kKeptChecks) {
        checks.erase(checks.begin());
    }
}

std::string eventLine(const Entry& now, const EventState& before, bool forget, std::string_view act,
                      DateTime when) {
    Json json = Json::object();
    json["db"] = now.database;
    json["guid"] = now.GUID;
    json["act"] = act;
    put(json, "when", when);
    if (forget) {
        json["forget"] = true;
    }
    const EventState& state = now.state;
    Json occurrences = Json::array();
    for (const OccurrenceState& one : state.occurrences) {
        const OccurrenceState* old = forget ? nullptr : before.find(one.start);
        if (old == nullptr || *old != one) {
            occurrences.push_back(occurrenceJson(one));
        }
    }
    for (const OccurrenceState& old : before.occurrences) {
        if (!forget && state.find(old.start) == nullptr) {
            OccurrenceState gone;
            gone.start = old.start;
            occurrences.push_back(occurrenceJson(gone));
        }
    }
    if (!occurrences.empty()) {
        json["occurrences"] = std::move(occurrences);
    }
    put(json, "endedBefore", state.endedBefore);
    put(json, "endedAt", state.endedAt);
    put(json, "openSince", state.openSince);
    put(json, "openOf", state.openOf);
    put(json, "acted", state.acted);
    if (!state.doubted.empty()) {
        json["doubted"] = doubtsJson(state);
    }
    if (state.word.saysAnything()) {
        put(json["said"], "NextReminder", state.word.NextReminder);
        put(json["said"], "Dismissed", state.word.Dismissed);
    }
    if (state.newlyMet) {
        json["newlyMet"] = true;
    }
    if (state.waits) {
        json["waits"] = true;
    }
    if (state.deleting) {
        json["deleting"] = true;
    }
    if (!state.row.empty()) {
        json["row"] = rowJson(state);
    }
    // Texts of a row may hold anything: what is no character must not cost the line.
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string checkLine(std::string_view database, const Noted& when) {
    Json json{{"db", database}, {"checked", formatDateTime(when.local)}};
    put(json, "utc", when.utc);
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string replacedLine(std::string_view database, const SeriesName& series, const Noted& start) {
    Json json{{"db", database}, {"master", series.id}};
    if (!series.VLBase.empty()) {
        json["base"] = series.VLBase;
    }
    json["replaced"] = formatDateTime(start.local);
    put(json, "utc", start.utc);
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace vl::ledger
