#ifndef _WIN32

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "OpenFilePosix.h"
#include "base/ErrorState.h"

namespace vl::jet {

namespace {

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
