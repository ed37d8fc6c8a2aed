// Which slots a scan takes, and where it finds a row that has moved.
#include <gtest/gtest.h>

#include "Pages.h"
#include "TableDefinition.h"

namespace vl {
namespace {

using jet::RowId;
using jet::TableDefinition;
using test::Disk;
using test::hexBytes;

constexpr jet::PageNo kDefinition = 1;

// One long column; the map on page 2 names pages 3 and 4.
std::shared_ptr<TableDefinition> oneColumn() {
    auto table = std::make_shared<TableDefinition>();
    table->name = "t";
    table->page = kDefinition;
    table->maxColumns = 1;
    table->ownedPages = {2, 0};
    jet::Column column;
    column.name = "n";
    column.fixed = true;
    column.length = 4;
    table->columns.push_back(column);
    return table;
}

std::vector<std::byte> rowOf(unsigned n) {
    std::vector<std::byte> row = hexBytes("01 00 | 00 00 00 00 | 01");
    row[2] = static_cast<std::byte>(n);
    return row;
}

Disk table(const std::vector<test::SlotContent>& three, const std::vector<test::SlotContent>& four,
           std::uint32_t ownerOfFour = kDefinition) {
    Disk disk("");
    test::putDataPage(disk, 2, 0, {{hexBytes("00 00000000 18")}});
    test::putDataPage(disk, 3, kDefinition, three);
    test::putDataPage(disk, 4, ownerOfFour, four);
    return disk;
}

struct Found {
    RowId id;
    std::int32_t n;
    friend bool operator==(const Found&, const Found&) = default;
};

std::vector<Found> scan(Disk disk) {
    jet::PageFile file = test::pagesOf(disk);
    jet::RowCursor cursor(file, oneColumn());
    std::vector<Found> rows;
    while (cursor.next()) {
        rows.push_back({cursor.id(), *cursor.value(0).get<std::int32_t>()});
    }
    EXPECT_FALSE(cursor.next());  // behind the last it stays behind the last
    return rows;
}

TEST(JetScan, TakesRowsInTheirOriginalPlaces) {
    const auto rows = scan(table({{rowOf(1)},
                                  {hexBytes("00 04 00 00 ee ee"), 0x4000},
                                  {rowOf(9), 0xC000},
                                  {{}, 0xC000},
                                  {rowOf(3)}},
                                 {{rowOf(2), 0x8000}, {rowOf(4)}}));
    EXPECT_EQ(rows, (std::vector<Found>{{{3, 0}, 1}, {{3, 1}, 2}, {{3, 4}, 3}, {{4, 1}, 4}}));
}

TEST(JetScan, LeavesOutPagesThatNameAnotherOwner) {
    const auto rows = scan(table({{rowOf(1)}}, {{rowOf(2)}}, 77));
    EXPECT_EQ(rows, (std::vector<Found>{{{3, 0}, 1}}));
}

TEST(JetScan, FollowsAPointerThatLeadsToAnother) {
    const auto rows = scan(table({{hexBytes("00 04 00 00"), 0x4000}},
                                 {{hexBytes("01 04 00 00"), 0x4000}, {rowOf(5), 0x8000}}));
    // The one between is a moved row too.
    EXPECT_EQ(rows, (std::vector<Found>{{{3, 0}, 5}, {{4, 0}, 5}}));
}

TEST(JetScan, APointerThatEndsAnywhereElseIsDamage) {
    const auto error = [](const char* pointer, const std::vector<test::SlotContent>& four,
                          std::uint32_t owner = kDefinition) {
        return test::errorOf([&] { scan(table({{hexBytes(pointer), 0x4000}}, four, owner)); });
    };
    EXPECT_EQ(error("00 04 00 00", {{rowOf(2), 0x8000}}), ErrNo::None);
    EXPECT_EQ(error("00 04 00 00", {{rowOf(2), 0x8000}}, 77), ErrNo::Corrupt);
    EXPECT_EQ(error("01 04 00 00", {{rowOf(2), 0x8000}}), ErrNo::Corrupt);
    EXPECT_EQ(error("00 04 00 00", {{rowOf(2)}}), ErrNo::Corrupt);          // would come twice
    EXPECT_EQ(error("00 04 00 00", {{rowOf(2), 0xC000}}), ErrNo::Corrupt);  // deleted
    EXPECT_EQ(error("00 04 00", {{rowOf(2), 0x8000}}), ErrNo::Corrupt);     // cut off
    EXPECT_EQ(error("00 02 00 00", {}), ErrNo::Corrupt);                    // a usage map
    EXPECT_EQ(error("00 99 00 00", {}), ErrNo::Corrupt);                    // past the end
    EXPECT_EQ(error("00 03 00 00", {}), ErrNo::Corrupt);                    // a circle
}

TEST(JetScan, ACursorThatThrewThrowsAgain) {
    Disk disk = table({{rowOf(1)}, {hexBytes("00 99 00 00"), 0x4000}, {rowOf(2)}}, {});
    jet::PageFile file = test::pagesOf(disk);
    jet::RowCursor cursor(file, oneColumn());
    EXPECT_TRUE(cursor.next());
    EXPECT_EQ(test::errorOf([&] { cursor.next(); }), ErrNo::Corrupt);
    EXPECT_EQ(test::errorOf([&] { cursor.next(); }), ErrNo::Corrupt);
}

}  // namespace
}  // namespace vl
