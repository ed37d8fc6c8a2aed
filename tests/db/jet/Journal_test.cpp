// Journals that are there when a database is opened, and whether they are its own.
#include <gtest/gtest.h>

#include "Bytes.h"
#include "Header.h"
#include "Journal.h"
#include "Rows.h"
#include "Statements.h"
#include "db/jet/copy/Copy.h"
#include "support/ErrorOf.h"

namespace vl {
namespace {

using jet::Access;
using jet::Database;
using test::kDatabase;
using test::MemoryFolder;

const std::string kJournal = jet::journalOf(kDatabase);

/// A folder in which the program died while a statement's pages were written.
struct Broken {
    MemoryFolder folder;
    std::string before;
    std::size_t statement = 1;

    Broken() {
        MemoryFolder whole;
        whole.put(kDatabase, test::firstLight());
        std::vector<std::string> images;
        std::size_t done = 0;
        test::runStatements(whole, 0, done, &images);
        before = images[statement];
        whole.put(kDatabase, before);
        whole.log.clear();
        whole.fail(MemoryFolder::Fault::None, 0);
        auto db = Database::open(kDatabase, Access::ReadWrite, test::fewPages(whole));
        test::statements()[statement].run(db);
        // Up to the flush of the database, which comes before the one that ends the journal.
        const int flush = static_cast<int>(whole.log.rfind('f', whole.log.rfind('f') - 1)) + 1;

        MemoryFolder stopped;
        stopped.put(kDatabase, before);
        stopped.fail(MemoryFolder::Fault::Stop, flush);
        EXPECT_EQ(test::errorOf([&] {
                      auto again =
                          Database::open(kDatabase, Access::ReadWrite, test::fewPages(stopped));
                      test::statements()[statement].run(again);
                  }),
                  ErrNo::Io);
        stopped.copyTo(folder, MemoryFolder::Left::All);
        EXPECT_TRUE(folder.bytes(kDatabase) != before);
        EXPECT_TRUE(folder.exists(kJournal));
    }

