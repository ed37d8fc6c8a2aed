// A row's values, each as the bytes that it will store.
#pragma once

#include <vector>

#include "FixedValue.h"
#include "Row.h"
#include "base/Variant.h"

namespace vl::jet {

/// One column of a row that is to be written.
struct Field {
    /// The column's bit of the mask: that it has a value, or a yes/no column's value.
    bool bit = false;
    /// The value; of a memo or OLE column with `isLoose` the value itself, else its definition.
    std::vector<std::byte> bytes;
    bool isLoose = false;
};

using Fields = std::vector<Field>;  ///< one for each of the table's `columns`

/// `value` as the column stores it: numbers rounded (halves to even), dates as `dates` says.
/// Throws `Error`: `ErrNo::TypeMismatch` when it has no such form, `ErrNo::Overflow` when it does
/// not fit, `ErrNo::Unsupported` for a text that cannot be stored. Source: docs/jet4.md, "Values".
Field fieldOf(const Column& column, const Variant& value, Dates dates = Dates::WholeSeconds);

/// Why `fieldOf` refuses a value that was read from such a column; empty: it takes it. A file that
/// was damaged, or written by others, has values that nobody can write again: no number, infinite,
/// of more digits, longer than the column, of no year that is stored.
std::string whyUnstorable(const Column& column, const Variant& value);

/// What the row holds already. Throws `Error` (`ErrNo::Corrupt`).
Fields fieldsOf(const RowView& row, const TableDefinition& table);

/// The value that will be read from it.
Variant valueOf(PageFile& file, const Column& column, const Field& field, const Origin& origin);

/// The row; no field is loose. It may be longer than a page. Source: docs/jet4.md, "Row".
std::vector<std::byte> encodeRow(const TableDefinition& table, const Fields& fields);

}  // namespace vl::jet
