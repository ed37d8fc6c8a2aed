#include "TableDefinition.h"

#include <gtest/gtest.h>

#include "Pages.h"
#include "db/jet/Transaction.h"
#include "support/Support.h"

namespace vl {
namespace {

using test::Disk;

constexpr std::size_t kHeader = 0x3F;
constexpr std::size_t kColumns = kHeader + 12;  // behind the counters of one index
constexpr std::size_t kColumnBlock = 25;

/// The sample's table `Reminders`, 45 columns and one index on a single page.
class JetDefinition : public testing::Test {
protected:
    JetDefinition() : disk_(test::readFile(test::repoFile("data/first-light.RemindDB"))) {
        for (const jet::TableInfo& info : test::openMemory(disk_).tables()) {
            if (info.name == "Reminders") {
                page_ = info.definitionPage;
            }
        }
        EXPECT_EQ(field<std::uint16_t>(0x2D), 45);
        EXPECT_EQ(field<std::uint32_t>(0x33), 1U);
        EXPECT_LT(field<std::uint32_t>(8), jet::kPageSize);
        // The index stands behind the columns' names.
        index_ = kColumns + 45 * kColumnBlock;
        for (int i = 0; i < 45; ++i) {
            index_ += 2U + field<std::uint16_t>(index_);
        }
    }

    template <class T>
    T field(std::size_t at) const {
        return jet::load<T>(disk_.bytes, page_ * jet::kPageSize + at);
    }
    template <class T>
    void set(Disk& disk, std::size_t at, T value) const {
        jet::store(std::span(disk.bytes), page_ * jet::kPageSize + at, value);
    }
    static jet::TableDefinition read(Disk& disk, jet::PageNo page) {
        jet::PageFile file = test::pagesOf(disk);
        return jet::readTableDefinition(file, page, "Reminders");
    }
    /// What reading gives after `value` was put at `at`.
    template <class T>
    ErrNo with(std::size_t at, T value) const {
        Disk disk = disk_;
        set(disk, at, value);
        return test::errorOf([&] { read(disk, page_); });
    }
    static std::size_t column(std::size_t n, std::size_t at) {
        return kColumns + n * kColumnBlock + at;
    }

    Disk disk_;
    jet::PageNo page_ = 0;
    std::size_t index_ = 0;
};

using U8 = std::uint8_t;
using U16 = std::uint16_t;
using U32 = std::uint32_t;

TEST_F(JetDefinition, CountsAndLengthsThatContradictAreDamage) {
    const U32 length = field<U32>(8);
    EXPECT_EQ(with(8, length), ErrNo::None);
    EXPECT_EQ(with(8, U32{0}), ErrNo::Corrupt);
    EXPECT_EQ(with(8, U32{62}), ErrNo::Corrupt);
    EXPECT_EQ(with(8, U32{0xFFFFFFFF}), ErrNo::Corrupt);
    EXPECT_EQ(with(8, static_cast<U32>(index_ + 51)), ErrNo::Corrupt);  // the last block cut off
    EXPECT_EQ(with(0, U8{1}), ErrNo::Corrupt);
    EXPECT_EQ(with(0x29, U16{44}), ErrNo::Corrupt);  // a number above all numbers
    EXPECT_EQ(with(0x2B, U16{1}), ErrNo::Corrupt);   // slots above all slots
    EXPECT_EQ(with(0x2D, U16{256}), ErrNo::Corrupt);
    EXPECT_EQ(with(0x2D, U16{46}), ErrNo::Corrupt);
    EXPECT_EQ(with(0x2F, U32{0xFFFFFFFF}), ErrNo::Corrupt);
    EXPECT_EQ(with(0x33, U32{0x10000000}), ErrNo::Corrupt);
}

TEST_F(JetDefinition, ColumnsThatContradictThemselvesAreDamage) {
    EXPECT_EQ(with(column(3, 0), U8{0}), ErrNo::Corrupt);  // no type
    EXPECT_EQ(with(column(3, 0), U8{13}), ErrNo::Corrupt);
    EXPECT_EQ(with(column(3, 0), U8{0xFF}), ErrNo::Corrupt);
    EXPECT_EQ(with(column(3, 0), U8{4}), ErrNo::Corrupt);     // a long of eight bytes
    EXPECT_EQ(with(column(1, 0x0F), U8{3}), ErrNo::Corrupt);  // a fixed memo
    EXPECT_EQ(with(column(3, 5), U16{4}), ErrNo::Corrupt);    // a number twice
    EXPECT_EQ(with(column(1, 7), U16{0xFFFF}), ErrNo::Corrupt);
    EXPECT_EQ(with(column(1, 7), U16{0}), ErrNo::None);
}

TEST_F(JetDefinition, IndexesThatContradictThemselvesAreDamage) {
    EXPECT_EQ(with(index_ + 4, U16{45}), ErrNo::Corrupt);        // a column that is not there
    EXPECT_EQ(with(index_ + 52 + 8, U32{1}), ErrNo::Corrupt);    // a real index that is not there
    EXPECT_EQ(with(index_ + 52 + 0x17, U8{3}), ErrNo::Corrupt);  // no kind
    EXPECT_EQ(with(index_ + 52 + 0x17, U8{2}), ErrNo::None);
}

TEST_F(JetDefinition, AContinuationMustBePartOfADefinition) {
    Disk disk = disk_;
    set(disk, 8, U32{5000});
    EXPECT_EQ(test::errorOf([&] { read(disk, page_); }), ErrNo::Corrupt);  // there is none
    set(disk, 4, U32{1});
    EXPECT_EQ(test::errorOf([&] { read(disk, page_); }), ErrNo::Corrupt);  // a data page
    set(disk, 4, U32{0xFFFFFFFF});
    EXPECT_EQ(test::errorOf([&] { read(disk, page_); }), ErrNo::Corrupt);  // past the end
    // A page that continues itself is read until the length is reached, whatever that is.
    set(disk, 4, U32{page_});
    EXPECT_EQ(read(disk, page_).columns.size(), 45U);
    set(disk, 8, U32{1U << 18});
    EXPECT_EQ(read(disk, page_).columns.size(), 45U);
    set(disk, 8, U32{(1U << 18) + 1});
    EXPECT_EQ(test::errorOf([&] { read(disk, page_); }), ErrNo::Corrupt);
}

TEST_F(JetDefinition, AColumnKnowsWhetherItIsAnAutonumber) {
    EXPECT_FALSE(read(disk_, page_).columns[7].autoNumber);
    for (const U8 flag : {U8{0x04}, U8{0x40}}) {
        Disk disk = disk_;
        set(disk, column(7, 0x0F), static_cast<U8>(field<U8>(column(7, 0x0F)) | flag));
        EXPECT_TRUE(read(disk, page_).columns[7].autoNumber);
        // One that no index knows is not written either.
        auto db = test::openMemory(disk, jet::Access::ReadWrite);
        jet::Table table = db.table("Reminders");
        ASSERT_FALSE(table.columns()[7].indexed);
        jet::RowCursor row = table.scan();
        ASSERT_TRUE(row.next());
        const jet::Transaction change(db);
        EXPECT_EQ(test::errorOf([&] {
                      table.update(row.id(), std::vector<jet::Table::Change>{{7, 5}});
                  }),
                  ErrNo::Unsupported);
    }
}

}  // namespace
}  // namespace vl
