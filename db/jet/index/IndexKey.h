// A row's values as the bytes by which an index sorts it.
#pragma once

#include <span>

#include "IndexDefinition.h"
#include "base/Variant.h"

namespace vl::jet {

struct IndexKey {
    KeyBytes bytes;
    bool isAllNull = false;  ///< an index that ignores nulls has no entry for it
    bool hasNull = false;    ///< not allowed where the index is `required`
};

/// The key of a row that holds `values`, one for each column of the key, in its order: as the row
/// stores them, for a date that is rounded on the way has another key. Keys compare as unsigned
/// bytes. With fewer values than columns it is what the keys of all rows with these values begin
/// with.
///
/// `Null` in a yes/no column is false. Throws `Error`: `ErrNo::TypeMismatch` or `ErrNo::Overflow`
/// for a value that is none of the column's type, `ErrNo::Unsupported` for a column whose texts
/// are sorted in another language's order, or that no index can have (OLE).
/// Source: docs/jet4.md, "Keys".
IndexKey indexKey(const IndexDefinition& index, std::span<const Variant> values);

/// Whether a key is that of a row whose key columns are all null.
bool allNull(const IndexDefinition& index, ByteView key) noexcept;

}  // namespace vl::jet
