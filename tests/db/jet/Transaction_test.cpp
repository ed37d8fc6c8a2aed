// Changes that are made whole or not at all.
#include <gtest/gtest.h>

#include "Pages.h"
#include "db/jet/Transaction.h"
#include "support/ErrorOf.h"

namespace vl {
namespace {

using jet::Page;
using jet::PageFile;
using jet::Transaction;
using test::Disk;
using test::errorOf;

Page::Bytes bytesOf(unsigned value) {
    Page::Bytes bytes{};
    bytes.fill(static_cast<std::byte>(value));
    return bytes;
}

unsigned valueOf(const Page& page) { return std::to_integer<unsigned>(page.bytes()[7]); }

struct TransactionTest : testing::Test {
    Disk disk{std::string(3 * jet::kPageSize, '\1')};
    PageFile file{std::make_unique<test::MemoryFile>(disk), "memory", jet::Access::ReadWrite};
};

TEST_F(TransactionTest, WhatIsWrittenIsReadBeforeItIsInTheFile) {
    Transaction change(file);
    file.writePage(2, bytesOf(9));
    EXPECT_EQ(valueOf(file.page(2)), 9U);
    EXPECT_EQ(disk.writes, 0);
    change.commit();
    EXPECT_EQ(std::to_integer<unsigned>(disk.bytes[2 * jet::kPageSize]), 9U);
    EXPECT_EQ(valueOf(file.page(2)), 9U);
}

TEST_F(TransactionTest, WhatIsNotCommittedIsForgotten) {
    {
        const Transaction change(file);
        file.writePage(2, bytesOf(9));
        EXPECT_EQ(file.appendPage(), 3U);
    }
    EXPECT_EQ(valueOf(file.page(2)), 1U);
    EXPECT_EQ(file.pageCount(), 3U);
    EXPECT_EQ(disk.writes, 0);
    EXPECT_FALSE(file.inTransaction());
}

TEST_F(TransactionTest, TheFileGrows) {
    Transaction change(file);
    EXPECT_EQ(file.appendPage(), 3U);
    EXPECT_EQ(file.appendPage(), 4U);
    EXPECT_EQ(valueOf(file.page(4)), 0U);
    file.writePage(3, bytesOf(5));
    change.commit();
    EXPECT_EQ(disk.bytes.size(), 5 * jet::kPageSize);
    EXPECT_EQ(valueOf(file.page(3)), 5U);
}

TEST_F(TransactionTest, WhatIsReadAnewIsWhatWasWritten) {
    Transaction change(file);
    file.writePage(file.appendPage(), bytesOf(9));
    file.refresh();
    EXPECT_EQ(file.pageCount(), 4U);
    EXPECT_EQ(valueOf(file.page(3)), 9U);
    change.commit();
    EXPECT_EQ(valueOf(file.page(3)), 9U);
}

TEST_F(TransactionTest, OthersLearnOfAChange) {
    const auto counter = [&] { return jet::u16(disk.bytes, 0xE02); };
    const unsigned before = counter();
    Transaction(file).commit();
    EXPECT_EQ(counter(), before) << "nothing was written";
    Transaction change(file);
    file.writePage(1, bytesOf(2));
    change.commit();
    EXPECT_EQ(counter(), before + 1);
}

TEST_F(TransactionTest, OneAtATimeAndNoneWhereNothingMayBeWritten) {
    const Transaction change(file);
    EXPECT_EQ(errorOf([&] { const Transaction second(file); }), ErrNo::Unexpected);
    PageFile reader = test::pagesOf(disk);
    EXPECT_EQ(errorOf([&] { const Transaction none(reader); }), ErrNo::ReadOnly);
    EXPECT_EQ(errorOf([&] { reader.appendPage(); }), ErrNo::Unexpected);
}

}  // namespace
}  // namespace vl
