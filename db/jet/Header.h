// Page 0: what tells a Jet 4 file from others.
#pragma once

#include <span>
#include <string>

#include "db/jet/Types.h"

namespace vl::jet {

/// Where page 0 keeps its commit words, 16 bits each.
inline constexpr std::size_t kCommitWords = 0xE00;
/// The word that our own changes raise: that of the first user who shares the file.
inline constexpr std::size_t kOwnCommitWord = kCommitWords + 2;

/// Hides the fields of the header's block, or shows them again. Source: docs/jet4.md, "A new file".
void maskHeader(std::span<std::byte> page);

/// Gives the page 0 of one file the password of another's. It is only asked for by programs: pages
/// are readable without it. Source: docs/jet4.md, "A new file".
void copyPassword(ByteView from, std::span<std::byte> to);

/// `start` is the file's beginning, a page of it or, when the file is shorter, all of it. Throws
/// `Error` (`ErrNo::Format`, naming what the file is instead) unless it is a Jet 4 file that is
/// not encrypted. Source: docs/jet4.md, "Header".
void checkHeader(const std::string& fileName, ByteView start);

}  // namespace vl::jet
