// The words for column types.
#pragma once

#include "Ast.h"
#include "TokenStream.h"

namespace vl::sql {

/// Reads a type behind a column's name: a word, or two, with a length, or precision and scale,
/// between brackets where the type has one. A text without a length has 255 characters, bytes 255
/// too, a decimal 18 digits. Throws `Error`: `ErrNo::Syntax` for a word that is no type, or a
/// length that no such column has.
void parseType(TokenStream& tokens, ColumnSpec& column);

}  // namespace vl::sql
