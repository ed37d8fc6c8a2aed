#include "DateLiteral.h"

#include "base/Text.h"

namespace vl::sql {

namespace {

struct Number {
    int value = 0;
    int digits = 0;
};

struct Day {
    int year = 1899;
    int month = 12;
    int day = 30;
};

struct Time {
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// Every `take` moves behind what it found, and stays where it found nothing.
class Reader {
public:
    explicit Reader(std::string_view text) : text_(text) {}

    bool atEnd() const noexcept { return at_ == text_.size(); }
    std::size_t place() const noexcept { return at_; }
    void goBack(std::size_t place) noexcept { at_ = place; }

    std::optional<Number> takeNumber() {
        constexpr int kMostDigits = 4;
        Number number;
        while (!atEnd() && text_[at_] >= '0' && text_[at_] <= '9') {
            if (++number.digits > kMostDigits) {
                return std::nullopt;
            }
            number.value = number.value * 10 + (text_[at_++] - '0');
        }
        return number.digits > 0 ? std::optional(number) : std::nullopt;
    }
    char takeOneOf(std::string_view signs) {
        return !atEnd() && signs.find(text_[at_]) != std::string_view::npos ? text_[at_++] : '\0';
    }
    bool takeBlanks() {
        const std::size_t start = at_;
        while (takeOneOf(" ") != '\0') {
        }
        return at_ > start;
    }
    bool takeWord(std::string_view word) {
        const bool there = text::equalsNoCase(text_.substr(at_, word.size()), word);
        at_ += there ? word.size() : 0;
        return there;
    }

private:
    std::string_view text_;
    std::size_t at_ = 0;
};

std::optional<Day> takeDay(Reader& reader) {
    const auto first = reader.takeNumber();
    const char sign = reader.takeOneOf("-/");
    if (!first || sign == '\0') {
        return std::nullopt;
    }
    const auto second = reader.takeNumber();
    if (!second || reader.takeOneOf({&sign, 1}) == '\0') {
        return std::nullopt;
    }
    const auto third = reader.takeNumber();
    constexpr int kYear = 4;
    constexpr int kOther = 2;
    if (!third || second->digits > kOther) {
        return std::nullopt;
    }
    Day day;
    if (first->digits == kYear && third->digits <= kOther) {
        day = {first->value, second->value, third->value};
    } else if (first->digits <= kOther && third->digits == kYear) {
        day = {third->value, first->value, second->value};
    } else {
        return std::nullopt;
    }
    const bool exists = day.month >= 1 && day.month <= 12 && day.day >= 1 && day.day <= 31 &&
                        civilFromDays(daysFromCivil(day.year, day.month, day.day)).day == day.day;
    return exists ? std::optional(day) : std::nullopt;
}

// Two digits behind each colon.
bool takePart(Reader& reader, int& part) {
    const auto number = reader.takeNumber();
    constexpr int kMost = 59;
    if (!number || number->digits != 2 || number->value > kMost) {
        return false;
    }
    part = number->value;
    return true;
}

std::optional<Time> takeTime(Reader& reader) {
    constexpr int kNoon = 12;
    constexpr int kLastHour = 23;
    const auto hour = reader.takeNumber();
    if (!hour || hour->digits > 2) {
        return std::nullopt;
    }
    Time time{hour->value, 0, 0};
    const bool hasMinutes = reader.takeOneOf(":") != '\0';
    if (hasMinutes && (!takePart(reader, time.minute) ||
                       (reader.takeOneOf(":") != '\0' && !takePart(reader, time.second)))) {
        return std::nullopt;
    }
    reader.takeBlanks();
    const bool morning = reader.takeWord("AM");
    if (morning || reader.takeWord("PM")) {
        if (time.hour < 1 || time.hour > kNoon) {
            return std::nullopt;
        }
        time.hour = time.hour % kNoon + (morning ? 0 : kNoon);
        return time;
    }
    return hasMinutes && time.hour <= kLastHour ? std::optional(time) : std::nullopt;
}

}  // namespace

std::optional<DateTime> dateLiteral(std::string_view text) {
    Reader reader(text::trimBlanks(text));
    const std::size_t start = reader.place();
    std::optional<Day> day = takeDay(reader);
    std::optional<Time> time;
    if (!day) {
        reader.goBack(start);
        day = Day();
        time = takeTime(reader);
    } else if (reader.atEnd()) {
        time = Time();
    } else if (reader.takeBlanks() || reader.takeOneOf("T") != '\0') {
        time = takeTime(reader);
    }
    if (!time || !reader.atEnd()) {
        return std::nullopt;
    }
    return DateTime::fromCivil(day->year, day->month, day->day, time->hour, time->minute,
                               time->second);
}

}  // namespace vl::sql
