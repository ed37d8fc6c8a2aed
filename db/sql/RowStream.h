// The rows of a table one after the other, for who reads many of them again and again.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "base/Variant.h"
#include "db/jet/Database.h"
#include "db/sql/Sql.h"

namespace vl::sql {

/// A statement "SELECT * FROM table [WHERE condition]" while it runs. Every row of the table comes,
/// in the order of the scan; whether the condition is true of it is asked row by row, and who knows
/// a page again need not look at its rows at all. Holds one row. The `Database` must outlive it.
/// Every method throws `Error`, as `execute` does; the constructor `ErrNo::Unsupported` for any
/// other statement.
class RowStream {
public:
    RowStream(jet::Database& db, std::string_view statement);
    ~RowStream();
    RowStream(const RowStream&) = delete;
    RowStream& operator=(const RowStream&) = delete;

    /// Of every row.
    const std::vector<Field>& fields() const noexcept;

    /// Moves to the next row, at first to the first one. False: there is none.
    bool next();
    /// As `jet::RowCursor::passOver`.
    std::optional<jet::RowCursor::Unreadable> passOver();
    // Page by page, as `jet::RowCursor`.
    bool nextPage();
    bool nextOnPage();
    jet::PageNo page() const;
    bool holds(const jet::PageMark& mark) const;
    jet::PageMark mark();
    /// Whether the condition is true of the current row.
    bool matches() const;
    /// A field of the current row, by its place from 0. Decoded when asked for.
    Variant value(std::size_t field) const;
    /// As `jet::RowCursor::read`, with the row's field in a variable of a type of its kind.
    template <class T>
    jet::RowCursor::Read read(std::size_t field, T& to) const {
        return cursor().read(field, to);
    }
    /// As `jet::RowCursor::readAll`.
    void readAll(jet::RowCells& to) const { cursor().readAll(to); }
    jet::RowId id() const;
    /// As `jet::RowCursor::fingerprint`.
    std::uint64_t fingerprint() const;

private:
    const jet::RowCursor& cursor() const;

    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace vl::sql
