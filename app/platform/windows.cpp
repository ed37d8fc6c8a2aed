// Windows: the system's folders, registry and code page.
#include <windows.h>

#include <shellapi.h>
#include <shlobj.h>

#include <array>

#include "EndSignals.h"
#include "LocalePattern.h"
#include "Platform.h"
#include "Wide.h"
#include "base/ErrorState.h"

namespace vl::platform {

namespace fs = std::filesystem;

fs::path pathOf(std::string_view text) { return fs::path(wide(text)); }
std::string textOf(const fs::path& path) { return narrow(path.native()); }

// The system's own spelling: names are found in any case.
std::string fullPath(const std::string& path) {
    const HANDLE file = CreateFileW(pathOf(path).c_str(), FILE_READ_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return textOf(fs::weakly_canonical(fs::absolute(pathOf(path))).make_preferred());
    }
    std::wstring name(GetFinalPathNameByHandleW(file, nullptr, 0, VOLUME_NAME_DOS), L'\0');
    name.resize(GetFinalPathNameByHandleW(file, name.data(), static_cast<DWORD>(name.size()),
                                          VOLUME_NAME_DOS));
    CloseHandle(file);
    constexpr std::wstring_view kLong = L"\\\\?\\";
    constexpr std::wstring_view kShare = L"\\\\?\\UNC\\";
    return narrow(name.starts_with(kLong) && !name.starts_with(kShare)
                      ? std::wstring_view(name).substr(kLong.size())
                      : std::wstring_view(name));
}

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

std::string shortTimeText(int hour, int minute, int second) {
    SYSTEMTIME time{};
    time.wHour = static_cast<WORD>(hour);
    time.wMinute = static_cast<WORD>(minute);
    time.wSecond = static_cast<WORD>(second);
    std::array<wchar_t, 128> text{};
    const int length = GetTimeFormatEx(LOCALE_NAME_USER_DEFAULT, TIME_NOSECONDS, &time, nullptr,
                                       text.data(), static_cast<int>(text.size()));
    return length > 0 ? narrow(text.data()) : std::string();
}

std::string dateText(int year, int month, int day, int) {
    SYSTEMTIME date{};
    date.wYear = static_cast<WORD>(year);
    date.wMonth = static_cast<WORD>(month);
    date.wDay = static_cast<WORD>(day);
    std::array<wchar_t, 128> format{};
    std::array<wchar_t, 256> text{};
    if (GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_SSHORTDATE, format.data(),
                        static_cast<int>(format.size())) == 0) {
        return {};
    }
    const std::wstring pattern = wide(fullYearPattern(narrow(format.data())));
    const int length = GetDateFormatEx(LOCALE_NAME_USER_DEFAULT, 0, &date, pattern.c_str(),
                                       text.data(), static_cast<int>(text.size()), nullptr);
    return length > 0 ? narrow(text.data()) : std::string();
}

std::string rawCommandLine() { return narrow(GetCommandLineW()); }

std::string systemSound(std::string_view name) { return std::string(name); }

std::string fromSettingsText(std::string_view bytes) { return narrow(wide(bytes, CP_ACP)); }
std::string toSettingsText(std::string_view text) { return narrow(wide(text), CP_ACP); }
std::string_view lineEnd() { return "\r\n"; }

// A session's end comes as a message to the windows.
EndSignals::EndSignals() = default;
EndSignals::~EndSignals() = default;

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
        line += (line.empty() ? L"" : L" ") + quotedArgument(wide(argument));
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
