#include "app/platform/Memory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace vl::platform {
namespace {

// The sanitizer has an allocator of its own.
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__)
/// KiB of memory that the process has in use, as the system sees it.
long resident() {
    std::ifstream in("/proc/self/status");
    for (std::string line; std::getline(in, line);) {
        if (line.rfind("VmRSS:", 0) == 0) {
            return std::stol(line.substr(6));
        }
    }
    return 0;
}

// What is kept at the end of the heap holds all before it, for the library alone.
TEST(GiveBackMemory, GivesBackWhatLiesFreeBetweenWhatIsUsed) {
    constexpr std::size_t kBlock = 4096;
    constexpr std::size_t kBlocks = 8192;  // 32 MiB
    std::vector<std::unique_ptr<char[]>> blocks;
    for (std::size_t i = 0; i < kBlocks; ++i) {
        blocks.push_back(std::make_unique<char[]>(kBlock));
        std::memset(blocks.back().get(), 'x', kBlock);
    }
    for (std::size_t i = 0; i + 1 < kBlocks; ++i) {
        blocks[i].reset();
    }
    const long before = resident();
    giveBackMemory();
    EXPECT_LT(resident(), before - 24 * 1024);
    EXPECT_EQ(blocks.back()[kBlock - 1], 'x');
}
#endif

}  // namespace
}  // namespace vl::platform
