#ifdef _WIN32

#include <windows.h>

#include <algorithm>
#include <array>
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

std::wstring wideOf(const std::string& path) {
    const std::u16string units = text::toUtf16(path);
    return {units.begin(), units.end()};
}

std::string messageOf(DWORD reason) {
    return std::system_category().message(static_cast<int>(reason));
}

[[noreturn]] void refusedFor(const std::string& path, const std::string& what, DWORD reason) {
    throw Error(reason == ERROR_FILE_EXISTS ? ErrNo::Exists : ErrNo::Io,
                path + ": cannot " + what + ": " + messageOf(reason));
}

class WindowsFile : public File {
public:
    WindowsFile(std::string path, HANDLE handle) : path_(std::move(path)), handle_(handle) {}
    ~WindowsFile() override { ::CloseHandle(handle_); }
    WindowsFile(const WindowsFile&) = delete;
    WindowsFile& operator=(const WindowsFile&) = delete;

    BY_HANDLE_FILE_INFORMATION status() const {
        BY_HANDLE_FILE_INFORMATION status{};
        if (!::GetFileInformationByHandle(handle_, &status)) {
            refused("tell its size");
        }
        return status;
    }

    FileIdentity identity() const override {
        const BY_HANDLE_FILE_INFORMATION now = status();
        return {now.dwVolumeSerialNumber,
                (std::uint64_t{now.nFileIndexHigh} << 32) | now.nFileIndexLow};
    }

    std::uint64_t size() const override {
        LARGE_INTEGER size{};
        if (!::GetFileSizeEx(handle_, &size)) {
            refused("tell its size");
        }
        return static_cast<std::uint64_t>(size.QuadPart);
    }

    std::int64_t modified() const override {
        const FILETIME time = status().ftLastWriteTime;
        return static_cast<std::int64_t>((std::uint64_t{time.dwHighDateTime} << 32) |
                                         time.dwLowDateTime);
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

    void truncate(std::uint64_t size) override {
        LARGE_INTEGER end{};
        end.QuadPart = static_cast<LONGLONG>(size);
        if (!::SetFilePointerEx(handle_, end, nullptr, FILE_BEGIN) || !::SetEndOfFile(handle_)) {
            refused("cut it off at " + std::to_string(size));
        }
    }

    void flush() override {
        if (!::FlushFileBuffers(handle_)) {
            refused("flush");
        }
    }

    bool tryLock(std::uint64_t first, std::uint64_t count, LockKind kind) override {
        OVERLAPPED place = at(first);
        const DWORD flags = LOCKFILE_FAIL_IMMEDIATELY |
                            (kind == LockKind::Exclusive ? DWORD{LOCKFILE_EXCLUSIVE_LOCK} : 0);
        if (::LockFileEx(handle_, flags, 0, static_cast<DWORD>(count),
                         static_cast<DWORD>(count >> 32), &place)) {
            return true;
        }
        const DWORD reason = ::GetLastError();
        if (reason == ERROR_LOCK_VIOLATION || reason == ERROR_IO_PENDING) {
            return false;
        }
        throw Error(ErrNo::Unsupported, path_ + ": cannot be locked here: " + messageOf(reason));
    }

    void unlock(std::uint64_t first, std::uint64_t count) noexcept override {
        OVERLAPPED place = at(first);
        ::UnlockFileEx(handle_, 0, static_cast<DWORD>(count), static_cast<DWORD>(count >> 32),
                       &place);
    }

    // The system does not tell who holds what; trying does.
    bool heldByOthers(std::uint64_t byte) override {
        if (!tryLock(byte, 1, LockKind::Shared)) {
            return true;
        }
        unlock(byte, 1);
        return false;
    }

private:
    [[noreturn]] void refused(const std::string& what) const {
        refusedFor(path_, what, ::GetLastError());
    }

    std::string path_;
    HANDLE handle_;
};

class WindowsFiles final : public FileSystem {
public:
    std::unique_ptr<File> open(const std::string& path, Access access) override {
        const DWORD rights = access == Access::Read ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
        const HANDLE handle = opened(path, rights, OPEN_EXISTING);
        if (handle == INVALID_HANDLE_VALUE) {
            const auto reason = ::GetLastError();
            const bool absent = reason == ERROR_FILE_NOT_FOUND || reason == ERROR_PATH_NOT_FOUND ||
                                reason == ERROR_INVALID_NAME;
            const bool held = reason == ERROR_SHARING_VIOLATION || reason == ERROR_LOCK_VIOLATION;
            throw Error(absent ? ErrNo::NotFound
                        : held ? ErrNo::Locked
                               : ErrNo::Io,
                        path + ": cannot open: " + messageOf(reason));
        }
        auto file = std::make_unique<WindowsFile>(path, handle);
        if (::GetFileType(handle) != FILE_TYPE_DISK) {
            throw Error(ErrNo::Io, path + ": is no regular file");
        }
        return file;
    }

