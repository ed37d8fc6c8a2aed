// Text as a field stores it.
#pragma once

#include <string>

#include "Origin.h"

namespace vl::jet {

/// UTF-16 or, after the bytes FF FE, compressed text, as UTF-8. An unpaired surrogate becomes its
/// own three bytes. Throws `Error` (`ErrNo::Corrupt`) for an odd number of UTF-16 bytes.
/// Source: docs/jet4.md, "Text".
std::string decodeText(ByteView bytes, const Origin& origin);

}  // namespace vl::jet
