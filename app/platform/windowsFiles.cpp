// Windows: files that are written as one change: a temporary one in the same folder, renamed.
#include <windows.h>

#include "Platform.h"
#include "Wide.h"
#include "base/ErrorState.h"

namespace vl::platform {

namespace {

[[noreturn]] void fail(const std::string& what, const std::string& path, DWORD error) {
    const bool denied = error == ERROR_ACCESS_DENIED || error == ERROR_WRITE_PROTECT;
    const bool exists = error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS;
    throw Error(denied   ? ErrNo::ReadOnly
                : exists ? ErrNo::Exists
                         : ErrNo::Io,
                "cannot " + what + " " + path + ": system error " + std::to_string(error));
}

/// A new file that is gone again unless it is renamed to its place.
class TemporaryFile {
public:
    explicit TemporaryFile(std::string path) : path_(std::move(path)), wide_(wide(path_)) {
        file_ = CreateFileW(wide_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                            FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file_ == INVALID_HANDLE_VALUE) {
            fail("create", path_, GetLastError());
        }
    }
    ~TemporaryFile() {
        close();
        if (!renamed_) {
            DeleteFileW(wide_.c_str());
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void write(std::string_view bytes) {
        constexpr std::size_t kMost = 1U << 30;
        while (!bytes.empty()) {
            const auto part = static_cast<DWORD>(bytes.size() < kMost ? bytes.size() : kMost);
            DWORD written = 0;
            if (!WriteFile(file_, bytes.data(), part, &written, nullptr)) {
                fail("write", path_, GetLastError());
            }
            bytes.remove_prefix(written);
        }
        if (!FlushFileBuffers(file_)) {
            fail("write", path_, GetLastError());
        }
    }

    void renameTo(const std::string& target) {
        close();
        const std::wstring to = wide(target);
        // Keeps attributes and access rights of a file that is there; there must be one.
        renamed_ = ReplaceFileW(to.c_str(), wide_.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS,
                                nullptr, nullptr) != 0;
        const DWORD error = renamed_ ? ERROR_SUCCESS : GetLastError();
        if (!renamed_ && error == ERROR_FILE_NOT_FOUND) {
            renameToNew(target);
        } else if (!renamed_) {
            fail("replace", target, error);
        }
    }

    /// Fails where there is a file or a link of that name.
    void renameToNew(const std::string& target) {
        close();
        renamed_ = MoveFileExW(wide_.c_str(), wide(target).c_str(), MOVEFILE_WRITE_THROUGH) != 0;
        if (!renamed_) {
            fail("create", target, GetLastError());
        }
    }

private:
    void close() {
        if (file_ != INVALID_HANDLE_VALUE) {
            CloseHandle(file_);
            file_ = INVALID_HANDLE_VALUE;
        }
    }

    std::string path_;
    std::wstring wide_;
    HANDLE file_ = INVALID_HANDLE_VALUE;
    bool renamed_ = false;
};

std::string temporaryName(const std::string& target) {
    return target + "." + std::to_string(GetCurrentProcessId()) + ".tmp";
}

void checkFile(const std::string& path) {
    constexpr DWORD kRefused = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY;
    const DWORD attributes = GetFileAttributesW(wide(path).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & kRefused) != 0) {
        fail("write", path, ERROR_ACCESS_DENIED);
    }
}

}  // namespace

void checkReplaceable(const std::string& path) {
    checkFile(path);
    const TemporaryFile looking(temporaryName(path));
}

void replaceFile(const std::string& path, std::string_view bytes) {
    checkFile(path);
    TemporaryFile file(temporaryName(path));
    file.write(bytes);
    file.renameTo(path);
}

void createFile(const std::string& path, std::string_view bytes) {
    TemporaryFile file(temporaryName(path));
    file.write(bytes);
    file.renameToNew(path);
}

}  // namespace vl::platform
