// A column's bytes as a value.
#pragma once

#include "Origin.h"
#include "base/Variant.h"

namespace vl::jet {

/// The value of a column other than yes/no, memo and OLE. Throws `Error` (`ErrNo::Corrupt`) when
/// `bytes` has another size than the type, or a date is not a number.
/// Source: docs/jet4.md, "Values".
Variant decodeValue(const Column& column, ByteView bytes, const Origin& origin);

/// "{E9EDD90C-CE55-4151-ABE1-A1ACE1007515}".
std::string formatGuid(ByteView bytes);

}  // namespace vl::jet
