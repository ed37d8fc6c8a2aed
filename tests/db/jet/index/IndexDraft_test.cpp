// Pages as they are stored, and how overfull ones are split.
#include <gtest/gtest.h>

#include "MemoryFile.h"
#include "MemorySpace.h"

namespace vl {
namespace {

using jet::IndexDraft;
using jet::KeyBytes;

// `common` bytes that all have, `own` of them told apart by `n`.
KeyBytes entryOf(std::size_t common, std::size_t own, unsigned n) {
    KeyBytes entry(common, std::byte{0x55});
    entry.resize(common + own, static_cast<std::byte>(n));
    return entry;
}

jet::IndexPage stored(const IndexDraft& draft) {
    const auto bytes = std::make_shared<const jet::Page::Bytes>(draft.encode(test::kDefinition));
    return {jet::Page(bytes, jet::Origin{"memory", test::kRoot}), test::kDefinition};
}

// What is read back is what was written.
void expectSame(const IndexDraft& draft, const jet::IndexPage& page) {
    ASSERT_EQ(page.count(), draft.count());
    EXPECT_EQ(page.freeBytes() + page.used(), jet::kIndexRoom);
    KeyBytes entry;
    for (std::size_t i = 0; i < page.count(); ++i) {
        page.entry(i, entry);
        const jet::ByteView expected = draft.entry(i);
        EXPECT_TRUE(std::equal(entry.begin(), entry.end(), expected.begin(), expected.end())) << i;
        EXPECT_EQ(page.lowerBound(draft.sorted(i)), i);
    }
}

TEST(IndexDraft, LeavesOutWhatEntriesShareOnlyWhenItMust) {
    struct Case {
        std::size_t entries;
        std::size_t common;
        std::size_t own;
        std::size_t prefix;
    };
    static constexpr Case cases[] = {
        {0, 0, 0, 0},     {1, 1000, 9, 0},     {4, 895, 9, 0},  // 3616 bytes exactly
        {4, 896, 9, 896}, {200, 300, 16, 300}, {113, 16, 16, 0}, {114, 16, 16, 16},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.entries << " entries of " << c.common + c.own);
        IndexDraft draft(true);
        for (unsigned n = 0; n < c.entries; ++n) {
            draft.insert(n, entryOf(c.common, c.own, n));
        }
        ASSERT_TRUE(draft.fits());
        const jet::IndexPage page = stored(draft);
        EXPECT_EQ(page.prefix(), c.prefix);
        expectSame(draft, page);
    }
}

TEST(IndexDraft, KeepsAByteOfTheEntryThatOthersBeginWith) {
    IndexDraft draft(true);
    draft.insert(0, entryOf(300, 0, 0));
    for (unsigned n = 1; n < 20; ++n) {
        draft.insert(n, entryOf(300, 5, n));
    }
    const jet::IndexPage page = stored(draft);
    EXPECT_EQ(page.prefix(), 299U);
    expectSame(draft, page);
}

TEST(IndexDraft, SplitsSoThatBothSidesFit) {
    static constexpr std::size_t kLengths[] = {9, 400, jet::kLongestEntry};
    for (const bool leaf : {true, false}) {
        for (const std::size_t first : kLengths) {
            for (const std::size_t later : kLengths) {
                for (const bool atEnd : {false, true}) {
                    SCOPED_TRACE(testing::Message() << first << ", then " << later);
                    IndexDraft right(leaf);
                    for (unsigned n = 0; right.fits(); ++n) {
                        const bool front = n % 3 == 0;
                        const std::size_t at = front ? 0 : right.count();
                        right.insert(at, entryOf(0, front ? first : later, front ? 9 : 200));
                    }
                    IndexDraft left = right.takeFront(right.splitPoint(atEnd));
                    if (!leaf) {
                        left.erase(left.count() - 1);
                    }
                    EXPECT_TRUE(left.fits());
                    EXPECT_TRUE(right.fits());
                    EXPECT_GT(left.count(), 0U);
                    EXPECT_GT(right.count(), 0U);
                }
            }
        }
    }
}

}  // namespace
}  // namespace vl
