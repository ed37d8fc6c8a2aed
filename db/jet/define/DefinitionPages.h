// A definition on its pages.
#pragma once

#include <span>
#include <vector>

#include "DefinitionBlocks.h"

namespace vl::jet {

/// How many pages a definition of that many bytes takes.
std::size_t definitionPageCount(std::size_t length) noexcept;

/// The definition, split: as many pages as `numbers` says, linked in that order. The first page is
/// part of the definition, the others have a header before what follows.
///
///   offset  size  of a page, little-endian
///   0       1     0x02
///   2       2     free bytes: what is left, less 8
///   4       4     next page, 0 none
///
/// Source: docs/jet4.md, "Table definition".
std::vector<Page::Bytes> definitionPages(ByteView definition, std::span<const PageNo> numbers);

/// The page of a definition that needs only one.
Page::Bytes definitionPage(ByteView definition);

/// The pages that a definition takes now, the first one first. Throws `Error` (`ErrNo::Corrupt`)
/// for a chain that leads to another kind of page, or back into itself.
std::vector<PageNo> definitionChain(PageFile& file, PageNo first);

}  // namespace vl::jet
