// The content lines of a recurrence: unfolded, split, with property name, parameters and value.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vl::recurrence {

enum class LineKind : std::uint8_t { Rule, ExDate, RDate };

/// Views into the text that is being read, good during the call that hands them out.
struct ContentLine {
    LineKind kind;
    std::string_view parameters;  ///< with the semicolon before each, as written
    std::string_view value;       ///< without blanks at both ends
};

using LineHandler = std::function<void(const ContentLine&)>;

/// Calls `handle` for every line of RRULE, EXDATE and RDATE, in order. `text` is JSON text of an
/// array of strings, each holding one or more lines, or the lines themselves. What is neither, and
/// what cannot be read inside it, is skipped. Source: RFC 5545, 3.1.
void readLines(std::string_view text, const LineHandler& handle);

/// A parameter's value without its quotes; none when the line has no such parameter. The name is
/// compared without regard to case.
std::optional<std::string_view> parameter(std::string_view parameters, std::string_view name);

/// Without blanks, tabs and line ends at both ends.
std::string_view trimmed(std::string_view s) noexcept;

/// ASCII letters without regard to case; `upper` is in capitals.
bool equalsUpper(std::string_view s, std::string_view upper) noexcept;

/// Takes the text before the first `separator` off the front of `rest`, trimmed. False when
/// nothing is left; an empty text after a last separator counts as a piece.
struct Pieces {
    std::string_view rest;
    char separator;
    bool done = false;
    bool next(std::string_view& piece) noexcept;
};

}  // namespace vl::recurrence
