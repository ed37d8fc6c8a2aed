// A small file that several running copies of the program read and add to.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

namespace vl {

namespace platform {
class FileLock;
struct FileState;
}  // namespace platform

/// Adding, replacing and reading are single steps that throw `Error`; who changes the file by what
/// he read in it holds the lock over both. The lock is a file of its own beside it, so that the
/// file itself can be replaced while others wait.
class SharedFile {
public:
    explicit SharedFile(std::string path);
    ~SharedFile();
    SharedFile(const SharedFile&) = delete;
    SharedFile& operator=(const SharedFile&) = delete;

    const std::string& path() const noexcept { return path_; }

    /// Holds off all other copies while it lives.
    using Lock = std::shared_ptr<const platform::FileLock>;
    /// Throws `ErrNo::Locked` when others hold it longer than `atMost`, `ErrNo::ReadOnly` or
    /// `ErrNo::Io` when the folder cannot be written.
    Lock lock(std::chrono::milliseconds atMost) const;

    /// Whether the file is another one, or was changed, since `read`, `append` or `replace` of this
    /// object last saw it. Never throws.
    bool changed() const;

    /// All of it; empty when it is not there.
    std::string read();
    /// On the disk when it returns.
    void append(std::string_view bytes);
    /// As one change: whoever reads sees the old file or the new one.
    void replace(std::string_view bytes);

private:
    std::string path_;
    std::unique_ptr<platform::FileState> seen_;
};

}  // namespace vl
