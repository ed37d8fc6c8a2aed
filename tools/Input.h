// Where a command that takes [FILE] reads from, and times as such commands write them.
#pragma once

#include <fstream>
#include <iosfwd>
#include <string>
#include <string_view>

#include "Command.h"
#include "base/DateTime.h"

namespace vl::tools {

/// The file that the first word names, or the standard input. Throws `Error` (`ErrNo::NotFound`)
/// when it cannot be opened.
class Input {
public:
    Input(const Arguments& arguments, const Streams& streams);
    std::istream& stream() noexcept { return file_.is_open() ? file_ : standard_; }

private:
    std::ifstream file_;
    std::istream& standard_;
};

/// "yyyy-mm-dd", or with "Thh:mm:ss" behind it: a time on some wall clock, of the years 100 to
/// 9999. Throws `Error` (`ErrNo::TypeMismatch`) for anything else.
DateTime wallTime(std::string_view text);

/// "yyyy-mm-ddThh:mm:ss".
std::string wallText(DateTime time);

}  // namespace vl::tools
