#include "model/clsReminder.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <regex>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/ErrorState.h"

namespace vl {
namespace {

TEST(clsReminderFromText, ReadsCountUnitAndMethod) {
    struct Case {
        const char* text;
        const char* method;
        int minutes;
    };
    static constexpr Case cases[] = {
        {"5m", "popup", 5},
        {"3h", "popup", 180},
        {"1d", "popup", 1440},
        {"1w", "popup", 10080},
        {"2W", "popup", 20160},
        {"3d (e)", "email", 4320},
        {"3D (E)", "email", 4320},
        {" 3d(e) ", "email", 4320},
        {"(e)3d(E)", "email", 4320},
        {"(e)", "email", 0},
        {"2.5h", "popup", 120},  // halves go to the even neighbour,
                                 // before the unit counts
        {"1.5h", "popup", 120},
        {"0.5w", "popup", 0},
        {"3.5d", "popup", 5760},
        {"-2.5h", "popup", -120},
        {"2.5m", "popup", 2},
        {"3.5", "popup", 4},
        {".5d", "popup", 0},
        {"3h ", "popup", 3},  // the last character is the blank
        {"3h\t", "popup", 3},
        {"3 h", "popup", 180},
        {"2,5h", "popup", 120},  // a comma ends the number
        {"(e) 2h", "email", 120},
        {"2h (e) x", "email", 2},
        {"((e)e)2h", "email", 0},  // removed once over: "(e)2h" has no number in front
        {"3h (e", "popup", 3},
        {" 15m", "popup", 15},       // not trimmed, but blanks are skipped in front of a number
        {"1 5 m", "popup", 15},      // and inside it
        {" 3h (e) ", "email", 180},  // trimmed, since it held the mark
        {"90", "popup", 90},
        {"-10m", "popup", -10},
        {"-1d", "popup", -1440},
        {"soon", "popup", 0},
        {"", "popup", 0},
        {"h", "popup", 0},
        {"15 minutes", "popup", 15},
        {"2 hours", "popup", 2},  // ends in "s"
        {"1e2m", "popup", 100},   // an exponent is part of a number
        {"5\xC3\xBC", "popup", 5},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << '"' << c.text << '"');
        clsReminder r;
        r.Method = "other";
        r.Minutes = 77;
        r.FromText(c.text);
        EXPECT_EQ(r.Method, c.method);
        EXPECT_EQ(r.Minutes, c.minutes);
    }
}

// What the rules make of a text, in 64 bits: an offset, and whether it is an e-mail.
struct Read {
    bool mail;
    double minutes;
};
Read rulesRead(std::string s) {
    Read read{false, 0};
    const auto mark = [&s] { return std::min(s.find("(e)"), s.find("(E)")); };
    for (std::size_t at = mark(); at != std::string::npos; at = mark()) {
        read.mail = true;
        s.replace(at, 3, "|");  // so that the rest does not join to another mark
    }
    if (read.mail) {
        s.erase(std::remove(s.begin(), s.end(), '|'), s.end());
        s.erase(0, std::min(s.find_first_not_of(' '), s.size()));
        s.erase(s.find_last_not_of(' ') + 1);
    }
    std::string packed = s;
    packed.erase(std::remove(packed.begin(), packed.end(), ' '), packed.end());
    static const std::regex number(R"(^[-+]?(\d+\.?\d*|\.\d+)([eEdD][-+]?\d+)?)");
    std::smatch match;
    if (std::regex_search(packed, match, number)) {
        std::string digits = match.str();
        std::replace_if(
            digits.begin(), digits.end(), [](char c) { return c == 'd' || c == 'D'; }, 'e');
        read.minutes = std::nearbyint(std::strtod(digits.c_str(), nullptr));
    }
    const char last = s.empty() ? ' ' : s.back();
    read.minutes *= last == 'w' || last == 'W'   ? 10080
                    : last == 'd' || last == 'D' ? 1440
                    : last == 'h' || last == 'H' ? 60
                                                 : 1;
    return read;
}

void expectRead(const std::string& text) {
    const Read wanted = rulesRead(text);
    clsReminder r;
    bool overflow = false;
    try {
        r.FromText(text);
    } catch (const Error& e) {
        overflow = e.number() == ErrNo::Overflow;
    }
    ASSERT_EQ(r.Method, wanted.mail ? "email" : "popup") << '"' << text << '"';
    const bool fits = wanted.minutes >= -2147483648.0 && wanted.minutes <= 2147483647.0;
    ASSERT_EQ(overflow, !fits) << '"' << text << '"';
    if (fits) {
        ASSERT_EQ(r.Minutes, wanted.minutes) << '"' << text << '"';
    }
}

TEST(clsReminderFromText, FollowsTheRulesForEveryCount) {
    for (int count = -20000; count <= 60000; ++count) {
        for (const char* unit :
             {"", "m", "h", "d", "w", ".5h", ".5d (e)", " H(E)", "W (e) ", "h "}) {
            ASSERT_NO_FATAL_FAILURE(expectRead(std::to_string(count) + unit));
        }
    }
}

TEST(clsReminderFromText, FollowsTheRulesForTextsOfAnyKind) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    static constexpr const char* kPieces[] = {"0", "1", "2", "5", "9", ".",   "-", "+",   " ",
                                              "m", "h", "d", "w", "W", "(e)", "e", "(E)", "x"};
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (auto length = random() % 8; length > 0; --length) {
            text += kPieces[random() % std::size(kPieces)];
        }
        ASSERT_NO_FATAL_FAILURE(expectRead(text));
    }
}

