// Definitions taken apart and put together, on one page and on many.
#include <gtest/gtest.h>

#include "DefinitionBlocks.h"
#include "DefinitionDraft.h"
#include "DefinitionPages.h"
#include "Made.h"
#include "Pages.h"
#include "support/ErrorOf.h"

namespace vl {
namespace {

using jet::DefinitionBlocks;
using test::Disk;
using test::errorOf;

// Of every table of every file at hand.
TEST(JetDefinitionBlocks, AreTheDefinitionAgain) {
    std::vector<std::string> files = {test::firstLight(), test::generated()};
    int shared = 0;
    if (!test::sharedFolder().empty()) {
        for (const auto& entry :
             std::filesystem::directory_iterator(test::sharedFolder() / "jet4" / "samples")) {
            if (entry.is_regular_file() && entry.path().extension() == ".mdb") {
                files.push_back(test::readFile(entry.path()));
                ++shared;
            }
        }
    }
    int tables = 0;
    for (const std::string& bytes : files) {
        Disk disk(bytes);
        jet::PageFile file = test::pagesOf(disk);
        for (const jet::TableInfo& info : test::openMemory(disk).tables()) {
            const auto definition = jet::definitionBytes(file, info.definitionPage);
            const DefinitionBlocks blocks =
                jet::takeApart(definition, {"memory", info.definitionPage});
            EXPECT_TRUE(jet::putTogether(blocks) == definition) << info.name;
            ++tables;
        }
    }
    std::printf("%d tables, of %d files that are not ours\n", tables, shared);
    EXPECT_GE(tables, 10);
}

TEST(JetDefinitionBlocks, ADefinitionThatEndsTooEarlyIsDamage) {
    Disk disk(test::firstLight());
    jet::PageFile file = test::pagesOf(disk);
    auto definition = jet::definitionBytes(file, 2);
    for (const std::size_t length :
         {std::size_t{63}, definition.size() / 2, definition.size() - 1}) {
        const jet::ByteView cut = jet::ByteView(definition).first(length);
        EXPECT_EQ(errorOf([&] { jet::takeApart(cut, {"memory", 2}); }), ErrNo::Corrupt) << length;
    }
    definition.push_back(std::byte{0});
    EXPECT_EQ(errorOf([&] { jet::takeApart(definition, {"memory", 2}); }), ErrNo::Corrupt);
}

TEST(JetDefinitionPages, HoldTheDefinitionAndSayWhatIsFree) {
    struct Case {
        std::size_t length;
        std::vector<unsigned> free;  // of each page
    };
    static const Case cases[] = {
        {536, {4096 - 536 - 8}},  // one page, as the engine counts it
        {4088, {0}},              // nothing left but the eight
        {4096, {0}},              // exactly full
        {4416, {0, 3760}},        // the engine's own figures
        {4096 + 4088 + 1, {0, 0, 4079}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.length);
        std::vector<std::byte> definition(c.length);
        for (std::size_t i = 8; i < c.length; ++i) {
            definition[i] = static_cast<std::byte>(i % 251);
        }
        jet::store(std::span(definition), 8, static_cast<std::uint32_t>(c.length));
        ASSERT_EQ(jet::definitionPageCount(c.length), c.free.size());
        std::vector<jet::PageNo> numbers;
        for (std::size_t i = 0; i < c.free.size(); ++i) {
            numbers.push_back(static_cast<jet::PageNo>(5 - i));
        }
        const auto pages = jet::definitionPages(definition, numbers);
        Disk disk(std::string(6 * jet::kPageSize, '\0'));
        for (std::size_t i = 0; i < pages.size(); ++i) {
            EXPECT_EQ(jet::u16(pages[i], 2), c.free[i]) << "page " << i;
            std::copy(
                pages[i].begin(), pages[i].end(),
                disk.bytes.begin() + static_cast<std::ptrdiff_t>(numbers[i] * jet::kPageSize));
        }
        jet::PageFile file = test::pagesOf(disk);
        EXPECT_EQ(jet::definitionChain(file, 5), numbers);
        const auto read = jet::definitionBytes(file, 5);
        EXPECT_TRUE(
            std::equal(read.begin() + 8, read.end(), definition.begin() + 8, definition.end()));
    }
}

TEST(JetDefinitionPages, AChainThatNeverEndsIsDamage) {
    Disk disk(std::string(2 * jet::kPageSize, '\0'));
    const auto page = std::span(disk.bytes).subspan(jet::kPageSize);
    jet::store(page, 0, std::uint16_t{0x0102});
    jet::store(page, 4, std::uint32_t{1});
    jet::PageFile file = test::pagesOf(disk);
    EXPECT_EQ(errorOf([&] { jet::definitionChain(file, 1); }), ErrNo::Corrupt);
}

}  // namespace
}  // namespace vl
