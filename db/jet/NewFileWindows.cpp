#ifdef _WIN32

#include <windows.h>

#include <algorithm>
#include <system_error>

#include "NewFile.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "db/jet/File.h"

namespace vl::jet {

namespace {

std::wstring wide(const std::string& path) {
    const std::u16string units = text::toUtf16(path);
    return {units.begin(), units.end()};
}

[[noreturn]] void refused(const std::string& path, const std::string& what, DWORD reason) {
    const ErrNo number =
        reason == ERROR_FILE_EXISTS || reason == ERROR_ALREADY_EXISTS    ? ErrNo::Exists
        : reason == ERROR_PATH_NOT_FOUND || reason == ERROR_INVALID_NAME ? ErrNo::NotFound
                                                                         : ErrNo::Io;
    throw Error(number, path + ": cannot " + what + ": " +
                            std::system_category().message(static_cast<int>(reason)));
}

/// A file under a name of its own, which goes with it.
class Temporary {
public:
    explicit Temporary(const std::string& target) : name_(wide(nameBeside(target))) {
        handle_ = ::CreateFileW(name_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle_ == INVALID_HANDLE_VALUE) {
            refused(target, "create", ::GetLastError());
        }
    }
    ~Temporary() {
        close();
        ::DeleteFileW(name_.c_str());
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    void write(const std::string& target, ByteView bytes) {
        constexpr std::size_t kMostAtOnce = 1U << 30;
        while (!bytes.empty()) {
            DWORD n = 0;
            const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kMostAtOnce));
            if (!::WriteFile(handle_, bytes.data(), wanted, &n, nullptr) || n == 0) {
                refused(target, "write", ::GetLastError());
            }
            bytes = bytes.subspan(n);
        }
        if (!::FlushFileBuffers(handle_)) {
            refused(target, "write", ::GetLastError());
        }
        close();
    }
    // Without leave to replace, moving fails where there is something.
    void publish(const std::string& target) const {
        if (!::MoveFileExW(name_.c_str(), wide(target).c_str(), MOVEFILE_WRITE_THROUGH)) {
            refused(target, "create", ::GetLastError());
        }
    }

private:
    void close() {
        if (handle_ != INVALID_HANDLE_VALUE) {
            ::CloseHandle(handle_);
            handle_ = INVALID_HANDLE_VALUE;
        }
    }

    std::wstring name_;
    HANDLE handle_ = INVALID_HANDLE_VALUE;
};

}  // namespace

void publishNewFile(const std::string& path, ByteView bytes) {
    // Said before anything is written; what comes in between is found when it is published.
    if (::GetFileAttributesW(wide(path).c_str()) != INVALID_FILE_ATTRIBUTES) {
        refused(path, "create", ERROR_FILE_EXISTS);
    }
    Temporary file(path);
    file.write(path, bytes);
    file.publish(path);
}

}  // namespace vl::jet

#endif
