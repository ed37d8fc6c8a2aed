// Page 0: what tells a Jet 4 file from others.
#pragma once

#include <string>

#include "db/jet/Types.h"

namespace vl::jet {

/// Where page 0 keeps its commit words, 16 bits each.
inline constexpr std::size_t kCommitWords = 0xE00;
/// The word that our own changes raise: that of the first user who shares the file.
inline constexpr std::size_t kOwnCommitWord = kCommitWords + 2;

/// `start` is the file's beginning, a page of it or, when the file is shorter, all of it. Throws
/// `Error` (`ErrNo::Format`, naming what the file is instead) unless it is a Jet 4 file that is
/// not encrypted. Source: docs/jet4.md, "Header".
void checkHeader(const std::string& fileName, ByteView start);

}  // namespace vl::jet
