#include "support/Support.h"

#include <fstream>
#include <iterator>
#include <random>

#include <gtest/gtest.h>

namespace vl::test {

namespace fs = std::filesystem;

fs::path repoFile(const std::string& relative) { return fs::path(VL_SOURCE_DIR) / relative; }

namespace {

// The test goes on with the files that are there, and fails where these fail.
void noteUnread(const fs::path& folder) {
    if (!testing::Test::IsSkipped()) {
        GTEST_SKIP() << "0 files of others were read: there is no folder " << folder.filename()
                     << " beside this checkout";
    }
}

}  // namespace

fs::path sharedFolder() {
    const fs::path folder = fs::path(VL_SOURCE_DIR).parent_path() / "shared";
    if (fs::is_directory(folder / "jet4" / "samples")) {
        return folder;
    }
    noteUnread(folder);
    return {};
}

TempFolder::TempFolder() {
    std::random_device random;
    path_ = fs::temp_directory_path() /
            ("vl-test-" + std::to_string(random()) + std::to_string(random()));
    fs::create_directories(path_);
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void writeFile(const fs::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace vl::test
