#include "FileTable.h"

namespace vl::sql {

namespace {

class CursorRows final : public RowSource {
public:
    explicit CursorRows(jet::RowCursor cursor) : cursor_(std::move(cursor)) {}
    bool next() override { return cursor_.next(); }
    Variant value(std::size_t column) const override { return cursor_.value(column); }
    jet::RowId id() const override { return cursor_.id(); }

private:
    jet::RowCursor cursor_;
};

}  // namespace

FileTable::FileTable(jet::Table table)
    : table_(std::move(table)), shape_{table_.name(), table_.columns(), table_.indexes()} {}

std::unique_ptr<RowSource> FileTable::scan() const {
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