    std::string torn() const { return folder.bytes(kDatabase); }
    void openIt() { Database::open(kDatabase, Access::Read, test::fewPages(folder)); }
};

TEST(JetJournal, ABrokenChangeIsTakenBackByTheNextWhoOpensTheFile) {
    Broken broken;
    broken.openIt();
    EXPECT_TRUE(broken.folder.bytes(kDatabase) == broken.before);
    EXPECT_EQ(broken.folder.files(), 1U);
}

// What can be read of a file is what can be read of it once the change is taken back.
TEST(JetJournal, WhoSavesWhatCanBeReadReadsThroughItAndChangesNothing) {
    Broken broken;
    test::Disk disk(broken.before);
    const auto expected = test::rowsOf(test::openMemory(disk).table("Reminders")).values;
    const std::string torn = broken.torn();
    const std::string journal = broken.folder.bytes(kJournal);
    const std::size_t files = broken.folder.files();
    const test::TempFolder folder;
    Database target = Database::create((folder / "saved.mdb").string());
    const jet::CopyReport report = jet::salvage(kDatabase, target, test::fewPages(broken.folder));
    EXPECT_TRUE(report.lost.empty());
    EXPECT_EQ(test::rowsOf(target.table("Reminders")).values, expected);
    EXPECT_TRUE(broken.folder.bytes(kDatabase) == torn);
    EXPECT_TRUE(broken.folder.bytes(kJournal) == journal);
    EXPECT_EQ(broken.folder.files(), files);
}

TEST(JetJournal, WhoSavesWhatCanBeReadWaitsForAWriter) {
    MemoryFolder folder;
    folder.put(kDatabase, test::firstLight());
    const test::TempFolder real;
    Database target = Database::create((real / "saved.mdb").string());
    auto db = Database::open(kDatabase, Access::ReadWrite, test::fewPages(folder));
    const jet::Transaction change(db);
    jet::Table table = db.table("Reminders");
    for (int i = 0; i < 10; ++i) {  // more than is kept in memory
        table.insert(std::vector<jet::Table::Change>{
            {test::position(table, "GUID"), "{" + std::to_string(i) + "}"},
            {test::position(table, "JSON"), std::string(9000, 'j')}});
    }
    EXPECT_EQ(test::errorOf([&] { jet::salvage(kDatabase, target, test::fewPages(folder)); }),
              ErrNo::Locked);
}

TEST(JetJournal, OneOfAnotherFileIsLeftAlone) {
    const auto change = [](std::string bytes, std::size_t at) {
        bytes[at] = static_cast<char>(bytes[at] + 2);
        return bytes;
    };
    Broken broken;
    struct Case {
        const char* what;
        std::string bytes;
    };
    const std::string torn = broken.torn();
    const Case cases[] = {
        {"another engine has written since", change(torn, 0xE04)},
        {"one that has the same word as we", change(torn, jet::kOwnCommitWord)},
        {"another file was put in its place", test::generated()},
        {"an older copy", test::firstLight()},
        {"a file cut off", torn.substr(0, broken.before.size() - jet::kPageSize)},
    };
    const std::string journal = broken.folder.bytes(kJournal);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        broken.folder.put(kDatabase, c.bytes);
        broken.folder.put(kJournal, journal);
        broken.openIt();
        EXPECT_TRUE(broken.folder.bytes(kDatabase) == c.bytes);
        EXPECT_TRUE(broken.folder.bytes(kJournal) == journal);
    }
}

// Else an older copy that is put back might be given pages of the change.
TEST(JetJournal, ABackupIsNotPutBesideOneOfItsTarget) {
    Broken broken;
    const std::string torn = broken.torn();
    MemoryFolder& folder = broken.folder;
    folder.put("folder/older.mdb", test::firstLight());
    const auto backUp = [&] {
        return test::errorOf([&] {
            Database::open("folder/older.mdb", Access::Read, test::fewPages(folder))
                .backUp(kDatabase, folder);
        });
    };
    EXPECT_EQ(backUp(), ErrNo::Exists);
    EXPECT_TRUE(folder.bytes(kDatabase) == torn);
    broken.openIt();
    EXPECT_EQ(backUp(), ErrNo::None);
    EXPECT_TRUE(folder.bytes(kDatabase) == test::firstLight());
    EXPECT_EQ(folder.files(), 2U);
}

TEST(JetJournal, ItFollowsACopyAndNotAName) {
    Broken broken;
    MemoryFolder other;
    other.put("elsewhere/copy.mdb", broken.torn());
    other.put(jet::journalOf("elsewhere/copy.mdb"), broken.folder.bytes(kJournal));
    Database::open("elsewhere/copy.mdb", Access::Read, test::fewPages(other));
    EXPECT_TRUE(other.bytes("elsewhere/copy.mdb") == broken.before);
    broken.folder.rename(kDatabase, "folder/renamed.RemindDB");
    broken.folder.put(kDatabase, test::firstLight());
    broken.openIt();
    EXPECT_TRUE(broken.folder.bytes(kDatabase) == test::firstLight());
}

TEST(JetJournal, DamagedOrEmptyItSaysNothing) {
    Broken broken;
    const std::string torn = broken.torn();
    const std::string journal = broken.folder.bytes(kJournal);
    const auto flipped = [&](std::size_t at) {
        std::string bytes = journal;
        bytes[at] = static_cast<char>(bytes[at] ^ 1);
        return bytes;
    };
    // Its head; of the records the first that is wrong and those behind it.
    for (const std::string& bytes : {std::string(), journal.substr(0, 511), flipped(0), flipped(9),
                                     flipped(33), flipped(40), std::string(9000, 'x')}) {
        broken.folder.put(kDatabase, torn);
        broken.folder.put(kJournal, bytes);
        broken.openIt();
        EXPECT_TRUE(broken.folder.bytes(kDatabase) == torn);
    }
    broken.folder.put(kDatabase, torn);
    broken.folder.put(kJournal, flipped(512 + 100));
    broken.openIt();
    EXPECT_TRUE(broken.folder.bytes(kDatabase) != broken.before);
    EXPECT_EQ(broken.folder.bytes(kDatabase).size(), broken.before.size());
}

TEST(JetJournal, AFileThatIsNoneStaysAndNothingIsWritten) {
    struct Case {
        const char* what;
        std::string bytes;
        bool isJournal;
    };
    const std::string zeros(512, '\0');
    const Case cases[] = {
        {"notes", "the plumber comes on Monday", false},
        {"a database", test::firstLight(), false},
        {"zeros and something in their sector", zeros.substr(1) + "n", false},
        {"one that has ended", zeros + std::string(4112, 'r'), true},
        {"one that was made and no more", "", true},
        {"one that was cut off in its head", "VLJR", true},
        {"one whose head says nothing", std::string("VLJRNL1\0", 8) + std::string(9000, 'x'), true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        MemoryFolder folder;
        folder.put(kDatabase, test::firstLight());
        folder.put(kJournal, c.bytes);
        {
            auto db = Database::open(kDatabase, Access::ReadWrite, test::fewPages(folder));
            EXPECT_EQ(test::errorOf([&] { test::statements()[0].run(db); }),
                      c.isJournal ? ErrNo::None : ErrNo::Io);
            EXPECT_EQ(test::rowsOf(db.table("Reminders")).ids.size(), 12U);
        }
        EXPECT_EQ(folder.bytes(kDatabase) != test::firstLight(), c.isJournal);
        EXPECT_TRUE(folder.bytes(kJournal) == (c.isJournal ? "" : c.bytes));
        EXPECT_EQ(folder.files(), c.isJournal ? 1U : 2U);
    }
}

TEST(JetJournal, TheNextWriterIsNotMisledByWhatALongerOneLeft) {
    Broken broken;
    broken.openIt();
    // Records of an earlier change stand behind the short one that is broken off now.
    auto& folder = broken.folder;
    {
        auto db = Database::open(kDatabase, Access::ReadWrite, test::fewPages(folder));
        test::statements()[1].run(db);
        const std::string before = folder.bytes(kDatabase);
        ASSERT_GT(folder.bytes(kJournal).size(), 512U + 2 * 4112U);
        folder.log.clear();
        folder.fail(MemoryFolder::Fault::Stop, 6);  // the flush, after its page and the counter
        jet::Table table = db.table("Reminders");
        EXPECT_EQ(test::errorOf([&] {
                      test::updateRow(db, table, test::rowsOf(table).ids[5],
                                      {{test::position(table, "EventID"), 1}});
                  }),
                  ErrNo::Io)
            << folder.log;
        MemoryFolder next;
        folder.copyTo(next, MemoryFolder::Left::All);
        EXPECT_TRUE(next.bytes(kDatabase) != before) << folder.log;
        Database::open(kDatabase, Access::Read, test::fewPages(next));
        EXPECT_TRUE(next.bytes(kDatabase) == before);
    }
}

// What costs time: each change waits for the disk three times, the first one of a session a fourth
// time for the journal's name.
TEST(JetJournal, AChangeOfOneRowFlushesAsSeldomAsItCan) {
    MemoryFolder folder;
    folder.put(kDatabase, test::firstLight());
    auto db = Database::open(kDatabase, Access::ReadWrite, test::fewPages(folder));
    EXPECT_EQ(folder.log, "");
    test::statements()[0].run(db);
    // Lock file; journal; the database (a page with its row, and a map: it has room now); its end.
    EXPECT_EQ(folder.log, "cwcwfFwwwfwf");
    folder.log.clear();
    jet::Table table = db.table("Reminders");
    test::updateRow(db, table, test::rowsOf(table).ids[0], {{test::position(table, "EventID"), 1}});
    EXPECT_EQ(folder.log, "wwfwwfwf");
}

TEST(JetJournal, AFileOfThisFormatIsNotWrittenWhenItIsOneNoMore) {
    MemoryFolder folder;
    folder.put(kDatabase, test::firstLight());
    auto db = Database::open(kDatabase, Access::ReadWrite, test::fewPages(folder));
    const auto file = folder.open(kDatabase, Access::ReadWrite);
    file->write(0, std::vector<std::byte>(100));
    const std::string before = folder.bytes(kDatabase);
    EXPECT_EQ(test::errorOf([&] { test::statements()[0].run(db); }), ErrNo::Format);
    EXPECT_TRUE(folder.bytes(kDatabase) == before);
}

}  // namespace
}  // namespace vl
