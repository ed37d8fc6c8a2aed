#include "app/CommandLine.h"

#include "base/ErrorState.h"
#include "base/Text.h"
#include "events/GenCollection.h"
#include "platform/Platform.h"

namespace vl {

namespace {

constexpr std::string_view kDbFolder = "--db-folder";

void readOptions(std::span<const std::string> arguments, CommandLine& line) {
    for (std::size_t i = 0; i < arguments.size() && line.problem.empty(); ++i) {
        const std::string_view option = arguments[i];
        const std::string_view name = option.substr(0, option.find('='));
        if (option == "--help") {
            line.help = true;
        } else if (option == "--version") {
            line.version = true;
        } else if (name != kDbFolder) {
            line.problem = "unknown option " + arguments[i];
        } else if (name.size() < option.size()) {
            line.DBFolder = option.substr(name.size() + 1);
        } else if (i + 1 < arguments.size()) {
            line.DBFolder = arguments[++i];
        }
        if (name == kDbFolder && line.DBFolder.empty()) {
            line.problem = "--db-folder needs a folder";
        }
    }
}

std::string joined(std::span<const std::string> arguments) {
    std::string all;
    for (const std::string& argument : arguments) {
        all += (all.empty() ? "" : " ") + argument;
    }
    return all;
}

// The name is in quotes, or ends at the first blank.
std::string_view behindProgramName(std::string_view rawLine) {
    const bool quoted = rawLine.starts_with('"');
    const std::size_t end = quoted ? rawLine.find('"', 1) : rawLine.find_first_of(" \t");
    return end == std::string_view::npos ? std::string_view() : rawLine.substr(end + 1);
}

}  // namespace

CommandLine readCommandLine(std::span<const std::string> arguments, std::string_view rawLine) {
    const ErrScope scope;
    CommandLine line;
    attempt([&] {
        if (!arguments.empty() && arguments[0].rfind("--", 0) == 0) {
            readOptions(arguments, line);
            return;
        }
        const std::string_view raw = behindProgramName(rawLine);
        const bool isPlain = !raw.empty() && raw.find('"') == std::string_view::npos;
        line.DBFolder = hostFolder(isPlain ? std::string(raw) : joined(arguments));
    });
    return line;
}

std::string rawCommandLine() {
    const ErrScope scope;
    std::string line;
    attempt([&] { line = platform::rawCommandLine(); });
    return line;
}

std::string hostFolder(std::string_view line) {
    GenCollection pieces;
    pieces.LoadFromList(text::trimBlanks(line), "/", {}, false, true);
    if (pieces.Count() == 0) {
        return {};
    }
    const std::string first = pieces.Item(1).toText();
    const auto parts = text::split(first, "=");
    return parts.size() > 1 ? std::string(parts[1]) : std::string();
}

std::string_view commandLineHelp() {
    return "Usage: vlreminders [--db-folder FOLDER]\n"
           "       vlreminders /NAME=FOLDER      (Velmora's form; no \"/\" in FOLDER)\n"
           "\n"
           "Shows the reminders of the database Velmora.RemindDB in FOLDER.\n"
           "\n"
           "  --db-folder FOLDER  folder of the reminders database\n"
           "  --help              this text\n"
           "  --version           the program's version\n";
}

}  // namespace vl
