#include "Input.h"

#include <istream>

#include "base/ErrorState.h"
#include "base/Variant.h"

namespace vl::tools {

Input::Input(const Arguments& arguments, const Streams& streams) : standard_(streams.in) {
    if (arguments.words.empty() || arguments.words[0] == "-") {
        return;
    }
    file_.open(arguments.words[0]);
    if (!file_) {
        throw Error(ErrNo::NotFound, arguments.words[0] + ": cannot open");
    }
}

DateTime wallTime(std::string_view text) {
    constexpr std::size_t kDate = 10;
    constexpr std::size_t kWithSeconds = 19;
    if (text.size() != kDate && (text.size() != kWithSeconds || text[kDate] != 'T')) {
        throw Error(ErrNo::TypeMismatch,
                    "\"" + std::string(text) + "\" is no time: expected yyyy-mm-ddThh:mm:ss");
    }
    return parseDateTime(text);
}

std::string wallText(DateTime time) {
    std::string text = formatDateTime(time);
    constexpr std::size_t kDate = 10;
    if (text.size() == kDate) {
        return text + "T00:00:00";
    }
    text[kDate] = 'T';
    return text;
}

}  // namespace vl::tools
