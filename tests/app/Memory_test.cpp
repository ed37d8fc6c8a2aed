#include "app/platform/Memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <ctime>
#include <fstream>
#include <iomanip>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#ifdef __GLIBC__
#include <malloc.h>
#endif
#ifdef __linux__
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#endif

#include "support/Support.h"

namespace vl::platform {
namespace {

// The sanitizer has an allocator of its own.
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__)
/// KiB of memory that the process has in use, as the system sees it.
long inUse(const std::string& what) {
    std::ifstream in("/proc/self/status");
    for (std::string line; std::getline(in, line);) {
        if (line.rfind(what + ":", 0) == 0) {
            return std::stol(line.substr(what.size() + 1));
        }
    }
    return 0;
}
long resident() { return inUse("VmRSS"); }

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

TEST(GiveBackMemory, GivesBackCodeThatComesAgainWhenItIsRun) {
    giveBackMemory();
    const long least = inUse("RssFile");
    // Code that nothing before it has run.
    const std::string text = std::to_string(3.5) + std::string(10, 'x');
    std::ostringstream out;
    out << std::put_time(std::gmtime(std::array<std::time_t, 1>{0}.data()), "%A") << text;
    EXPECT_EQ(out.str(), "Thursday3.500000xxxxxxxxxx");
    const long used = inUse("RssFile");
    EXPECT_GT(used, least);
    giveBackMemory();
    EXPECT_LT(inUse("RssFile"), used);
}

/// A file of `kSize` letters, mapped for this process alone.
class Mapped {
public:
    static constexpr std::size_t kSize = std::size_t{8} << 20;

    Mapped() {
        const std::string path = (folder_ / "table").string();
        test::writeFile(path, std::string(kSize, 'x'));
        const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        at_ = static_cast<char*>(
            ::mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE, file, 0));
        ::close(file);
    }
    ~Mapped() { ::munmap(at_, kSize); }
    Mapped(const Mapped&) = delete;
    Mapped& operator=(const Mapped&) = delete;

    char* at() { return at_; }
    void protect() { ASSERT_EQ(::mprotect(at_, kSize, PROT_READ), 0); }
    std::size_t letters(char letter) const {
        return static_cast<std::size_t>(std::count(at_, at_ + kSize, letter));
    }

private:
    test::TempFolder folder_;
    char* at_;
};

TEST(GiveBackMemory, GivesBackTablesThatComeAgainWhenTheyAreRead) {
    Mapped table;
    table.protect();
    ASSERT_EQ(table.letters('x'), Mapped::kSize);
    const long used = inUse("RssFile");
    giveBackMemory();
    EXPECT_LT(inUse("RssFile"), used - 7 * 1024);
    EXPECT_EQ(table.letters('x'), Mapped::kSize);
}

TEST(GiveBackMemory, KeepsWhatWasWritten) {
    Mapped table;
    table.at()[Mapped::kSize / 2] = 'y';
    table.protect();
    giveBackMemory();
    EXPECT_EQ(table.letters('y'), 1U);
    EXPECT_EQ(table.letters('x'), Mapped::kSize - 1);
}

TEST(JoinWhatIsFreed, PutsNoSmallBlocksBy) {
    const auto putBy = [] {
        std::vector<std::unique_ptr<std::array<char, 100>>> blocks(5000);
        for (auto& block : blocks) {
            block = std::make_unique<std::array<char, 100>>();
        }
        blocks.clear();
        return ::mallinfo2().fsmblks;
    };
    EXPECT_GT(putBy(), 100'000U) << "else there is nothing to be gained";
    joinWhatIsFreed();
    giveBackMemory();
    EXPECT_EQ(putBy(), 0U);
}
#endif

}  // namespace
}  // namespace vl::platform
