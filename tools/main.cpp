// remindb: looks into reminders databases, and changes them, from the command line.
#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "Command.h"
#include "base/ErrorState.h"

namespace vl::tools {

std::string Arguments::option(std::string_view name) const {
    const auto hit = options.find(name);
    return hit == options.end() ? std::string() : hit->second;
}

Command commandOnFile(std::string_view name, std::string_view description,
                      int (*run)(const Arguments& arguments, const Streams& streams)) {
    return {.name = name,
            .synopsis = "FILE [--json]",
            .description = description,
            .fewestWords = 1,
            .mostWords = 1,
            .words = "a file",
            .flags = {"--json"},
            .options = {},
            .run = run};
}

std::vector<Command> commands() {
    return {newCommand(),     tablesCommand(),     sqlCommand(),         dueCommand(),
            listCommand(),    eventCommand(),      occurrencesCommand(), snoozeCommand(),
            dismissCommand(), reactivateCommand(), hideCommand(),        backupCommand(),
            checkCommand(),   repairCommand(),     compactCommand()};
}

namespace {

constexpr std::string_view kHelpEnd = R"(
  --json  one JSON object a line instead of text to read

  --settings FILE
          the settings of whose "DefaultReminders" (section "Reminders") remind
          of the events that use the calendar's defaults; without it those of
          the program

Without --json rows are parted by tabs, under a line of column names; a tab,
a line end or a backslash inside a text is written as \t, \n, \r, \\; Null as \N.
Commands that take [FILE] read the standard input without one, or with "-".

  remindb sql Velmora.RemindDB "SELECT Subject, StartDateTime FROM Reminders
    WHERE StartDateTime > #2026-11-20# ORDER BY StartDateTime"

Exit code: 0 done, 1 failed (the reason is on the standard error), 2 called
in a wrong way.
)";

void writeHelp(std::ostream& out) {
    const std::vector<Command> all = commands();
    std::size_t width = 0;
    const char* head = "usage: ";
    for (const Command& command : all) {
        out << head << "remindb " << command.name << ' ' << command.synopsis << '\n';
        head = "       ";
        width = std::max(width, command.name.size());
    }
    out << "       remindb --help | --version\n\n";
    for (const Command& command : all) {
        std::string text = "  " + std::string(command.name);
        text.resize(width + 4, ' ');
        for (const char c : command.description) {
            text += c;
            if (c == '\n') {
                text.append(width + 4, ' ');
            }
        }
        out << text << '\n';
    }
    out << kHelpEnd;
}

bool contains(const std::vector<std::string_view>& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

const Command& commandNamed(const std::vector<Command>& all,
                            const std::vector<std::string>& given) {
    const auto name = std::find_if(given.begin(), given.end(),
                                   [](const auto& a) { return a.compare(0, 2, "--") != 0; });
    if (name == given.end()) {
        std::string known;
        for (const Command& command : all) {
            known += (known.empty() ? "" : ", ") + std::string(command.name);
        }
        throw UsageError("expected a command: " + known);
    }
    const auto hit = std::find_if(all.begin(), all.end(),
                                  [&](const Command& command) { return command.name == *name; });
    if (hit == all.end()) {
        throw UsageError("unknown command " + *name);
    }
    return *hit;
}

// What follows a lone "--" is a word, whatever it begins with.
Arguments sortOut(const Command& command, const std::vector<std::string>& given) {
    Arguments arguments;
    bool onlyWords = false;
    bool nameSeen = false;
    for (std::size_t i = 0; i < given.size(); ++i) {
        const std::string& argument = given[i];
        if (onlyWords || argument.compare(0, 2, "--") != 0) {
            if (nameSeen) {
                arguments.words.push_back(argument);
            }
            nameSeen = true;
        } else if (argument == "--") {
            onlyWords = true;
        } else if (contains(command.flags, argument)) {
            arguments.flags.insert(argument);
        } else if (!contains(command.options, argument)) {
            throw UsageError("unknown option " + argument);
        } else if (i + 1 == given.size()) {
            throw UsageError(argument + " expects a value");
        } else {
            arguments.options[argument] = given[++i];
        }
    }
    const std::size_t count = arguments.words.size();
    if (count < command.fewestWords || count > command.mostWords) {
        throw UsageError(std::string(command.name) + " expects " + std::string(command.words));
    }
    return arguments;
}

int run(const std::vector<std::string>& given, const Streams& streams) {
    const auto has = [&](const char* option) {
        return std::find(given.begin(), given.end(), option) != given.end();
    };
    if (has("--help")) {
        writeHelp(streams.out);
        return kDone;
    }
    if (has("--version")) {
        streams.out << "remindb " VL_VERSION "\n";
        return kDone;
    }
    const std::vector<Command> all = commands();
    const Command& command = commandNamed(all, given);
    return command.run(sortOut(command, given), streams);
}

}  // namespace
}  // namespace vl::tools

int main(int argc, char** argv) {
    namespace tools = vl::tools;
    std::ios::sync_with_stdio(false);
    std::cin.tie(nullptr);
    if (const char* trace = std::getenv("VL_TRACE")) {
        vl::openTrace(trace);
    }
    try {
        const int code = tools::run({argv + 1, argv + argc}, {std::cin, std::cout, std::cerr});
        if (!std::cout.flush()) {
            std::cerr << "remindb: the output could not be written\n";
            return tools::kFailed;
        }
        return code;
    } catch (const tools::UsageError& e) {
        std::cerr << "remindb: " << e.what() << "\nTry remindb --help\n";
        return tools::kUsage;
    } catch (const std::exception& e) {
        std::cerr << "remindb: " << e.what() << '\n';
        return tools::kFailed;
    }
}
