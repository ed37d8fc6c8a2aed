// remindb: looks into reminders databases, and changes them, from the command line.
#include <algorithm>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "Commands.h"

namespace {

constexpr int kFailed = 1;
constexpr int kUsage = 2;

constexpr std::string_view kHelp =
    R"(usage: remindb tables FILE [--json]
       remindb sql FILE STATEMENT [--json]
       remindb --help | --version

  tables  columns, indexes and row counts of the tables in FILE
  sql     runs one statement (SELECT or UPDATE) on FILE: prints the rows it
          finds, or how many it changed

  --json  one JSON object a line instead of a table

Without --json rows are parted by tabs, under a line of column names; a tab,
a line end or a backslash inside a text is written as \t, \n, \r, \\.

  remindb sql Velmora.RemindDB "SELECT Subject, StartDateTime FROM Reminders
    WHERE StartDateTime > #2026-11-20# ORDER BY StartDateTime"

Exit code: 0 done, 1 failed (the reason is on the standard error), 2 called
in a wrong way.
)";

int usage(const std::string& what) {
    std::cerr << "remindb: " << what << "\nTry remindb --help\n";
    return kUsage;
}

// Takes an option out of the arguments.
bool takeOption(std::vector<std::string>& arguments, std::string_view option) {
    return std::erase(arguments, option) > 0;
}

int run(std::vector<std::string> arguments) {
    if (takeOption(arguments, "--help")) {
        std::cout << kHelp;
        return 0;
    }
    if (takeOption(arguments, "--version")) {
        std::cout << "remindb " VL_VERSION "\n";
        return 0;
    }
    const bool json = takeOption(arguments, "--json");
    const auto unknown = std::find_if(arguments.begin(), arguments.end(),
                                      [](const auto& a) { return a.compare(0, 2, "--") == 0; });
    if (unknown != arguments.end()) {
        return usage("unknown option " + *unknown);
    }
    if (arguments.empty()) {
        return usage("expected a command: tables or sql");
    }
    const std::string& command = arguments[0];
    if (command == "tables") {
        if (arguments.size() != 2) {
            return usage("tables expects a file");
        }
        vl::tools::tables(arguments[1], json, std::cout);
        return 0;
    }
    if (command == "sql") {
        if (arguments.size() != 3) {
            return usage("sql expects a file and one statement (in quotes)");
        }
        vl::tools::sql(arguments[1], arguments[2], json, std::cout);
        return 0;
    }
    return usage("unknown command " + command);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const int code = run({argv + 1, argv + argc});
        if (!std::cout.flush()) {
            std::cerr << "remindb: the output could not be written\n";
            return kFailed;
        }
        return code;
    } catch (const std::exception& e) {
        std::cerr << "remindb: " << e.what() << '\n';
        return kFailed;
    }
}
