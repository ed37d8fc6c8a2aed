// What the machine's own files do to a change: a full disk, a vanished folder, locks.
#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#endif

#include "LockFile.h"
#include "Rows.h"
#include "Statements.h"
#include "db/jet/FileStamp.h"
#include "db/jet/ReadGuard.h"
#include "db/jet/Transaction.h"
#include "support/ErrorOf.h"
#include "support/Support.h"

namespace vl {
namespace {

using jet::Access;
using jet::Database;
using jet::LockKind;
using test::errorOf;

struct JetSystem : testing::Test {
    JetSystem() { test::writeFile(path, test::firstLight()); }
    Database open(Access access) {
        jet::OpenOptions options;
        options.patience = std::chrono::milliseconds(0);
        return Database::open(path.string(), access, options);
    }

    test::TempFolder folder;
    const std::filesystem::path path = folder / "reminders.RemindDB";
};

TEST_F(JetSystem, TwoOpenFilesOfOneProcessExcludeEachOther) {
    const auto one = jet::openFile(path.string(), Access::ReadWrite);
    const auto two = jet::openFile(path.string(), Access::ReadWrite);
    constexpr std::uint64_t kFar = 0xC0000001;  // past what a file of this format can hold
    EXPECT_TRUE(one->tryLock(kFar, 1, LockKind::Shared));
    EXPECT_TRUE(two->tryLock(kFar, 1, LockKind::Shared));
    EXPECT_FALSE(two->tryLock(kFar + 1, 1, LockKind::Exclusive) &&
                 one->tryLock(kFar + 1, 1, LockKind::Exclusive));
    EXPECT_TRUE(one->heldByOthers(kFar + 1));
    two->unlock(kFar + 1, 1);
    EXPECT_FALSE(one->heldByOthers(kFar + 1));
    EXPECT_EQ(std::filesystem::file_size(path), test::firstLight().size());
}

TEST_F(JetSystem, AFileIsKnownAgainByMoreThanItsName) {
    const auto file = jet::openFile(path.string(), Access::Read);
    EXPECT_TRUE(jet::systemFiles().names(path.string(), *file));
    test::writeFile(folder / "other", test::firstLight());
    EXPECT_FALSE(jet::systemFiles().names((folder / "other").string(), *file));
    EXPECT_FALSE(jet::systemFiles().names((folder / "none").string(), *file));
}

TEST_F(JetSystem, AChangeIsSeenFromOutsideAndLeavesOneFile) {
    const jet::FileStamp before = jet::stampOf(path.string());
    {
        auto db = open(Access::ReadWrite);
        test::statements()[2].run(db);
        EXPECT_TRUE(std::filesystem::exists(jet::lockFileOf(path.string())));
    }
    EXPECT_NE(jet::stampOf(path.string()), before);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
    test::expectSound(test::readFile(path));
}

TEST_F(JetSystem, NobodyWritesIntoAFolderThatIsGone) {
    auto db = open(Access::ReadWrite);
    std::filesystem::remove_all(folder.path());
    EXPECT_EQ(errorOf([&] { test::statements()[0].run(db); }), ErrNo::Io);
    EXPECT_EQ(errorOf([&] { db.tables(); }), ErrNo::Io);
    EXPECT_FALSE(std::filesystem::exists(folder.path()));
}

TEST_F(JetSystem, LinksAreFollowedToTheFileThatIsWritten) {
    namespace fs = std::filesystem;
    const test::TempFolder other;
    const fs::path link = other / "link.mdb";
    fs::create_symlink(path, other / "first.mdb");
    fs::create_symlink("first.mdb", link);
    jet::FileSystem& files = jet::systemFiles();
    EXPECT_EQ(files.fileBehind(link.string()), path.string());
    EXPECT_EQ(files.fileBehind(path.string()), path.string());
    EXPECT_EQ(files.fileBehind((folder / "none").string()), (folder / "none").string());
    fs::create_symlink(folder / "none", other / "dangling");
    EXPECT_EQ(files.fileBehind((other / "dangling").string()), (folder / "none").string());
    fs::create_symlink("endless", other / "endless");
    EXPECT_EQ(errorOf([&] { files.fileBehind((other / "endless").string()); }), ErrNo::Io);
    EXPECT_EQ(errorOf([&] { files.fileBehind(folder.path().string()); }), ErrNo::Io);
    {
        auto db = Database::open(link.string(), Access::ReadWrite);
        test::statements()[0].run(db);
        EXPECT_TRUE(fs::exists(jet::lockFileOf(path.string())));
        EXPECT_FALSE(fs::exists(jet::lockFileOf(link.string())));
        EXPECT_EQ(errorOf([&] { open(Access::ReadWrite).backUp(link.string()); }), ErrNo::Exists);
    }
    EXPECT_TRUE(test::readFile(path) != test::firstLight());
    // A copy goes where the link leads, and the link stays.
    test::writeFile(folder / "none", "older");
    open(Access::Read).backUp((other / "dangling").string());
    EXPECT_TRUE(fs::is_symlink(other / "dangling"));
    EXPECT_TRUE(test::readFile(folder / "none") == test::readFile(path));
    EXPECT_EQ(std::distance(fs::directory_iterator(other.path()), {}), 4);
}

TEST_F(JetSystem, AFileWithTwoNamesIsNotWritten) {
    const test::TempFolder other;
    std::filesystem::create_hard_link(path, other / "same.mdb");
    auto db = open(Access::ReadWrite);
    EXPECT_EQ(errorOf([&] { test::statements()[0].run(db); }), ErrNo::Io);
    EXPECT_TRUE(test::readFile(path) == test::firstLight());
    std::filesystem::remove(other / "same.mdb");
    test::statements()[0].run(db);
    EXPECT_TRUE(test::readFile(path) != test::firstLight());
}

TEST_F(JetSystem, AFileIsReplacedByOneWithTheSameRights) {
    namespace fs = std::filesystem;
    const fs::path made = folder / "made.new";
    test::writeFile(made, test::generated());
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read);
    const fs::perms before = fs::status(path).permissions();
    auto db = open(Access::ReadWrite);
    {
        const jet::Transaction change(db);
        db.replaceBy(made.string());
    }
    EXPECT_EQ(db.table("Reminders").rowCount(), 500U);
    EXPECT_TRUE(test::readFile(path) == test::generated());
    EXPECT_EQ(fs::status(path).permissions(), before);
    EXPECT_FALSE(fs::exists(made));
}

#ifndef _WIN32
TEST_F(JetSystem, WhatIsNoFileIsRefusedAtOnce) {
    const std::string pipe = (folder / "pipe").string();
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& name : {pipe, folder.path().string()}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(errorOf([&] { Database::open(name, Access::Read); }), ErrNo::Io);
        EXPECT_EQ(errorOf([&] { Database::open(name, Access::ReadWrite); }), ErrNo::Io);
        EXPECT_EQ(errorOf([&] { jet::stampOf(name); }), ErrNo::Io);
        EXPECT_EQ(errorOf([&] { open(Access::Read).backUp(name); }), ErrNo::Io);
    }
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2);
}

