#ifndef _WIN32

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "base/ErrorState.h"
#include "db/jet/File.h"

namespace vl::jet {

namespace {

class PosixFile : public File {
public:
    PosixFile(std::string path, int descriptor) : path_(std::move(path)), fd_(descriptor) {}
    ~PosixFile() override { ::close(fd_); }
    PosixFile(const PosixFile&) = delete;
    PosixFile& operator=(const PosixFile&) = delete;

    std::uint64_t size() const override {
        struct stat status {};
        if (::fstat(fd_, &status) != 0) {
            refused("tell its size");
        }
        if (!S_ISREG(status.st_mode)) {
            throw Error(ErrNo::Io, path_ + ": is no regular file");
        }
        return static_cast<std::uint64_t>(status.st_size);
    }

    void read(std::uint64_t offset, std::span<std::byte> bytes) const override {
        while (!bytes.empty()) {
            const ::ssize_t n =
                ::pread(fd_, bytes.data(), bytes.size(), static_cast<::off_t>(offset));
            if (n < 0 && errno == EINTR) {
                continue;
            }
            if (n < 0) {
                refused("read at " + std::to_string(offset));
            }
            if (n == 0) {
                throw Error(ErrNo::Io, path_ + ": ends before " + std::to_string(offset));
            }
            bytes = bytes.subspan(static_cast<std::size_t>(n));
            offset += static_cast<std::uint64_t>(n);
        }
    }

    void write(std::uint64_t offset, ByteView bytes) override {
        while (!bytes.empty()) {
            const ::ssize_t n =
                ::pwrite(fd_, bytes.data(), bytes.size(), static_cast<::off_t>(offset));
            if (n < 0 && errno == EINTR) {
                continue;
            }
            if (n < 0) {
                refused("write at " + std::to_string(offset));
            }
            bytes = bytes.subspan(static_cast<std::size_t>(n));
            offset += static_cast<std::uint64_t>(n);
        }
    }

    void flush() override {
        if (::fsync(fd_) != 0) {
            refused("flush");
        }
    }

private:
    [[noreturn]] void refused(const std::string& what) const {
        const int reason = errno;
        throw Error(ErrNo::Io,
                    path_ + ": cannot " + what + ": " + std::generic_category().message(reason));
    }

    std::string path_;
    int fd_;
};

}  // namespace

std::unique_ptr<File> openFile(const std::string& path, Access access) {
    const int mode = (access == Access::Read ? O_RDONLY : O_RDWR) | O_CLOEXEC;
    const int fd = ::open(path.c_str(), mode);
    if (fd < 0) {
        const int reason = errno;
        const bool absent = reason == ENOENT || reason == ENOTDIR;
        throw Error(absent ? ErrNo::NotFound : ErrNo::Io,
                    path + ": cannot open: " + std::generic_category().message(reason));
    }
    return std::make_unique<PosixFile>(path, fd);
}

}  // namespace vl::jet

#endif
