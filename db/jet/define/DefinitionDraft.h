// New blocks for a table's definition.
#pragma once

#include "DefinitionBlocks.h"
#include "NewTable.h"

namespace vl::jet {

/// Whether a column of the type stands at a fixed place of the row; yes/no columns count as such.
bool isFixedType(ColumnType type) noexcept;

/// The definition of a table without columns, rows and indexes.
DefinitionBlocks newDefinition(RowPointer ownedPages, RowPointer freePages);

/// Appends a column that is known to be allowed; gives its number. Rows that are there already
/// hold null in it, or false. The maps of a memo or OLE column are the caller's matter.
std::uint16_t appendColumn(DefinitionBlocks& blocks, const NewColumn& column);

/// Appends a tree of keys and the index that it stores. Its columns must be the definition's.
void appendIndex(DefinitionBlocks& blocks, const NewIndex& index, RowPointer ownedPages,
                 PageNo root);

}  // namespace vl::jet