TEST_F(JetSystem, WhoReadsIsToldToWhoCannotWrite) {
    const auto reader = open(Access::Read);
    auto writer = open(Access::ReadWrite);
    const jet::ReadGuard guard(reader);
    try {
        test::statements()[0].run(writer);
        ADD_FAILURE() << "written beside a reader";
    } catch (const Error& e) {
        EXPECT_EQ(e.number(), ErrNo::Locked);
        EXPECT_NE(std::string(e.what()).find("is being read by process " +
                                             std::to_string(::getpid()) + " (jet_safety_test"),
                  std::string::npos)
            << e.what();
    }
}

TEST_F(JetSystem, AFullDiskTakesTheStatementBack) {
    const auto limit = [](rlim_t most) {
        struct rlimit both {};
        ::getrlimit(RLIMIT_FSIZE, &both);
        both.rlim_cur = std::min(most, both.rlim_max);
        ::setrlimit(RLIMIT_FSIZE, &both);
    };
    const auto old = std::signal(SIGXFSZ, SIG_IGN);
    // Room for the journal but not for the rows, and for neither.
    for (const rlim_t more : {rlim_t{jet::kPageSize}, rlim_t{0}}) {
        auto db = open(Access::ReadWrite);
        limit(more == 0 ? 100 : test::firstLight().size() + more);
        EXPECT_EQ(errorOf([&] { test::statements()[4].run(db); }), ErrNo::Io);
        limit(RLIM_INFINITY);
        EXPECT_TRUE(test::readFile(path) == test::firstLight());
    }
    std::signal(SIGXFSZ, old);
    auto db = open(Access::ReadWrite);
    test::statements()[4].run(db);
    EXPECT_GT(std::filesystem::file_size(path), test::firstLight().size());
}
#endif

}  // namespace
}  // namespace vl
