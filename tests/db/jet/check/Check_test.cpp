// Whole files have no findings.
#include "db/jet/check/Check.h"

#include <iostream>

#include <gtest/gtest.h>

#include "MemoryFile.h"
#include "Rows.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using test::Disk;

std::string textOf(const std::vector<jet::Finding>& findings) {
    std::string text;
    for (const jet::Finding& finding : findings) {
        text += "page " + std::to_string(finding.page) + ": " + finding.what + "\n";
    }
    return text;
}

std::string findingsIn(const std::string& bytes) {
    Disk disk(bytes);
    auto db = test::openMemory(disk);
    return textOf(checkDatabase(db));
}

TEST(JetCheck, FindsNothingInFilesThatAreWhole) {
    EXPECT_EQ(findingsIn(test::firstLight()), "");
    EXPECT_EQ(findingsIn(test::generated()), "");
    const fs::path shared = test::sharedFolder();
    int files = 0;
    if (!shared.empty()) {
        for (const auto& file : fs::directory_iterator(shared / "jet4" / "samples")) {
            if (file.is_regular_file() && file.path().extension() != ".md") {
                EXPECT_EQ(findingsIn(test::readFile(file.path())), "") << file.path().filename();
                ++files;
            }
        }
    }
    std::cout << files << " files of others\n";
}

}  // namespace
}  // namespace vl
