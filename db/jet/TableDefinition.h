// A table's definition: columns, indexes, and where its pages are.
#pragma once

#include <string>
#include <vector>

#include "DataPage.h"
#include "index/IndexDefinition.h"

namespace vl::jet {

/// Where the pages of a memo or OLE column are. A map that points to page 0 is not there.
struct LongColumn {
    std::uint16_t number = 0;
    RowPointer ownedPages;
    RowPointer freePages;
};

struct TableDefinition {
    std::string name;
    PageNo page = 0;
    std::uint32_t rowCount = 0;
    /// Columns ever created, deleted ones included: above every column's number.
    std::uint16_t maxColumns = 0;
    /// Variable slots ever created.
    std::uint16_t variableSlots = 0;
    RowPointer ownedPages;
    /// Those of the owned pages that may have room.
    RowPointer freePages;
    std::vector<LongColumn> longColumns;
    std::vector<Column> columns;         ///< by number
    std::vector<Index> indexes;          ///< by number
    std::vector<IndexDefinition> trees;  ///< in the order of creation
    /// A row written while the table had fewer than this many columns has no variable part.
    std::uint16_t firstVariableColumns = 0;
    /// What all of this was read from.
    std::vector<std::byte> bytes;
};

/// The bytes of the definition that begins on page `first`: that page whole, of the others what
/// follows their headers, as long as it says it is. Throws `Error` (`ErrNo::Corrupt`).
std::vector<std::byte> definitionBytes(PageFile& file, PageNo first);

/// Reads the definition that begins on page `page`; `name` is what the catalog calls it. Throws
/// `Error` (`ErrNo::Corrupt`) for one that contradicts itself; after that every column's number,
/// type and size can be relied upon. Source: docs/jet4.md, "Table definition".
TableDefinition readTableDefinition(PageFile& file, PageNo page, std::string name);

/// Bytes of a value of a type that has one size; 0 for the others.
std::uint16_t sizeOf(ColumnType type) noexcept;
/// Memo and OLE, whose values mostly stand outside their rows.
bool isLong(ColumnType type) noexcept;

}  // namespace vl::jet
