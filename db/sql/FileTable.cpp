#include "FileTable.h"

namespace vl::sql {

FileTable::FileTable(jet::Table table)
    : table_(std::move(table)), shape_{table_.name(), table_.columns(), table_.indexes()} {}

std::unique_ptr<RowSource> FileTable::scan() const {
    return std::make_unique<CursorRows>(table_.scan());
}

std::unique_ptr<PagedRows> FileTable::pages() const {
    return std::make_unique<CursorRows>(table_.scan());
}

std::unique_ptr<RowSource> FileTable::rows(std::vector<jet::RowId> ids) const {
    return std::make_unique<CursorRows>(table_.rows(std::move(ids)));
}

std::vector<jet::RowId> FileTable::find(const IndexRange& range) const {
    jet::KeyRange keys;
    if (!range.from.empty()) {
        keys.from = table_.indexKey(range.index, range.from);
    }
    if (!range.to.empty()) {
        keys.to = table_.indexKey(range.index, range.to);
    }
    return table_.indexRows(range.index, std::move(keys));
}

void FileTable::insert(const Changes& values) { table_.insert(values); }
void FileTable::update(jet::RowId row, const Changes& values) { table_.update(row, values); }
void FileTable::remove(jet::RowId row) { table_.remove(row); }

}  // namespace vl::sql
