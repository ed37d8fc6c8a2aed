// What the program says of itself.
#pragma once

#include <string_view>

#include "notify/MessageScreen.h"

namespace vl {

/// `version` is major.minor.revision.
BoxRequest aboutBox(std::string_view version, int DBVersion);

}  // namespace vl
