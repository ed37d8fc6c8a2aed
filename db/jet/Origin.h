// Where bytes come from, for the text of an error.
#pragma once

#include <string>
#include <string_view>

#include "db/jet/Types.h"

namespace vl::jet {

/// `file` is looked at, not kept.
struct Origin {
    std::string_view file;
    PageNo page = 0;

    /// Throws `Error` (`ErrNo::Corrupt`): "FILE, page N: what".
    [[noreturn]] void corrupt(const std::string& what) const;
};

}  // namespace vl::jet
