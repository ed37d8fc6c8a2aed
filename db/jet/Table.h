// A table of an open file.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/Variant.h"
#include "db/jet/RowCursor.h"
#include "db/jet/Types.h"

namespace vl::jet {

/// The definition as it was when the table was asked for; copying is cheap. The `Database` must
/// outlive it. Every method that reads or writes throws `Error`.
class Table {
public:
    Table(PageFile& file, std::shared_ptr<const TableDefinition> definition);

    const std::string& name() const noexcept;
    /// In the order of creation. Positions here are what the other calls mean by a column.
    const std::vector<Column>& columns() const noexcept;
    const std::vector<Index>& indexes() const noexcept;
    /// What the definition says; some system tables hold a few rows more.
    std::uint32_t rowCount() const noexcept;

    /// Costs reading the table's usage map; rows are read as the cursor goes.
    RowCursor scan() const;

private:
    PageFile* file_;
    std::shared_ptr<const TableDefinition> definition_;
};

}  // namespace vl::jet
