#include "app/Timestamps.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

#include "app/TimeZone.h"
#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl {

namespace {

constexpr bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

/// Reads a timestamp from left to right; every step throws where the text is another one.
class Reader {
public:
    explicit Reader(std::string_view text) : text_(text) {}

    bool atEnd() const noexcept { return at_ == text_.size(); }

    bool accept(std::string_view oneOf) noexcept {
        if (atEnd() || oneOf.find(text_[at_]) == std::string_view::npos) {
            return false;
        }
        ++at_;
        return true;
    }

    void expect(char c) {
        if (!accept(std::string_view(&c, 1))) {
            fail(std::string("\"") + c + "\"");
        }
    }

    int number(std::size_t digits, int from, int to, const char* what) {
        int value = 0;
        const std::size_t start = at_;
        for (std::size_t i = 0; i < digits; ++i, ++at_) {
            if (atEnd() || !isDigit(text_[at_])) {
                fail(what);
            }
            value = value * 10 + (text_[at_] - '0');
        }
        if (value < from || value > to) {
            at_ = start;
            fail(what);
        }
        return value;
    }

    void skipDigits() {
        if (atEnd() || !isDigit(text_[at_])) {
            fail("a digit");
        }
        while (!atEnd() && isDigit(text_[at_])) {
            ++at_;
        }
    }

    [[noreturn]] void fail(const std::string& expected) const {
        throw Error(ErrNo::Syntax, "timestamp \"" + std::string(text_) + "\", character " +
                                       std::to_string(at_ + 1) + ": expected " + expected);
    }

private:
    std::string_view text_;
    std::size_t at_ = 0;
};

int daysOfMonth(int year, int month) {
    const auto first = daysFromCivil(year, month, 1);
    const auto next =
        month == 12 ? daysFromCivil(year + 1, 1, 1) : daysFromCivil(year, month + 1, 1);
    return static_cast<int>(next - first);
}

// The offset's seconds east of Greenwich. Only called where an offset stands.
int readOffset(Reader& in) {
    if (in.accept("Zz")) {
        return 0;
    }
    const bool west = in.accept("-");
    if (!west && !in.accept("+")) {
        in.fail("\"Z\" or an offset");
    }
    const int hours = in.number(2, 0, 23, "the hours of an offset, 00 to 23");
    in.expect(':');
    const int minutes = in.number(2, 0, 59, "the minutes of an offset, 00 to 59");
    return (west ? -1 : 1) * (hours * 3600 + minutes * 60);
}

std::string format(const char* pattern, const Civil& c) {
    std::array<char, 64> buffer{};
    std::snprintf(buffer.data(), buffer.size(), pattern, c.year, c.month, c.day, c.hour, c.minute,
                  c.second);
    return buffer.data();
}

}  // namespace

DateTime parseTimestamp(std::string_view text, bool toLocal) {
    if (text.empty()) {
        return {};
    }
    Reader in(text);
    const int year = in.number(4, 0, 9999, "a year of four digits");
    in.expect('-');
    const int month = in.number(2, 1, 12, "a month, 01 to 12");
    in.expect('-');
    const int day = in.number(2, 1, daysOfMonth(year, month), "a day of that month");
    if (in.atEnd()) {
        return DateTime::fromCivil(year, month, day);
    }
    if (!in.accept("Tt ")) {
        in.fail("\"T\" or the end");
    }
    const int hour = in.number(2, 0, 23, "an hour, 00 to 23");
    in.expect(':');
    const int minute = in.number(2, 0, 59, "a minute, 00 to 59");
    in.expect(':');
    const int second = std::min(in.number(2, 0, 60, "a second, 00 to 60"), 59);
    if (in.accept(".")) {
        in.skipDigits();
    }
    const DateTime written = DateTime::fromCivil(year, month, day, hour, minute, second);
    if (in.atEnd()) {
        return written;
    }
    const int offset = readOffset(in);
    if (!in.atEnd()) {
        in.fail("the end");
    }
    if (!toLocal) {
        return written;
    }
    const DateTime local = TimeZone::local().fromUtc(written.addSeconds(-offset));
    if (const int reached = local.civil().year; reached < 0 || reached > 9999) {
        throw Error(ErrNo::Overflow,
                    "timestamp \"" + std::string(text) + "\": not in the years 0 to 9999 here");
    }
    return local;
}

std::string formatTimestamp(DateTime dateTime, bool asLocal) {
    if (dateTime.isZero()) {
        return {};
    }
    const DateTime wall = dateTime.wholeSeconds();
    if (!asLocal) {
        return format("%04d-%02d-%02dT%02d:%02d:%02dZ", wall.civil());
    }
    const TimeZone zone = TimeZone::local();
    const DateTime utc = zone.toUtc(wall);
    const DateTime local = zone.fromUtc(utc);
    // Offsets with seconds are older than the standard times; the format has whole minutes.
    const auto minutes = (local.milliseconds() - utc.milliseconds()) / 60'000;
    const auto distance = static_cast<int>(std::abs(minutes));
    std::array<char, 16> offset{};
    std::snprintf(offset.data(), offset.size(), "%c%02d:%02d", minutes < 0 ? '-' : '+',
                  distance / 60, distance % 60);
    return format("%04d-%02d-%02dT%02d:%02d:%02d", local.civil()) + offset.data();
}

std::string zoneLabel(std::string_view timestamp) {
    constexpr std::size_t kHours = 20;  // where the hours of an offset stand
    const std::u16string units = text::toUtf16(timestamp);
    if (units.size() <= kHours) {
        return {};
    }
    return "GMT+" + text::fromUtf16(units.substr(kHours, 2)) + ":" +
           text::fromUtf16(units.substr(units.size() - 2));
}

std::string datePart(std::string_view text) {
    const std::string_view head = text::leftUtf16(text, 6);
    const std::size_t t = text.find('T', head.size());
    return std::string(text.substr(0, t));
}

}  // namespace vl
