// Inputs that fuzzers once broke something with, and their seeds, again: each one ends well.
#include <filesystem>
#include <iostream>

#include <gtest/gtest.h>

#include "Inputs.h"
#include "support/Support.h"

namespace vl {
namespace {

int forEachFile(const std::string& folder, void (*step)(std::span<const std::byte>)) {
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(test::repoFile(folder))) {
        SCOPED_TRACE(entry.path());
        const std::string bytes = test::readFile(entry.path());
        step(std::as_bytes(std::span(bytes)));
        ++files;
    }
    std::cout << files << " inputs from " << folder << '\n';
    return files;
}

TEST(FuzzInputs, DamagedFilesGiveValuesChangesOrAnError) {
    EXPECT_GT(forEachFile("tests/data/fuzz/jet", test::useDamaged), 0);
}

TEST(FuzzInputs, StatementsGiveAResultOrAnError) {
    EXPECT_GT(forEachFile("tests/data/fuzz/sql", test::runStatement), 0);
}

}  // namespace
}  // namespace vl
