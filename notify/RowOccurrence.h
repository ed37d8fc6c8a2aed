// Which occurrence of its event a row stands for.
#pragma once

#include "base/DateTime.h"

namespace vl {

/// The occurrence of an event that a row stands for.
struct RowOccurrence {
    DateTime start;
    DateTime reminder;  ///< 0 when the row shows none
    friend bool operator==(const RowOccurrence&, const RowOccurrence&) = default;
};

}  // namespace vl
