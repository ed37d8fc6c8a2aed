// A file that several copies of the program add to.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <thread>
#include <utility>

#include "Platform.h"
#include "base/ErrorState.h"

namespace vl::platform {

namespace {

[[noreturn]] void fail(const std::string& what, const std::string& path, int error) {
    const bool denied = error == EACCES || error == EROFS || error == EPERM;
    throw Error(denied ? ErrNo::ReadOnly : ErrNo::Io,
                "cannot " + what + " " + path + ": " + std::strerror(error));
}

/// Closed when it goes.
class OpenFile {
public:
    OpenFile(const std::string& path, int flags)
        : file_(::open(path.c_str(), flags | O_CLOEXEC, 0666)) {
        if (file_ < 0) {
            fail("open", path, errno);
        }
    }
    ~OpenFile() {
        if (file_ >= 0) {
            ::close(file_);
        }
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int number() const noexcept { return file_; }
    int release() noexcept { return std::exchange(file_, -1); }

private:
    int file_;
};

// The name is on the disk, too, when its folder is. Not every file system can: no error then.
void syncFolderOf(const std::string& path) noexcept {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const int file = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file >= 0) {
        (void)::fsync(file);
        ::close(file);
    }
}

}  // namespace

void appendFile(const std::string& path, std::string_view bytes) {
    const bool there = ::access(path.c_str(), F_OK) == 0;
    const OpenFile file(path, O_WRONLY | O_APPEND | O_CREAT);
    while (!bytes.empty()) {
        const ssize_t n = ::write(file.number(), bytes.data(), bytes.size());
        if (n < 0 && errno != EINTR) {
            fail("write", path, errno);
        }
        bytes.remove_prefix(n < 0 ? 0 : static_cast<std::size_t>(n));
    }
    if (::fsync(file.number()) != 0) {
        fail("write", path, errno);
    }
    if (!there) {
        syncFolderOf(path);
    }
}

FileState fileState(const std::string& path) {
    struct stat now {};
    if (::stat(path.c_str(), &now) != 0) {
        return {};
    }
    constexpr std::int64_t kBillion = 1'000'000'000;
    return {now.st_ino, static_cast<std::uint64_t>(now.st_size),
            now.st_mtim.tv_sec * kBillion + now.st_mtim.tv_nsec};
}

FileLock::FileLock(const std::string& path, std::chrono::milliseconds atMost) {
    constexpr std::chrono::milliseconds kStep(5);
    OpenFile file(path, O_RDWR | O_CREAT);
    // A lock of the open file, not of the process: two in one process hold each other off, too.
    while (::flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            fail("lock", path, errno);
        }
        if (atMost <= std::chrono::milliseconds(0)) {
            throw Error(ErrNo::Locked, path + " is locked by another program");
        }
        std::this_thread::sleep_for(kStep);
        atMost -= kStep;
    }
    handle_ = file.release();
}

FileLock::~FileLock() { ::close(static_cast<int>(handle_)); }

}  // namespace vl::platform
