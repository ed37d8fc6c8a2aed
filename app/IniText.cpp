#include "IniText.h"

#include "base/Text.h"
#include "platform/Platform.h"

namespace vl {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kLittleMark = "\xFF\xFE";
constexpr std::string_view kBigMark = "\xFE\xFF";
constexpr std::string_view kBlanks = " \t";

std::string_view trimmed(std::string_view s) noexcept {
    const std::size_t first = s.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return s.substr(first, s.find_last_not_of(kBlanks) - first + 1);
}

std::string_view unquoted(std::string_view s) noexcept {
    const bool quoted = s.size() >= 2 && s.front() == s.back() && (s[0] == '"' || s[0] == '\'');
    return quoted ? s.substr(1, s.size() - 2) : s;
}

bool isHeading(std::string_view line) noexcept {
    const std::string_view s = trimmed(line);
    return !s.empty() && s.front() == '[' && s.find(']') != std::string_view::npos;
}

std::string_view headingName(std::string_view line) noexcept {
    const std::string_view s = trimmed(line);
    return trimmed(s.substr(1, s.find(']') - 1));
}

// Neither empty nor a comment.
bool isEntry(std::string_view line) noexcept {
    const std::string_view s = trimmed(line);
    return !s.empty() && s.front() != ';';
}

bool begins(std::string_view bytes, std::string_view mark) noexcept {
    return bytes.substr(0, mark.size()) == mark;
}

std::string fromUnits(std::string_view bytes, bool little) {
    std::u16string units;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        units += static_cast<char16_t>(little ? first | second << 8 : first << 8 | second);
    }
    return text::fromUtf16(units);
}

std::string toUnits(std::string_view text, bool little) {
    std::string bytes;
    for (const char16_t unit : text::toUtf16(text)) {
        const auto low = static_cast<char>(unit & 0xFF);
        const auto high = static_cast<char>(unit >> 8);
        bytes += little ? low : high;
        bytes += little ? high : low;
    }
    return bytes;
}

struct Entry {
    std::string_view key;
    std::string_view value;
    bool assigned;  // has a "="
};

Entry entryOf(std::string_view line) noexcept {
    const std::size_t sign = line.find('=');
    const bool assigned = sign != std::string_view::npos;
    return {trimmed(line.substr(0, sign)),
            assigned ? trimmed(line.substr(sign + 1)) : std::string_view(), assigned};
}

}  // namespace

IniText::IniText(std::string_view bytes) {
    std::string decoded;
    if (begins(bytes, kUtf8Mark)) {
        encoding_ = Encoding::Utf8;
        bytes.remove_prefix(kUtf8Mark.size());
    } else if (begins(bytes, kLittleMark) || begins(bytes, kBigMark)) {
        encoding_ = begins(bytes, kLittleMark) ? Encoding::Utf16Little : Encoding::Utf16Big;
        bytes.remove_prefix(kLittleMark.size());
        oddByte_ = bytes.substr(bytes.size() - bytes.size() % 2);
        decoded = fromUnits(bytes, encoding_ == Encoding::Utf16Little);
        bytes = decoded;
    }
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        std::string_view text = bytes.substr(0, end);
        std::string_view lineEnd = bytes.substr(text.size(), 1);
        if (!text.empty() && text.back() == '\r') {
            text.remove_suffix(1);
            lineEnd = bytes.substr(text.size(), 2);
        }
        lines_.push_back({std::string(text), std::string(lineEnd)});
        bytes.remove_prefix(text.size() + lineEnd.size());
    }
    newEnd_ = lines_.empty() || !lines_[0].isEnded() ? platform::lineEnd() : lines_[0].end;
}

std::string IniText::bytes() const {
    std::string all;
    for (const Line& line : lines_) {
        all.append(line.text).append(line.end);
    }
    switch (encoding_) {
        case Encoding::System:
            break;
        case Encoding::Utf8:
            return std::string(kUtf8Mark) + all;
        case Encoding::Utf16Little:
            return std::string(kLittleMark) + toUnits(all, true) + oddByte_;
        case Encoding::Utf16Big:
            return std::string(kBigMark) + toUnits(all, false) + oddByte_;
    }
    return all;
}

