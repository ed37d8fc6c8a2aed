// Which values a field takes.
#pragma once

#include "base/Variant.h"
#include "db/RecordSet.h"

namespace vl {

/// The value as the field holds it; `Empty` is null, and null in a yes/no field is "no". Throws
/// `Error` (`ErrNo::TypeMismatch`, `ErrNo::Overflow`) for a value that the field cannot hold.
Variant fieldValue(const RecordSet::Field& field, const Variant& value);

}  // namespace vl
