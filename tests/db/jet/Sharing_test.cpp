// Several who have one file open.
#include <gtest/gtest.h>

#include "Journal.h"
#include "LockFile.h"
#include "ManualWaiter.h"
#include "Rows.h"
#include "Statements.h"
#include "db/jet/ReadGuard.h"
#include "db/jet/Transaction.h"
#include "support/ErrorOf.h"
#include "support/Support.h"

namespace vl {
namespace {

using jet::Access;
using jet::Database;
using jet::LockKind;
using jet::ReadGuard;
using jet::Transaction;
using std::chrono::milliseconds;
using test::errorOf;
using test::kDatabase;

const std::string kLockFile = jet::lockFileOf(kDatabase);
constexpr std::uint64_t kFirstUser = 0x10000001;

struct Several : testing::Test {
    Several() { folder.put(kDatabase, test::firstLight()); }

    Database open(Access access = Access::ReadWrite) {
        jet::OpenOptions options = test::fewPages(folder);
        options.waiter = &waiter;
        options.patience = milliseconds(200);
        return Database::open(kDatabase, access, options);
    }
    static void write(Database& db) { test::statements()[0].run(db); }

    /// Another engine that has the file open as its n-th user, counted from 1.
    std::unique_ptr<jet::File> engine(int n, const std::string& computer, const std::string& user) {
        const auto database = folder.open(kDatabase, Access::Read);
        auto file = folder.openOrCreate(kLockFile, *database);
        EXPECT_TRUE(
            file->tryLock(kFirstUser + static_cast<unsigned>(n - 1), 1, LockKind::Exclusive));
        std::string entry(64, '\0');
        entry.replace(0, computer.size(), computer);
        entry.replace(32, user.size(), user);
        file->write(64U * static_cast<unsigned>(n - 1), std::as_bytes(std::span(entry)));
        return file;
    }

    template <class Step>
    std::string errorText(Step&& step) {
        try {
            step();
        } catch (const Error& e) {
            EXPECT_EQ(e.number(), ErrNo::Locked);
            return e.what();
        }
        ADD_FAILURE() << "nothing was thrown";
        return {};
    }

