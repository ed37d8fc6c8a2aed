// A new file, as it is written.
#include "NewDatabase.h"

#include <iostream>

#include <gtest/gtest.h>

#include "Made.h"
#include "NewFile.h"
#include "db/jet/Transaction.h"
#include "support/ErrorOf.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using jet::Database;
using test::Disk;
using test::errorOf;

TEST(JetNewDatabase, IsSound) {
    Disk disk(test::emptyDatabase());
    EXPECT_EQ(test::findingsOf(disk), "");
    EXPECT_EQ(disk.bytes.size(), 16 * jet::kPageSize);
    EXPECT_EQ(test::usedPages(disk), 16U);
}

TEST(JetNewDatabase, HasTheEnginesTablesAndNoOthers) {
    Disk disk(test::emptyDatabase());
    const Database db = test::openMemory(disk);
    std::map<std::string, std::uint32_t> rows;
    for (const jet::TableInfo& info : db.tables()) {
        EXPECT_TRUE(info.system) << info.name;
        const jet::Table table = db.table(info.name);
        rows[info.name] = table.rowCount();
        EXPECT_EQ(test::rowsOf(table).ids.size(), table.rowCount()) << info.name;
        test::expectIndexesComplete(table);
    }
    const std::map<std::string, std::uint32_t> expected = {
        {"MSysObjects", 8}, {"MSysACEs", 16}, {"MSysQueries", 0}, {"MSysRelationships", 0}};
    EXPECT_EQ(rows, expected);
}

// What an engine wrote and we write may differ in what has no meaning: dates, the offset of columns
// without one, the direction of key columns that are not there.
TEST(JetNewDatabase, IsWhatTheEngineWrites) {
    const fs::path shared = test::sharedFolder();
    if (shared.empty()) {
        return;
    }
    const std::string theirs = test::readFile(shared / "jet4" / "samples" / "adox_jet4.mdb");
    const std::string ours = test::emptyDatabase();
    ASSERT_EQ(ours.size(), theirs.size());
    std::map<std::size_t, int> differing;
    for (std::size_t i = 0; i < ours.size(); ++i) {
        if (ours[i] != theirs[i]) {
            ++differing[i / jet::kPageSize];
        }
    }
    EXPECT_EQ(differing.erase(0), 1U);  // the counter of its last user
    EXPECT_EQ(theirs[jet::kPageSize * 0 + 0xE00], 1);
    // Sixteen dates of eight bytes in the catalog.
    EXPECT_LE(differing[14], 16 * 8);
    differing.erase(14);
    for (const auto& [page, bytes] : differing) {
        EXPECT_TRUE(page >= 2 && page <= 4) << "page " << page << " differs in " << bytes;
    }
    for (std::size_t page = 2; page <= 4; ++page) {
        EXPECT_LE(differing[page], 12) << "page " << page;
    }
    std::cout << "compared with 1 file\n";
}

TEST(JetCreate, MakesAFileAndOpensItForWriting) {
    const test::TempFolder folder;
    const fs::path path = folder / "new.RemindDB";
    {
        Database db = Database::create(path.string());
        jet::Transaction change(db);
        change.commit();
    }
    EXPECT_EQ(fs::file_size(path), 16 * jet::kPageSize);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 1);
    EXPECT_EQ(Database::open(path.string(), jet::Access::Read).tables().size(), 4U);
}

TEST(JetCreate, ReplacesNothing) {
    const test::TempFolder folder;
    const fs::path path = folder / "there.RemindDB";
    test::writeFile(path, "mine");
    EXPECT_EQ(errorOf([&] { Database::create(path.string()); }), ErrNo::Exists);
    EXPECT_EQ(test::readFile(path), "mine");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 1);
    EXPECT_EQ(errorOf([&] { Database::create((folder / "no/such.RemindDB").string()); }),
              ErrNo::NotFound);
    EXPECT_EQ(errorOf([&] { Database::create(folder.path().string()); }), ErrNo::Exists);
}

}  // namespace
}  // namespace vl
