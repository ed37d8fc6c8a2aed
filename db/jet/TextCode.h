// Text as a field stores it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Origin.h"

namespace vl::jet {

/// UTF-16 or, after the bytes FF FE, compressed text, as UTF-8. An unpaired surrogate becomes its
/// own three bytes. Throws `Error` (`ErrNo::Corrupt`) for an odd number of UTF-16 bytes.
/// Source: docs/jet4.md, "Text".
std::string decodeText(ByteView bytes, const Origin& origin);

/// The same where the text stands in the bytes as it is, compressed and all ASCII; else nothing.
std::optional<std::string_view> plainTextIn(ByteView bytes) noexcept;

/// The other way round. Compressed, where `compress` allows it, only when that is shorter, every
/// character has one byte and there are no more than 1024. Throws `Error` (`ErrNo::Unsupported`)
/// for a text that would be taken for a compressed one: it begins with U+FEFF and has characters
/// that no compressed text can have.
std::vector<std::byte> encodeText(std::u16string_view units, bool compress);

}  // namespace vl::jet
