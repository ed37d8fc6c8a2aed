// The file layer: the only place of the engine with system calls. Tests put memory in its place.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "db/jet/Types.h"

namespace vl::jet {

/// An open file, closed by its destructor. Every method throws `Error` (`ErrNo::Io`, with the
/// system's reason) when the system refuses; what a failed write left behind is not known.
class File {
public:
    virtual ~File() = default;

    virtual std::uint64_t size() const = 0;
    /// Fills `bytes` from `offset` on; a file that ends before is an error.
    virtual void read(std::uint64_t offset, std::span<std::byte> bytes) const = 0;
    virtual void write(std::uint64_t offset, ByteView bytes) = 0;
    /// Returns when what was written is on the disk.
    virtual void flush() = 0;

protected:
    File() = default;
    File(const File&) = default;
    File& operator=(const File&) = default;
};

/// Opens an existing file; `path` is UTF-8. Throws `Error`: `ErrNo::NotFound` when there is none,
/// `ErrNo::Locked` when another program keeps it to itself (on Windows), `ErrNo::Io` for everything
/// else.
std::unique_ptr<File> openFile(const std::string& path, Access access);

}  // namespace vl::jet
