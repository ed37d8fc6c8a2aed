// Which process has locked a byte of a file, where the system tells.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>

namespace vl::jet {

/// "process 4711 (remindb)"; empty when it is of another user or another machine, or the system
/// keeps no such list. Looks through all open files of the user's processes: for the text of an
/// error.
std::string processLocking(const struct stat& file, std::uint64_t at);

}  // namespace vl::jet
