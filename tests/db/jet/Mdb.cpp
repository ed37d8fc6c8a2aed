#include "Mdb.h"

#include <array>
#include <cstdio>
#include <sstream>

#include <gtest/gtest.h>

#ifdef _WIN32
#define popen _popen
#define pclose _pclose
#endif

namespace vl::test {

std::vector<nlohmann::json> mdbRows(const std::filesystem::path& file, const std::string& table) {
    const std::string command =
        "mdb-json -T \"%Y-%m-%d %H:%M:%S\" \"" + file.string() + "\" \"" + table + "\"";
    std::FILE* pipe = popen(command.c_str(), "r");
    EXPECT_NE(pipe, nullptr) << command;
    std::string output;
    std::array<char, 4096> buffer{};
    while (pipe != nullptr) {
        const std::size_t n = std::fread(buffer.data(), 1, buffer.size(), pipe);
        if (n == 0) {
            break;
        }
        output.append(buffer.data(), n);
    }
    EXPECT_EQ(pipe != nullptr ? pclose(pipe) : -1, 0) << command;
    std::vector<nlohmann::json> rows;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        rows.push_back(nlohmann::json::parse(line));
    }
    return rows;
}

}  // namespace vl::test
