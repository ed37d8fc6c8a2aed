// What stands at the same place in every file. Source: docs/jet4.md.
#pragma once

#include "DataPage.h"

namespace vl::jet {

/// The map of all free pages.
inline constexpr RowPointer kFreePages{1, 0};

// Pages of the definitions of the system tables; the first is the catalog.
inline constexpr PageNo kObjectsPage = 2;
inline constexpr PageNo kPermissionsPage = 3;
inline constexpr PageNo kQueriesPage = 4;
inline constexpr PageNo kRelationshipsPage = 5;

/// Of the catalog's column `Flags`: either marks a table as the engine's own.
inline constexpr std::uint32_t kSystemFlags = 0x80000002;

}  // namespace vl::jet
