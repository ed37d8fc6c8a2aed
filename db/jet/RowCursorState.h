// What a cursor over rows consists of, for its own sources only.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "RowPlace.h"
#include "db/jet/ReadGuard.h"
#include "db/jet/RowCursor.h"
#include "index/EntriesInRange.h"

namespace vl::jet {

struct RowCursor::State {
    State(PageFile& theFile, std::shared_ptr<const TableDefinition> theTable)
        : file(theFile), table(std::move(theTable)), guard(file) {
        for (const Column& column : table->columns) {
            if (isLong(column.type)) {
                longColumns.push_back(&column);
            }
        }
    }

    PageFile& file;
    std::shared_ptr<const TableDefinition> table;
    std::vector<const Column*> longColumns;  // of the table
    std::vector<PageNo> pages;               // the table's, ascending
    std::size_t nextPage = 0;
    std::optional<PageNo> here;  // of them the one that it stands on
    Page page;                   // the one that slots are taken from; none: not read yet
    DataPage data;
    std::uint16_t nextSlot = 0;
    std::unique_ptr<EntriesInRange> entries;  // where an index says which rows come
    bool entryTaken = false;                  // but its row not found yet
    std::vector<RowId> list;                  // where a list says so
    bool listed = false;
    std::size_t nextOfList = 0;
    RowId id;
    RowPlace place;  // of the current row
    RowView row;
    std::uint64_t layout = 0;  // of the table's columns; 0: not asked for yet
    ReadGuard guard;
};

}  // namespace vl::jet
