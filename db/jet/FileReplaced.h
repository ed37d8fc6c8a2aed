// The one error after which a statement may be begun again.
#pragma once

#include "base/ErrorState.h"

namespace vl::jet {

/// `ErrNo::Io`: the name leads to another file than the one that was opened under it, or to none.
/// Thrown where a reading or a change begins, so that nothing was read or changed yet.
/// `Database::openAnew` goes on with what is there now.
class FileReplaced : public Error {
public:
    explicit FileReplaced(const std::string& path)
        : Error(ErrNo::Io, path + ": was removed or replaced since it was opened") {}
};

}  // namespace vl::jet
