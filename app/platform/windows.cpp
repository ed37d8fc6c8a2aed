// Windows: the system's folders, registry and code page.
#include <windows.h>

#include <shellapi.h>
#include <shlobj.h>

#include <array>

#include "Platform.h"
#include "Wide.h"
#include "base/ErrorState.h"

namespace vl::platform {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& what, const std::string& path, DWORD error) {
    const bool denied = error == ERROR_ACCESS_DENIED || error == ERROR_WRITE_PROTECT;
    throw Error(denied ? ErrNo::ReadOnly : ErrNo::Io,
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
            renamed_ = MoveFileExW(wide_.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH) != 0;
        }
        if (!renamed_) {
            fail("replace", target, GetLastError());
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

}  // namespace

fs::path pathOf(std::string_view text) { return fs::path(wide(text)); }
std::string textOf(const fs::path& path) { return narrow(path.native()); }

std::string dataRoot(bool allUsers) {
    std::array<wchar_t, MAX_PATH> folder{};
    const int kind = allUsers ? CSIDL_COMMON_APPDATA : CSIDL_APPDATA;
    const bool named =
        SUCCEEDED(SHGetFolderPathW(nullptr, kind, nullptr, SHGFP_TYPE_CURRENT, folder.data()));
    return named ? narrow(folder.data()) : std::string();
}

std::string programFolder() {
    std::wstring program(MAX_PATH, L'\0');
    while (true) {
        const DWORD length =
            GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
        if (length == 0) {
            return {};
        }
        if (length < program.size()) {
            program.resize(length);
            break;
        }
        program.resize(program.size() * 2);  // it was cut off
    }
    return textOf(fs::path(program).parent_path());
}

std::vector<std::string> sharedFolders() {
    const std::string own = programFolder();
    return {own + "\\data", own};
}

char separatorOf(std::string_view) { return '\\'; }

void replaceFile(const std::string& path, std::string_view bytes) {
    const DWORD attributes = GetFileAttributesW(wide(path).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
        fail("write", path, ERROR_ACCESS_DENIED);
    }
    TemporaryFile file(path + "." + std::to_string(GetCurrentProcessId()) + ".tmp");
    file.write(bytes);
    file.renameTo(path);
}

std::string shortTimeFormat() {
    std::array<wchar_t, 256> value{};
    DWORD size = static_cast<DWORD>(sizeof value);
    const LSTATUS status = RegGetValueW(HKEY_CURRENT_USER, L"Control Panel\\International",
                                        L"sShortTime", RRF_RT_REG_SZ, nullptr, value.data(), &size);
    return status == ERROR_SUCCESS ? narrow(value.data()) : std::string();
}

std::string dayHalfText(bool afternoon) {
    std::array<wchar_t, 64> mark{};
    const int length =
        GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, afternoon ? LOCALE_SPM : LOCALE_SAM, mark.data(),
                        static_cast<int>(mark.size()));
    return length > 1 ? narrow(mark.data()) : afternoon ? "PM" : "AM";
}

std::string fromSettingsText(std::string_view bytes) { return narrow(wide(bytes, CP_ACP)); }
std::string toSettingsText(std::string_view text) { return narrow(wide(text), CP_ACP); }
std::string_view lineEnd() { return "\r\n"; }

void startProgram(const std::vector<std::string>& arguments) {
    // Started by its full name: the command line below is only what it is told.
    std::wstring program = wide(arguments.at(0));
    if (program.find_first_of(L"\\/") == std::wstring::npos) {
        std::array<wchar_t, 32768> found{};
        const DWORD length = SearchPathW(nullptr, program.c_str(), L".exe",
                                         static_cast<DWORD>(found.size()), found.data(), nullptr);
        if (length == 0 || length >= found.size()) {
            throw Error(ErrNo::NotFound, "no program " + arguments[0]);
        }
        program = found.data();
    }
    std::wstring line;
    for (const std::string& argument : arguments) {
        line += (line.empty() ? L"" : L" ") + quoted(wide(argument));
    }
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESHOWWINDOW;
    start.wShowWindow = SW_HIDE;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &start, &process)) {
        const DWORD error = GetLastError();
        throw Error(error == ERROR_FILE_NOT_FOUND ? ErrNo::NotFound : ErrNo::Io,
                    "cannot start " + arguments[0] + ": system error " + std::to_string(error));
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

void openWithDesktop(const std::string& target) {
    // Values above 32 mean success, whatever they are.
    const auto result = reinterpret_cast<INT_PTR>(
        ShellExecuteW(nullptr, L"open", wide(target).c_str(), nullptr, nullptr, SW_SHOWNORMAL));
    if (result <= 32) {
        throw Error(ErrNo::Io, "cannot open " + target + ": result " + std::to_string(result));
    }
}

}  // namespace vl::platform
