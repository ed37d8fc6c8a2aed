// Indexes that other programs have written: their keys are ours, their rows the table's.
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <set>

#include <gtest/gtest.h>

#include "Hex.h"
#include "IndexCursor.h"
#include "IndexKey.h"
#include "MemoryFile.h"
#include "MemorySpace.h"
#include "RowPlace.h"
#include "TableDefinition.h"
#include "UsageMap.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;

struct Counts {
    int files = 0;
    int indexes = 0;
    int trees = 0;
    long keys = 0;
};

using Place = std::pair<jet::PageNo, std::uint16_t>;
using Entries = std::set<std::pair<jet::KeyBytes, Place>>;

std::vector<Variant> keyValues(const jet::IndexDefinition& tree, const jet::RowCursor& row) {
    std::vector<Variant> values;
    for (const jet::KeyColumn& part : tree.columns) {
        values.push_back(row.value(part.position));
    }
    return values;
}

std::vector<jet::PageNo> ownedPages(jet::PageFile& file, const jet::IndexDefinition& tree) {
    return jet::readUsageMap(file, tree.ownedPages);
}

// Every key of the tree against those that its table's rows give.
void compareKeys(jet::PageFile& file, const std::shared_ptr<const jet::TableDefinition>& table,
                 const jet::IndexDefinition& tree, Counts& counts) {
    Entries expected;
    jet::RowCursor row(file, table);
    while (row.next()) {
        const jet::IndexKey key = indexKey(tree, keyValues(tree, row));
        if (!(tree.ignoreNulls && key.isAllNull)) {
            expected.insert({key.bytes, {row.id().page, row.id().row}});
        }
    }
    jet::FilePages pages(file);
    jet::IndexCursor entry(pages, tree, table->page);
    auto next = expected.begin();
    for (; entry.next(); ++next) {
        ASSERT_NE(next, expected.end());
        const jet::KeyBytes key(entry.key().begin(), entry.key().end());
        ASSERT_EQ(test::hex(key), test::hex(next->first));
        ASSERT_EQ(Place(entry.row().page, entry.row().row), next->second);
        ++counts.keys;
    }
    EXPECT_EQ(next, expected.end());
    const jet::IndexReport report = checkIndex(pages, tree, table->page, ownedPages(file, tree));
    EXPECT_EQ(test::textOf(report), "");
    EXPECT_EQ(report.entries, expected.size());
    ++counts.trees;
}

// The entries' rows without reading them, and the same rows read by such a list.
void compareLists(const jet::Table& table, std::size_t index) {
    std::vector<jet::RowId> walked;
    jet::RowCursor sorted = table.indexScan(index);
    while (sorted.next()) {
        walked.push_back(sorted.id());
    }
    EXPECT_EQ(table.indexRows(index), walked);
    std::reverse(walked.begin(), walked.end());
    jet::RowCursor listed = table.rows(walked);
    for (const jet::RowId& id : walked) {
        ASSERT_TRUE(listed.next());
        EXPECT_EQ(listed.id(), id);
    }
    EXPECT_FALSE(listed.next());
}

// Each index finds the table's rows, whole and each one by its key.
void compareRows(const jet::Table& table, Counts& counts) {
    for (std::size_t i = 0; i < table.indexes().size(); ++i) {
        SCOPED_TRACE("index " + table.indexes()[i].name);
        const jet::Index& index = table.indexes()[i];
        std::set<Place> scanned;
        std::vector<std::size_t> positions;
        for (const jet::IndexColumn& part : index.columns) {
            for (std::size_t c = 0; c < table.columns().size(); ++c) {
                if (table.columns()[c].name == part.name) {
                    positions.push_back(c);
                }
            }
        }
        jet::RowCursor row = table.scan();
        for (int n = 0; row.next(); ++n) {
            std::vector<Variant> values;
            bool allNull = true;
            for (const std::size_t c : positions) {
                values.push_back(row.value(c));
                allNull = allNull && values.back().isNull();
            }
            if (index.ignoreNulls && allNull) {
                continue;
            }
            const Place place(row.id().page, row.id().row);
            scanned.insert(place);
            if (n % 7 != 0) {
                continue;  // enough to seek
            }
            const jet::KeyBytes key = table.indexKey(i, values);
            jet::RowCursor same = table.indexScan(i, {key, key});
            bool found = false;
            while (same.next()) {
                found = found || place == Place(same.id().page, same.id().row);
            }
            EXPECT_TRUE(found) << test::hex(key);
        }
        jet::RowCursor sorted = table.indexScan(i);
        std::set<Place> seen;
        while (sorted.next()) {
            EXPECT_TRUE(seen.insert({sorted.id().page, sorted.id().row}).second);
        }
        EXPECT_EQ(seen, scanned);
        compareLists(table, i);
        ++counts.indexes;
    }
}

void compareFile(const fs::path& path, Counts& counts) {
    SCOPED_TRACE(path.filename());
    const std::string name = path.string();
    const jet::Database db = jet::Database::open(name, jet::Access::Read);
    jet::PageFile file(jet::openFile(name, jet::Access::Read), name, jet::Access::Read);
    ++counts.files;
    for (const jet::TableInfo& info : db.tables()) {
        SCOPED_TRACE(info.name);
        compareRows(db.table(info.name), counts);
        const auto table = std::make_shared<const jet::TableDefinition>(
            readTableDefinition(file, info.definitionPage, info.name));
        for (const jet::IndexDefinition& tree : table->trees) {
            compareKeys(file, table, tree, counts);
        }
    }
}

std::ostream& operator<<(std::ostream& out, const Counts& c) {
    return out << c.files << " files, " << c.indexes << " indexes walked, " << c.trees
               << " trees with " << c.keys << " keys, each the same byte for byte\n";
}

TEST(IndexScan, FindsTheRowsAndKeysOfOurOwnFiles) {
    Counts counts;
    compareFile(test::repoFile("data/first-light.RemindDB"), counts);
    compareFile(test::repoFile("tests/data/generated-reminders.RemindDB"), counts);
    std::cout << counts;
    EXPECT_GT(counts.keys, 1500);
}

TEST(IndexScan, AListMayNameRowsThatAreNotThere) {
    const jet::Database db = jet::Database::open(
        test::repoFile("data/first-light.RemindDB").string(), jet::Access::Read);
    const jet::Table table = db.table("Reminders");
    jet::RowCursor scanned = table.scan();
    ASSERT_TRUE(scanned.next());
    const jet::RowId first = scanned.id();
    jet::RowCursor rows = table.rows({first, {first.page, 4000}, {1, 0}});
    EXPECT_TRUE(rows.next());
    EXPECT_EQ(rows.value(3), scanned.value(3));
    EXPECT_EQ(test::errorOf([&] { rows.next(); }), ErrNo::NotFound);
    EXPECT_EQ(test::errorOf([&] { rows.next(); }), ErrNo::NotFound);  // it stays where it is
}

TEST(IndexScan, FindsTheRowsAndKeysOfEverySample) {
    const fs::path shared = test::sharedFolder();
    if (shared.empty()) {
        std::cout << "no sample files beside this checkout: 0 files read\n";
        return;
    }
    Counts counts;
    for (const fs::directory_entry& entry : fs::directory_iterator(shared / "jet4" / "samples")) {
        if (entry.path().extension() == ".mdb" || entry.path().extension() == ".RemindDB") {
            compareFile(entry.path(), counts);
        }
    }
    std::cout << counts;
    EXPECT_GT(counts.keys, 0);
}

}  // namespace
}  // namespace vl
