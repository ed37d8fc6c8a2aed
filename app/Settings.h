// The settings file.
#pragma once

#include <string>
#include <string_view>

#include "base/Variant.h"

namespace vl {

/// Settings in an INI file that other programs and people may write, too. Names of sections and
/// keys are compared without regard to case and without the blanks around them; of several equal
/// ones the first counts. Lines that begin with ";" are comments. A value is taken without the
/// blanks around it and without one pair of quotes, single or double, around the whole.
///
/// Every call reads the file anew and costs its length. A write that changes anything replaces the
/// file as one change and forces it to the disk; it touches the one line, or adds one at the end of
/// the section (before the empty lines that end it) or a section at the end of the file. All else
/// stays byte for byte: comments, empty lines, line ends, a byte order mark, a missing last line
/// end, bytes that are no text.
///
/// The file is in the system code page on Windows, in UTF-8 elsewhere; behind a byte order mark in
/// what that says, UTF-8 or UTF-16 of either byte order, and stays in it.
/// No method throws or reports a failure: reads give the default, writes are lost (and traced).
class Settings {
public:
    /// Full path of the file.
    std::string filename;

    /// The value, at most 32765 UTF-16 units of it; `Default` as text when the key is missing or
    /// its value is empty.
    std::string GetIni(std::string_view section, std::string_view key,
                       const Variant& Default = {}) const;

    /// The section's entries as "key=value", quotes and all, each ended by a NUL; without comments
    /// and empty lines. At most 32764 UTF-16 units. Empty when there is no such section.
    std::string GetIniSection(std::string_view section) const;

    /// Writes one key. Names and value end at their first line end or NUL, since a line holds no
    /// more.
    /// Nothing is written under an empty section or key.
    void SaveIni(std::string_view section, std::string_view key, std::string_view value);

    /// Replaces the section's entries by these, each ended by a NUL; an empty one ends the list,
    /// whatever follows. Comments stay.
    void SaveIniSection(std::string_view section, std::string_view text);

    /// False when writes are lost, for lack of rights or of a folder. Looks, and changes nothing.
    bool CanSave() const;
};

}  // namespace vl
