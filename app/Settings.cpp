#include "app/Settings.h"

#include <fstream>
#include <iterator>
#include <optional>

#include "IniText.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "platform/Platform.h"

namespace vl {

namespace {

// What the system's functions return at most when they are told a size of 32766: one unit less for
// the NUL behind a value, two for those behind a section.
constexpr std::size_t kSize = 32766;
constexpr std::size_t kValueUnits = kSize - 1;
constexpr std::size_t kSectionUnits = kSize - 2;

constexpr const char* kNoFile = "no settings file is set";

constexpr std::string_view kNul("\0", 1);
constexpr std::string_view kLineEnds("\r\n\0", 3);

// None when there is no such file. Throws when there is one that cannot be read.
std::optional<std::string> contents(const std::string& filename) {
    std::error_code error;
    if (filename.empty() || !std::filesystem::exists(platform::pathOf(filename), error)) {
        return std::nullopt;
    }
    std::ifstream in(platform::pathOf(filename), std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (!in.is_open() || in.bad()) {
        throw Error(ErrNo::Io, "cannot read " + filename);
    }
    return bytes;
}

template <class Change>
void change(const std::string& filename, Change&& apply) {
    if (filename.empty()) {
        throw Error(ErrNo::NotFound, kNoFile);
    }
    const std::optional<std::string> before = contents(filename);
    IniText ini(before.value_or(std::string()));
    apply(ini);
    const std::string after = ini.bytes();
    if (!before || after != *before) {
        platform::replaceFile(filename, after);
    }
}

// As much of a text as one line can hold.
std::string_view firstLine(std::string_view text) {
    return text.substr(0, text.find_first_of(kLineEnds));
}

}  // namespace

bool Settings::CanSave() const {
    const ErrScope scope;
    return attempt([&] {
        if (filename.empty()) {
            throw Error(ErrNo::NotFound, kNoFile);
        }
        platform::checkReplaceable(filename);
    });
}

std::string Settings::GetIni(std::string_view section, std::string_view key,
                             const Variant& Default) const {
    const ErrScope scope;
    std::string value;
    attempt([&] {
        const IniText ini(contents(filename).value_or(std::string()));
        const std::string found = ini.value(section, key).value_or(std::string());
        value = text::leftUtf16(found, kValueUnits);
    });
    if (value.empty()) {
        attempt([&] { value = Default.toText(); });
    }
    return value;
}

std::string Settings::GetIniSection(std::string_view section) const {
    const ErrScope scope;
    std::string all;
    attempt([&] {
        const IniText ini(contents(filename).value_or(std::string()));
        std::string found;
        for (const std::string& entry : ini.entries(section).value_or(std::vector<std::string>())) {
            found.append(entry).append(kNul);
        }
        all = text::leftUtf16(found, kSectionUnits);
    });
    return all;
}

void Settings::SaveIni(std::string_view section, std::string_view key, std::string_view value) {
    const ErrScope scope;
    section = firstLine(section);
    key = firstLine(key);
    if (text::trimBlanks(section).empty() || text::trimBlanks(key).empty()) {
        return;
    }
    attempt([&] {
        change(filename, [&](IniText& ini) { ini.setValue(section, key, firstLine(value)); });
    });
}

void Settings::SaveIniSection(std::string_view section, std::string_view text) {
    const ErrScope scope;
    section = firstLine(section);
    if (text::trimBlanks(section).empty()) {
        return;
    }
    attempt([&] {
        std::vector<std::string> entries;
        for (const std::string_view piece : text::split(text, kNul)) {
            if (piece.empty()) {
                break;  // a double NUL
            }
            if (!firstLine(piece).empty()) {
                entries.emplace_back(firstLine(piece));
            }
        }
        change(filename, [&](IniText& ini) { ini.setEntries(section, entries); });
    });
}

}  // namespace vl
