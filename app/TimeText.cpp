#include "app/TimeText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "base/ErrorState.h"
#include "base/Text.h"
#include "platform/Platform.h"

namespace vl {

namespace {

constexpr double kMillisecondsADay = 86'400'000.0;
constexpr std::int64_t kMillisecondsAStep = 8'640;  // a ten-thousandth of a day
constexpr double kLastDay = 1e9;                    // far behind any date, far before overflow

std::string twoDigits(int n) { return (n < 10 ? "0" : "") + std::to_string(n); }

// One run of a pattern letter, e.g. "HH"; empty for a letter that is none.
std::string field(char letter, std::size_t length, const Civil& c) {
    const auto number = [&](int n) { return length == 1 ? std::to_string(n) : twoDigits(n); };
    switch (letter) {
        case 'H':
            return number(c.hour);
        case 'h':
            return number(c.hour % 12 == 0 ? 12 : c.hour % 12);
        case 'm':
            return number(c.minute);
        case 's':
            return number(c.second);
        default: {
            const std::string mark = platform::dayHalfText(c.hour >= 12);
            return length == 1 ? std::string(text::leftUtf16(mark, 1)) : mark;
        }
    }
}

// Copies a quoted literal from `at`, its opening quote, on; two quotes in it are one. Moves `at`
// behind it. A quote that is never closed reaches to the end.
void appendQuoted(std::string& out, std::string_view pattern, std::size_t& at) {
    for (++at; at < pattern.size(); ++at) {
        if (pattern[at] != '\'') {
            out += pattern[at];
        } else if (at + 1 < pattern.size() && pattern[at + 1] == '\'') {
            out += pattern[at++];
        } else {
            ++at;
            return;
        }
    }
}

// Negative, 0 or positive; none when one of the two has no text.
bool compareAsTexts(const Variant& a, const Variant& b, int& order) {
    return attempt([&] { order = text::compareNoCase(a.toText(), b.toText()); });
}

}  // namespace

std::string toStoredText(DateTime d) {
    // By whole milliseconds: k/10000 times 10000 may fall short of k, and each save would then set
    // the time back by one step. Of the value itself, whose fraction has its sign below zero.
    const double days = std::isfinite(d.days()) ? std::clamp(d.days(), -kLastDay, kLastDay) : 0.0;
    return std::to_string(std::llround(days * kMillisecondsADay) / kMillisecondsAStep);
}

DateTime fromStoredText(std::string_view text) {
    const double days = text::leadingNumber(text) / 10'000.0;
    return DateTime(std::fabs(days) <= kLastDay ? days : 0.0);
}

const std::string& shortTimeFormat() {
    static const std::string format = platform::shortTimeFormat();
    return format;
}

std::string shortTimeText(DateTime d) { return shortTimeText(d, shortTimeFormat()); }

std::string shortTimeText(DateTime d, std::string_view pattern) {
    const Civil c = d.civil();
    if (pattern.empty()) {
        return platform::shortTimeText(c.hour, c.minute, c.second);
    }
    std::string out;
    for (std::size_t at = 0; at < pattern.size();) {
        const char letter = pattern[at];
        if (letter == '\'') {
            appendQuoted(out, pattern, at);
            continue;
        }
        if (std::string_view("Hhmst").find(letter) == std::string_view::npos) {
            out += letter;
            ++at;
            continue;
        }
        const std::size_t end = std::min(pattern.find_first_not_of(letter, at), pattern.size());
        out += field(letter, end - at, c);
        at = end;
    }
    return out;
}

std::string displayText(DateTime d) {
    if (d.isZero()) {
        return {};
    }
    const Civil c = d.civil();
    std::string date = platform::dateText(c.year, c.month, c.day, d.weekday());
    if (date.empty()) {  // the system's calendar begins later than ours
        std::array<char, 32> plain{};
        std::snprintf(plain.data(), plain.size(), "%04d-%02d-%02d", c.year, c.month, c.day);
        date = plain.data();
    }
    return d.hasTime() ? date + ", " + shortTimeText(d) : date;
}

Variant smallerOf(const Variant& a, const Variant& b) {
    const ErrScope scope;
    int order = 0;
    return compareAsTexts(a, b, order) ? (order <= 0 ? a : b) : Variant();
}

Variant largerOf(const Variant& a, const Variant& b) {
    const ErrScope scope;
    int order = 0;
    return compareAsTexts(a, b, order) ? (order >= 0 ? a : b) : Variant();
}

}  // namespace vl