    test::MemoryFolder folder;
    test::ManualWaiter waiter;
};

TEST(JetLockFile, HasTheDatabasesNameWithAnExtensionOfItsOwn) {
    static constexpr std::pair<const char*, const char*> cases[] = {
        {"/a/b.RemindDB", "/a/b.ldb"},
        {"b.c.mdb", "b.c.ldb"},
        {"/a.b/c", "/a.b/c.ldb"},
        {"C:\\a.b\\c", "C:\\a.b\\c.ldb"},
        {"/a/.hidden", "/a/.hidden.ldb"}};
    for (const auto& [database, lock] : cases) {
        EXPECT_EQ(jet::lockFileOf(database), lock);
    }
}

TEST_F(Several, ReadingMakesNoFileAndWritesNothing) {
    {
        const Database db = open(Access::Read);
        EXPECT_EQ(test::rowsOf(db.table("Reminders")).ids.size(), 12U);
    }
    { const Database db = open(Access::ReadWrite); }
    EXPECT_EQ(folder.log, "");
    EXPECT_EQ(folder.files(), 1U);
}

TEST_F(Several, AWriterTellsWhoHeIsAndTidiesUp) {
    {
        Database db = open();
        const Transaction change(db);
        const std::string entry = folder.bytes(kLockFile);
        ASSERT_EQ(entry.size(), 64U);
        EXPECT_EQ(entry.substr(0, entry.find('\0')), jet::computerName().substr(0, 31));
        EXPECT_EQ(entry.substr(32), "Admin" + std::string(27, '\0'));
    }
    EXPECT_FALSE(folder.exists(kLockFile));
}

TEST_F(Several, OneWritesAndTheOtherLearnsWhoItIs) {
    Database first = open();
    Database second = open();
    {
        const Transaction change(first);
        const std::string text = errorText([&] { write(second); });
        EXPECT_NE(text.find("\"Admin\" on computer \"" + jet::computerName().substr(0, 31)),
                  std::string::npos)
            << text;
        EXPECT_EQ(waiter.slept, milliseconds(200));
        second.setPatience(milliseconds(5000));
        errorText([&] { write(second); });
        EXPECT_EQ(waiter.slept, milliseconds(5200));
    }
    write(second);
}

TEST_F(Several, WhoWaitsGetsItWhenTheOtherIsDone) {
    Database first = open();
    Database second = open();
    auto change = std::make_unique<Transaction>(first);
    waiter.onSleep = [&] { change.reset(); };
    write(second);
    EXPECT_LT(waiter.slept, milliseconds(50));
}

TEST_F(Several, AnotherEngineIsNotDisturbedAndItsNameIsTold) {
    const auto host = engine(2, "DESKTOP-7", "Anna");
    Database db = open();
    EXPECT_EQ(test::rowsOf(db.table("Reminders")).ids.size(), 12U);
    EXPECT_NE(errorText([&] { write(db); }).find("user \"Anna\" on computer \"DESKTOP-7\""),
              std::string::npos);
    EXPECT_TRUE(folder.bytes(kDatabase) == test::firstLight());
    host->unlock(kFirstUser + 1, 1);
    write(db);
    EXPECT_TRUE(folder.bytes(kDatabase) != test::firstLight());
}

TEST_F(Several, AnotherEnginesLockFileStays) {
    Database db = open();
    write(db);
    const auto host = engine(1, "DESKTOP-7", "Anna");
    db = open();  // closes the first
    EXPECT_TRUE(folder.exists(kLockFile));
}

// A file of the user's may have the name of a lock file; so may the database.
TEST_F(Several, AFileThatIsNoLockFileStaysAndNothingIsWritten) {
    struct Case {
        const char* what;
        std::string bytes;
        bool isLockFile;
    };
    const std::string entry = "PC-1" + std::string(28, '\0') + "Admin" + std::string(27, '\0');
    const Case cases[] = {
        {"notes", "the plumber comes on Monday", false},
        {"notes of 64 bytes", std::string(64, 'n'), false},
        {"an entry, then notes", entry + std::string(64, 'n'), false},
        {"an entry and a half", entry + entry.substr(0, 32), false},
        {"a database", test::firstLight(), false},
        {"empty", "", true},
        {"entries", entry + std::string(64, '\0') + entry, true},
        {"as many as there can be", std::string(255U * 64, '\0'), true},
        {"more than there can be", std::string(256U * 64, '\0'), false},
        {"an entry that a crash has cut off", entry.substr(0, 32), true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        folder.put(kDatabase, test::firstLight());
        folder.put(kLockFile, c.bytes);
        {
            Database db = open();
            EXPECT_EQ(errorOf([&] { write(db); }), c.isLockFile ? ErrNo::None : ErrNo::Io);
            EXPECT_EQ(test::rowsOf(db.table("Reminders")).ids.size(), 12U);
        }
        EXPECT_EQ(folder.bytes(kDatabase) != test::firstLight(), c.isLockFile);
        EXPECT_EQ(folder.exists(kLockFile), !c.isLockFile);
        EXPECT_TRUE(folder.bytes(kLockFile) == (c.isLockFile ? "" : c.bytes));
    }
    folder.remove(kLockFile);
    {
        Database db = open();
        write(db);
        folder.put(kLockFile, "put there meanwhile");
        EXPECT_EQ(errorOf([&] { write(db); }), ErrNo::Io);
    }
    EXPECT_EQ(folder.bytes(kLockFile), "put there meanwhile");
}

TEST_F(Several, ADatabaseWithTheNameOfItsLockFileIsReadAndNotWritten) {
    folder.put("folder/my.ldb", test::firstLight());
    const auto options = test::fewPages(folder);
    {
        Database db = Database::open("folder/my.ldb", Access::ReadWrite, options);
        EXPECT_EQ(test::rowsOf(db.table("Reminders")).ids.size(), 12U);
        EXPECT_EQ(errorOf([&] { write(db); }), ErrNo::Io);
    }
    EXPECT_TRUE(folder.bytes("folder/my.ldb") == test::firstLight());
    const test::TempFolder real;
    const std::string path = (real / "my.ldb").string();
    EXPECT_EQ(errorOf([&] { Database::create(path); }), ErrNo::Unsupported);
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(Several, NoOtherEngineComesInWhileOneWrites) {
    Database db = open();
    const Transaction change(db);
    const auto host = folder.open(kLockFile, Access::ReadWrite);
    for (unsigned user = 0; user < 255; ++user) {
        EXPECT_FALSE(host->tryLock(kFirstUser + user, 1, LockKind::Exclusive));
    }
}

TEST_F(Several, ALockOnARemovedLockFileIsNone) {
    Database first = open();
    write(first);
    folder.remove(kLockFile);  // by one who was the last to leave
    Database second = open();
    const Transaction change(second);
    errorText([&] { write(first); });
}

TEST_F(Several, AReaderKeepsCommitsOutAndNotTheWorkBefore) {
    Database writer = open();
    Database reader = open(Access::Read);
    auto guard = std::make_unique<ReadGuard>(reader);
    const auto before = test::rowsOf(reader.table("Reminders")).values;
    Transaction change(writer);
    jet::Table table = writer.table("Reminders");
    table.update(test::rowsOf(table).ids[0],
                 std::vector<jet::Table::Change>{{test::position(table, "EventID"), 99}});
    errorText([&] { change.commit(); });
    EXPECT_EQ(test::rowsOf(reader.table("Reminders")).values, before);
    guard.reset();
    change.commit();
    EXPECT_NE(test::rowsOf(reader.table("Reminders")).values, before);
}

TEST_F(Several, ACursorIsAReader) {
    Database writer = open();
    Database reader = open(Access::Read);
    {
        jet::RowCursor cursor = reader.table("Reminders").scan();
        ASSERT_TRUE(cursor.next());
        errorText([&] { write(writer); });
    }
    write(writer);
}

TEST_F(Several, ReadersThatFollowEachOtherDoNotKeepAWriterOut) {
    Database writer = open();
    Database readers[] = {open(Access::Read), open(Access::Read)};
    auto guard = std::make_unique<ReadGuard>(readers[0]);
    bool secondCameIn = false;
    waiter.onSleep = [&] {
        waiter.onSleep = nullptr;
        secondCameIn = errorOf([&] { const ReadGuard late(readers[1]); }) == ErrNo::None;
        guard.reset();
    };
    write(writer);
    EXPECT_FALSE(secondCameIn) << "one waits already";
}

TEST_F(Several, AReaderWaitsForAWriterAndSeesAllOfIt) {
    Database writer = open();
    Database reader = open(Access::Read);
    reader.table("Reminders");
    // The statement is larger than what is kept in memory, so readers are out before it ends.
    auto change = std::make_unique<Transaction>(writer);
    jet::Table table = writer.table("Reminders");
    int inserted = 0;
    const auto insert = [&](int count) {
        for (int i = 0; i < count; ++i) {
            table.insert(std::vector<jet::Table::Change>{
                {test::position(table, "GUID"), "{" + std::to_string(++inserted) + "}"},
                {test::position(table, "JSON"), std::string(9000, 'j')}});
        }
    };
    insert(10);
    EXPECT_NE(errorText([&] { reader.table("Reminders"); }).find("is being written by user"),
              std::string::npos);
    waiter.onSleep = [&] {
        if (change) {
            insert(1);
            change->commit();
            change.reset();
        }
    };
    EXPECT_EQ(test::rowsOf(reader.table("Reminders")).ids.size(), 23U);
}

TEST_F(Several, OnesOwnReadingDoesNotKeepOneFromWriting) {
    Database db = open();
    Database other = open();
    {
        jet::RowCursor cursor = db.table("Reminders").scan();
        ASSERT_TRUE(cursor.next());
        write(db);
        // The cursor still reads. (The same change again would be none.)
        errorText([&] { test::statements()[1].run(other); });
        while (cursor.next()) {
        }
    }
    write(other);
}

TEST_F(Several, WhatAnotherEngineWritesMeanwhileIsReadAgain) {
    Database db = open(Access::Read);
    const auto host = folder.open(kDatabase, Access::ReadWrite);
    const auto hostWrites = [&] {
        std::array<std::byte, 2> word{};
        host->read(0xE04, word);
        word[0] ^= std::byte{1};
        host->write(0xE04, word);
    };
    for (const int disturbances : {0, 1, 2, 3, 1000}) {
        int readings = 0;
        const int result = jet::readWhole(db, [&] {
            if (readings < disturbances) {
                hostWrites();
            }
            if (++readings <= std::min(disturbances, 2)) {
                throw Error(ErrNo::Corrupt, "half of it was of yesterday");
            }
            return 5;
        });
        EXPECT_EQ(result, 5);
        EXPECT_EQ(readings, std::min(disturbances + 1, 3)) << disturbances;
    }
    EXPECT_EQ(errorOf([&] {
                  jet::readWhole(db, [&]() -> int { throw Error(ErrNo::Corrupt, "it is"); });
              }),
              ErrNo::Corrupt);
}

TEST_F(Several, ABackupIsOneStateAndReplacesItsTargetWhenItIsWhole) {
    const std::string target = "folder/copy.mdb";
    Database writer = open();
    Database db = open(Access::Read);
    folder.put(target, "older");
    auto change = std::make_unique<Transaction>(writer);
    jet::Table table = writer.table("Reminders");
    table.update(test::rowsOf(table).ids[0],
                 std::vector<jet::Table::Change>{{test::position(table, "EventID"), 99}});
    db.backUp(target, folder);
    EXPECT_TRUE(folder.bytes(target) == test::firstLight());
    change->commit();
    change.reset();
    folder.put(target, "older");
    const std::size_t files = folder.files();
    bool whole = false;
    for (int n = 1; !whole; ++n) {
        SCOPED_TRACE(n);
        folder.put(target, "older");
        folder.fail(test::MemoryFolder::Fault::Once, n);
        whole = errorOf([&] { db.backUp(target, folder); }) == ErrNo::None;
        if (whole || folder.bytes(target) != "older") {  // the last flush is of the name
            EXPECT_TRUE(folder.bytes(target) == folder.bytes(kDatabase));
        }
        EXPECT_EQ(folder.files(), files) << "nothing unfinished is left";
    }
    EXPECT_EQ(errorOf([&] { db.backUp(kDatabase, folder); }), ErrNo::Exists);
}

TEST_F(Several, ABackupIsBegunUnderANameThatNobodyHas) {
    const std::string target = "folder/copy.mdb";
    // One that is called as an unfinished copy might be, and the database itself.
    folder.put(target + ".new", "mine");
    open(Access::Read).backUp(target, folder);
    EXPECT_EQ(folder.bytes(target + ".new"), "mine");
    EXPECT_TRUE(folder.bytes(target) == test::firstLight());
    folder.put(target + ".new", test::firstLight());
    folder.put(target, "older");
    Database::open(target + ".new", Access::Read, test::fewPages(folder)).backUp(target, folder);
    EXPECT_TRUE(folder.bytes(target) == test::firstLight());
    EXPECT_TRUE(folder.bytes(target + ".new") == test::firstLight());
    EXPECT_EQ(folder.files(), 3U);
}

TEST_F(Several, TheFileThatWasReplacedIsNotWritten) {
    Database db = open();
    write(db);
    folder.put(kDatabase, test::firstLight());
    EXPECT_EQ(errorOf([&] { write(db); }), ErrNo::Io);
    EXPECT_EQ(errorOf([&] { db.tables(); }), ErrNo::Io);
    folder.remove(kDatabase);
    EXPECT_EQ(errorOf([&] { write(db); }), ErrNo::Io);
    EXPECT_FALSE(folder.exists(kDatabase));
}

TEST_F(Several, TheFileThatWasReplacedIsOpenedAnewWhereNobodyUsesTheOldOne) {
    Database db = open();
    folder.put(kDatabase, test::generated());
    EXPECT_EQ(errorOf([&] { db.tables(); }), ErrNo::Io);
    ASSERT_TRUE(db.openAnew());
    EXPECT_EQ(test::rowsOf(db.table("Reminders")).ids.size(), 500U);
    write(db);
    EXPECT_TRUE(folder.bytes(kDatabase) != test::generated());
    {
        const ReadGuard guard(db);
        EXPECT_FALSE(db.openAnew());
    }
    {
        const Transaction change(db);
        EXPECT_FALSE(db.openAnew());
    }
    db = open();
    EXPECT_EQ(folder.files(), 1U);
}

TEST_F(Several, WhoWaitsForOneThatReplacesTheFileLearnsOfIt) {
    const std::string made = "folder/made.new";
    folder.put(made, test::generated());
    Database first = open();
    Database second = open();
    {
        auto change = std::make_unique<Transaction>(first);
        waiter.onSleep = [&] {
            waiter.onSleep = nullptr;
            first.replaceBy(made);
            change.reset();
        };
        EXPECT_EQ(errorOf([&] { write(second); }), ErrNo::Io);
        waiter.onSleep = nullptr;
    }
    EXPECT_TRUE(folder.bytes(kDatabase) == test::generated());
    EXPECT_FALSE(folder.exists(made));
    EXPECT_EQ(test::rowsOf(first.table("Reminders")).ids.size(), 500U);
    ASSERT_TRUE(second.openAnew());
    write(second);
    EXPECT_TRUE(folder.bytes(kDatabase) != test::generated());
    second = open();
    first = open();
    EXPECT_EQ(folder.files(), 1U);
}

TEST_F(Several, AFileIsReplacedAsAWholeOrNotAtAll) {
    const std::string made = "folder/made.new";
    bool whole = false;
    for (int n = 1; !whole; ++n) {
        SCOPED_TRACE(n);
        folder.put(kDatabase, test::firstLight());
        folder.put(made, test::generated());
        {
            Database db = open();
            const Transaction change(db);
            folder.fail(test::MemoryFolder::Fault::Once, n);
            whole = errorOf([&] { db.replaceBy(made); }) == ErrNo::None;
        }
        folder.fail(test::MemoryFolder::Fault::None, 0);
        const bool replaced = folder.bytes(kDatabase) == test::generated();
        EXPECT_TRUE(replaced || (!whole && folder.bytes(kDatabase) == test::firstLight()));
        EXPECT_EQ(folder.exists(made), !replaced);
        Database next = open();
        write(next);
    }
    folder.put(kDatabase, test::firstLight());
    folder.put(made, test::generated());
    Database db = open();
    {
        Transaction change(db);
        const auto host = folder.open(kDatabase, Access::ReadWrite);
        host->write(0xE04, std::vector<std::byte>(2));
        EXPECT_EQ(errorOf([&] { db.replaceBy(made); }), ErrNo::Locked) << "another engine wrote";
    }
    EXPECT_TRUE(folder.exists(made));
    EXPECT_EQ(errorOf([&] { db.replaceBy(made); }), ErrNo::Unexpected) << "no transaction";
}

TEST_F(Several, ALinkLeadsToTheSameLocksAndTheSameJournal) {
    const std::string link = "elsewhere/link.mdb";
    folder.link(kDatabase, link);
    Database real = open();
    jet::OpenOptions options = test::fewPages(folder);
    options.waiter = &waiter;
    Database linked = Database::open(link, Access::ReadWrite, options);
    {
        const Transaction change(linked);
        EXPECT_TRUE(folder.exists(kLockFile));
        EXPECT_NE(errorText([&] { write(real); }).find("is in use by"), std::string::npos);
    }
    test::statements()[1].run(linked);
    EXPECT_TRUE(folder.exists(jet::journalOf(kDatabase)));
    EXPECT_EQ(test::rowsOf(real.table("Reminders")).ids.size(), 15U);
    folder.put("folder/other.mdb", test::firstLight());
    folder.link("folder/other.mdb", link);
    EXPECT_EQ(errorOf([&] { write(linked); }), ErrNo::Io) << "it leads elsewhere now";
    linked = open();
    real = open();
    EXPECT_EQ(folder.files(), 2U);
}

TEST_F(Several, AFileWithTwoNamesOfItsOwnIsReadAndNotWritten) {
    folder.hardLink(kDatabase, "elsewhere/same.mdb");
    Database db = open();
    EXPECT_EQ(errorOf([&] { write(db); }), ErrNo::Io);
    EXPECT_EQ(test::rowsOf(db.table("Reminders")).ids.size(), 12U);
    EXPECT_TRUE(folder.bytes(kDatabase) == test::firstLight());
    EXPECT_EQ(folder.files(), 2U);
    folder.remove("elsewhere/same.mdb");
    write(db);
    EXPECT_TRUE(folder.bytes(kDatabase) != test::firstLight());
}

// Who writes by the other name has another journal and another lock file.
TEST_F(Several, AChangeThatWasBrokenOffIsNotTakenBackInAFileWithTwoNames) {
    const auto rows = [](test::MemoryFolder& in) {
        const Database db = Database::open(kDatabase, Access::Read, test::fewPages(in));
        return test::rowsOf(db.table("Reminders")).ids.size();
    };
    const auto left = test::brokenOff();
    left->hardLink(kDatabase, "elsewhere/same.mdb");
    const std::string broken = left->bytes(kDatabase);
    EXPECT_EQ(rows(*left), 12U) << "by the journal";
    EXPECT_TRUE(left->bytes(kDatabase) == broken);
    left->remove("elsewhere/same.mdb");
    EXPECT_EQ(rows(*left), 12U);
    EXPECT_TRUE(left->bytes(kDatabase) == test::firstLight());
}

// Where a folder is mounted twice, or a file, one of them may have a lock file of its own.
TEST_F(Several, OneWritesAtATimeAlsoWithoutTheSameLockFile) {
    constexpr std::uint64_t kWriting = 0xC0000004;
    Database db = open();
    const auto other = folder.open(kDatabase, Access::ReadWrite);
    {
        const Transaction change(db);
        EXPECT_FALSE(other->tryLock(kWriting, 1, LockKind::Exclusive));
    }
    ASSERT_TRUE(other->tryLock(kWriting, 1, LockKind::Exclusive));
    EXPECT_NE(errorText([&] { write(db); }).find("is in use by"), std::string::npos);
    other->unlock(kWriting, 1);
    write(db);
}

TEST_F(Several, AFileThatShrinksWhileItIsOpenIsAnErrorAndStaysAsItIs) {
    Database db = open();
    write(db);
    const auto other = folder.open(kDatabase, Access::ReadWrite);
    other->truncate(5 * jet::kPageSize);
    const std::string left = folder.bytes(kDatabase);
    EXPECT_EQ(errorOf([&] { write(db); }), ErrNo::Corrupt);
    EXPECT_EQ(errorOf([&] { db.tables(); }), ErrNo::Corrupt);
    EXPECT_TRUE(folder.bytes(kDatabase) == left);
}

TEST_F(Several, WhereNothingCanBeLockedOneReadsAndDoesNotWrite) {
    folder.lockless = true;
    Database db = open();
    EXPECT_EQ(test::rowsOf(db.table("Reminders")).ids.size(), 12U);
    EXPECT_EQ(errorOf([&] { write(db); }), ErrNo::Unsupported);
    EXPECT_TRUE(folder.bytes(kDatabase) == test::firstLight());
}

TEST_F(Several, WhereNoFileCanBeMadeOneReadsAndDoesNotWrite) {
    Database db = open();
    folder.readOnly = true;
    EXPECT_EQ(errorOf([&] { write(db); }), ErrNo::Io);
    EXPECT_EQ(test::rowsOf(open(Access::Read).table("Reminders")).ids.size(), 12U);
    EXPECT_EQ(errorOf([&] { open(); }), ErrNo::Io);
}

}  // namespace
}  // namespace vl
