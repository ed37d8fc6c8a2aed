// Trees of keys against an ordered set, and the rules that hold after each change.
#include <iostream>
#include <random>

#include <gtest/gtest.h>

#include "Hex.h"
#include "IndexCursor.h"
#include "MemoryFile.h"
#include "MemorySpace.h"

namespace vl {
namespace {

using jet::IndexTree;
using jet::KeyBytes;
using jet::RowId;
using Random = std::mt19937_64;
using test::errorOf;

KeyBytes number(std::uint32_t n) {
    KeyBytes key{std::byte{0x7F}};
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        key.push_back(static_cast<std::byte>(n >> shift));
    }
    return key;
}

KeyBytes padded(std::size_t common, std::uint32_t n, std::size_t more) {
    KeyBytes key(common, std::byte{0x55});
    const KeyBytes own = number(n);
    key.insert(key.end(), own.begin(), own.end());
    key.resize(key.size() + more, std::byte{0x11});
    return key;
}

/// A kind of keys; `n` counts up where keys are to come in their order.
struct Kind {
    const char* name;
    KeyBytes (*make)(Random& random, std::uint32_t n);
    int operations;
};

std::uint32_t any(Random& random) { return static_cast<std::uint32_t>(random()); }

const Kind kKinds[] = {
    {"ascending numbers", [](Random&, std::uint32_t n) { return number(n); }, 120000},
    {"descending numbers", [](Random&, std::uint32_t n) { return number(~n); }, 60000},
    {"random numbers", [](Random& r, std::uint32_t) { return number(any(r)); }, 120000},
    {"twenty keys for all rows", [](Random& r, std::uint32_t) { return number(any(r) % 20); },
     60000},
    {"400 bytes, the same but for the last",
     [](Random& r, std::uint32_t) { return padded(395, any(r), 0); }, 20000},
    {"400 bytes, different from the first",
     [](Random& r, std::uint32_t) { return padded(0, any(r), 395); }, 40000},
    {"1 to 600 bytes",
     [](Random& r, std::uint32_t) { return padded(any(r) % 300, any(r), any(r) % 300); }, 40000},
    {"short keys and a few of the longest",
     [](Random& r, std::uint32_t) {
         return any(r) % 20 == 0
                    ? padded(any(r) % 2 == 0 ? std::size_t{0} : std::size_t{700}, any(r), 1000)
                    : number(any(r) % 5000);
     },
     40000},
};

using Model = std::set<KeyBytes>;  // whole entries

KeyBytes entryOf(KeyBytes key, RowId row) {
    appendRow(key, row);
    return key;
}

RowId anyRow(Random& random) {
    return {1 + any(random) % 4000, static_cast<std::uint16_t>(any(random) % 255)};
}

// The tree is in order and holds what the model holds.
jet::IndexReport expectSame(test::MemorySpace& space, const jet::IndexDefinition& index,
                            const Model& model) {
    jet::IndexReport report = checkIndex(space, index, test::kDefinition, space.owned());
    EXPECT_EQ(test::textOf(report), "");
    EXPECT_EQ(report.entries, model.size());
    EXPECT_EQ(report.emptyLeaves, model.empty() ? 1 : 0);
    jet::IndexCursor cursor(space, index, test::kDefinition);
    auto expected = model.begin();
    bool same = true;
    for (; same && cursor.next(); ++expected) {
        same =
            expected != model.end() &&
            entryOf(KeyBytes(cursor.key().begin(), cursor.key().end()), cursor.row()) == *expected;
    }
    EXPECT_TRUE(same && expected == model.end());
    return report;
}

struct Run {
    test::MemorySpace space;
    jet::IndexDefinition index = test::memoryIndex();
    IndexTree tree{space, index, test::kDefinition};
    Model model;
    std::vector<KeyBytes> entries;  // the model's, in no order
    std::uint32_t counter = 0;

