#include "RecurrenceLines.h"

#include <algorithm>
#include <array>
#include <utility>

#include "nlohmann/json.hpp"

namespace vl::recurrence {

namespace {

constexpr std::string_view kBlank = " \t\r\n";

char upper(char c) noexcept { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

/// Where the first colon outside quotes stands, or npos.
std::size_t colonOf(std::string_view line) noexcept {
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"') {
            quoted = !quoted;
        } else if (line[i] == ':' && !quoted) {
            return i;
        }
    }
    return std::string_view::npos;
}

bool holdsFrequency(std::string_view line) noexcept {
    constexpr std::string_view kWord = "FREQ=";
    return std::search(line.begin(), line.end(), kWord.begin(), kWord.end(),
                       [](char a, char b) { return upper(a) == b; }) != line.end();
}

void readLine(std::string_view line, const LineHandler& handle) {
    static constexpr std::array<std::pair<std::string_view, LineKind>, 3> kNames{{
        {"RRULE", LineKind::Rule},
        {"EXDATE", LineKind::ExDate},
        {"RDATE", LineKind::RDate},
    }};
    const std::size_t colon = colonOf(line);
    const std::string_view head = line.substr(0, std::min(colon, line.size()));
    const std::string_view name = trimmed(head.substr(0, head.find(';')));
    // A property's name has no equals sign: such a line is a rule that lost its name.
    if (colon == std::string_view::npos || name.find('=') != std::string_view::npos) {
        if (holdsFrequency(line)) {
            handle({LineKind::Rule, {}, line});
        }
        return;
    }
    for (const auto& [known, kind] : kNames) {
        if (equalsUpper(name, known)) {
            const std::size_t semicolon = std::min(head.find(';'), head.size());
            handle({kind, head.substr(semicolon), trimmed(line.substr(colon + 1))});
        }
    }
}

/// A line break before a blank or tab vanishes, with it.
std::string unfolded(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t feed = text[i] == '\r' && i + 1 < text.size() ? i + 1 : i;
        if (text[feed] == '\n' && feed + 1 < text.size() &&
            (text[feed + 1] == ' ' || text[feed + 1] == '\t')) {
            i = feed + 1;
        } else {
            out += text[i];
        }
    }
    return out;
}

void readText(std::string_view text, const LineHandler& handle) {
    if (text.find("\n ") != std::string_view::npos || text.find("\n\t") != std::string_view::npos) {
        const std::string whole = unfolded(text);
        Pieces lines{whole, '\n'};
        for (std::string_view line; lines.next(line);) {
            readLine(line, handle);
        }
        return;
    }
    Pieces lines{text, '\n'};
    for (std::string_view line; lines.next(line);) {
        readLine(line, handle);
    }
}

/// The common array, of plain ASCII strings without escapes, read in place: ["...", "..."]. False,
/// with nothing handed out, for anything else, sound JSON or not.
bool readPlainArray(std::string_view text, const LineHandler& handle) {
    constexpr std::size_t kMost = 8;
    std::array<std::string_view, kMost> strings;
    std::size_t count = 0;
    std::size_t i = 1;  // past the bracket
    const auto skipBlanks = [&] {
        while (i < text.size() && kBlank.find(text[i]) != std::string_view::npos) {
            ++i;
        }
    };
    for (;;) {
        skipBlanks();
        if (i >= text.size() || text[i] != '"' || count == kMost) {
            return false;
        }
        const std::size_t begin = ++i;
        while (i < text.size() && text[i] != '"') {
            if (text[i] == '\\' || text[i] < ' ' || text[i] > '~') {
                return false;
            }
            ++i;
        }
        if (i >= text.size()) {
            return false;
        }
        strings.at(count++) = text.substr(begin, i++ - begin);
        skipBlanks();
        if (i >= text.size() || (text[i] != ',' && text[i] != ']')) {
            return false;
        }
        if (text[i++] == ']') {
            break;
        }
    }
    if (i != text.size()) {
        return false;
    }
    for (std::size_t s = 0; s < count; ++s) {
        readText(strings.at(s), handle);
    }
    return true;
}

}  // namespace

void readLines(std::string_view text, const LineHandler& handle) {
    text = trimmed(text);
    if (text.empty()) {
        return;
    }
    if (text.front() != '[') {
        // Any other JSON value is no list of lines; a line begins with a letter.
        const char first = upper(text.front());
        if (first >= 'A' && first <= 'Z') {
            readText(text, handle);
        }
        return;
    }
    if (readPlainArray(text, handle)) {
        return;
    }
    const nlohmann::json array = nlohmann::json::parse(text, nullptr, false);
    if (!array.is_array()) {
        return;
    }
    for (const nlohmann::json& element : array) {
        if (element.is_string()) {
            readText(element.get_ref<const std::string&>(), handle);
        }
    }
}

std::optional<std::string_view> parameter(std::string_view parameters, std::string_view name) {
    std::size_t i = 0;
    while (i < parameters.size()) {
        const std::size_t begin = ++i;  // past the semicolon
        bool quoted = false;
        while (i < parameters.size() && (quoted || parameters[i] != ';')) {
            quoted = quoted != (parameters[i] == '"');
            ++i;
        }
        const std::string_view one = parameters.substr(begin, i - begin);
        const std::size_t equals = one.find('=');
        if (equals == std::string_view::npos ||
            !equalsUpper(trimmed(one.substr(0, equals)), name)) {
            continue;
        }
        std::string_view value = trimmed(one.substr(equals + 1));
        if (value.size() >= 2 && value.front() == '"' && value.back() == '"') {
            value = value.substr(1, value.size() - 2);
        }
        return value;
    }
    return std::nullopt;
}

std::string_view trimmed(std::string_view s) noexcept {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!s.empty() && blank(s.front())) {
        s.remove_prefix(1);
    }
    while (!s.empty() && blank(s.back())) {
        s.remove_suffix(1);
    }
    return s;
}

bool equalsUpper(std::string_view s, std::string_view upperCase) noexcept {
    return s.size() == upperCase.size() && std::equal(s.begin(), s.end(), upperCase.begin(),
                                                      [](char a, char b) { return upper(a) == b; });
}

bool Pieces::next(std::string_view& piece) noexcept {
    if (done) {
        return false;
    }
    const std::size_t at = rest.find(separator);
    done = at == std::string_view::npos;
    piece = trimmed(rest.substr(0, at));
    rest.remove_prefix(done ? rest.size() : at + 1);
    return true;
}

}  // namespace vl::recurrence
