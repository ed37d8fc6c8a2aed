// Linux and its like: folders after the XDG base directory specification, the C library's locale.
#include <fcntl.h>
#include <langinfo.h>
#include <locale.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "LocalePattern.h"
#include "Platform.h"
#include "base/ErrorState.h"

namespace vl::platform {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& what, const std::string& path, int error) {
    const bool denied = error == EACCES || error == EROFS || error == EPERM;
    throw Error(denied ? ErrNo::ReadOnly : ErrNo::Io,
                "cannot " + what + " " + path + ": " + std::strerror(error));
}

std::string homeFolder() {
    if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/') {
        return home;
    }
    const passwd* user = getpwuid(getuid());
    return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : std::string();
}

/// A new file that is gone again unless it is renamed to its place.
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
        if (!renamed_) {
            ::unlink(path_.c_str());
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void setMode(mode_t mode) {
        if (::fchmod(file_, mode) != 0) {
            fail("set permissions of", path_, errno);
        }
    }

    void write(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t n = ::write(file_, bytes.data(), bytes.size());
            if (n < 0 && errno != EINTR) {
                fail("write", path_, errno);
            }
            bytes.remove_prefix(n < 0 ? 0 : static_cast<std::size_t>(n));
        }
        if (::fsync(file_) != 0) {
            fail("write", path_, errno);
        }
    }

    void renameTo(const std::string& target) {
        const int closed = ::close(file_);
        file_ = -1;
        if (closed != 0) {
            fail("write", path_, errno);
        }
        if (::rename(path_.c_str(), target.c_str()) != 0) {
            fail("replace", target, errno);
        }
        renamed_ = true;
    }

private:
    std::string path_;
    int file_ = -1;
    bool renamed_ = false;
};

// The name is on the disk, too, when its folder is. Not every file system can: no error then.
void syncFolderOf(const fs::path& path) noexcept {
    const int folder = ::open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        (void)::fsync(folder);
        ::close(folder);
    }
}

/// The user's locale for times; the C locale when the environment names none that there is.
class TimeLocale {
public:
    TimeLocale() : locale_(::newlocale(LC_TIME_MASK | LC_CTYPE_MASK, "", nullptr)) {}
    ~TimeLocale() {
        if (locale_ != nullptr) {
            ::freelocale(locale_);
        }
    }
    TimeLocale(const TimeLocale&) = delete;
    TimeLocale& operator=(const TimeLocale&) = delete;

    std::string operator[](nl_item item) const {
        return locale_ != nullptr ? ::nl_langinfo_l(item, locale_) : std::string();
    }

private:
    locale_t locale_;
};

}  // namespace

fs::path pathOf(std::string_view text) { return fs::path(text); }
std::string textOf(const fs::path& path) { return path.string(); }

std::string dataRoot(bool allUsers) {
    // A relative path in these variables is to be ignored.
    const char* named = std::getenv(allUsers ? "XDG_DATA_HOME" : "XDG_CONFIG_HOME");
    if (named != nullptr && *named == '/') {
        return named;
    }
    const std::string home = homeFolder();
    return home.empty() ? home : home + (allUsers ? "/.local/share" : "/.config");
}

std::string programFolder() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return error ? std::string() : textOf(program.parent_path());
}

std::vector<std::string> sharedFolders() {
    const std::string own = programFolder();
    return {textOf((fs::path(own).parent_path() / "share/vlreminders")), own + "/data", own};
}

char separatorOf(std::string_view folder) {
    const bool host =
        folder.find('\\') != std::string_view::npos && folder.find('/') == std::string_view::npos;
    return host ? '\\' : '/';
}

void replaceFile(const std::string& path, std::string_view bytes) {
    std::error_code error;
    const fs::path resolved = fs::canonical(path, error);
    const std::string target = error ? path : textOf(resolved);
    struct stat before {};
    const bool there = ::stat(target.c_str(), &before) == 0;
    if (there && ::access(target.c_str(), W_OK) != 0) {
        fail("write", target, errno);
    }
    TemporaryFile file(target + "." + std::to_string(::getpid()) + ".tmp");
    if (there) {
        file.setMode(before.st_mode & 07777U);
    }
    file.write(bytes);
    file.renameTo(target);
    syncFolderOf(target);
}

std::string shortTimeFormat() {
    const TimeLocale locale;
    return shortPattern(locale[T_FMT], locale[T_FMT_AMPM]);
}

std::string dayHalfText(bool afternoon) {
    static const TimeLocale locale;
    const std::string text = locale[afternoon ? PM_STR : AM_STR];
    return !text.empty() ? text : afternoon ? "PM" : "AM";
}

std::string fromSettingsText(std::string_view bytes) { return std::string(bytes); }
std::string toSettingsText(std::string_view text) { return std::string(text); }
std::string_view lineEnd() { return "\n"; }

}  // namespace vl::platform
