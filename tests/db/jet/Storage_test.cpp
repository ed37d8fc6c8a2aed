// Usage maps and long values, on pages made by hand.
#include <gtest/gtest.h>

#include "LongValue.h"
#include "Pages.h"
#include "UsageMap.h"

namespace vl {
namespace {

using jet::PageNo;
using jet::RowPointer;
using test::Disk;
using test::filled;
using test::hexBytes;

std::vector<std::byte> padded(const char* hex, std::size_t size) {
    std::vector<std::byte> bytes = hexBytes(hex);
    bytes.resize(size);
    return bytes;
}

std::vector<std::byte> operator+(std::vector<std::byte> a, const std::vector<std::byte>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// A file of `pages` empty pages.
Disk blank(std::size_t pages) {
    Disk disk("");
    disk.bytes.resize(pages * jet::kPageSize);
    return disk;
}

std::vector<PageNo> mapOf(Disk& disk, RowPointer at) {
    jet::PageFile file = test::pagesOf(disk);
    return jet::readUsageMap(file, at);
}

TEST(JetUsageMap, ReadsInlineMapsOfAnyLength) {
    Disk disk = blank(900);
    test::putDataPage(disk, 25, 0,
                      {{padded("00 00000000 00 00 00 08", 69)},
                       {padded("00 00000000", 69)},
                       {padded("00 18000000 81 00 01", 69)},
                       {hexBytes("00 00030000 01")},
                       {hexBytes("00 00000000")}});
    EXPECT_EQ(mapOf(disk, {25, 0}), std::vector<PageNo>({27}));
    EXPECT_EQ(mapOf(disk, {25, 1}), std::vector<PageNo>());
    EXPECT_EQ(mapOf(disk, {25, 2}), std::vector<PageNo>({24, 31, 40}));
    EXPECT_EQ(mapOf(disk, {25, 3}), std::vector<PageNo>({768}));
    EXPECT_EQ(mapOf(disk, {25, 4}), std::vector<PageNo>());
}

TEST(JetUsageMap, ReadsMapsThatReferToBitmapPages) {
    Disk disk = blank(33000);
    test::putDataPage(disk, 6, 0,
                      {{padded("01 fd020000 00000000", 69)}, {padded("01 00000000 fd020000", 69)}});
    const std::size_t bitmap = 765 * jet::kPageSize;
    disk.bytes[bitmap] = std::byte{5};
    disk.bytes[bitmap + 1] = std::byte{1};
    disk.bytes[bitmap + 4] = std::byte{0x80};
    EXPECT_EQ(mapOf(disk, {6, 0}), std::vector<PageNo>({7}));
    EXPECT_EQ(mapOf(disk, {6, 1}), std::vector<PageNo>({32736 + 7}));
    disk.bytes[bitmap + 4 + 95] = std::byte{1};
    EXPECT_EQ(mapOf(disk, {6, 0}), std::vector<PageNo>({7, 760}));
}

TEST(JetUsageMap, WhatIsNoMapIsDamage) {
    Disk disk = blank(40);
    test::putDataPage(disk, 25, 0,
                      {{padded("02 00000000", 69)},
                       {hexBytes("00 0000")},
                       {{}, 0xC000},
                       {hexBytes("00 20000000 00 01")},  // page 40 of 0..39
                       {hexBytes("00 ffffffff ff")},     // beyond all numbers
                       {hexBytes("01 19000000")},        // a data page as bitmap
                       {hexBytes("01 00010000")}});      // a bitmap past the end
    for (std::uint8_t row = 0; row < 8; ++row) {
        EXPECT_EQ(test::errorOf([&] { mapOf(disk, {25, row}); }), ErrNo::Corrupt) << int{row};
    }
    EXPECT_EQ(test::errorOf([&] { mapOf(disk, {24, 0}); }), ErrNo::Corrupt);
    EXPECT_EQ(test::errorOf([&] { mapOf(disk, {40, 0}); }), ErrNo::Corrupt);
}

constexpr std::uint32_t kLval = jet::DataPage::kLongValues;

std::vector<std::byte> longValue(Disk& disk, const std::vector<std::byte>& definition) {
    jet::PageFile file = test::pagesOf(disk);
    const jet::LongValue value(file, definition, {"memory", 3});
    return {value.bytes().begin(), value.bytes().end()};
}

TEST(JetLongValue, ReadsInlineSingleAndChained) {
    Disk disk = blank(10);
    test::putDataPage(disk, 5, kLval, {{hexBytes("0a 0b")}, {hexBytes("01 02 03 04")}});
    test::putDataPage(disk, 6, kLval, {{hexBytes("00 07 00 00") + filled(4072, 0x11)}});
    test::putDataPage(disk, 7, kLval, {{hexBytes("00 00 00 00") + filled(10, 0x22)}});
    EXPECT_EQ(longValue(disk, {}), filled(0, 0));
    EXPECT_EQ(longValue(disk, hexBytes("00000080 00000000 00000000")), filled(0, 0));
    EXPECT_EQ(longValue(disk, hexBytes("02000080 00000000 00000000 61 00")), hexBytes("61 00"));
    EXPECT_EQ(longValue(disk, hexBytes("04000040 01050000 00000000")), hexBytes("01 02 03 04"));
    EXPECT_EQ(longValue(disk, hexBytes("f20f0000 00060000 04f46298")),
              filled(4072, 0x11) + filled(10, 0x22));
}

TEST(JetLongValue, WhatDoesNotHoldTheValueIsDamage) {
    Disk disk = blank(10);
    test::putDataPage(disk, 4, 2, {{hexBytes("01 02 03 04")}});  // not a page of long values
    test::putDataPage(disk, 5, kLval, {{hexBytes("0a 0b"), 0xC000}, {hexBytes("01 02 03 04")}});
    test::putDataPage(disk, 6, kLval, {{hexBytes("00 06 00 00 55")}});  // points to itself
    test::putDataPage(disk, 7, kLval, {{hexBytes("00 07 00 00")}});     // and says nothing
    for (const char* definition : {
             "04000080 00000000",                    // no whole definition
             "02000080 00000000 00000000 61",        // inline, cut off
             "050000c0 00000000 00000000",           // no kind
             "05000040 01050000 00000000",           // single, too short
             "02000040 00050000 00000000",           // deleted
             "02000040 02050000 00000000",           // no such row
             "04000040 00040000 00000000",           // on a table's page
             "04000040 00ffff00 00000000",           // past the end
             "00000100 00060000 00000000",           // 65,536 bytes in a file of 40,960
             "02000000 00070000 00000000",           // a piece without bytes
             "02000000 01050000 00000000 00000000",  // the chain's next is no page
             "ffffff3f 00060000 00000000",
         }) {
        EXPECT_EQ(test::errorOf([&] { longValue(disk, hexBytes(definition)); }), ErrNo::Corrupt)
            << definition;
    }
    // A circle ends when the value is full, or a piece is more than what is missing.
    EXPECT_EQ(longValue(disk, hexBytes("05000000 00060000 00000000")), filled(5, 0x55));
    test::putDataPage(disk, 6, kLval, {{hexBytes("00 06 00 00 55 55")}});
    EXPECT_EQ(test::errorOf([&] { longValue(disk, hexBytes("05000000 00060000 00000000")); }),
              ErrNo::Corrupt);
}

TEST(JetPages, SlotsOutsideTheirPageAreDamage) {
    const auto error = [](std::uint16_t at, std::uint16_t word) {
        Disk disk = blank(3);
        test::putDataPage(disk, 2, 0, {{padded("00 00000000", 69)}, {padded("00 00000000", 69)}});
        jet::store(std::span(disk.bytes), 2 * jet::kPageSize + at, word);
        return test::errorOf([&] { mapOf(disk, {2, 0}); });
    };
    EXPECT_EQ(error(12, 2), ErrNo::None);
    EXPECT_EQ(error(12, 257), ErrNo::Corrupt);
    EXPECT_EQ(error(12, 0xFFFF), ErrNo::Corrupt);
    EXPECT_EQ(error(12, 0), ErrNo::Corrupt);     // row 0 is not there
    EXPECT_EQ(error(16, 17), ErrNo::Corrupt);    // a row inside the slot table
    EXPECT_EQ(error(16, 4092), ErrNo::Corrupt);  // row 1 behind row 0
    EXPECT_EQ(error(14, 0x1001), ErrNo::Corrupt);
    EXPECT_EQ(error(0, 0x0102), ErrNo::Corrupt);
}

TEST(JetPages, ARowNumberIsOneByte) {
    for (const std::size_t slots : {256U, 257U}) {
        Disk disk = blank(3);
        std::vector<test::SlotContent> rows(slots);
        rows[0].bytes = padded("00 00000000", 69);
        test::putDataPage(disk, 2, 0, rows);
        EXPECT_EQ(test::errorOf([&] {
                      mapOf(disk, {2, 0});
                  }),
                  slots == 256 ? ErrNo::None : ErrNo::Corrupt);
    }
}

TEST(JetPages, AfterAFailedWriteThePageIsReadAnew) {
    Disk disk = blank(3);
    jet::PageFile file(std::make_unique<test::MemoryFile>(disk), "memory", jet::Access::ReadWrite);
    EXPECT_EQ(jet::u8(file.page(2).bytes(), 0), 0);
    disk.failAt = 1;
    file.begin();
    file.writePage(2, {});
    EXPECT_EQ(test::errorOf([&] { file.commit(); }), ErrNo::Io);
    file.rollback();
    disk.bytes[2 * jet::kPageSize] = std::byte{7};  // what the failed write has left there
    EXPECT_EQ(jet::u8(file.page(2).bytes(), 0), 7);
}

TEST(JetPages, APageKeptByItsReaderIsNotChangedByLaterReadsAndWrites) {
    Disk disk = blank(600);
    disk.bytes[5 * jet::kPageSize] = std::byte{1};
    disk.bytes[261 * jet::kPageSize] = std::byte{2};  // shares the frame of page 5
    jet::PageFile file(std::make_unique<test::MemoryFile>(disk), "memory", jet::Access::ReadWrite);
    const jet::Page five = file.page(5);
    const jet::Page other = file.page(261);
    EXPECT_EQ(jet::u8(five.bytes(), 0), 1);
    EXPECT_EQ(jet::u8(other.bytes(), 0), 2);
    jet::Page::Bytes bytes{};
    bytes[0] = std::byte{3};
    file.begin();
    file.writePage(261, bytes);
    file.commit();
    EXPECT_EQ(jet::u8(other.bytes(), 0), 2);
    EXPECT_EQ(jet::u8(file.page(261).bytes(), 0), 3);
    EXPECT_EQ(jet::u8(file.page(5).bytes(), 0), 1);
    EXPECT_EQ(test::errorOf([&] { file.page(600); }), ErrNo::Corrupt);
}

}  // namespace
}  // namespace vl