std::string IniText::decode(std::string_view bytes) const {
    return encoding_ == Encoding::System ? platform::fromSettingsText(bytes) : std::string(bytes);
}

std::string IniText::encode(std::string_view text) const {
    return encoding_ == Encoding::System ? platform::toSettingsText(text) : std::string(text);
}

std::optional<IniText::Section> IniText::find(std::string_view section) const {
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        if (!isHeading(lines_[i].text) ||
            !text::equalsNoCase(decode(headingName(lines_[i].text)), trimmed(section))) {
            continue;
        }
        std::size_t last = i + 1;
        while (last < lines_.size() && !isHeading(lines_[last].text)) {
            ++last;
        }
        return Section{i + 1, last};
    }
    return std::nullopt;
}

std::optional<std::size_t> IniText::findKey(const Section& section, std::string_view key) const {
    for (std::size_t i = section.first; i < section.last; ++i) {
        const Entry entry = entryOf(lines_[i].text);
        if (isEntry(lines_[i].text) && entry.assigned &&
            text::equalsNoCase(decode(entry.key), trimmed(key))) {
            return i;
        }
    }
    return std::nullopt;
}

std::optional<std::string> IniText::value(std::string_view section, std::string_view key) const {
    const auto where = find(section);
    const auto line = where ? findKey(*where, key) : std::nullopt;
    if (!line) {
        return std::nullopt;
    }
    return decode(unquoted(entryOf(lines_[*line].text).value));
}

std::optional<std::vector<std::string>> IniText::entries(std::string_view section) const {
    const auto where = find(section);
    if (!where) {
        return std::nullopt;
    }
    std::vector<std::string> found;
    for (std::size_t i = where->first; i < where->last; ++i) {
        if (isEntry(lines_[i].text)) {
            const Entry entry = entryOf(lines_[i].text);
            found.push_back(decode(entry.key) +
                            (entry.assigned ? "=" + decode(entry.value) : std::string()));
        }
    }
    return found;
}

// The new line stands in front of line `at`.
void IniText::insert(std::size_t at, std::string text) {
    if (at > 0 && !lines_[at - 1].isEnded()) {
        lines_[at - 1].end = newEnd_;
    }
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(at), {std::move(text), newEnd_});
}

IniText::Section IniText::findOrAppend(std::string_view section) {
    if (const auto found = find(section)) {
        return *found;
    }
    insert(lines_.size(), "[" + encode(trimmed(section)) + "]");
    return {lines_.size(), lines_.size()};
}

// Behind the last line that is not empty: empty lines part sections and stay at the end.
std::size_t IniText::endOfEntries(const Section& section) const {
    std::size_t end = section.last;
    while (end > section.first && trimmed(lines_[end - 1].text).empty()) {
        --end;
    }
    return end;
}

void IniText::setValue(std::string_view section, std::string_view key, std::string_view value) {
    const Section where = findOrAppend(section);
    const auto line = findKey(where, key);
    if (!line) {
        insert(endOfEntries(where), encode(trimmed(key)) + "=" + encode(value));
        return;
    }
    std::string& text = lines_[*line].text;
    // A line that says the same already stays as it was written, quotes and all.
    if (decode(unquoted(entryOf(text).value)) == value) {
        return;
    }
    std::size_t start = text.find('=') + 1;
    start += text.find_first_not_of(kBlanks, start) != std::string::npos
                 ? text.find_first_not_of(kBlanks, start) - start
                 : 0;
    text.replace(start, std::string::npos, encode(value));
}

void IniText::setEntries(std::string_view section, const std::vector<std::string>& entries) {
    Section where = findOrAppend(section);
    for (std::size_t i = where.last; i-- > where.first;) {
        if (isEntry(lines_[i].text)) {
            lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
    std::size_t at = where.first;
    for (const std::string& entry : entries) {
        insert(at++, encode(entry));
    }
}

}  // namespace vl
