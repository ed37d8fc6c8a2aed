// A file that only this program sees, for what does not fit into memory.
#pragma once

#include <cstdio>
#include <memory>

namespace vl::jet {

struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

/// Open for writing and reading, without a name that anybody could find; gone when it is closed,
/// however the program ends. Throws `Error` (`ErrNo::Io`).
std::unique_ptr<std::FILE, CloseFile> temporaryFile();

}  // namespace vl::jet
