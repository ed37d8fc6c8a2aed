#ifndef _WIN32

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <vector>

#include "NewFile.h"
#include "base/ErrorState.h"

namespace vl::jet {

namespace {

[[noreturn]] void refused(const std::string& path, const std::string& what, int reason) {
    const ErrNo number = reason == EEXIST                        ? ErrNo::Exists
                         : reason == ENOENT || reason == ENOTDIR ? ErrNo::NotFound
                                                                 : ErrNo::Io;
    throw Error(number, path + ": cannot " + what + ": " + std::generic_category().message(reason));
}

/// A file under a name of its own, which goes with it.
class Temporary {
public:
    explicit Temporary(const std::string& target) {
        const std::string pattern = target + ".XXXXXX";
        name_.assign(pattern.begin(), pattern.end());
        name_.push_back('\0');
        fd_ = ::mkostemp(name_.data(), O_CLOEXEC);
        if (fd_ < 0) {
            refused(target, "create", errno);
        }
        // As any program's new file: the user's mask decides. Asking for the mask sets it.
        const mode_t mask = ::umask(0);
        ::umask(mask);
        (void)::fchmod(fd_, 0666U & ~mask);
    }
    ~Temporary() {
        ::close(fd_);
        ::unlink(name_.data());
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    void write(const std::string& target, ByteView bytes) const {
        while (!bytes.empty()) {
            const ::ssize_t n = ::write(fd_, bytes.data(), bytes.size());
            if (n < 0 && errno != EINTR) {
                refused(target, "write", errno);
            }
            bytes = bytes.subspan(n < 0 ? 0 : static_cast<std::size_t>(n));
        }
        if (::fsync(fd_) != 0) {
            refused(target, "write", errno);
        }
    }
    // Unlike renaming this never replaces anything.
    void publish(const std::string& target) const {
        if (::link(name_.data(), target.c_str()) == 0) {
            return;
        }
        const int reason = errno;
        if (reason != EPERM && reason != EOPNOTSUPP && reason != ENOSYS && reason != EMLINK) {
            refused(target, "create", reason);
        }
        // A file system without second names: the target's own is taken first, then replaced.
        const int place = ::open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (place < 0) {
            refused(target, "create", errno);
        }
        ::close(place);
        if (std::rename(name_.data(), target.c_str()) != 0) {
            const int why = errno;
            ::unlink(target.c_str());
            refused(target, "create", why);
        }
    }

private:
    std::vector<char> name_;
    int fd_ = -1;
};

// The name is on the disk when its folder is. Not every file system can: no error then.
void flushFolderOf(const std::string& path) {
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    const int fd =
        ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        (void)::fsync(fd);
        ::close(fd);
    }
}

}  // namespace

void publishNewFile(const std::string& path, ByteView bytes) {
    // Said before anything is written; what comes in between is found when it is published.
    if (::access(path.c_str(), F_OK) == 0) {
        refused(path, "create", EEXIST);
    }
    const Temporary file(path);
    file.write(path, bytes);
    file.publish(path);
    flushFolderOf(path);
}

}  // namespace vl::jet

#endif
