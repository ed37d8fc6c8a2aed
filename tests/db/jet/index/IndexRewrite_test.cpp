// Trees that other programs have written, changed by ours.
#include <filesystem>
#include <iostream>
#include <random>

#include <gtest/gtest.h>

#include "IndexCursor.h"
#include "MemorySpace.h"
#include "TableDefinition.h"
#include "UsageMap.h"
#include "db/jet/Database.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using jet::KeyBytes;

/// A file's pages; what is written stays here.
class Overlay : public jet::PageSpace {
public:
    Overlay(jet::PageFile& file, const std::vector<jet::PageNo>& owned)
        : file_(file), owned_(owned.begin(), owned.end()), next_(file.pageCount()) {}

    jet::Page page(jet::PageNo number) override {
        const auto written = written_.find(number);
        return written != written_.end()
                   ? jet::Page(written->second, jet::Origin{"overlay", number})
                   : file_.page(number);
    }
    jet::PageNo pageCount() const override { return next_; }
    void write(jet::PageNo number, const jet::Page::Bytes& bytes) override {
        EXPECT_TRUE(owned_.contains(number)) << number;
        written_[number] = std::make_shared<const jet::Page::Bytes>(bytes);
    }
    jet::PageNo allocate(const jet::IndexOwner&) override {
        owned_.insert(next_);
        return next_++;
    }
    void free(const jet::IndexOwner&, jet::PageNo number) override {
        EXPECT_EQ(owned_.erase(number), 1U);
    }
    std::vector<jet::PageNo> owned() const { return {owned_.begin(), owned_.end()}; }

private:
    jet::PageFile& file_;
    std::set<jet::PageNo> owned_;
    std::map<jet::PageNo, std::shared_ptr<const jet::Page::Bytes>> written_;
    jet::PageNo next_;
};

using Entry = std::pair<KeyBytes, jet::RowId>;

std::vector<Entry> entriesOf(jet::PageSource& pages, const jet::IndexDefinition& tree,
                             jet::PageNo definition) {
    std::vector<Entry> entries;
    jet::IndexCursor cursor(pages, tree, definition);
    while (cursor.next()) {
        entries.emplace_back(KeyBytes(cursor.key().begin(), cursor.key().end()), cursor.row());
    }
    return entries;
}

// Every entry out in any order, then in again in any other.
long rewrite(jet::PageFile& file, const jet::IndexDefinition& index, jet::PageNo definition,
             std::mt19937_64& random) {
    Overlay space(file, jet::readUsageMap(file, index.ownedPages));
    const std::vector<Entry> before = entriesOf(space, index, definition);
    std::vector<Entry> entries = before;
    jet::IndexTree tree(space, index, definition);
    const auto expectSound = [&](std::size_t count) {
        const jet::IndexReport report = checkIndex(space, index, definition, space.owned());
        EXPECT_EQ(test::textOf(report), "");
        EXPECT_EQ(report.entries, count);
    };
    std::shuffle(entries.begin(), entries.end(), random);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        tree.remove(entries[i].first, entries[i].second);
        if (i == entries.size() / 2) {
            expectSound(entries.size() - i - 1);
        }
    }
    expectSound(0);
    EXPECT_EQ(space.owned(), std::vector<jet::PageNo>{index.root});
    std::shuffle(entries.begin(), entries.end(), random);
    for (const auto& [key, row] : entries) {
        tree.insert(key, row);
    }
    expectSound(entries.size());
    EXPECT_EQ(entriesOf(space, index, definition), before);
    return static_cast<long>(entries.size());
}

TEST(IndexTree, ChangesTreesThatOthersHaveWritten) {
    std::vector<fs::path> files = {test::repoFile("data/first-light.RemindDB"),
                                   test::repoFile("tests/data/generated-reminders.RemindDB")};
    if (const fs::path shared = test::sharedFolder(); !shared.empty()) {
        for (const fs::directory_entry& e : fs::directory_iterator(shared / "jet4" / "samples")) {
            if (e.path().extension() == ".mdb" || e.path().extension() == ".RemindDB") {
                files.push_back(e.path());
            }
        }
    }
    std::mt19937_64 random(20261120);
    long entries = 0;
    int trees = 0;
    for (const fs::path& path : files) {
        SCOPED_TRACE(path.filename());
        const std::string name = path.string();
        jet::PageFile file(jet::openFile(name, jet::Access::Read), name, jet::Access::Read);
        for (const jet::TableInfo& info : jet::Database::open(name, jet::Access::Read).tables()) {
            SCOPED_TRACE(info.name);
            const jet::TableDefinition table =
                readTableDefinition(file, info.definitionPage, info.name);
            for (const jet::IndexDefinition& index : table.trees) {
                entries += rewrite(file, index, table.page, random);
                ++trees;
            }
        }
    }
    std::cout << files.size() << " files, " << trees << " trees, " << entries
              << " entries taken out and put in again\n";
    EXPECT_GT(entries, 1500);
}

}  // namespace
}  // namespace vl
