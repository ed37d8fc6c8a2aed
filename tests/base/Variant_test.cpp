#include "base/Variant.h"

#include <gtest/gtest.h>

#include "base/ErrorState.h"
#include "support/ErrorOf.h"

namespace vl {
namespace {

using test::errorOf;

TEST(Variant, ConvertsWhatHasTheForm) {
    EXPECT_EQ(Variant().toText(), "");
    EXPECT_EQ(Variant().toInt32(), 0);
    EXPECT_FALSE(Variant().toBool());
    EXPECT_EQ(Variant(true).toInt32(), -1);
    EXPECT_EQ(Variant(2.5).toInt32(), 2);
    EXPECT_EQ(Variant("12.5").toDouble(), 12.5);
    EXPECT_EQ(Variant(std::int64_t{1} << 53 | 1).toInt64(), (std::int64_t{1} << 53) | 1);
    EXPECT_EQ(Variant("9007199254740993").toInt64(), 9007199254740993);
    EXPECT_EQ(Variant("-9223372036854775808").toInt64(), INT64_MIN);
    EXPECT_EQ(Variant(" 12.5 ").toInt64(), 12);
    EXPECT_EQ(Variant(DateTime(1.5)).toDouble(), 1.5);
    EXPECT_EQ(Variant(1.5).toDateTime(), DateTime(1.5));
    EXPECT_EQ(Variant(false).toText(), "False");
    EXPECT_TRUE(Variant("TRUE").toBool());
    EXPECT_FALSE(Variant("false").toBool());
    EXPECT_TRUE(Variant("-1").toBool());
}

TEST(Variant, FailsByErrorNeverByGarbage) {
    EXPECT_EQ(errorOf([] { (void)Variant("12x").toInt32(); }), ErrNo::TypeMismatch);
    EXPECT_EQ(errorOf([] { (void)Variant(Null{}).toText(); }), ErrNo::TypeMismatch);
    EXPECT_EQ(errorOf([] { (void)Variant(Null{}).toBool(); }), ErrNo::TypeMismatch);
    EXPECT_EQ(errorOf([] { (void)Variant(Bytes{}).toDouble(); }), ErrNo::TypeMismatch);
    EXPECT_EQ(errorOf([] { (void)Variant(3e9).toInt32(); }), ErrNo::Overflow);
    EXPECT_EQ(errorOf([] { (void)Variant(1e19).toInt64(); }), ErrNo::Overflow);
    EXPECT_EQ(errorOf([] { (void)Variant("tomorrow").toDateTime(); }), ErrNo::TypeMismatch);
}

TEST(Variant, EqualityIsOfTypeAndValue) {
    EXPECT_EQ(Variant("a"), Variant(std::string("a")));
    EXPECT_NE(Variant("1"), Variant(1));
    EXPECT_NE(Variant(1), Variant(1.0));
    EXPECT_NE(Variant(), Variant(Null{}));
}

TEST(VariantDate, ReadsWhatItWrites) {
    for (const char* text :
         {"2026-11-15", "2026-11-15 00:00:01", "1899-12-30", "9999-12-31 23:59:59"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(formatDateTime(parseDateTime(text)), text);
    }
    EXPECT_EQ(parseDateTime("2026-11-15T14:30"), DateTime::fromCivil(2026, 11, 15, 14, 30));
}

TEST(VariantDate, RefusesWhatIsNoDate) {
    for (const char* text :
         {"", "2026-02-29", "2026-13-01", "2026-11-15 24:00", "2026-11-15 1:00", "2026-11-15 10:60",
          "2026/11/15", "2026-11-15 10:00:00Z", "x026-11-15"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(errorOf([&] { (void)parseDateTime(text); }), ErrNo::TypeMismatch);
    }
}

}  // namespace
}  // namespace vl
