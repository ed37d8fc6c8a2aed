#include "notify/SnoozeText.h"

#include <gtest/gtest.h>

#include "base/ErrorState.h"

namespace vl {
namespace {

TEST(SnoozeText, OffersSixteenChoicesThatAllMeanSomething) {
    const std::vector<std::string> wanted{"1m", "2m",  "5m", "15m", "30m", "1h", "2h", "4h",
                                          "8h", "12h", "1d", "2d",  "3d",  "4d", "1w", "2w"};
    const auto choices = snoozeChoices();
    EXPECT_EQ(std::vector<std::string>(choices.begin(), choices.end()), wanted);
    std::int32_t last = 0;
    for (const char* choice : choices) {
        SCOPED_TRACE(choice);
        ASSERT_TRUE(snoozeMinutes(choice).has_value());
        EXPECT_GT(*snoozeMinutes(choice), last);
        last = *snoozeMinutes(choice);
    }
}

TEST(SnoozeText, ReadsWhatIsTyped) {
    struct Case {
        const char* text;
        std::int32_t minutes;  // 0: snoozing would change nothing
    };
    static constexpr Case cases[] = {
        {"15m", 15},
        {"2h", 120},
        {"2H", 120},
        {"1d", 1440},
        {"2w", 20160},
        {"7", 7},
        {"2.5h", 120},
        {"1.5h", 120},
        {"3d (e)", 4320},
        {"(E) 3D", 4320},
        {"1 5m", 15},
        {"90 min", 90},
        {"2 hours", 2},
        {"", 0},
        {"0", 0},
        {"0.4h", 0},
        {"-5m", 0},
        {"soon", 0},
        {"h", 0},
        {"99999999w", 0},
        {"2147483647", 2147483647},
        {"2147483648", 0},
        {"\xD7\x95 5m", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(snoozeMinutes(c.text).value_or(0), c.minutes);
    }
}

TEST(SnoozeText, CountsFromNow) {
    const DateTime now = DateTime::fromCivil(2026, 11, 20, 14, 30, 7);
    EXPECT_EQ(snoozeTime("2h", now), DateTime::fromCivil(2026, 11, 20, 16, 30, 7));
    EXPECT_EQ(snoozeTime("10h", now), DateTime::fromCivil(2026, 11, 21, 0, 30, 7));
    EXPECT_EQ(snoozeTime("never", now), std::nullopt);
    // More minutes than an offset holds are no time; a day behind the last date is none either.
    EXPECT_EQ(snoozeTime("2147483648m", now), std::nullopt);
    EXPECT_EQ(snoozeTime("60m", DateTime::fromCivil(9999, 12, 31, 23, 30)), std::nullopt);
}

TEST(SnoozeText, KeepsThePendingError) {
    ErrorState::set(ErrNo::Locked);
    snoozeMinutes("99999999w");
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

TEST(SnoozeText, NamesTheEventInTheCaption) {
    EXPECT_EQ(snoozeTitle("Call the bank"), "Snooze reminder for:  Call the bank...");
}

}  // namespace
}  // namespace vl
