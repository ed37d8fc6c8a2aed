// Texts in the order of the database: not by their characters but by keys built from them.
#pragma once

#include <string_view>

#include "db/jet/Types.h"

namespace vl::jet {

/// What an index stores of a text: its first `kKeyUnits` UTF-16 units, without blanks at the end.
inline constexpr std::size_t kKeyUnits = 255;

/// Appends the key of `text` (UTF-8), which does not begin with the flag that tells null from
/// values, and ends with a byte 0. Case, width and blanks at the end make no difference; accents
/// do, but only between texts that are the same without them; hyphens and apostrophes last.
/// Source: docs/jet4.md, "Text keys".
void appendTextKey(KeyBytes& key, std::string_view text, std::size_t units = kKeyUnits);

/// Negative, 0 or positive: the order of the whole texts' keys. 0 for texts that a unique index
/// takes for the same. Costs building both keys, unless plain ASCII letters decide. Texts longer
/// than `kKeyUnits` units may differ here and have one key in an index.
int compareText(std::string_view a, std::string_view b);

}  // namespace vl::jet
