// Where a row's bytes are: in its slot, or where it has moved to.
#pragma once

#include "Row.h"

namespace vl::jet {

struct RowPlace {
    Page page;  ///< keeps `bytes` alive
    ByteView bytes;
    std::size_t offset = 0;  ///< of `bytes` in the page
};

/// The row whose identity is slot `slot` (a row, or one that moved) of `page`; `data` is that page.
/// Pointers are followed at most a few times: no writer makes chains of them. Throws `Error`
/// (`ErrNo::Corrupt`) when they end anywhere but at the body of a moved row of this table.
/// `passed` receives the other pages that the way leads over, the last one included.
RowPlace findRow(PageFile& file, const TableDefinition& table, const Page& page,
                 const DataPage& data, std::uint16_t slot, std::vector<PageNo>* passed = nullptr);

}  // namespace vl::jet
