// Trees that others have written oddly, or that are damaged.
#include <iostream>
#include <random>

#include <gtest/gtest.h>

#include "Bytes.h"
#include "IndexCursor.h"
#include "MemoryFile.h"
#include "MemorySpace.h"

namespace vl {
namespace {

using jet::IndexTree;
using jet::KeyBytes;
using jet::PageNo;
using test::errorOf;
using test::kDefinition;
using test::kRoot;
using Random = std::mt19937_64;

// 400 bytes that differ at once: about eight entries a page.
KeyBytes longKey(std::uint32_t n) {
    KeyBytes key;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        key.push_back(static_cast<std::byte>(n >> shift));
    }
    key.resize(400);
    return key;
}

struct Tree {
    test::MemorySpace space;
    jet::IndexDefinition index = test::memoryIndex();
    IndexTree tree{space, index, kDefinition};

    explicit Tree(std::uint32_t entries) {
        for (std::uint32_t n = 0; n < entries; ++n) {
            tree.insert(longKey(2 * n), {n + 1, 0});
        }
    }
    jet::IndexReport check() { return checkIndex(space, index, kDefinition, space.owned()); }
    jet::IndexDraft draft(PageNo number) {
        return jet::IndexDraft(jet::IndexPage(space.page(number), kDefinition));
    }
    PageNo leaf(std::size_t n) {
        jet::IndexCursor cursor(space, index, kDefinition);
        std::vector<PageNo> leaves;
        while (cursor.next()) {
            if (leaves.empty() || leaves.back() != cursor.page()) {
                leaves.push_back(cursor.page());
            }
        }
        return leaves.at(n);
    }
    void patch(PageNo number, std::size_t at, std::uint8_t value) {
        jet::Page::Bytes bytes{};
        const jet::Page page = space.page(number);
        std::copy(page.bytes().begin(), page.bytes().end(), bytes.begin());
        bytes[at] = static_cast<std::byte>(value);
        space.write(number, bytes);
    }
    void write(PageNo number, const jet::IndexDraft& d) {
        space.write(number, d.encode(kDefinition));
    }
    std::size_t walked() {
        jet::IndexCursor cursor(space, index, kDefinition);
        std::size_t n = 0;
        while (cursor.next()) {
            ++n;
        }
        return n;
    }
};

bool names(const jet::IndexReport& report, PageNo page, const std::string& what) {
    return std::any_of(
        report.findings.begin(), report.findings.end(), [&](const jet::IndexFinding& finding) {
            return finding.page == page && finding.what.find(what) != std::string::npos;
        });
}

TEST(CheckIndex, SaysWhichPageIsWrong) {
    struct Case {
        const char* what;
        std::size_t at;
        std::uint8_t value;
    };
    static constexpr Case cases[] = {
        {"is no page of an index", 0, 1},
        {"is of an index of the table", jet::kIndexOwnerAt, 99},
        {"free bytes", jet::kIndexFreeAt, 1},
        {"before it is page", jet::kIndexPreviousAt, 99},
        {"after it is page", jet::kIndexNextAt, 99},
        {"names a child", jet::kIndexTailAt, 9},
        {"above the leaves", jet::kIndexLevelAt, 1},
        {"in common", jet::kIndexPrefixAt + 1, 15},
        {"too short", jet::kIndexMaskAt, 3},
        {"not behind", jet::kIndexEntriesAt + 2, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Tree tree(400);
        ASSERT_EQ(test::textOf(tree.check()), "");
        const PageNo leaf = tree.leaf(20);
        tree.patch(leaf, c.at, c.value);
        EXPECT_TRUE(names(tree.check(), leaf, c.what)) << test::textOf(tree.check());
    }
}

TEST(CheckIndex, ComparesNodesWithTheirChildren) {
    Tree tree(400);
    ASSERT_GE(tree.check().height, 3);
    const jet::IndexDraft root = tree.draft(kRoot);
    const PageNo node = root.child(0);

    Tree separator(400);
    separator.patch(kRoot, jet::kIndexEntriesAt + 300, 1);
    EXPECT_TRUE(names(separator.check(), kRoot, "is not the last one below"));

    Tree level(400);
    level.patch(node, jet::kIndexLevelAt, 7);
    EXPECT_TRUE(names(level.check(), node, "says it is 7 above"));

    Tree links(400);
    links.patch(node, jet::kIndexNextAt, 0);
    EXPECT_TRUE(names(links.check(), node, "the node after it"));

    Tree twice(400);
    jet::IndexDraft circle = twice.draft(kRoot);
    circle.tail = kRoot;
    twice.write(kRoot, circle);
    EXPECT_TRUE(names(twice.check(), kRoot, "twice"));
}

TEST(CheckIndex, ComparesThePagesWithTheMap) {
    Tree tree(100);
    std::vector<PageNo> owned = tree.space.owned();
    const PageNo missing = owned.back();
    owned.back() = 5;
    const jet::IndexReport report = checkIndex(tree.space, tree.index, kDefinition, owned);
    EXPECT_EQ(report.findings.size(), 2U);
    EXPECT_TRUE(names(report, 5, "not in its tree"));
    EXPECT_TRUE(names(report, missing, "not in its map"));
}

// Reported of the engine: the last child as an entry like the others.
TEST(IndexTree, TakesNodesWithoutATailChild) {
    Tree tree(40);
    jet::IndexDraft root = tree.draft(kRoot);
    ASSERT_FALSE(root.leaf);
    const jet::IndexDraft tail = tree.draft(root.tail);
    const jet::ByteView last = tail.entry(tail.count() - 1);
    KeyBytes entry(last.begin(), last.end());
    jet::appendChild(entry, root.tail);
    root.insert(root.count(), entry);
    root.tail = 0;
    tree.write(kRoot, root);
    ASSERT_EQ(test::textOf(tree.check()), "");
    EXPECT_EQ(tree.walked(), 40U);
    EXPECT_TRUE(tree.tree.contains(longKey(78)));

    tree.tree.insert(longKey(1000), {50, 0});
    EXPECT_EQ(test::textOf(tree.check()), "");
    EXPECT_EQ(tree.walked(), 41U);
    EXPECT_TRUE(tree.tree.contains(longKey(1000)));
}

// Reported of the engine: new leaves that for a while hang on the list of leaves alone.
TEST(IndexTree, TakesInLeavesThatNoNodeNames) {
    Tree tree(40);
    const PageNo last = tree.draft(kRoot).tail;
    jet::IndexDraft before = tree.draft(last);
    jet::IndexDraft loose(true);
    for (const std::uint32_t n : {200U, 202U, 204U}) {
        KeyBytes entry = longKey(n);
        jet::appendRow(entry, {60, static_cast<std::uint16_t>(n)});
        loose.insert(loose.count(), entry);
    }
    const PageNo number = tree.space.allocate({kDefinition, {}});
    before.next = number;
    loose.previous = last;
    tree.write(number, loose);
    tree.write(last, before);
    EXPECT_EQ(tree.walked(), 43U);
    EXPECT_TRUE(tree.tree.contains(longKey(202)));

    tree.tree.insert(longKey(203), {61, 0});
    EXPECT_EQ(test::textOf(tree.check()), "");
    EXPECT_EQ(tree.walked(), 44U);

    // One that does not continue the list is damage.
    before = tree.draft(tree.draft(kRoot).tail);
    before.next = tree.leaf(0);
    tree.write(tree.draft(kRoot).tail, before);
    EXPECT_EQ(errorOf([&] { tree.tree.insert(longKey(300), {62, 0}); }), ErrNo::Corrupt);
}

TEST(IndexCursor, EndsOnListsInACircle) {
    Tree tree(100);
    const PageNo leaf = tree.leaf(5);
    jet::IndexDraft draft = tree.draft(leaf);
    draft.next = leaf;
    tree.write(leaf, draft);
    EXPECT_EQ(errorOf([&] { tree.walked(); }), ErrNo::Corrupt);

    jet::IndexDraft empty(true);
    empty.next = leaf;
    tree.write(leaf, empty);
    EXPECT_EQ(errorOf([&] { tree.walked(); }), ErrNo::Corrupt);

    Tree nodes(100);
    jet::IndexDraft root(false);
    root.tail = kRoot;
    nodes.write(kRoot, root);
    EXPECT_EQ(errorOf([&] { nodes.walked(); }), ErrNo::Corrupt);
    EXPECT_EQ(errorOf([&] { nodes.tree.insert(longKey(1), {1, 1}); }), ErrNo::Corrupt);
}

// Whatever a page holds, reading, checking and writing end, with success or by `Error`.
TEST(IndexTree, SurvivesAnyDamage) {
    const char* text = std::getenv("VL_SEED");
    const std::uint64_t seed = text ? std::strtoull(text, nullptr, 10) : 20261120;
    std::cout << "seed " << seed << "\n";
    int found = 0;
    int refused = 0;
    constexpr int kRuns = 600;
    for (int run = 0; run < kRuns; ++run) {
        Random random(seed + static_cast<std::uint64_t>(run));
        SCOPED_TRACE("VL_SEED=" + std::to_string(seed + static_cast<std::uint64_t>(run)));
        Tree tree(60 + static_cast<std::uint32_t>(random() % 200));
        const std::vector<PageNo> pages = tree.space.owned();
        for (std::uint64_t n = 1 + random() % 4; n > 0; --n) {
            const std::size_t at = random() % 2 == 0 ? random() % 0x220 : random() % 4096;
            tree.patch(pages[random() % pages.size()], at, static_cast<std::uint8_t>(random()));
        }
        found += tree.check().findings.empty() ? 0 : 1;
        const auto ends = [&](auto&& step) {
            const ErrNo error = errorOf(step);
            EXPECT_TRUE(error == ErrNo::None || error == ErrNo::Corrupt);
            refused += error == ErrNo::Corrupt ? 1 : 0;
        };
        ends([&] { tree.walked(); });
        for (std::uint32_t i = 0; i < 40; ++i) {
            const auto n = static_cast<std::uint32_t>(random() % 500);
            ends([&] { tree.tree.contains(longKey(n)); });
            ends([&] { tree.tree.insert(longKey(n), {i + 1, 7}); });
            ends([&] { tree.tree.remove(longKey(2 * (n / 2)), {n / 2 + 1, 0}); });
        }
        tree.check();
        if (HasFatalFailure()) {
            break;
        }
    }
    std::cout << found << " of " << kRuns << " damaged trees were found damaged; " << refused
              << " calls refused\n";
    EXPECT_GT(found, kRuns / 2);
}

}  // namespace
}  // namespace vl
