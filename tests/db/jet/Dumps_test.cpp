// What we read is what others wrote and other readers read.
#include <iostream>

#include <gtest/gtest.h>

#include "Dump.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;

TEST(JetDumps, EverySampleReadsAsOtherReadersReadIt) {
    const fs::path shared = test::sharedFolder();
    if (shared.empty()) {
        std::cout << "no sample files beside this checkout: 0 files compared\n";
        return;
    }
    const fs::path samples = shared / "jet4" / "samples";
    test::Compared compared;
    for (const fs::directory_entry& folder : fs::directory_iterator(samples / "dumps")) {
        test::compareWithDumps(samples / folder.path().filename(), folder.path(), compared);
    }
    std::cout << compared.files << " files, " << compared.tables << " table dumps, "
              << compared.rows << " rows, " << compared.values << " values compared\n";
    EXPECT_GT(compared.rows, 0);
}

TEST(JetDumps, OurOwnFilesReadAsAnotherReaderReadThem) {
    test::Compared compared;
    const fs::path expected = test::repoFile("tests/data/expected");
    test::compareWithDumps(test::repoFile("data/first-light.RemindDB"),
                           expected / "first-light.RemindDB", compared);
    test::compareWithDumps(test::repoFile("tests/data/generated-reminders.RemindDB"),
                           expected / "generated-reminders.RemindDB", compared);
    EXPECT_EQ(compared.files, 2);
    EXPECT_EQ(compared.tables, 5);
    EXPECT_GT(compared.rows, 100);
}

}  // namespace
}  // namespace vl
