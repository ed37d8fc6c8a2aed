// How a finished file gets its name without taking it from another one (not on Windows).
#pragma once

#include <string>

namespace vl::platform {

/// Not every file system can do the first two; the last leaves an empty file behind if the machine
/// stops between its two steps.
enum class Publishing { Link, Rename, Claim };

/// Gives the file `from` the name `to` (too), if nothing has that name, not even a link that points
/// nowhere. False when the file system cannot do it this way. Throws `Error` (`ErrNo::Exists`,
/// `ErrNo::ReadOnly`, `ErrNo::Io`), and then `to` is as it was.
bool publish(Publishing way, const std::string& from, const std::string& to);

}  // namespace vl::platform
