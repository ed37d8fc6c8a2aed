#ifndef _WIN32

// Locks that belong to an open file and not to a process are Linux's own.
#ifndef _GNU_SOURCE
#define _GNU_SOURCE
#endif

#include "OpenFilePosix.h"

#include <fcntl.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include "LockHolder.h"
#include "base/ErrorState.h"

namespace vl::jet {

namespace {

// File systems of Windows, by the numbers that the system gives them: two drivers of its own, and
// any that runs as a program.
constexpr std::array<std::uint32_t, 3> kShortNames = {0x5346'544E, 0x7366'746E, 0x6573'5546};

struct flock rangeOf(std::uint64_t first, std::uint64_t count, short type) {
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = static_cast<::off_t>(first);
    range.l_len = static_cast<::off_t>(count);
    return range;
}

}  // namespace

void refusedFor(const std::string& path, const std::string& what, int reason) {
    throw Error(reason == EEXIST ? ErrNo::Exists : ErrNo::Io,
                path + ": cannot " + what + ": " + std::generic_category().message(reason));
}

void needFile(const std::string& path, const struct stat& status) {
    if (!S_ISREG(status.st_mode)) {
        throw Error(ErrNo::Io, path + ": is no regular file");
    }
}

PosixFile::~PosixFile() { ::close(fd_); }

struct stat PosixFile::status() const {
    struct stat status {};
    if (::fstat(fd_, &status) != 0) {
        refused("tell its size");
    }
    return status;
}

FileIdentity PosixFile::identity() const {
    const struct stat now = status();
    return {now.st_dev, now.st_ino};
}

std::uint64_t PosixFile::nameCount() const {
    const std::uint64_t count = status().st_nlink;
    struct statfs system {};
    // There a long name's short one counts, too, and does not lead anybody elsewhere.
    const bool countsShortNames =
        count > 1 && ::fstatfs(fd_, &system) == 0 &&
        std::find(kShortNames.begin(), kShortNames.end(),
                  static_cast<std::uint32_t>(system.f_type)) != kShortNames.end();
    return countsShortNames ? 1 : count;
}

std::uint64_t PosixFile::size() const {
    const struct stat now = status();
    needFile(path_, now);
    return static_cast<std::uint64_t>(now.st_size);
}

std::int64_t PosixFile::modified() const {
    const struct stat now = status();
    return std::int64_t{now.st_mtim.tv_sec} * 1'000'000'000 + now.st_mtim.tv_nsec;
}

void PosixFile::read(std::uint64_t offset, std::span<std::byte> bytes) const {
    while (!bytes.empty()) {
        const ::ssize_t n = ::pread(fd_, bytes.data(), bytes.size(), static_cast<::off_t>(offset));
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

void PosixFile::write(std::uint64_t offset, ByteView bytes) {
    while (!bytes.empty()) {
        const ::ssize_t n = ::pwrite(fd_, bytes.data(), bytes.size(), static_cast<::off_t>(offset));
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

void PosixFile::truncate(std::uint64_t size) {
    if (::ftruncate(fd_, static_cast<::off_t>(size)) != 0) {
        refused("cut it off at " + std::to_string(size));
    }
}

// Times of access and change are not worth waiting for; the size is waited for all the same.
void PosixFile::flush() {
    if (::fdatasync(fd_) != 0) {
        refused("flush");
    }
}

bool PosixFile::tryLock(std::uint64_t first, std::uint64_t count, LockKind kind) {
    struct flock range = rangeOf(first, count, kind == LockKind::Shared ? F_RDLCK : F_WRLCK);
    if (::fcntl(fd_, F_OFD_SETLK, &range) == 0) {
        return true;
    }
    if (errno == EAGAIN || errno == EACCES) {
        return false;
    }
    unsupported();
}

void PosixFile::unlock(std::uint64_t first, std::uint64_t count) noexcept {
    struct flock range = rangeOf(first, count, F_UNLCK);
    ::fcntl(fd_, F_OFD_SETLK, &range);
}

bool PosixFile::heldByOthers(std::uint64_t at) {
    struct flock range = rangeOf(at, 1, F_WRLCK);
    if (::fcntl(fd_, F_OFD_GETLK, &range) != 0) {
        unsupported();
    }
    return range.l_type != F_UNLCK;
}

void PosixFile::unsupported() const {
    throw Error(ErrNo::Unsupported,
                path_ + ": cannot be locked here: " + std::generic_category().message(errno));
}

std::string PosixFile::holderOf(std::uint64_t at) { return processLocking(status(), at); }

void PosixFile::refused(const std::string& what) const { refusedFor(path_, what, errno); }

}  // namespace vl::jet

#endif
