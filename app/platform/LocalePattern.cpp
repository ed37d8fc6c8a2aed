#include "LocalePattern.h"

#include <algorithm>

#include "base/Text.h"

namespace vl::platform {

namespace {

/// A pattern as it grows: the last literal is held back, since seconds take it with them.
class Pattern {
public:
    void literal(char c) { literal_ += c; }

    void field(std::string_view letters) {
        flush();
        text_ += letters;
        empty_ = false;
    }

    void dropField() { literal_.clear(); }

    std::string finish() {
        while (!literal_.empty() && literal_.back() == ' ') {
            literal_.pop_back();
        }
        flush();
        return empty_ ? std::string() : text_;
    }

private:
    void flush() {
        const bool plain = literal_.find_first_of("Hhmst'") == std::string::npos;
        text_ += plain ? literal_ : "'" + text::replaceAll(literal_, "'", "''") + "'";
        literal_.clear();
    }

    std::string text_;
    std::string literal_;
    bool empty_ = true;
};

// `depth` bounds formats that would refer to themselves.
void convert(Pattern& out, std::string_view format, std::string_view twelveHours, int depth) {
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%') {
            out.literal(format[i]);
            continue;
        }
        ++i;  // modifiers stand between the sign and the letter
        bool leadingZero = true;
        while (i < format.size() &&
               std::string_view("EO_-0^#").find(format[i]) != std::string_view::npos) {
            leadingZero = leadingZero && format[i] != '-' && format[i] != '_';
            ++i;
        }
        switch (i < format.size() ? format[i] : '\0') {
            case 'H':
                out.field(leadingZero ? "HH" : "H");
                break;
            case 'k':
                out.field("H");
                break;
            case 'I':
            case 'l':
                out.field("h");
                break;
            case 'M':
                out.field(leadingZero ? "mm" : "m");
                break;
            case 'p':
            case 'P':
                out.field("tt");
                break;
            case 'R':
            case 'T':
                convert(out, "%H:%M", {}, 0);
                break;
            case 'r':
                if (depth > 0) {
                    convert(out, twelveHours.empty() ? "%I:%M %p" : twelveHours, {}, 0);
                }
                break;
            case '%':
                out.literal('%');
                break;
            default:  // seconds, zones
                out.dropField();
        }
    }
}

}  // namespace

std::string shortPattern(std::string_view format, std::string_view twelveHours) {
    Pattern pattern;
    convert(pattern, format, twelveHours, 1);
    return pattern.finish();
}

std::string datePattern(std::string_view format) {
    if (format.empty() || format == "%m/%d/%y" || format == "%D") {
        return "%a %-d %b %Y";
    }
    std::string pattern;
    bool weekday = false;
    for (std::size_t i = 0; i < format.size(); ++i) {
        pattern += format[i];
        if (format[i] == '%' && ++i < format.size()) {
            weekday = weekday || format[i] == 'a' || format[i] == 'A';
            pattern += format[i] == 'y' ? 'Y' : format[i];
        }
    }
    return weekday ? pattern : "%a " + pattern;
}

std::string fullYearPattern(std::string_view format) {
    std::string pattern;
    bool weekday = false;
    bool quoted = false;
    for (std::size_t i = 0; i < format.size();) {
        const std::size_t end = std::min(format.find_first_not_of(format[i], i), format.size());
        std::string run(format.substr(i, end - i));
        quoted = quoted != (run[0] == '\'' && run.size() % 2 == 1);
        weekday = weekday || (!quoted && run[0] == 'd' && run.size() >= 3);
        pattern += !quoted && (run == "yy" || run == "y") ? "yyyy" : run;
        i = end;
    }
    return weekday ? pattern : "ddd " + pattern;
}

}  // namespace vl::platform
