// What can still be read of a damaged file.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "Row.h"
#include "base/Variant.h"
#include "check/Findings.h"

namespace vl::jet {

/// Reads what a check would call damaged, as far as it goes. `file` and `findings` must outlive it;
/// what is lost is added to `findings`. Throws `Error` only where the system refuses (`ErrNo::Io`).
class SalvageReader {
public:
    SalvageReader(PageFile& file, Findings& findings);

    /// The definitions of users' tables: those that the catalog names, then those that it has lost.
    std::vector<TableDefinition> tables();

    using Take = std::function<void(RowId id, const std::vector<Variant>& values)>;
    /// Every row of the table that can be found, each once; null where a value cannot be read.
    void rows(const TableDefinition& table, const Take& take);

private:
    using Place = std::pair<PageNo, std::uint16_t>;

    void namedTables(std::vector<TableDefinition>& tables, std::set<PageNo>& known);
    std::vector<PageNo> pagesOf(const TableDefinition& table);
    std::vector<Variant> valuesOf(const RowView& row, const TableDefinition& table, RowId id,
                                  const Origin& origin);
    bool isFree(PageNo page) const { return free_.contains(page); }

    PageFile& file_;
    Findings& findings_;
    std::set<PageNo> free_;  // empty when the map cannot be read
};

}  // namespace vl::jet
