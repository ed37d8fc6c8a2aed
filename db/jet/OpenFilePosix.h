// An open file of a system with descriptors.
#pragma once

#include <sys/stat.h>

#include <string>

#include "db/jet/File.h"

namespace vl::jet {

/// Throws `Error` (`ErrNo::Io`, or `ErrNo::Exists` where that is the reason): "PATH: cannot WHAT:"
/// and the system's text for `reason`, a value of `errno`.
[[noreturn]] void refusedFor(const std::string& path, const std::string& what, int reason);

/// Throws `Error` (`ErrNo::Io`) for a folder, a device or a pipe.
void needFile(const std::string& path, const struct stat& status);

class PosixFile final : public File {
public:
    /// The descriptor is closed by the destructor.
    PosixFile(std::string path, int descriptor) : path_(std::move(path)), fd_(descriptor) {}
    ~PosixFile() override;
    PosixFile(const PosixFile&) = delete;
    PosixFile& operator=(const PosixFile&) = delete;

    struct stat status() const;
    std::uint64_t nameCount() const;

    FileIdentity identity() const override;
    std::uint64_t size() const override;
    std::int64_t modified() const override;
    void read(std::uint64_t offset, std::span<std::byte> bytes) const override;
    void write(std::uint64_t offset, ByteView bytes) override;
    void truncate(std::uint64_t size) override;
    void flush() override;
    bool tryLock(std::uint64_t first, std::uint64_t count, LockKind kind) override;
    void unlock(std::uint64_t first, std::uint64_t count) noexcept override;
    bool heldByOthers(std::uint64_t at) override;
    std::string holderOf(std::uint64_t at) override;

private:
    [[noreturn]] void refused(const std::string& what) const;
    [[noreturn]] void unsupported() const;

    std::string path_;
    int fd_;
};

}  // namespace vl::jet
