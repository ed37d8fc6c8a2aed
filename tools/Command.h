// The commands of remindb: each is one file with a function that describes it, and a line in
// `commands`.
#pragma once

#include <iosfwd>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vl::tools {

inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kUsage = 2;

/// What a command was called with, sorted out by what it says of itself.
struct Arguments {
    std::vector<std::string> words;                           ///< behind the command's name
    std::set<std::string, std::less<>> flags;                 ///< "--json"
    std::map<std::string, std::string, std::less<>> options;  ///< "--from" with its value

    bool flag(std::string_view name) const { return flags.contains(name); }
    /// Empty when it was not given.
    std::string option(std::string_view name) const;
};

/// The command was called in a wrong way: exit code `kUsage`.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Streams {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
};

struct Command {
    std::string_view name;
    /// What stands behind the name in the help: "FILE STATEMENT [--json]".
    std::string_view synopsis;
    /// What it does, in one or more lines without the last line end.
    std::string_view description;
    std::size_t fewestWords = 0;
    std::size_t mostWords = 0;
    /// What the words are, for who gave too few or too many: "a file and one statement".
    std::string_view words;
    std::vector<std::string_view> flags;
    std::vector<std::string_view> options;
    /// Returns the exit code. Throws `UsageError`, or `Error` for what failed.
    int (*run)(const Arguments& arguments, const Streams& streams);
};

/// One that looks at a file and takes `--json`.
Command commandOnFile(std::string_view name, std::string_view description,
                      int (*run)(const Arguments& arguments, const Streams& streams));

Command backupCommand();
Command checkCommand();
Command compactCommand();
Command dismissCommand();
Command dueCommand();
Command eventCommand();
Command hideCommand();
Command listCommand();
Command newCommand();
Command occurrencesCommand();
Command reactivateCommand();
Command repairCommand();
Command snoozeCommand();
Command sqlCommand();
Command tablesCommand();

/// All of them, in the order of the help.
std::vector<Command> commands();

}  // namespace vl::tools
