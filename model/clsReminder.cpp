#include "model/clsReminder.h"

#include <array>

#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl {

namespace {

constexpr std::int32_t kHour = 60;
constexpr std::int32_t kDay = 24 * kHour;
constexpr std::int32_t kWeek = 7 * kDay;

constexpr std::string_view kMailMark = "(e)";

std::int32_t minutesIn(char unit) noexcept {
    switch (unit) {
        case 'w':
        case 'W':
            return kWeek;
        case 'd':
        case 'D':
            return kDay;
        case 'h':
        case 'H':
            return kHour;
        default:
            return 1;
    }
}

std::int32_t wholeUnits(std::int32_t minutes, std::int32_t unit) {
    return text::toInt32(static_cast<double>(minutes) / unit);
}

// An offset in units, each stage rounded: what is left over for the next one may be negative.
struct Parts {
    std::int32_t weeks;
    std::int32_t days;
    std::int32_t hours;
    std::int32_t minutes;
};

Parts partsOf(std::int32_t offset) {
    Parts p{};
    std::int32_t rest = offset;
    p.weeks = wholeUnits(rest, kWeek);
    rest -= p.weeks * kWeek;
    p.days = wholeUnits(rest, kDay);
    rest -= p.days * kDay;
    p.hours = wholeUnits(rest, kHour);
    p.minutes = rest - p.hours * kHour;
    return p;
}

enum Unit : std::size_t { Minute, Hour, Day, Week };
constexpr std::array<std::string_view, 4> kLongNames = {"minute", "hour", "day", "week"};
constexpr std::array<std::string_view, 4> kShortNames = {"m", "h", "d", "w"};

// The largest units that say it; smaller ones than two in a row are dropped.
std::string largestUnits(const Parts& p, bool bShort) {
    const auto text = [&](std::int32_t count, Unit unit) {
        return clsReminder::getText(count, (bShort ? kShortNames : kLongNames)[unit], bShort);
    };
    if (p.weeks != 0) {
        return p.days != 0 ? text(p.weeks * 7 + p.days, Day) : text(p.weeks, Week);
    }
    if (p.days != 0) {
        return p.hours != 0 ? text(p.days * 24 + p.hours, Hour) : text(p.days, Day);
    }
    return p.hours != 0 ? text(p.hours, Hour) : std::string();
}

}  // namespace

void clsReminder::FromText(std::string_view sText) {
    std::string s(sText);
    if (text::containsNoCase(s, kMailMark)) {
        Method = "email";
        s = text::trimBlanks(text::replaceAllNoCase(s, kMailMark, ""));
    } else {
        Method = "popup";
    }
    const std::int32_t count = text::toInt32(text::leadingNumber(s));
    const std::int32_t unit = s.empty() ? 1 : minutesIn(s.back());
    Minutes = text::toInt32(static_cast<double>(count) * unit);
}

std::string clsReminder::getText(std::int32_t iNb, std::string_view sDur, bool bShort) {
    std::string text = std::to_string(iNb);
    if (bShort) {
        return text.append(sDur);
    }
    if (iNb == 0) {
        return "Event start";
    }
    text.append(" ").append(sDur);
    return iNb > 1 ? text + "s" : text;
}

std::string clsReminder::ToText(bool bScheduled, bool bShort) const {
    if (!bScheduled) {
        return {};
    }
    const Parts p = partsOf(Minutes);
    std::string text;
    // 60 is left to the hours on purpose, and the count is the leftover, not `Minutes`.
    if ((Minutes >= 0 && Minutes <= 59) || (Minutes >= 61 && Minutes <= 119)) {
        text = getText(p.minutes, (bShort ? kShortNames : kLongNames)[Minute], bShort);
    }
    if (text.empty()) {
        text = largestUnits(p, bShort);
    }
    if (text::equalsNoCase(Method, "Email")) {
        text += bShort ? " (e)" : " (email)";
    }
    return text;
}

}  // namespace vl
