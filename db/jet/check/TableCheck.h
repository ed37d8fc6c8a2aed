// Whether a table is whole: its pages, rows, long values and indexes.
#pragma once

#include <set>

#include "Claims.h"
#include "Row.h"
#include "base/Variant.h"

namespace vl::jet {

/// One check of one table. All that it refers to must outlive it.
class TableCheck {
public:
    TableCheck(PageFile& file, const TableDefinition& table, Claims& claims, Findings& findings);

    /// `countIsExact`: the number of rows that the definition says is to be the true one.
    void run(bool countIsExact);

private:
    using Rows = std::set<std::pair<PageNo, std::uint16_t>>;
    /// A memo or OLE column's pages, and which rows of them the table's rows name.
    struct LongPages {
        std::set<PageNo> pages;
        Rows named;
    };

    std::string label() const;
    std::vector<PageNo> mapPages(RowPointer map, const std::string& label);
    void checkDefinitionPages();
    void readMaps();
    void checkFreeMap(RowPointer map, const std::set<PageNo>& owned, const std::string& label);
    void checkDataPage(PageNo number);
    void checkSlot(const Page& page, const DataPage& data, std::uint16_t slot);
    void checkRow(const RowView& row, RowId id, const Origin& origin);
    void checkLongValue(std::size_t column, ByteView definition, const Origin& origin);
    void checkBodies();
    void checkLongPages(std::size_t column);
    void checkTree(std::size_t tree);

    PageFile& file_;
    const TableDefinition& table_;
    Claims& claims_;
    Findings& findings_;
    std::set<PageNo> owned_;
    std::vector<LongPages> long_;              // by column
    std::vector<std::vector<KeyBytes>> keys_;  // by tree: what it should have as entries
    std::vector<bool> keysKnown_;              // by tree
    std::vector<std::vector<PageNo>> treePages_;
    Rows bodies_;       // of moved rows, as they lie on pages
    Rows namedBodies_;  // as pointers name them
    std::uint32_t rows_ = 0;
};

}  // namespace vl::jet
