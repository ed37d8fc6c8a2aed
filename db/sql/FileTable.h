// A table of a file, for statements.
#pragma once

#include "RowSource.h"
#include "db/jet/Table.h"

namespace vl::sql {

/// A cursor's rows.
class CursorRows final : public PagedRows {
public:
    explicit CursorRows(jet::RowCursor from) : cursor(std::move(from)) {}
    bool next() override { return cursor.next(); }
    Variant value(std::size_t column) const override { return cursor.value(column); }
    jet::RowId id() const override { return cursor.id(); }
    bool nextPage() override { return cursor.nextPage(); }
    bool nextOnPage() override { return cursor.nextOnPage(); }
    jet::PageNo page() const override { return cursor.page(); }
    bool holds(const jet::PageMark& mark) const override { return cursor.holds(mark); }
    jet::PageMark mark() override { return cursor.mark(); }

    jet::RowCursor cursor;
};

class FileTable final : public StoredTable {
public:
    explicit FileTable(jet::Table table);

    const TableShape& shape() const override { return shape_; }
    std::unique_ptr<RowSource> scan() const override;
    std::unique_ptr<PagedRows> pages() const override;
    std::unique_ptr<RowSource> rows(std::vector<jet::RowId> ids) const override;
    std::vector<jet::RowId> find(const IndexRange& range) const override;

    void insert(const Changes& values) override;
    void update(jet::RowId row, const Changes& values) override;
    void remove(jet::RowId row) override;

private:
    jet::Table table_;
    TableShape shape_;
};

}  // namespace vl::sql
