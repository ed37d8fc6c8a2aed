// What each system does in its own way. One of posix.cpp and windows.cpp is built.
//
// Texts are UTF-8 here as everywhere. These are engines: what fails throws `Error`, where no other
// way is told.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace vl::platform {

std::filesystem::path pathOf(std::string_view text);
std::string textOf(const std::filesystem::path& path);

/// The path from the root, without links, as far as it leads to something. Throws `Error` or what
/// the standard library throws.
std::string fullPath(const std::string& path);

/// Where the system keeps programs' data, for all users or this one, without our own folder.
/// Empty when it cannot be told.
std::string dataRoot(bool allUsers);

/// The folder of the running program; empty when it cannot be told.
std::string programFolder();

/// Folders in which the installation put what all users share, the likeliest first.
std::vector<std::string> sharedFolders();

/// The separator to put behind `folder`.
char separatorOf(std::string_view folder);

/// Makes `path` hold `bytes` and nothing else, as one change: a temporary file in the same folder
/// is written, forced to the disk and renamed. A file that is there keeps its permissions; a link
/// is followed, also one to a file that is not there yet. Throws `Error` (`ErrNo::ReadOnly`,
/// `ErrNo::Io`), and then `path` is as it was.
void replaceFile(const std::string& path, std::string_view bytes);

/// Throws `Error` when `replaceFile` would, for lack of rights or of a folder; changes nothing.
void checkReplaceable(const std::string& path);

/// Makes a new file of these bytes, as one change. Nothing is ever replaced: what has the name
/// already, even since a moment ago and even a link that points nowhere, is `ErrNo::Exists`.
/// Throws `Error` (also `ErrNo::ReadOnly`, `ErrNo::Io`).
void createFile(const std::string& path, std::string_view bytes);

/// Adds `bytes` at the end of `path`, which is made if it is not there, and forces them to the
/// disk. Throws `Error` (`ErrNo::ReadOnly`, `ErrNo::Io`); a piece of `bytes` may then stand there.
void appendFile(const std::string& path, std::string_view bytes);

/// What tells a file from what it was before. All zero for one that is not there.
struct FileState {
    std::uint64_t identity = 0;  ///< another one for a file that was renamed to this place
    std::uint64_t size = 0;
    std::int64_t written = 0;  ///< when, in the system's finest steps
    friend bool operator==(const FileState&, const FileState&) = default;
};
FileState fileState(const std::string& path);

/// Holds off every other `FileLock` on the same path, of this program and of others, while it
/// lives; the file is made and left behind. Waits for another one at most so long.
class FileLock {
public:
    /// Throws `Error`: `ErrNo::Locked` when it is not free in time, else as `appendFile`.
    FileLock(const std::string& path, std::chrono::milliseconds atMost);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    std::intptr_t handle_ = -1;
};

/// The user's short time format in the letters of `shortTimeText`; empty when there is none.
std::string shortTimeFormat();
/// A time of day as the system writes it where the user has set no format.
std::string shortTimeText(int hour, int minute, int second);
/// A date with its day of the week (1 is Monday) in the user's order and language, the year in
/// full; empty for one that the system cannot write.
std::string dateText(int year, int month, int day, int weekday);
/// "AM" or "PM" in the user's language.
std::string dayHalfText(bool afternoon);

/// Text of a settings file to UTF-8 and back: the system code page on Windows, nothing elsewhere.
std::string fromSettingsText(std::string_view bytes);
std::string toSettingsText(std::string_view text);
/// What ends a line of a new file.
std::string_view lineEnd();

/// The command line as it was given, the program's name included; empty where the system hands
/// programs their arguments one by one.
std::string rawCommandLine();

/// What the system's own player finds a sound by that is no file of ours; empty when it has no
/// names for sounds.
std::string systemSound(std::string_view name);

/// Starts a program that lives its own life: not waited for, no window of ours, no shell between.
/// `arguments[0]` is the program, looked up in PATH when it names no folder. Throws `Error`
/// (`ErrNo::NotFound`, `ErrNo::Io`) when it does not start.
void startProgram(const std::vector<std::string>& arguments);

/// Opens a file or address as the desktop does. Throws like `startProgram`.
void openWithDesktop(const std::string& target);

}  // namespace vl::platform
