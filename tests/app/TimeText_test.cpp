#include "app/TimeText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>

#include "Environment.h"
#include "app/platform/LocalePattern.h"
#include "base/ErrorState.h"

namespace vl {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(StoredText, HoldsTenThousandthsOfADay) {
    EXPECT_EQ(toStoredText(DateTime::fromCivil(1899, 12, 30, 12)), "5000");
    EXPECT_EQ(toStoredText(DateTime::fromCivil(2026, 11, 15, 12)), "463415000");
    EXPECT_EQ(toStoredText(DateTime()), "0");
    EXPECT_EQ(toStoredText(DateTime(-1.25)), "-12500");
    EXPECT_EQ(toStoredText(DateTime(0.00019)), "1");  // the whole part, not rounded
    EXPECT_EQ(fromStoredText("5000"), DateTime::fromCivil(1899, 12, 30, 12));
    EXPECT_TRUE(fromStoredText("0").isZero());
    EXPECT_TRUE(fromStoredText("").isZero());
    EXPECT_TRUE(fromStoredText("never").isZero());
    EXPECT_EQ(fromStoredText(" 5000 x"), DateTime(0.5));
    EXPECT_TRUE(fromStoredText("1e999").isZero());
    EXPECT_EQ(toStoredText(DateTime(kInfinity)), "0");
    EXPECT_EQ(toStoredText(DateTime(std::nan(""))), "0");
}

TEST(StoredText, DoesNotDriftWhenSavedAgainAndAgain) {
    for (std::int64_t step = 463'410'000; step < 463'430'000; ++step) {
        const std::string text = std::to_string(step);
        ASSERT_EQ(toStoredText(fromStoredText(text)), text);
    }
}

TEST(ShortTimeText, FollowsThePattern) {
    struct Case {
        const char* pattern;
        const char* morning;  // 09:05:07
        const char* night;    // 00:30:00
        const char* evening;  // 21:45:00
    };
    static constexpr Case cases[] = {
        {"HH:mm", "09:05", "00:30", "21:45"},
        {"H:mm", "9:05", "0:30", "21:45"},
        {"h:mm tt", "9:05 AM", "12:30 AM", "9:45 PM"},
        {"hh:mm t", "09:05 A", "12:30 A", "09:45 P"},
        {"H.mm", "9.05", "0.30", "21.45"},
        {"HH'h'mm", "09h05", "00h30", "21h45"},
        {"H' o''clock'", "9 o'clock", "0 o'clock", "21 o'clock"},
        {"H'mm", "9mm", "0mm", "21mm"},  // a quote that is never closed
        {"H:m:s", "9:5:7", "0:30:0", "21:45:0"},
        {"HH:mm:ss", "09:05:07", "00:30:00", "21:45:00"},
        {"''", "", "", ""},
        {"", "09:05", "00:30", "21:45"},
        {"\xE6\x99\x82HH",
         "\xE6\x99\x82"
         "09",
         "\xE6\x99\x82"
         "00",
         "\xE6\x99\x82"
         "21"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.pattern);
        EXPECT_EQ(shortTimeText(DateTime::fromCivil(2026, 11, 15, 9, 5, 7), c.pattern), c.morning);
        EXPECT_EQ(shortTimeText(DateTime::fromCivil(2026, 11, 15, 0, 30), c.pattern), c.night);
        EXPECT_EQ(shortTimeText(DateTime::fromCivil(2026, 11, 15, 21, 45), c.pattern), c.evening);
    }
}

TEST(ShortTimeText, UsesTheSystemsFormat) {
    const DateTime d = DateTime::fromCivil(2026, 11, 15, 14, 30);
    EXPECT_EQ(shortTimeText(d), shortTimeText(d, shortTimeFormat()));
}

TEST(LocalePattern, DropsSecondsAndZones) {
    struct Case {
        const char* format;
        const char* twelve;
        const char* pattern;
    };
    static constexpr Case cases[] = {
        {"%H:%M:%S", "%I:%M:%S %p", "HH:mm"},
        {"%T", "", "HH:mm"},
        {"%R", "", "HH:mm"},
        {"%r", "%I:%M:%S %p", "h:mm tt"},
        {"%r", "", "h:mm tt"},
        {"%r", "%r", ""},  // refers to itself
        {"%H.%M.%S", "", "HH.mm"},
        {"%k:%M:%S", "", "H:mm"},
        {"%H:%M:%S %Z", "", "HH:mm"},
        {"%I:%M:%S %p %Z", "", "h:mm tt"},
        {"%OH:%OM", "", "HH:mm"},
        {"%-H:%M", "", "H:mm"},
        {"%_H:%-M", "", "H:m"},
        {"%0H:%M", "", "HH:mm"},
        {"%Hh%M", "", "HH'h'mm"},
        {"%H o'clock", "", "HH' o''clock'"},
        {"%p %I:%M", "", "tt h:mm"},
        {"", "", ""},
        {"%", "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.format);
        EXPECT_EQ(platform::shortPattern(c.format, c.twelve), c.pattern);
    }
}

TEST(LocalePattern, MakesDatesWithTheirDayAndAFullYear) {
    struct Case {
        const char* format;
        const char* pattern;
    };
    static constexpr Case posix[] = {
        {"%d.%m.%Y", "%a %d.%m.%Y"},    {"%d/%m/%y", "%a %d/%m/%Y"},
        {"%a %d.%m.%Y", "%a %d.%m.%Y"}, {"%A, %y%%y", "%A, %Y%%y"},
        {"%m/%d/%y", "%a %-d %b %Y"},   {"%D", "%a %-d %b %Y"},
        {"", "%a %-d %b %Y"},           {"%Oy/%Om/%Od", "%a %Oy/%Om/%Od"},
        {"%Y-%m-%d", "%a %Y-%m-%d"},    {"%", "%a %"},
    };
    for (const Case& c : posix) {
        EXPECT_EQ(platform::datePattern(c.format), c.pattern) << c.format;
    }
    static constexpr Case windows[] = {
        {"dd.MM.yyyy", "ddd dd.MM.yyyy"},
        {"M/d/yy", "ddd M/d/yyyy"},
        {"ddd d MMM yy", "ddd d MMM yyyy"},
        {"d' yy ddd 'y", "ddd d' yy ddd 'yyyy"},
    };
    for (const Case& c : windows) {
        EXPECT_EQ(platform::fullYearPattern(c.format), c.pattern) << c.format;
    }
}

TEST(DisplayText, IsEmptyForNoDateAndEndsWithATimeOnlyIfThereIsOne) {
    EXPECT_EQ(displayText(DateTime()), "");
    const DateTime d = DateTime::fromCivil(2026, 1, 4, 14, 30);
    EXPECT_EQ(displayText(d),
              displayText(DateTime::fromCivil(2026, 1, 4)) + ", " + shortTimeText(d));
}

#ifndef _WIN32
// Locales are made for the test alone: few systems have any of these.
class Locales : public testing::Test {
protected:
    void make(const std::string& name) {
        const std::string made = (folder / (name + ".UTF-8")).string();
        const std::string command = "localedef -i " + name + " -f UTF-8 '" + made + "' 2>&1";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
    }
    test::TempFolder folder;
    const test::Variable path{"LOCPATH", folder.path().c_str()};
};

TEST_F(Locales, GiveDatesTheirOrderAndNames) {
    struct Case {
        const char* locale;
        const char* monday;   // 2026-11-23
        const char* january;  // 2027-01-03, a Sunday
    };
    static constexpr Case cases[] = {
        {"de_DE", "Mo 23.11.2026", "So 03.01.2027"},
        {"en_US", "Mon 11/23/2026", "Sun 01/03/2027"},
        {"en_GB", "Mon 23/11/2026", "Sun 03/01/2027"},
        {"fr_FR", "lun. 23/11/2026", "dim. 03/01/2027"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.locale);
        ASSERT_NO_FATAL_FAILURE(make(c.locale));
        const test::Variable all("LC_ALL", (std::string(c.locale) + ".UTF-8").c_str());
        EXPECT_EQ(displayText(DateTime::fromCivil(2026, 11, 23)), c.monday);
        EXPECT_EQ(displayText(DateTime::fromCivil(2027, 1, 3)), c.january);
    }
}

TEST_F(Locales, WithoutOneTheMonthIsNamed) {
    for (const char* locale : {"C", "C.UTF-8", "POSIX", "xx_NOWHERE"}) {
        SCOPED_TRACE(locale);
        const test::Variable all("LC_ALL", locale);
        EXPECT_EQ(displayText(DateTime::fromCivil(2026, 11, 3)), "Tue 3 Nov 2026");
    }
}
#endif

TEST(SmallerLarger, CompareAsTexts) {
    EXPECT_EQ(largerOf("900", "1000"), Variant("900"));
    EXPECT_EQ(smallerOf("900", "1000"), Variant("1000"));
    EXPECT_EQ(largerOf(900, 1000), Variant(900));  // numbers, too
    EXPECT_EQ(smallerOf("b", "A"), Variant("A"));
    EXPECT_EQ(largerOf("b", "A"), Variant("b"));
    EXPECT_EQ(smallerOf("a", "A"), Variant("a"));  // equal: the first
    EXPECT_EQ(largerOf("a", "A"), Variant("a"));
    EXPECT_EQ(smallerOf(Variant(), "a"), Variant());
    EXPECT_EQ(largerOf(Null{}, "a"), Variant());
    EXPECT_EQ(smallerOf("a", Bytes{}), Variant());
}

TEST(SmallerLarger, KeepsPendingError) {
    ErrorState::set(ErrNo::Locked);
    (void)smallerOf(Null{}, 1);
    (void)largerOf(1, Null{});
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

}  // namespace
}  // namespace vl
