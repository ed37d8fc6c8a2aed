// A damaged definition that can still be read, as one that can be made.
#pragma once

#include <functional>
#include <string_view>

#include "TableDefinition.h"
#include "db/jet/check/Findings.h"

namespace vl::jet {

/// Gives table and columns other names where theirs are none or are taken, and columns the largest
/// size where theirs is beyond it, and says so: nothing of this is a reason to lose rows, which are
/// read with this definition as with the one before. `isTaken` says whether there is a table of a
/// name. Names of indexes are left alone: without one an index is lost, and nothing else.
void mendDefinition(TableDefinition& table, const std::function<bool(std::string_view)>& isTaken,
                    Findings& findings);

}  // namespace vl::jet
