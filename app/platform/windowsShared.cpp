// A file that several copies of the program add to.
#include <windows.h>

#include "Platform.h"
#include "Wide.h"
#include "base/ErrorState.h"

namespace vl::platform {

namespace {

[[noreturn]] void fail(const std::string& what, const std::string& path, DWORD error) {
    const bool denied = error == ERROR_ACCESS_DENIED || error == ERROR_WRITE_PROTECT;
    throw Error(denied ? ErrNo::ReadOnly : ErrNo::Io,
                "cannot " + what + " " + path + ": system error " + std::to_string(error));
}

}  // namespace

void appendFile(const std::string& path, std::string_view bytes) {
    const HANDLE file = CreateFileW(wide(path).c_str(), FILE_APPEND_DATA | SYNCHRONIZE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        fail("open", path, GetLastError());
    }
    DWORD written = 0;
    const bool done =
        WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != 0 &&
        written == bytes.size() && FlushFileBuffers(file) != 0;
    const DWORD error = GetLastError();
    CloseHandle(file);
    if (!done) {
        fail("write", path, error);
    }
}

FileState fileState(const std::string& path) {
    const HANDLE file = CreateFileW(wide(path).c_str(), FILE_READ_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return {};
    }
    BY_HANDLE_FILE_INFORMATION now{};
    const bool known = GetFileInformationByHandle(file, &now) != 0;
    CloseHandle(file);
    if (!known) {
        return {};
    }
    const auto joined = [](DWORD high, DWORD low) {
        return (static_cast<std::uint64_t>(high) << 32U) | low;
    };
    return {joined(now.nFileIndexHigh, now.nFileIndexLow),
            joined(now.nFileSizeHigh, now.nFileSizeLow),
            static_cast<std::int64_t>(
                joined(now.ftLastWriteTime.dwHighDateTime, now.ftLastWriteTime.dwLowDateTime))};
}

FileLock::FileLock(const std::string& path, std::chrono::milliseconds atMost) {
    constexpr std::chrono::milliseconds kStep(5);
    const HANDLE file = CreateFileW(wide(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        fail("open", path, GetLastError());
    }
    OVERLAPPED whole{};
    while (LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &whole) ==
           0) {
        const DWORD error = GetLastError();
        if (error != ERROR_LOCK_VIOLATION || atMost <= std::chrono::milliseconds(0)) {
            CloseHandle(file);
            if (error == ERROR_LOCK_VIOLATION) {
                throw Error(ErrNo::Locked, path + " is locked by another program");
            }
            fail("lock", path, error);
        }
        Sleep(static_cast<DWORD>(kStep.count()));
        atMost -= kStep;
    }
    handle_ = reinterpret_cast<std::intptr_t>(file);
}

// Closing gives the lock back.
FileLock::~FileLock() { CloseHandle(reinterpret_cast<HANDLE>(handle_)); }

}  // namespace vl::platform