// The short form is what a user types: what is shown so is read back the same.
TEST(clsReminderFromText, ReadsTheShortFormBack) {
    for (std::int32_t count = -20000; count <= 60000; ++count) {
        clsReminder r;
        r.FromText(clsReminder::getText(count, "m", true));
        ASSERT_EQ(r.Minutes, count);
    }
}

TEST(clsReminderFromText, TakesProductsUpToTheLimitAndThrowsBeyond) {
    struct Case {
        const char* text;
        std::int32_t minutes;
    };
    static constexpr Case fits[] = {{"2147483647", 2147483647},
                                    {"-2147483648", std::numeric_limits<std::int32_t>::min()},
                                    {"213044w", 2147483520},
                                    {"1491308d", 2147483520},
                                    {"35791394h", 2147483640}};
    for (const Case& c : fits) {
        SCOPED_TRACE(c.text);
        clsReminder r;
        r.FromText(c.text);
        EXPECT_EQ(r.Minutes, c.minutes);
    }
    for (const char* text : {"2147483648", "-2147483649", "213045w", "-213045w", "1491309d",
                             "35791395h", "1e30", "1e999m"}) {
        SCOPED_TRACE(text);
        clsReminder r;
        r.Minutes = 5;
        try {
            r.FromText(text);
            ADD_FAILURE() << "gave " << r.Minutes;
        } catch (const Error& e) {
            EXPECT_EQ(e.number(), ErrNo::Overflow);
        }
        EXPECT_EQ(r.Minutes, 5);
    }
}

TEST(clsReminderGetText, AddsAnSOnlyAboveOne) {
    EXPECT_EQ(clsReminder::getText(5, "m", true), "5m");
    EXPECT_EQ(clsReminder::getText(0, "m", true), "0m");
    EXPECT_EQ(clsReminder::getText(-5, "m", true), "-5m");
    EXPECT_EQ(clsReminder::getText(0, "minute", false), "Event start");
    EXPECT_EQ(clsReminder::getText(1, "hour", false), "1 hour");
    EXPECT_EQ(clsReminder::getText(2, "hour", false), "2 hours");
    EXPECT_EQ(clsReminder::getText(5, "minute", false), "5 minutes");
    EXPECT_EQ(clsReminder::getText(-15, "minute", false), "-15 minute");
}

TEST(clsReminderToText, SaysTheOffsetInItsLargestUnits) {
    struct Case {
        int minutes;
        const char* words;
        const char* typed;
    };
    static constexpr Case cases[] = {
        {0, "Event start", "0m"},   {1, "1 minute", "1m"},
        {10, "10 minutes", "10m"},  {30, "30 minutes", "30m"},  // 0.5 hours go to 0
        {31, "-29 minute", "-29m"}, {45, "-15 minute", "-15m"},
        {59, "-1 minute", "-1m"},   {60, "1 hour", "1h"},
        {61, "1 minute", "1m"},     {75, "15 minutes", "15m"},
        {89, "29 minutes", "29m"},  {90, "-30 minute", "-30m"},  // 1.5 hours go to 2
        {119, "-1 minute", "-1m"},  {120, "2 hours", "2h"},
        {121, "2 hours", "2h"},     {720, "12 hours", "12h"},  // half a day goes to 0 days
        {721, "12 hours", "12h"},                              // 1 day less 12 hours
        {1440, "1 day", "1d"},      {1620, "27 hours", "27h"},
        {1640, "27 hours", "27h"},  {2880, "2 days", "2d"},
        {4320, "3 days", "3d"},     {5100, "4 days", "4d"},
        {10080, "1 week", "1w"},    {11520, "8 days", "8d"},
        {20160, "2 weeks", "2w"},   {-10, "", ""},
        {-60, "-1 hour", "-1h"},    {-1440, "-1 day", "-1d"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.minutes);
        clsReminder r;
        r.Minutes = c.minutes;
        EXPECT_EQ(r.ToText(true, false), c.words);
        EXPECT_EQ(r.ToText(true, true), c.typed);
        r.Method = "EMAIL";
        EXPECT_EQ(r.ToText(true, false), std::string(c.words) + " (email)");
        EXPECT_EQ(r.ToText(true, true), std::string(c.typed) + " (e)");
    }
}

