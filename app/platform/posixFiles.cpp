// Files that are written as one change: a temporary one in the same folder, put in its place.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "Platform.h"
#include "Publish.h"
#include "base/ErrorState.h"

namespace vl::platform {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& what, const std::string& path, int error) {
    const bool denied = error == EACCES || error == EROFS || error == EPERM;
    throw Error(denied            ? ErrNo::ReadOnly
                : error == EEXIST ? ErrNo::Exists
                                  : ErrNo::Io,
                "cannot " + what + " " + path + ": " + std::strerror(error));
}

/// A new file that is gone again unless it gets its name.
class TemporaryFile {
public:
    explicit TemporaryFile(std::string path) : path_(std::move(path)) {
        const int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
        file_ = ::open(path_.c_str(), flags, 0666);
        if (file_ < 0 && errno == EEXIST) {  // left behind by a crash: no living process has our id
            ::unlink(path_.c_str());
            file_ = ::open(path_.c_str(), flags, 0666);
        }
        if (file_ < 0) {
            fail("create", path_, errno);
        }
    }
    ~TemporaryFile() {
        if (file_ >= 0) {
            ::close(file_);
        }
        ::unlink(path_.c_str());  // after a rename there is nothing under this name
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& path() const noexcept { return path_; }

    void setMode(mode_t mode) {
        if (::fchmod(file_, mode) != 0) {
            fail("set permissions of", path_, errno);
        }
    }

    /// Writes all there is to write, to the disk.
    void write(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t n = ::write(file_, bytes.data(), bytes.size());
            if (n < 0 && errno != EINTR) {
                fail("write", path_, errno);
            }
            bytes.remove_prefix(n < 0 ? 0 : static_cast<std::size_t>(n));
        }
        const bool synced = ::fsync(file_) == 0;
        const bool closed = ::close(std::exchange(file_, -1)) == 0;
        if (!synced || !closed) {
            fail("write", path_, errno);
        }
    }

private:
    std::string path_;
    int file_ = -1;
};

std::string temporaryName(const std::string& target) {
    return target + "." + std::to_string(::getpid()) + ".tmp";
}

// The name is on the disk, too, when its folder is. Not every file system can: no error then.
void syncFolderOf(const fs::path& path) noexcept {
    const int folder =
        ::open((path.parent_path() / ".").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        (void)::fsync(folder);
        ::close(folder);
    }
}

// Where the links end, also those to a file that is not there yet: a link stays what it is.
std::string endOfLinks(const std::string& path) {
    constexpr int kMost = 40;
    fs::path end(path);
    for (int i = 0; i < kMost; ++i) {
        std::error_code error;
        const fs::path next = fs::read_symlink(end, error);
        if (error) {
            return textOf(end);
        }
        end = end.parent_path() / next;  // an absolute one replaces the folder
    }
    fail("follow the links of", path, ELOOP);
}

// With the rights that opening a file goes by.
bool mayDo(int what, const char* path) {
    return ::faccessat(AT_FDCWD, path, what, AT_EACCESS) == 0;
}

void checkFile(const std::string& path, const struct stat& what) {
    if (S_ISDIR(what.st_mode)) {
        fail("write", path, EISDIR);
    }
    if (!mayDo(W_OK, path.c_str())) {
        fail("write", path, errno);
    }
}

bool isNotPossible(int error) {
    constexpr std::array kErrors = {EPERM, EINVAL, ENOSYS, EOPNOTSUPP, EMLINK};
    return std::find(kErrors.begin(), kErrors.end(), error) != kErrors.end();
}

// The name is taken first, by an empty file that nobody else can have made.
bool claimAndRename(const char* from, const char* to) {
    const int claimed = ::open(to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (claimed < 0) {
        return false;
    }
    ::close(claimed);
    if (::rename(from, to) != 0) {
        const int error = errno;
        ::unlink(to);
        errno = error;
        return false;
    }
    return true;
}

}  // namespace

bool publish(Publishing way, const std::string& from, const std::string& to) {
    bool done = false;
    switch (way) {
        case Publishing::Link:
            done = ::link(from.c_str(), to.c_str()) == 0;
            break;
        case Publishing::Rename:
            done = ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0;
            break;
        case Publishing::Claim:
            done = claimAndRename(from.c_str(), to.c_str());
            break;
    }
    if (!done && (way == Publishing::Claim || !isNotPossible(errno))) {
        fail("create", to, errno);
    }
    return done;
}

void checkReplaceable(const std::string& path) {
    const std::string target = endOfLinks(path);
    const fs::path folder = fs::path(target).parent_path() / ".";
    if (!mayDo(W_OK | X_OK, folder.c_str())) {
        fail("write in", textOf(folder), errno);
    }
    struct stat before {};
    if (::stat(target.c_str(), &before) == 0) {
        checkFile(target, before);
    }
}

void replaceFile(const std::string& path, std::string_view bytes) {
    const std::string target = endOfLinks(path);
    struct stat before {};
    const bool there = ::stat(target.c_str(), &before) == 0;
    if (there) {
        checkFile(target, before);
    }
    TemporaryFile file(temporaryName(target));
    if (there) {
        file.setMode(before.st_mode & 07777U);
    }
    file.write(bytes);
    if (::rename(file.path().c_str(), target.c_str()) != 0) {
        fail("replace", target, errno);
    }
    syncFolderOf(target);
}

void createFile(const std::string& path, std::string_view bytes) {
    TemporaryFile file(temporaryName(path));
    file.write(bytes);
    for (const Publishing way : {Publishing::Link, Publishing::Rename, Publishing::Claim}) {
        if (publish(way, file.path(), path)) {
            break;
        }
    }
    syncFolderOf(path);
}

}  // namespace vl::platform
