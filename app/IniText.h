// The text of an INI file, line by line.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vl {

/// An INI file in memory. Lines keep their characters; names and values given and returned are
/// UTF-8. How it is understood stands at `Settings`.
class IniText {
public:
    explicit IniText(std::string_view bytes);

    /// Without the blanks and the pair of quotes around it; none when there is no such key.
    std::optional<std::string> value(std::string_view section, std::string_view key) const;
    /// "key=value" of every entry; none when there is no such section.
    std::optional<std::vector<std::string>> entries(std::string_view section) const;

    void setValue(std::string_view section, std::string_view key, std::string_view value);
    void setEntries(std::string_view section, const std::vector<std::string>& entries);

    std::string bytes() const;

private:
    struct Line {
        std::string text;
        std::string end;  // "\n", "\r\n" or, in the last line, nothing or "\r"
        bool isEnded() const { return !end.empty() && end.back() == '\n'; }
    };
    // The lines of a section behind its heading: [first, last).
    struct Section {
        std::size_t first;
        std::size_t last;
    };

    // Of the file, by its byte order mark. Lines are in UTF-8 wherever there is one.
    enum class Encoding { System, Utf8, Utf16Little, Utf16Big };

    std::optional<Section> find(std::string_view section) const;
    std::optional<std::size_t> findKey(const Section& section, std::string_view key) const;
    Section findOrAppend(std::string_view section);
    void insert(std::size_t at, std::string text);
    std::size_t endOfEntries(const Section& section) const;

    std::string decode(std::string_view bytes) const;
    std::string encode(std::string_view text) const;

    Encoding encoding_ = Encoding::System;
    std::string oddByte_;  // half a character behind the last one
    std::string newEnd_;
    std::vector<Line> lines_;
};

}  // namespace vl
