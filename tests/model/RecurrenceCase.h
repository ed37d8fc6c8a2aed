// A line of a recurrence case file.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "nlohmann/json.hpp"

#include "app/TimeZone.h"
#include "model/Recurrence.h"

namespace vl::test {

/// "2026-01-05T10:00:00" or "2026-01-05"; and back, always with a time.
DateTime isoTime(const std::string& text);
std::string isoText(DateTime time);
/// An instance or "null" for 0.
std::string isoOrNull(DateTime time);

struct RecurrenceCase {
    struct Next {
        DateTime after;
        std::string next;  // "null": none
    };
    std::string id;
    std::string title;
    std::string lines;  // JSON text
    std::string start;  // on the wall clock of `zone`
    bool allDay = false;
    std::string zone;  // empty: floating
    std::string localZone;
    DateTime from;
    DateTime to;
    std::size_t max = 0;
    std::vector<std::string> expected;
    std::vector<Next> nexts;
    std::optional<std::string> last;  // "null": none; absent: not tested

    static RecurrenceCase read(const nlohmann::json& json);
    /// UTC for a floating case: no clock of it ever changes.
    TimeZone local() const;
    Recurrence load() const;
};

std::vector<RecurrenceCase> readCases(const std::filesystem::path& file);

}  // namespace vl::test
