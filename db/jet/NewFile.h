// A file that was not there before.
#pragma once

#include <string>

#include "db/jet/Types.h"

namespace vl::jet {

/// Makes a file of these bytes; `path` is UTF-8. It is there as a whole or not at all, and on the
/// disk when this returns: it is written under another name in the same folder first. Throws
/// `Error`: `ErrNo::Exists` when there is something at `path`, which stays as it is, whoever put it
/// there meanwhile; `ErrNo::NotFound` when its folder is not there; `ErrNo::Io`. Nothing is left
/// behind then.
void publishNewFile(const std::string& path, ByteView bytes);

}  // namespace vl::jet
