// Whether a copy of a database holds what its source holds.
#pragma once

#include <string>

#include "db/jet/Database.h"

namespace vl::test {

/// What the first difference between the users' tables of two sound databases is, to the bit of
/// each value, the order of rows aside; empty when there is none.
std::string differenceOfRows(const jet::Database& source, const jet::Database& copy);

}  // namespace vl::test
