// What columns demand, as the catalog keeps it.
#include "Properties.h"

#include <gtest/gtest.h>

#include "Pages.h"

namespace vl {
namespace {

using jet::Properties;
using test::errorOf;
using test::hexBytes;

constexpr jet::Origin kOrigin{"memory", 7};

// The names "ColumnWidth" and "Required", and a column "A" with a display property of four bytes
// and one that is "no", as the desktop product writes them.
std::vector<std::byte> sample() {
    return hexBytes(
        "4d523200"
        "30000000 8000"
        "1600 43006f006c0075006d006e0057006900640074006800"
        "1000 52006500710075006900720065006400"
        "23000000 0100 08000000 0200 4100"
        "0c00 00 03 0000 0400 ffffffff"
        "0900 01 01 0100 0100 00");
}

TEST(JetProperties, AreReadByColumnAndName) {
    const Properties properties = Properties::decode(sample(), kOrigin);
    EXPECT_FALSE(properties.empty());
    EXPECT_FALSE(properties.flag("A", "Required", true));
    EXPECT_FALSE(properties.flag("a", "REQUIRED", true)) << "without regard to case";
    EXPECT_TRUE(properties.flag("A", "AllowZeroLength", true)) << "not there";
    EXPECT_TRUE(properties.flag("B", "Required", true)) << "not there";
}

TEST(JetProperties, WhatIsNotUnderstoodIsKept) {
    EXPECT_TRUE(Properties::decode(sample(), kOrigin).encode() == sample());
}

TEST(JetProperties, AreSetAndSetAgain) {
    Properties properties = Properties::decode(sample(), kOrigin);
    properties.setFlag("A", "Required", true);
    properties.setFlag("New column", "AllowZeroLength", false);
    const Properties again = Properties::decode(properties.encode(), kOrigin);
    EXPECT_TRUE(again.flag("A", "Required", false));
    EXPECT_FALSE(again.flag("New column", "AllowZeroLength", true));
}

TEST(JetProperties, NothingIsNoProperties) { EXPECT_TRUE(Properties::decode({}, kOrigin).empty()); }

TEST(JetProperties, DamageIsFoundWhereverItStands) {
    const std::vector<std::byte> blob = sample();
    for (std::size_t length = 1; length < blob.size(); ++length) {
        const auto cut = std::span(blob).first(length);
        // The list of names alone, and the mark alone, are whole.
        const bool whole = length == 4 || length == 4 + 0x30;
        EXPECT_EQ(errorOf([&] { Properties::decode(cut, kOrigin); }),
                  whole ? ErrNo::None : ErrNo::Corrupt)
            << length;
    }
    auto nameless = blob;
    nameless[blob.size() - 5] = std::byte{9};
    EXPECT_EQ(errorOf([&] { Properties::decode(nameless, kOrigin); }), ErrNo::Corrupt);
    auto foreign = blob;
    foreign[0] = std::byte{'X'};
    EXPECT_EQ(errorOf([&] { Properties::decode(foreign, kOrigin); }), ErrNo::Corrupt);
}

}  // namespace
}  // namespace vl