    // A new file has the folder's rights, as the others in it.
    std::unique_ptr<File> openOrCreate(const std::string& path, const File& /*like*/) override {
        return make(path, OPEN_ALWAYS);
    }

    std::unique_ptr<File> createNew(const std::string& path, const File& /*like*/) override {
        return make(path, CREATE_NEW);
    }

    std::string fileBehind(const std::string& path) override {
        const DWORD kind = ::GetFileAttributesW(wideOf(path).c_str());
        if (kind == INVALID_FILE_ATTRIBUTES) {
            return path;  // opening it says why
        }
        if ((kind & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            throw Error(ErrNo::Io, path + ": is no regular file");
        }
        if ((kind & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
            return path;
        }
        const HANDLE handle = opened(path, 0, OPEN_EXISTING);
        if (handle == INVALID_HANDLE_VALUE) {
            refusedFor(path, "follow", ::GetLastError());
        }
        const WindowsFile file(path, handle);
        constexpr DWORD kLongest = 32767;
        std::wstring name(kLongest + 1, L'\0');
        const DWORD length = ::GetFinalPathNameByHandleW(handle, name.data(), kLongest,
                                                         FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
        if (length == 0 || length > kLongest) {
            refusedFor(path, "follow", ::GetLastError());
        }
        name.resize(length);
        const std::wstring network = L"\\\\?\\UNC\\";
        const std::wstring local = L"\\\\?\\";
        if (name.compare(0, network.size(), network) == 0) {
            name.replace(0, network.size(), L"\\\\");
        } else if (name.compare(0, local.size(), local) == 0) {
            name.erase(0, local.size());
        }
        return text::fromUtf16(std::u16string(name.begin(), name.end()));
    }

    std::uint64_t nameCount(const File& file) override {
        const auto* open = dynamic_cast<const WindowsFile*>(&file);
        return open == nullptr ? 1 : open->status().nNumberOfLinks;
    }

    // A new file has the folder's rights, as the others in it.
    void shareRights(const std::string& /*path*/, const File& /*like*/) override {}

    bool names(const std::string& path, const File& file) override {
        const auto* ours = dynamic_cast<const WindowsFile*>(&file);
        const HANDLE handle = opened(path, 0, OPEN_EXISTING);
        if (ours == nullptr || handle == INVALID_HANDLE_VALUE) {
            return false;
        }
        const BY_HANDLE_FILE_INFORMATION named = WindowsFile(path, handle).status();
        const BY_HANDLE_FILE_INFORMATION open = ours->status();
        return named.dwVolumeSerialNumber == open.dwVolumeSerialNumber &&
               named.nFileIndexHigh == open.nFileIndexHigh &&
               named.nFileIndexLow == open.nFileIndexLow;
    }

    void remove(const std::string& path) override {
        if (!::DeleteFileW(wideOf(path).c_str()) && ::GetLastError() != ERROR_FILE_NOT_FOUND) {
            refusedFor(path, "remove", ::GetLastError());
        }
    }

    // An open file cannot be removed, neither ours nor another's: who opens it in between keeps it.
    void closeAndRemove(std::unique_ptr<File> file, const std::string& path) override {
        file.reset();
        ::DeleteFileW(wideOf(path).c_str());
    }

    void rename(const std::string& from, const std::string& to) override {
        if (!::MoveFileExW(wideOf(from).c_str(), wideOf(to).c_str(),
                           MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
            refusedFor(from, "rename to " + to, ::GetLastError());
        }
    }

    // The system keeps names by a journal of its own.
    void flushFolderOf(const std::string& /*path*/) override {}

private:
    static std::unique_ptr<File> make(const std::string& path, DWORD disposition) {
        const HANDLE handle = opened(path, GENERIC_READ | GENERIC_WRITE, disposition);
        if (handle == INVALID_HANDLE_VALUE) {
            refusedFor(path, "make", ::GetLastError());
        }
        return std::make_unique<WindowsFile>(path, handle);
    }

    static HANDLE opened(const std::string& path, DWORD rights, DWORD disposition) {
        return ::CreateFileW(wideOf(path).c_str(), rights, FILE_SHARE_READ | FILE_SHARE_WRITE,
                             nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    }
};

}  // namespace

FileSystem& systemFiles() {
    static WindowsFiles files;
    return files;
}

std::string computerName() {
    std::array<char, MAX_COMPUTERNAME_LENGTH + 1> name{};
    DWORD size = static_cast<DWORD>(name.size());
    return ::GetComputerNameA(name.data(), &size) ? std::string(name.data(), size) : std::string();
}

std::unique_ptr<File> openFile(const std::string& path, Access access) {
    return systemFiles().open(path, access);
}

}  // namespace vl::jet

#endif
