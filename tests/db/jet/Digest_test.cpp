// Digests that are remembered are those of the pages as they are now, whatever has happened to
// them.
#include <gtest/gtest.h>

#include <algorithm>

#include "Catalog.h"
#include "PageDigests.h"
#include "PageFile.h"
#include "Rows.h"
#include "Statements.h"
#include "TableDefinition.h"
#include "db/jet/ReadGuard.h"
#include "db/jet/RowCursor.h"

namespace vl {
namespace {

using jet::Access;
using jet::PageFile;
using jet::PageNo;
using jet::ReadGuard;
using test::kDatabase;
using test::MemoryFolder;

constexpr PageNo kSomePage = 7;

jet::Page::Bytes filled(unsigned byte) {
    jet::Page::Bytes bytes;
    bytes.fill(static_cast<std::byte>(byte));
    return bytes;
}

struct JetDigest : testing::Test {
    JetDigest() { folder.put(kDatabase, test::firstLight()); }

    static jet::OpenOptions options(MemoryFolder& in) {
        jet::OpenOptions options = test::fewPages(in);
        options.digests = std::make_shared<jet::PageDigests>();
        return options;
    }
    static PageFile open(MemoryFolder& in, Access access, const jet::OpenOptions& options) {
        return {in.open(kDatabase, access), kDatabase, access, options};
    }
    PageFile open() { return open(folder, Access::ReadWrite, options(folder)); }

    /// From then on they are remembered.
    static void askForAll(PageFile& file) {
        for (PageNo page = 1; page < file.pageCount(); ++page) {
            file.digest(page);
        }
    }
    static void expectThoseOfThePages(PageFile& file) {
        for (PageNo page = 1; page < file.pageCount(); ++page) {
            const std::uint64_t digest = file.digest(page);
            EXPECT_EQ(digest, jet::digestOf(file.page(page).bytes().first<jet::kPageSize>()))
                << page;
        }
    }

    MemoryFolder folder;
};

TEST_F(JetDigest, IsThatOfWhatATransactionHasChanged) {
    PageFile file = open();
    const ReadGuard guard(file);
    askForAll(file);
    const std::uint64_t before = file.digest(kSomePage);
    file.begin();
    file.writePage(kSomePage, filled(0xAB));
    EXPECT_NE(file.digest(kSomePage), before);
    expectThoseOfThePages(file);
    file.rollback();
    EXPECT_EQ(file.digest(kSomePage), before);
    expectThoseOfThePages(file);
}

TEST_F(JetDigest, IsThatOfWhatWasCommittedWhileACursorIsOpen) {
    PageFile file = open();
    const ReadGuard guard(file);
    askForAll(file);
    const std::uint64_t before = file.digest(kSomePage);
    file.begin();
    file.writePage(kSomePage, filled(0xAB));
    file.commit();
    EXPECT_NE(file.digest(kSomePage), before);
    expectThoseOfThePages(file);
}

TEST_F(JetDigest, IsThatOfTheFileWhereAChangeCouldNotBeTakenBack) {
    int halfWritten = 0;
    for (int at = 1; at < 12; ++at) {
        SCOPED_TRACE(at);
        folder.put(kDatabase, test::firstLight());
        PageFile file = open();
        const ReadGuard guard(file);
        askForAll(file);
        file.begin();
        for (PageNo page = kSomePage; page < kSomePage + 4; ++page) {
            file.writePage(page, filled(page));
        }
        folder.fail(MemoryFolder::Fault::Never, at);
        const ErrNo error = test::errorOf([&] { file.commit(); });
        EXPECT_EQ(error, folder.hit() ? ErrNo::Io : ErrNo::None);
        file.rollback();
        expectThoseOfThePages(file);
        const std::string bytes = folder.bytes(kDatabase);
        halfWritten += folder.hit() && bytes.substr(jet::kPageSize) !=
                                           test::firstLight().substr(jet::kPageSize)
                           ? 1
                           : 0;
        folder.fail(MemoryFolder::Fault::None, 0);
    }
    EXPECT_GT(halfWritten, 0);
}

TEST_F(JetDigest, IsThatOfTheJournalsPagesWhereAChangeWasBrokenOff) {
    const auto left = test::brokenOff();
    jet::OpenOptions leaving = options(*left);
    leaving.takesBack = false;
    PageFile file = open(*left, Access::Read, leaving);
    const ReadGuard guard(file);
    const std::string bytes = left->bytes(kDatabase);
    int others = 0;
    for (PageNo page = 1; page < file.pageCount(); ++page) {
        const auto stored = std::as_bytes(std::span(bytes)).subspan(page * jet::kPageSize);
        const std::uint64_t digest = file.digest(page);
        others += digest != jet::digestOf(stored.first<jet::kPageSize>()) ? 1 : 0;
    }
    EXPECT_GT(others, 0) << "no page that was read is another one than the file has";
    expectThoseOfThePages(file);
}

// Another engine may write between the moments at which the two are asked for.
TEST_F(JetDigest, OfAMarkIsOfTheBytesThatTheRowsWereTakenFrom) {
    constexpr std::size_t kUnused = 8;  // four bytes that no row depends on
    const auto marked = [&](auto&& between) {
        PageFile file = open();
        const ReadGuard guard(file);
        PageNo definition = 0;
        for (const jet::TableInfo& info : readCatalog(file)) {
            definition = info.name == "Reminders" ? info.definitionPage : definition;
        }
        const auto table = std::make_shared<const jet::TableDefinition>(
            readTableDefinition(file, definition, "Reminders"));
        jet::RowCursor cursor(file, table);
        EXPECT_TRUE(cursor.nextPage());
        between(cursor);
        while (cursor.nextOnPage()) {
        }
        return cursor.mark();
    };
    const jet::PageMark before = marked([](jet::RowCursor&) {});
    const auto host = folder.open(kDatabase, Access::ReadWrite);
    const auto write = [&](unsigned byte) {
        const std::array<std::byte, 1> bytes = {static_cast<std::byte>(byte)};
        host->write(std::uint64_t{before.page} * jet::kPageSize + kUnused, bytes);
    };
    const jet::PageMark meanwhile = marked([&](jet::RowCursor& cursor) {
        EXPECT_TRUE(cursor.holds(before)) << "remembered as it was";
        write(1);
    });
    EXPECT_NE(meanwhile.digest, before.digest);
    write(0);
    marked([&](jet::RowCursor& cursor) {
        EXPECT_TRUE(cursor.holds(before));
        EXPECT_FALSE(cursor.holds(meanwhile));
    });
}

}  // namespace
}  // namespace vl
