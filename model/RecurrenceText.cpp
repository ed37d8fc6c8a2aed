#include "model/RecurrenceText.h"

#include <string>
#include <utility>

#include "base/ErrorState.h"

#include "RecurrenceLines.h"
#include "RecurrenceTextParts.h"

namespace vl {

using namespace recurrence;

namespace {

RuleLine ruleIn(std::string_view text) {
    RuleLine line;
    try {
        line.parts = readRule(text);
    } catch (const Error& error) {
        line.rejected = error.what();
    }
    return line;
}

DateLine datesIn(const ContentLine& line) {
    DateLine dates;
    dates.excludes = line.kind == LineKind::ExDate;
    if (const auto name = parameter(line.parameters, "TZID")) {
        dates.zone = TimeZone::named(*name);
    }
    const auto type = parameter(line.parameters, "VALUE");
    dates.dates = type && equalsUpper(*type, "DATE");
    Pieces pieces{line.value, ','};
    for (std::string_view piece; pieces.next(piece);) {
        // Of a period only the start counts.
        if (const auto time = readTime(trimmed(piece.substr(0, piece.find('/'))))) {
            dates.times.push_back(*time);
        }
    }
    return dates;
}

}  // namespace

RecurrenceText::RecurrenceText(std::string_view lines) : parts_(std::make_unique<TextParts>()) {
    std::string RRULE;
    readLines(lines, [&](const ContentLine& line) {
        if (line.kind != LineKind::Rule) {
            parts_->dates.push_back(datesIn(line));
            return;
        }
        RRULE += RRULE.empty() ? "" : "\n";
        RRULE += line.value;
        parts_->rules.push_back(ruleIn(line.value));
    });
    RRULE_ = RRULE;
}

RecurrenceText::RecurrenceText(RecurrenceText&&) noexcept = default;
RecurrenceText::~RecurrenceText() = default;

RecurrenceText RecurrenceText::ofColumn(std::string_view column) {
    const std::size_t first = column.find_first_not_of(" \t\r\n");
    const bool isArray = first != std::string_view::npos && column[first] == '[';
    return RecurrenceText(isArray ? column : std::string_view());
}

}  // namespace vl
