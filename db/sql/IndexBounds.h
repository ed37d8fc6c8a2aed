// What a comparison with a value means for the keys of an index.
#pragma once

#include <optional>

#include "RowSource.h"

namespace vl::sql {

/// Values as an index sorts them: whatever a column holds that is equal to the value in question
/// lies from `low` to `high`; what is less does not lie above `high`, what is greater not below
/// `low`.
struct Bounds {
    Variant low;
    Variant high;
};

/// The bounds of `value`, which is not null, in `column`. Nothing where the order of keys is no
/// help.
std::optional<Bounds> equalBounds(const jet::Column& column, const Variant& value);

/// The same, where also less and greater are asked for. Floating-point columns can hold what is no
/// number, which sorts before all numbers but has keys at either end: there `low` may be used alone
/// or with `high`, but not `high` alone (see `hasNumbersOnly`).
std::optional<Bounds> rangeBounds(const jet::Column& column, const Variant& value);

bool hasNumbersOnly(const jet::Column& column) noexcept;

}  // namespace vl::sql
