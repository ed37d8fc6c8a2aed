#include "IniText.h"

#include "base/Text.h"
#include "platform/Platform.h"

namespace vl {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
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
    mark_ = bytes.substr(0, kByteOrderMark.size()) == kByteOrderMark;
    bytes.remove_prefix(mark_ ? kByteOrderMark.size() : 0);
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        std::string_view text = bytes.substr(0, end);
        std::string_view lineEnd = bytes.substr(text.size(), 1);
        if (!lineEnd.empty() && !text.empty() && text.back() == '\r') {
            text.remove_suffix(1);
            lineEnd = bytes.substr(text.size(), 2);
        }
        lines_.push_back({std::string(text), std::string(lineEnd)});
        bytes.remove_prefix(text.size() + lineEnd.size());
    }
    newEnd_ = lines_.empty() || lines_[0].end.empty() ? platform::lineEnd() : lines_[0].end;
}

std::string IniText::bytes() const {
    std::string all(mark_ ? kByteOrderMark : "");
    for (const Line& line : lines_) {
        all.append(line.text).append(line.end);
    }
    return all;
}

std::string IniText::decode(std::string_view bytes) const {
    return mark_ ? std::string(bytes) : platform::fromSettingsText(bytes);
}

std::string IniText::encode(std::string_view text) const {
    return mark_ ? std::string(text) : platform::toSettingsText(text);
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
    if (at > 0 && lines_[at - 1].end.empty()) {
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
