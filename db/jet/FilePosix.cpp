#ifndef _WIN32

// Locks that belong to an open file and not to a process are Linux's own.
#ifndef _GNU_SOURCE
#define _GNU_SOURCE
#endif

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "LockHolder.h"
#include "base/ErrorState.h"
#include "db/jet/File.h"

namespace vl::jet {

namespace {

[[noreturn]] void refusedFor(const std::string& path, const std::string& what, int reason) {
    throw Error(reason == EEXIST ? ErrNo::Exists : ErrNo::Io,
                path + ": cannot " + what + ": " + std::generic_category().message(reason));
}

// File systems of Windows, by the numbers that the system gives them: two drivers of its own, and
// any that runs as a program.
constexpr std::array<std::uint32_t, 3> kShortNames = {0x5346'544E, 0x7366'746E, 0x6573'5546};

void needFile(const std::string& path, const struct stat& status) {
    if (!S_ISREG(status.st_mode)) {
        throw Error(ErrNo::Io, path + ": is no regular file");
    }
}

class PosixFile : public File {
public:
    PosixFile(std::string path, int descriptor) : path_(std::move(path)), fd_(descriptor) {}
    ~PosixFile() override { ::close(fd_); }
    PosixFile(const PosixFile&) = delete;
    PosixFile& operator=(const PosixFile&) = delete;

    struct stat status() const {
        struct stat status {};
        if (::fstat(fd_, &status) != 0) {
            refused("tell its size");
        }
        return status;
    }

    FileIdentity identity() const override {
        const struct stat now = status();
        return {now.st_dev, now.st_ino};
    }

    std::uint64_t nameCount() const {
        const std::uint64_t count = status().st_nlink;
        struct statfs system {};
        // There a long name's short one counts, too, and does not lead anybody elsewhere.
        const bool countsShortNames =
            count > 1 && ::fstatfs(fd_, &system) == 0 &&
            std::find(kShortNames.begin(), kShortNames.end(),
                      static_cast<std::uint32_t>(system.f_type)) != kShortNames.end();
        return countsShortNames ? 1 : count;
    }

    std::uint64_t size() const override {
        const struct stat now = status();
        needFile(path_, now);
        return static_cast<std::uint64_t>(now.st_size);
    }

    std::int64_t modified() const override {
        const struct stat now = status();
        return std::int64_t{now.st_mtim.tv_sec} * 1'000'000'000 + now.st_mtim.tv_nsec;
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

    void truncate(std::uint64_t size) override {
        if (::ftruncate(fd_, static_cast<::off_t>(size)) != 0) {
            refused("cut it off at " + std::to_string(size));
        }
    }

    // Times of access and change are not worth waiting for; the size is waited for all the same.
    void flush() override {
        if (::fdatasync(fd_) != 0) {
            refused("flush");
        }
    }

    bool tryLock(std::uint64_t first, std::uint64_t count, LockKind kind) override {
        struct flock range = rangeOf(first, count, kind == LockKind::Shared ? F_RDLCK : F_WRLCK);
        if (::fcntl(fd_, F_OFD_SETLK, &range) == 0) {
            return true;
        }
        if (errno == EAGAIN || errno == EACCES) {
            return false;
        }
        unsupported();
    }

    void unlock(std::uint64_t first, std::uint64_t count) noexcept override {
        struct flock range = rangeOf(first, count, F_UNLCK);
        ::fcntl(fd_, F_OFD_SETLK, &range);
    }

    bool heldByOthers(std::uint64_t at) override {
        struct flock range = rangeOf(at, 1, F_WRLCK);
        if (::fcntl(fd_, F_OFD_GETLK, &range) != 0) {
            unsupported();
        }
        return range.l_type != F_UNLCK;
    }

    std::string holderOf(std::uint64_t at) override { return processLocking(status(), at); }

private:
    static struct flock rangeOf(std::uint64_t first, std::uint64_t count, short type) {
        struct flock range {};
        range.l_type = type;
        range.l_whence = SEEK_SET;
        range.l_start = static_cast<::off_t>(first);
        range.l_len = static_cast<::off_t>(count);
        return range;
    }

    [[noreturn]] void refused(const std::string& what) const { refusedFor(path_, what, errno); }

    [[noreturn]] void unsupported() const {
        throw Error(ErrNo::Unsupported,
                    path_ + ": cannot be locked here: " + std::generic_category().message(errno));
    }

    std::string path_;
    int fd_;
};

class PosixFiles final : public FileSystem {
public:
    // Looked at before: opening a pipe waits for who writes into it, a device may do anything.
    std::unique_ptr<File> open(const std::string& path, Access access) override {
        struct stat named {};
        if (::stat(path.c_str(), &named) == 0) {
            needFile(path, named);
        }
        const int fd =
            ::open(path.c_str(), (access == Access::Read ? O_RDONLY : O_RDWR) | O_CLOEXEC);
        if (fd < 0) {
            const int reason = errno;
            const bool absent = reason == ENOENT || reason == ENOTDIR;
            throw Error(absent ? ErrNo::NotFound : ErrNo::Io,
                        path + ": cannot open: " + std::generic_category().message(reason));
        }
        return std::make_unique<PosixFile>(path, fd);
    }

    std::unique_ptr<File> openOrCreate(const std::string& path, const File& like) override {
        return make(path, 0, like);
    }

    std::unique_ptr<File> createNew(const std::string& path, const File& like) override {
        return make(path, O_EXCL, like);
    }

    std::string fileBehind(const std::string& path) override {
        constexpr int kMostLinks = 40;
        std::string name = path;
        for (int links = 0; links < kMostLinks; ++links) {
            struct stat named {};
            if (::lstat(name.c_str(), &named) != 0) {
                return name;  // opening it says why
            }
            if (!S_ISLNK(named.st_mode)) {
                needFile(path, named);
                return name;
            }
            std::error_code error;
            const std::filesystem::path link(name);
            const std::filesystem::path to = std::filesystem::read_symlink(link, error);
            if (error) {
                refusedFor(name, "follow", error.value());
            }
            name = (link.parent_path() / to).string();
        }
        refusedFor(path, "follow", ELOOP);
    }

    std::uint64_t nameCount(const File& file) override {
        const auto* open = dynamic_cast<const PosixFile*>(&file);
        return open == nullptr ? 1 : open->nameCount();
    }

    void shareRights(const std::string& path, const File& like) override {
        if (const auto* open = dynamic_cast<const PosixFile*>(&like)) {
            const struct stat status = open->status();
            // Not everybody may give a file away; the group alone one may who belongs to it.
            if (::chown(path.c_str(), status.st_uid, status.st_gid) != 0) {
                static_cast<void>(::chown(path.c_str(), static_cast<::uid_t>(-1), status.st_gid));
            }
            if (::chmod(path.c_str(), status.st_mode & 07777U) != 0) {
                refusedFor(path, "give it the rights of the other", errno);
            }
        }
    }

    bool names(const std::string& path, const File& file) override {
        const auto* open = dynamic_cast<const PosixFile*>(&file);
        struct stat named {};
        if (open == nullptr || ::stat(path.c_str(), &named) != 0) {
            return false;
        }
        const struct stat ours = open->status();
        return named.st_dev == ours.st_dev && named.st_ino == ours.st_ino;
    }

    void remove(const std::string& path) override {
        if (::unlink(path.c_str()) != 0 && errno != ENOENT) {
            refusedFor(path, "remove", errno);
        }
    }

    void closeAndRemove(std::unique_ptr<File> file, const std::string& path) override {
        remove(path);
        file.reset();
    }

    void rename(const std::string& from, const std::string& to) override {
        if (std::rename(from.c_str(), to.c_str()) != 0) {
            refusedFor(from, "rename to " + to, errno);
        }
    }

    void flushFolderOf(const std::string& path) override {
        const std::size_t slash = path.rfind('/');
        const std::string folder = slash == std::string::npos ? "."
                                   : slash == 0               ? "/"
                                                              : path.substr(0, slash);
        const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (fd < 0) {
            refusedFor(folder, "open", errno);
        }
        const int result = ::fsync(fd);
        const int reason = errno;
        ::close(fd);
        // A file system that does not flush folders says so, and needs none.
        if (result != 0 && reason != EINVAL && reason != ENOTSUP) {
            refusedFor(folder, "flush", reason);
        }
    }

private:
    static std::unique_ptr<File> make(const std::string& path, int flags, const File& like) {
        const auto* other = dynamic_cast<const PosixFile*>(&like);
        const ::mode_t mode = other != nullptr ? other->status().st_mode & 0666U : 0600U;
        const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | flags, mode);
        if (fd < 0) {
            refusedFor(path, "make", errno);
        }
        auto file = std::make_unique<PosixFile>(path, fd);
        if (file->size() == 0 && (file->status().st_mode & 0666U) != mode) {
            // The process's mask has taken rights away. Only the owner may, and needs to.
            static_cast<void>(::fchmod(fd, mode));
        }
        return file;
    }
};

}  // namespace

FileSystem& systemFiles() {
    static PosixFiles files;
    return files;
}

std::string computerName() {
    std::array<char, 256> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

std::unique_ptr<File> openFile(const std::string& path, Access access) {
    return systemFiles().open(path, access);
}

}  // namespace vl::jet

#endif
