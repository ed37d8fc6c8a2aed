// A table of a file, for statements.
#pragma once

#include "RowSource.h"
#include "db/jet/Table.h"

namespace vl::sql {

class FileTable final : public StoredTable {
public:
    explicit FileTable(jet::Table table);

    const TableShape& shape() const override { return shape_; }
    std::unique_ptr<RowSource> scan() const override;
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
