// What a new file begins with.
#pragma once

#include <vector>

#include "DefinitionBlocks.h"
#include "SystemPages.h"

namespace vl::jet {

/// Accounts as a file's catalog names them: two bytes each, which belong to the value and the date
/// in the header. They are never made up.
struct Accounts {
    std::array<std::byte, 2> admin;    ///< owns what users make
    std::array<std::byte, 2> engine;   ///< owns what the engine makes
    std::array<std::byte, 2> users;    ///< the group of all
    std::array<std::byte, 2> creator;  ///< stands for whoever owns the object
};

/// Of the files that `firstPages` begins.
Accounts newFileAccounts() noexcept;

/// The pages of a file without any object: header, map of free pages, the definitions of the four
/// system tables, their maps, and the empty roots of their indexes. Source: docs/jet4.md, "A new
/// file".
std::vector<Page::Bytes> firstPages();

}  // namespace vl::jet
