#ifndef _WIN32

#include "LockHolder.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>
#include <vector>

namespace vl::jet {

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> entriesOf(const fs::path& folder) {
    std::vector<fs::path> entries;
    std::error_code error;  // a process that has ended, or of somebody else
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        entries.push_back(it->path());
    }
    return entries;
}

// "lock:  1: OFDLCK  ADVISORY  READ -1 08:01:4711 3221225474 3221225474"; the last may be "EOF".
bool covers(const std::string& line, std::uint64_t at) {
    std::istringstream words(line);
    std::vector<std::string> all;
    for (std::string word; words >> word;) {
        all.push_back(word);
    }
    if (all.size() < 3 || all[0] != "lock:") {
        return false;
    }
    std::uint64_t first = 0;
    std::uint64_t last = 0;
    std::istringstream(all[all.size() - 2]) >> first;
    std::istringstream(all.back()) >> last;
    return first <= at && (at <= last || all.back() == "EOF");
}

bool locks(const fs::path& process, const fs::path& descriptor, std::uint64_t at) {
    std::ifstream info(process / "fdinfo" / descriptor.filename());
    for (std::string line; std::getline(info, line);) {
        if (covers(line, at)) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::string processLocking(const struct stat& file, std::uint64_t at) {
    for (const fs::path& process : entriesOf("/proc")) {
        const std::string number = process.filename().string();
        if (!std::all_of(number.begin(), number.end(),
                         [](unsigned char c) { return std::isdigit(c) != 0; })) {
            continue;
        }
        for (const fs::path& descriptor : entriesOf(process / "fd")) {
            struct stat open {};
            if (::stat(descriptor.c_str(), &open) == 0 && open.st_dev == file.st_dev &&
                open.st_ino == file.st_ino && locks(process, descriptor, at)) {
                std::string name;
                std::getline(std::ifstream(process / "comm"), name);
                return "process " + number + (name.empty() ? "" : " (" + name + ")");
            }
        }
    }
    return {};
}

}  // namespace vl::jet

#endif
