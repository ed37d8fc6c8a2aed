// The catalog's rows, while tables come, change and go.
#pragma once

#include <optional>
#include <string_view>

#include "Properties.h"
#include "db/jet/Table.h"

namespace vl::jet {

/// Writes MSysObjects and MSysACEs of an open file, which must outlive it, inside a transaction.
/// Throws `Error`, `ErrNo::Corrupt` for a catalog that lacks what every file has.
/// Source: docs/jet4.md, "Catalog".
class CatalogWriter {
public:
    explicit CatalogWriter(PageFile& file);

    /// Whether a table or a query has the name, as the catalog's index compares names: without
    /// regard to case.
    bool hasName(std::string_view name) const;

    /// The object's row, and what accounts may do with it: what new objects inherit from their
    /// container. Belongs to the account that owns the database.
    void addTable(PageNo definition, std::string_view name, const Properties& properties);
    void removeTable(PageNo definition);

    Properties properties(PageNo definition) const;
    /// Notes that the table was changed just now, and its properties where they are given.
    void noteChange(PageNo definition, const Properties* properties = nullptr);

private:
    struct Columns;

    RowId rowOf(PageNo definition) const;
    Bytes owner() const;
    void addPermissions(PageNo definition, const Bytes& owner);

    PageFile& file_;
    Table objects_;
    Table permissions_;
};

}  // namespace vl::jet