TEST(clsReminderToText, MarksNothingButEMails) {
    clsReminder r;
    r.Minutes = 5;
    for (const char* method : {"popup", "", "mail", "email ", "emails"}) {
        r.Method = method;
        EXPECT_EQ(r.ToText(true, false), "5 minutes");
        EXPECT_EQ(r.ToText(true, true), "5m");
    }
    r.Method = "Email";
    EXPECT_EQ(r.ToText(true, false), "5 minutes (email)");
}

TEST(clsReminderToText, IsEmptyForWhatIsNotScheduled) {
    clsReminder r;
    for (const int minutes : {-10, 0, 15, 60, 10080}) {
        for (const char* method : {"popup", "email"}) {
            r.Minutes = minutes;
            r.Method = method;
            EXPECT_EQ(r.ToText(false, false), "");
            EXPECT_EQ(r.ToText(false, true), "");
        }
    }
}

// The rules once more, step by step and in one breath, to hold the code against.
std::string rulesText(double minutes, bool mail, bool bShort) {
    const char* names[2][4] = {{"minute", "hour", "day", "week"}, {"m", "h", "d", "w"}};
    const auto say = [&](double count, int unit) {
        const std::string n = std::to_string(static_cast<long long>(count));
        if (bShort) {
            return n + names[1][unit];
        }
        return count == 0 ? "Event start" : n + " " + names[0][unit] + (count > 1 ? "s" : "");
    };
    double r = minutes;
    const double weeks = std::nearbyint(r / 10080);
    r = r - weeks * 10080;
    const double days = std::nearbyint(r / 1440);
    r = r - days * 1440;
    const double hours = std::nearbyint(r / 60);
    const double mins = r - hours * 60;
    std::string text;
    if ((minutes >= 0 && minutes <= 59) || (minutes >= 61 && minutes <= 119)) {
        text = say(mins, 0);
    }
    if (text.empty()) {
        if (weeks != 0 && days != 0) {
            text = say(weeks * 7 + days, 2);
        } else if (weeks != 0 && days == 0) {
            text = say(weeks, 3);
        } else if (weeks == 0 && days != 0 && hours != 0) {
            text = say(days * 24 + hours, 1);
        } else if (weeks == 0 && days != 0 && hours == 0) {
            text = say(days, 2);
        } else if (weeks == 0 && days == 0 && hours != 0) {
            text = say(hours, 1);
        }
    }
    return mail ? text + (bShort ? " (e)" : " (email)") : text;
}

TEST(clsReminderToText, FollowsTheRulesForEveryOffset) {
    clsReminder r;
    const auto agree = [&](std::int32_t minutes) {
        r.Minutes = minutes;
        for (const bool mail : {false, true}) {
            r.Method = mail ? "email" : "popup";
            for (const bool bShort : {false, true}) {
                ASSERT_EQ(r.ToText(true, bShort), rulesText(minutes, mail, bShort))
                    << minutes << (mail ? " email" : "") << (bShort ? " short" : "");
            }
        }
    };
    for (std::int32_t minutes = -20000; minutes <= 60000; ++minutes) {
        ASSERT_NO_FATAL_FAILURE(agree(minutes));
    }
    for (const std::int32_t minutes :
         {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()}) {
        agree(minutes);
    }
}

TEST(clsReminderToText, KeepsPendingError) {
    ErrorState::set(ErrNo::Locked);
    clsReminder r;
    r.Minutes = 5;
    EXPECT_EQ(r.ToText(true, false), "5 minutes");
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

}  // namespace
}  // namespace vl
