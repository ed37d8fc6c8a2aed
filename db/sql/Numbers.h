// Values as numbers, for operators.
#pragma once

#include "Value.h"

namespace vl::sql {

/// Whether it is a whole number of 32 bits, or yes/no.
inline bool isWhole(const Variant& v) noexcept { return v.is<std::int32_t>() || v.is<bool>(); }

/// Of one for which `isWhole`.
inline std::int64_t whole(const Variant& v) noexcept {
    if (const auto* number = v.get<std::int32_t>()) {
        return *number;
    }
    const auto* flag = v.get<bool>();
    return flag != nullptr && *flag ? -1 : 0;
}

/// The number that a value is or reads as; not for null. Throws `Error` (`ErrNo::TypeMismatch`,
/// naming `at`): a `wanted` ("number") was expected.
double numberOf(const Variant& v, Position at, const char* wanted);

}  // namespace vl::sql
