// What the program is told when it is started.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace vl {

/// The command line, read.
struct CommandLine {
    std::string DBFolder;  // of the reminders database; empty when none is named
    bool help = false;
    bool version = false;
    std::string problem;  // in words, when an option is unknown or lacks its folder; else empty
};

/// Reads the arguments behind the program's name. A line that begins with "--" consists of options:
///
///   --db-folder FOLDER   (or --db-folder=FOLDER) the folder, taken whole as it stands
///   --help, --version
///
/// Any other is in the host's form, see `hostFolder`: the raw line behind the program's name, so
/// that every blank counts; the arguments with a blank between two where there is no raw line, or
/// where it has quotes, which are no part of any folder. Never throws.
CommandLine readCommandLine(std::span<const std::string> arguments, std::string_view rawLine = {});

/// The line with which this program was started, with its name; empty on systems that hand
/// programs their arguments one by one. Never throws.
std::string rawCommandLine();

/// The database's folder out of a line in the host's form, "/NAME=FOLDER": the line, trimmed as a
/// whole, is split at every "/", empty pieces do not count, and of the first piece the text
/// between its first and second "=" is the folder. The name is not looked at. So a folder can hold
/// neither "/" nor "=", and a blank before the next "/" belongs to it.
std::string hostFolder(std::string_view line);

/// What `--help` prints.
std::string_view commandLineHelp();

}  // namespace vl
