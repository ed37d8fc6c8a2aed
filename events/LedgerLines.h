// The ledger's lines: from text to state and back.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "events/LedgerState.h"

namespace vl::ledger {

using Json = nlohmann::ordered_json;

struct Entry {
    std::string database;
    std::string GUID;  // as first written
    EventState state;
};

/// Everything the lines say, the later over the earlier.
struct Content {
    std::unordered_map<std::string, Entry> events;                      // by `keyOf`
    std::map<std::string, std::vector<Noted>> checked;                  // by database: `addCheck`
    std::map<std::string, std::set<Noted>> replaced;                    // by `keyOf` of the series
    std::map<std::string, std::pair<std::string, SeriesName>> masters;  // the same: with database
    std::vector<std::string> foreign;                                   // lines of an unknown shape

    /// Takes one line in. Throws when it is no line of ours; nothing is changed then.
    void take(const std::string& line);
};

/// Paths are told apart by case, GUIDs and ids are not.
std::string keyOf(std::string_view database, std::string_view id);
std::string keyOf(std::string_view database, const SeriesName& series);

/// Adds a check to those of its database, of which the latest are kept: when the clock was ahead in
/// the last of them, an earlier one is still known.
void addCheck(std::vector<Noted>& checks, const Noted& check);

inline std::string lineEnd(std::string line) { return std::move(line) + "\n"; }

/// One line without its end: what is different in `now` from `before`.
std::string eventLine(const Entry& now, const EventState& before, bool forget, std::string_view act,
                      DateTime when);
std::string checkLine(std::string_view database, const Noted& when);
std::string replacedLine(std::string_view database, const SeriesName& series, const Noted& start);

}  // namespace vl::ledger
