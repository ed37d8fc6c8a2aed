// The pop-up's content in its small markup language.
#pragma once

#include <string>
#include <string_view>

#include "events/GenCollection.h"

namespace vl {

/// The text escaped for the markup: "&" first, so that no entity is escaped again, then "<", ">",
/// "'" and the double quote; a line break (CR LF) becomes "<LineBreak/>".
std::string xamlEncodePlaintext(std::string_view pPlainText);

/// A grid of one column with a row for each entry of `EvCol` (`ValueList` of summary and reminder
/// line). Rows count from 0, the links' tags from 1: a tag is the entry's position in `EvCol`.
std::string popUpMarkup(const GenCollection& EvCol);

}  // namespace vl
