#include "Remindb.h"

#include <sys/wait.h>

#include <cstdlib>
#include <sstream>

#include "support/Support.h"

namespace vl::test {

namespace {

std::string quoted(const std::string& argument) {
    std::string out = "'";
    for (const char c : argument) {
        out += c == '\'' ? "'\\''" : std::string(1, c);
    }
    return out + "'";
}

}  // namespace

Outcome remindb(const std::vector<std::string>& arguments, const std::string& input,
                const std::string& output, const std::string& dataHome) {
    const TempFolder folder;
    std::string command =
        "XDG_DATA_HOME=" + quoted(dataHome.empty() ? (folder / "share").string() : dataHome) + ' ' +
        quoted(VL_REMINDB);
    for (const std::string& argument : arguments) {
        command += ' ' + quoted(argument);
    }
    const std::string in = (folder / "in").string();
    const std::string out = (folder / "out").string();
    const std::string err = (folder / "err").string();
    writeFile(in, input);
    command +=
        " <" + quoted(in) + " >" + quoted(output.empty() ? out : output) + " 2>" + quoted(err);
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1,
            output.empty() ? readFile(out) : std::string(), readFile(err)};
}

std::vector<Json> linesOf(const std::string& text) {
    std::vector<Json> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(Json::parse(line));
    }
    return lines;
}

}  // namespace vl::test
