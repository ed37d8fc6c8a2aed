#include "ui/RowFill.h"

#include <gtest/gtest.h>

#include "Rows.h"
#include "notify/ReminderScreen.h"
#include "ui/QtText.h"

namespace vl {
namespace {

const QString kHebrew = QString::fromUtf8("\xD7\xA4\xD7\x92\xD7\x99\xD7\xA9\xD7\x94");
const QString kIsolated = QChar(0x2068) + kHebrew + "!" + QChar(0x2069);

std::shared_ptr<calEvent> meeting(const QString& subject, const QString& location) {
    auto event = std::make_shared<calEvent>();
    event->GUID = "{1}";
    event->Subject = plainText(subject);
    event->Location = plainText(location);
    event->StartDateTime = test::someFriday();
    event->EndDateTime = test::someFriday().addMinutes(45);
    return event;
}

TEST(EventLine, BeginsWithTheSubjectOrWhatStandsForIt) {
    const DateWords words = wordsOf(test::clockText, test::someFriday());
    const auto line = [&](const QString& subject, const QString& location) {
        return eventLine(*meeting(subject, location), test::someFriday(), words);
    };
    EXPECT_EQ(line("Meeting", "Room 2"), "Meeting, Today 14:30-15:15, Room 2");
    EXPECT_EQ(line("Meeting\r\nof  all", ""), "Meeting of all, Today 14:30-15:15");
    for (const char* nothing : {"", "  ", "\r\n"}) {
        EXPECT_EQ(line(nothing, "Room 2"), "(no subject), Today 14:30-15:15, Room 2");
    }
}

// Its exclamation mark would else stand in front of the day, and in the paragraph's direction.
TEST(EventLine, WhatIsWrittenFromTheRightTurnsNothingBesideIt) {
    const DateWords words = wordsOf(test::clockText, test::someFriday());
    const auto line = [&](const QString& subject, const QString& location) {
        return eventLine(*meeting(subject, location), test::someFriday(), words);
    };
    EXPECT_EQ(line(kHebrew + "!", "Room 2"), kIsolated + ", Today 14:30-15:15, Room 2");
    EXPECT_EQ(line("Meeting", kHebrew + "!"), "Meeting, Today 14:30-15:15, " + kIsolated);
    EXPECT_EQ(line(kHebrew + "!", kHebrew + "!"), kIsolated + ", Today 14:30-15:15, " + kIsolated);
    EXPECT_FALSE(line(kHebrew, "").isRightToLeft());
    EXPECT_EQ(line("Meeting " + kHebrew, ""), "Meeting " + kHebrew + ", Today 14:30-15:15");
}

TEST(RowOf, ATipNamesWhatHasNoSubject) {
    const RowOccurrence first{test::someFriday(), test::someFriday()};
    const auto tip = [&](const QString& subject) {
        return rowOf(meeting(subject, "Room 2"), first, kEventsGrid, test::clockText).toolTip;
    };
    EXPECT_TRUE(tip("Meeting").startsWith("Meeting\nFriday, 20 November 2026"))
        << plainText(tip("Meeting"));
    for (const char* nothing : {"", "  "}) {
        EXPECT_TRUE(tip(nothing).startsWith("(no subject)\nFriday, 20 November 2026"))
            << plainText(tip(nothing));
    }
}

}  // namespace
}  // namespace vl
