#ifdef _WIN32

#include <windows.h>

#include <algorithm>
#include <system_error>

#include "base/ErrorState.h"
#include "base/Text.h"
#include "db/jet/File.h"

namespace vl::jet {

namespace {

// One transfer takes a 32-bit length; pages and their runs are far below that.
constexpr std::size_t kMostAtOnce = 1U << 30;

OVERLAPPED at(std::uint64_t offset) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

class WindowsFile : public File {
public:
    WindowsFile(std::string path, HANDLE handle) : path_(std::move(path)), handle_(handle) {}
    ~WindowsFile() override { ::CloseHandle(handle_); }
    WindowsFile(const WindowsFile&) = delete;
    WindowsFile& operator=(const WindowsFile&) = delete;

    std::uint64_t size() const override {
        LARGE_INTEGER size{};
        if (!::GetFileSizeEx(handle_, &size)) {
            refused("tell its size");
        }
        return static_cast<std::uint64_t>(size.QuadPart);
    }

    void read(std::uint64_t offset, std::span<std::byte> bytes) const override {
        while (!bytes.empty()) {
            OVERLAPPED place = at(offset);
            DWORD n = 0;
            const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kMostAtOnce));
            if (!::ReadFile(handle_, bytes.data(), wanted, &n, &place) || n == 0) {
                refused("read at " + std::to_string(offset));
            }
            bytes = bytes.subspan(n);
            offset += n;
        }
    }

    void write(std::uint64_t offset, ByteView bytes) override {
        while (!bytes.empty()) {
            OVERLAPPED place = at(offset);
            DWORD n = 0;
            const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kMostAtOnce));
            if (!::WriteFile(handle_, bytes.data(), wanted, &n, &place) || n == 0) {
                refused("write at " + std::to_string(offset));
            }
            bytes = bytes.subspan(n);
            offset += n;
        }
    }

    void flush() override {
        if (!::FlushFileBuffers(handle_)) {
            refused("flush");
        }
    }

private:
    [[noreturn]] void refused(const std::string& what) const {
        const auto reason = static_cast<int>(::GetLastError());
        throw Error(ErrNo::Io,
                    path_ + ": cannot " + what + ": " + std::system_category().message(reason));
    }

    std::string path_;
    HANDLE handle_;
};

}  // namespace

std::unique_ptr<File> openFile(const std::string& path, Access access) {
    const std::u16string units = text::toUtf16(path);
    const std::wstring wide(units.begin(), units.end());
    const DWORD rights = access == Access::Read ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    const HANDLE handle = ::CreateFileW(wide.c_str(), rights, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                        nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        const auto reason = ::GetLastError();
        const bool absent = reason == ERROR_FILE_NOT_FOUND || reason == ERROR_PATH_NOT_FOUND ||
                            reason == ERROR_INVALID_NAME;
        const bool held = reason == ERROR_SHARING_VIOLATION || reason == ERROR_LOCK_VIOLATION;
        throw Error(
            absent ? ErrNo::NotFound
            : held ? ErrNo::Locked
                   : ErrNo::Io,
            path + ": cannot open: " + std::system_category().message(static_cast<int>(reason)));
    }
    return std::make_unique<WindowsFile>(path, handle);
}

}  // namespace vl::jet

#endif