    void insert(const Kind& kind, Random& random) {
        const KeyBytes key = kind.make(random, counter++);
        const RowId row = anyRow(random);
        const KeyBytes entry = entryOf(key, row);
        if (model.insert(entry).second) {
            tree.insert(key, row);
            entries.push_back(entry);
        }
    }
    // Somewhere, or the lowest or highest.
    void remove(Random& random, int where) {
        const std::size_t at = random() % entries.size();
        KeyBytes entry = entries[at];
        if (where != 0) {
            entry = where < 0 ? *model.begin() : *model.rbegin();
            std::erase(entries, entry);
        } else {
            entries[at] = entries.back();
            entries.pop_back();
        }
        model.erase(entry);
        const RowId row = jet::rowAtEnd(entry);
        tree.remove(jet::ByteView(entry).first(entry.size() - jet::kEntryRow), row);
    }
};

void runKind(const Kind& kind, std::uint64_t seed) {
    SCOPED_TRACE(kind.name);
    Random random(seed);
    Run run;
    int height = 0;
    std::size_t pages = 0;
    std::size_t most = 0;
    int done = 0;
    // The share of insertions goes up and down, so that trees grow and shrink.
    for (int batch = 0; done < kind.operations && !testing::Test::HasFailure(); ++batch) {
        const unsigned inserts = batch % 4 == 3 ? 15 : 75;
        for (int i = 0; i < kind.operations / 40; ++i, ++done) {
            if (run.entries.empty() || any(random) % 100 < inserts) {
                run.insert(kind, random);
            } else {
                run.remove(random, 0);
            }
        }
        const jet::IndexReport report = expectSame(run.space, run.index, run.model);
        height = std::max(height, report.height);
        pages = std::max(pages, report.pages.size());
        most = std::max(most, run.model.size());
    }
    const bool clearUp = run.model.size() < 20000;
    for (int i = 0; clearUp && !run.entries.empty(); ++i, ++done) {
        run.remove(random, i % 3 - 1);
        if (i % 500 == 0) {
            expectSame(run.space, run.index, run.model);
        }
    }
    if (clearUp) {
        expectSame(run.space, run.index, run.model);
        EXPECT_EQ(run.space.owned(), std::vector<jet::PageNo>{test::kRoot});
    }
    std::cout << kind.name << ": " << done << " changes, up to " << most << " entries on " << pages
              << " pages, height " << height << "\n";
}

class IndexTreeOf : public testing::TestWithParam<std::size_t> {};

TEST_P(IndexTreeOf, HoldsWhatAnOrderedSetHolds) {
    const char* text = std::getenv("VL_SEED");
    const std::uint64_t seed = text ? std::strtoull(text, nullptr, 10) : 20261120;
    std::cout << "seed " << seed << "\n";
    runKind(kKinds[GetParam()], seed);
}

INSTANTIATE_TEST_SUITE_P(EachKindOfKeys, IndexTreeOf,
                         testing::Range(std::size_t{0}, std::size(kKinds)));

TEST(IndexTree, FillsItsPagesWhenKeysAscend) {
    test::MemorySpace space;
    const jet::IndexDefinition index = test::memoryIndex();
    IndexTree tree(space, index, test::kDefinition);
    for (std::uint32_t n = 0; n < 20000; ++n) {
        EXPECT_TRUE(tree.insert(number(n), {n / 100 + 1, static_cast<std::uint16_t>(n % 100)}));
    }
    const jet::IndexReport report = checkIndex(space, index, test::kDefinition, space.owned());
    EXPECT_EQ(test::textOf(report), "");
    // 9 bytes an entry; with what they have in common left out, even less.
    EXPECT_LE(report.pages.size(), 20000U * 9 / 3616 + 3);
}

TEST(IndexTree, SaysWhetherAKeyIsThereAndNew) {
    test::MemorySpace space;
    jet::IndexDefinition index = test::memoryIndex();
    index.unique = true;
    index.required = true;
    IndexTree tree(space, index, test::kDefinition);
    const RowId row{20, 1};
    EXPECT_FALSE(tree.contains(number(1)));
    EXPECT_TRUE(tree.insert(number(1), row));
    EXPECT_TRUE(tree.contains(number(1)));
    EXPECT_FALSE(tree.contains(number(1), row));
    EXPECT_FALSE(tree.contains(number(2)));

    const jet::IndexKey taken{number(1), false, false};
    EXPECT_EQ(errorOf([&] { tree.checkKey(taken); }), ErrNo::Exists);
    EXPECT_EQ(errorOf([&] { tree.checkKey(taken, row); }), ErrNo::None);
    EXPECT_EQ(errorOf([&] { tree.checkKey({number(2), false, false}); }), ErrNo::None);
    EXPECT_EQ(errorOf([&] { tree.checkKey({number(2), false, true}); }), ErrNo::TypeMismatch);
    EXPECT_FALSE(tree.insert(number(1), {20, 2}));

    index.required = false;
    EXPECT_EQ(errorOf([&] { tree.checkKey({number(1), true, true}); }), ErrNo::None);
}

TEST(IndexTree, FindsAKeyThatOthersBeginWith) {
    test::MemorySpace space;
    const jet::IndexDefinition index = test::memoryIndex();
    IndexTree tree(space, index, test::kDefinition);
    const KeyBytes empty{std::byte{0x7F}};  // of a binary column without bytes
    tree.insert(number(0), {1, 1});
    EXPECT_FALSE(tree.contains(empty));
    tree.insert(empty, {0x200000, 1});
    tree.insert(number(~0U), {1, 2});
    EXPECT_TRUE(tree.contains(empty));
}

TEST(IndexTree, RefusesBeforeItWrites) {
    test::MemorySpace space;
    const jet::IndexDefinition index = test::memoryIndex();
    IndexTree tree(space, index, test::kDefinition);
    tree.insert(number(1), {20, 1});
    space.writes = 0;
    EXPECT_EQ(errorOf([&] { tree.insert(number(1), {20, 1}); }), ErrNo::Corrupt);
    EXPECT_EQ(errorOf([&] { tree.remove(number(1), {20, 2}); }), ErrNo::Corrupt);
    EXPECT_EQ(errorOf([&] { tree.remove(number(2), {20, 1}); }), ErrNo::Corrupt);
    EXPECT_EQ(errorOf([&] { tree.insert(KeyBytes(1801), {20, 1}); }), ErrNo::Overflow);
    EXPECT_EQ(space.writes, 0);
    EXPECT_EQ(errorOf([&] { tree.insert(KeyBytes(1800), {20, 1}); }), ErrNo::None);
}

}  // namespace
}  // namespace vl
