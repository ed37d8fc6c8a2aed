// Statement text to AST.
#pragma once

#include <string_view>

#include "Ast.h"

namespace vl::sql {

/// Throws `Error` with line, column and what was expected: `ErrNo::Syntax` for what follows no
/// rule, `ErrNo::Unsupported` for statements and clauses that are named and not understood. Names
/// are not looked up here. Time and memory grow with the text; the depth of recursion does not
/// exceed `kMaxDepth` expressions.
Statement parse(std::string_view statement);

}  // namespace vl::sql
