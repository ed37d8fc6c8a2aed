// The catalog's rows, while tables come, change and go.
#pragma once

#include <optional>
#include <span>
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
    /// An object that is no table, by the values that another catalog's row has, with their
    /// columns' names; it keeps its number and its container. The owner and the accounts are those
    /// of this file. Throws `Error` (`ErrNo::Exists`) for a number or name that is taken.
    void addObject(std::span<const std::pair<std::string, Variant>> values);

    Properties properties(PageNo definition) const;
    /// Notes that the table was changed just now, and its properties where they are given.
    void noteChange(PageNo definition, const Properties* properties = nullptr);

private:
    struct Columns;

    RowId rowOf(PageNo definition) const;
    Bytes owner() const;
    void addPermissions(std::int32_t object, std::int32_t container, const Bytes& owner);

    PageFile& file_;
    Table objects_;
    Table permissions_;
};

}  // namespace vl::jet
