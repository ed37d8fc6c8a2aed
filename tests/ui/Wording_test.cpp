#include "ui/Wording.h"

#include <gtest/gtest.h>

#include "Rows.h"

namespace vl {
namespace {

using test::clockText;
using test::someFriday;

TEST(DueText, CountsMinuteBoundaries) {
    struct Case {
        int seconds;  // from now to the reminder
        DueState state;
        const char* text;
    };
    constexpr int kMinute = 60;
    constexpr int kHour = 60 * kMinute;
    constexpr int kDay = 24 * kHour;
    static constexpr Case cases[] = {
        {30, DueState::Now, "now"},  // the same minute
        {0, DueState::Now, "now"},
        {kMinute, DueState::Ahead, "in 1 min"},
        {59 * kMinute, DueState::Ahead, "in 59 min"},
        {kHour, DueState::Ahead, "in 1 h"},
        {80 * kMinute, DueState::Ahead, "in 1 h 20 min"},
        {179 * kMinute, DueState::Ahead, "in 2 h 59 min"},
        {200 * kMinute, DueState::Ahead, "in 3 h"},
        {kDay - kMinute, DueState::Ahead, "in 23 h"},
        {kDay, DueState::Ahead, "in 1 day"},
        {3 * kDay, DueState::Ahead, "in 3 days"},
        {-1, DueState::Past, "1 min overdue"},  // a second earlier is the minute before
        {-5 * kMinute, DueState::Past, "5 min overdue"},
        {-2 * kHour, DueState::Past, "2 h overdue"},
        {-2 * kDay, DueState::Past, "2 days overdue"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.seconds << " s");
        const DateTime due = someFriday().addSeconds(c.seconds);
        EXPECT_EQ(dueState(due, someFriday()), c.state);
        EXPECT_EQ(dueText(due, someFriday()), c.text);
    }
}

TEST(DueText, IsEmptyWithoutADate) {
    EXPECT_EQ(dueState(DateTime(), someFriday()), DueState::None);
    EXPECT_EQ(dueText(DateTime(), someFriday()), "");
    EXPECT_EQ(eventDueText({}, someFriday()), "");
}

TEST(EventDueText, SaysNowWhileTheEventLasts) {
    struct Case {
        int from, to;  // minutes from now
        DueState state;
        const char* text;
    };
    static constexpr Case cases[] = {
        {5, 65, DueState::Ahead, "in 5 min"},   {0, 60, DueState::Now, "now"},
        {-30, 30, DueState::Now, "now"},        {-60, 0, DueState::Past, "1 h ago"},
        {-120, -60, DueState::Past, "2 h ago"}, {-5, -5, DueState::Past, "5 min ago"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.from << " to " << c.to);
        const Span event{someFriday().addMinutes(c.from), someFriday().addMinutes(c.to), false};
        EXPECT_EQ(eventState(event, someFriday()), c.state);
        EXPECT_EQ(eventDueText(event, someFriday()), c.text);
    }
}

TEST(EventDueText, GoesByDaysForAllDayEvents) {
    struct Case {
        int first, last;  // days from today, both inside
        DueState state;
        const char* text;
    };
    static constexpr Case cases[] = {
        {1, 1, DueState::Ahead, "tomorrow"},   {3, 4, DueState::Ahead, "in 3 days"},
        {0, 0, DueState::Now, "today"},        {-1, 0, DueState::Now, "today"},
        {-1, -1, DueState::Past, "yesterday"}, {-4, -2, DueState::Past, "4 days ago"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.first << " to " << c.last);
        const DateTime today = someFriday().date();
        const Span event{today.addDays(c.first), today.addDays(c.last), true};
        EXPECT_EQ(eventState(event, someFriday()), c.state);
        EXPECT_EQ(eventDueText(event, someFriday()), c.text);
    }
}

TEST(DayText, NamesDaysAsPeopleDo) {
    struct Case {
        int days;
        const char* text;
    };
    static constexpr Case cases[] = {
        {0, "Today"},       {1, "Tomorrow"},        {-1, "Yesterday"},         {3, "Mon 23 Nov"},
        {-2, "Wed 18 Nov"}, {42, "Fri 1 Jan 2027"}, {-330, "Thu 25 Dec 2025"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.days);
        // One minute to midnight and midnight sharp are of the same day.
        EXPECT_EQ(dayText(someFriday().addDays(c.days), someFriday()), c.text);
        EXPECT_EQ(dayText(someFriday().date().addDays(c.days),
                          someFriday().date().addMinutes(24 * 60 - 1)),
                  c.text);
    }
}

TEST(MomentText, SaysDayAndTime) {
    const DateTime now = someFriday();
    EXPECT_EQ(momentText(now, true, now, clockText), "Today 14:30");
    EXPECT_EQ(momentText(now, false, now, clockText), "Today");
    EXPECT_EQ(momentText(DateTime(), true, now, clockText), "");
    EXPECT_EQ(fullMomentText(now, true, clockText), "Friday, 20 November 2026, 14:30");
    EXPECT_EQ(fullMomentText(now, false, clockText), "Friday, 20 November 2026");
    EXPECT_EQ(fullMomentText(DateTime(), true, clockText), "");
}

TEST(DurationText, NamesItsParts) {
    struct Case {
        int minutes;
        const char* text;
    };
    static constexpr Case cases[] = {
        {-10, ""},       {0, ""},
        {1, "1 minute"}, {15, "15 minutes"},
        {60, "1 hour"},  {90, "1 hour 30 minutes"},
        {1440, "1 day"}, {2 * 1440 + 61, "2 days 1 hour 1 minute"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.minutes);
        EXPECT_EQ(durationText({someFriday(), someFriday().addMinutes(c.minutes), false}), c.text);
    }
    const DateTime day = someFriday().date();
    EXPECT_EQ(durationText({day, day, true}), "All day");
    EXPECT_EQ(durationText({day, day.addDays(2), true}), "3 days");
}

TEST(TabCaption, HasTheCountOnlyWhenThereAreRows) {
    EXPECT_EQ(tabCaption("&Events", 0), "&Events");
    EXPECT_EQ(tabCaption("&New Reminders", 1), "&New Reminders: 1");
    EXPECT_EQ(tabCaption("&All Reminders", 1234), "&All Reminders: 1234");
}

TEST(EmptyText, SaysWhyAGridIsEmpty) {
    const auto text = [](int grid, const char* code, const char* name) {
        return emptyText({grid, false, "", code, name});
    };
    EXPECT_EQ(text(0, "T", "Today"), "No new reminders");
    EXPECT_EQ(text(1, "T", "Today"), "No reminders in the period \"Today\"");
    EXPECT_EQ(text(2, "D+7", "Next 7 days"), "No events in the period \"Next 7 days\"");
    EXPECT_EQ(text(1, "di", "Dismissed"), "No dismissed reminders");
    EXPECT_EQ(text(2, "H", "Hidden"), "No hidden events");
    EXPECT_EQ(emptyText({1, false, "", "T", "Today", 44}),
              "No reminders in the period \"Today\" (44 hidden)");
    EXPECT_EQ(emptyText({2, false, "", "Di", "Dismissed", 1}), "No dismissed events (1 hidden)");
    EXPECT_EQ(emptyText({0, false, "x.mdb is not there", "T", "Today"}), "x.mdb is not there");
    EXPECT_EQ(emptyText({2, true, "x.mdb is not there", "T", "Today"}),
              "Nothing matches the search");
}

TEST(TroubleText, SaysInPlainWordsWhatIsWrongWithWhichFile) {
    constexpr const char* kFile = "/home/anna/Velmora.RemindDB";
    struct Case {
        ErrNo number;
        const char* error;
        const char* text;
    };
    static constexpr Case cases[] = {
        {ErrNo::None, "", ""},
        {ErrNo::NotFound, "/home/anna/Velmora.RemindDB: cannot open: No such file or directory",
         "Velmora.RemindDB is not there"},
        {ErrNo::NotFound, "/home/anna/Velmora.RemindDB: there is no table \"Reminders\"",
         "Velmora.RemindDB cannot be read (there is no table \"Reminders\")"},
        {ErrNo::Format, "/home/anna/Velmora.RemindDB: is no Jet 4 database",
         "Velmora.RemindDB is no Jet 4 database"},
        {ErrNo::Corrupt, "/home/anna/Velmora.RemindDB, page 12: holds no row 3",
         "Velmora.RemindDB is damaged (page 12)"},
        {ErrNo::Corrupt, "a value of 3 bytes", "Velmora.RemindDB is damaged"},
        {ErrNo::Locked, "", "Velmora.RemindDB is in use by another program"},
        {ErrNo::Locked, "/home/anna/Velmora.RemindDB: is being written by ANNA-PC (anna)",
         "Velmora.RemindDB is being written by ANNA-PC (anna)"},
        {ErrNo::Locked, "/home/anna/Velmora.RemindDB: cannot open: used by another process",
         "Velmora.RemindDB is in use by another program (used by another process)"},
        {ErrNo::Io, "/home/anna/Velmora.RemindDB: cannot open: Permission denied",
         "Velmora.RemindDB cannot be read (Permission denied)"},
        {ErrNo::Io, "", "Velmora.RemindDB cannot be read"},
        {ErrNo::Io, "no colon", "Velmora.RemindDB cannot be read (no colon)"},
        {ErrNo::Unexpected, "", "Velmora.RemindDB cannot be read"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.error);
        EXPECT_EQ(troubleText(kFile, c.number, c.error), c.text);
    }
    EXPECT_EQ(troubleText("", ErrNo::NotFound, "connection: expected a file"),
              "No folder of a reminders database was named at the start");
    EXPECT_EQ(troubleText("D:\\Data\\Velmora.RemindDB", ErrNo::Locked, ""),
              "Velmora.RemindDB is in use by another program");
}

TEST(NoticeText, SaysWhatIsLostBesideTheRest) {
    EXPECT_EQ(noticeText("", true), "");
    EXPECT_EQ(noticeText("1 event is not shown", true), "1 event is not shown");
    EXPECT_EQ(noticeText("", false), "Settings cannot be saved");
    EXPECT_EQ(noticeText("1 event is not shown", false),
              "1 event is not shown; settings cannot be saved");
}

TEST(ShownSubject, NamesAnEventThatHasNone) {
    for (const char* none : {"", " ", "\r\n\t "}) {
        EXPECT_EQ(shownSubject(none), "(no subject)");
    }
    EXPECT_EQ(shownSubject(" a "), " a ");
    EXPECT_EQ(shownSubject("0"), "0");
}

TEST(WithoutStatusText, CountsThem) {
    EXPECT_EQ(withoutStatusText(0), "");
    EXPECT_EQ(withoutStatusText(1), "1 event is not shown: it has no status");
    EXPECT_EQ(withoutStatusText(12), "12 events are not shown: they have no status");
}

TEST(WaitingText, CountsThem) {
    EXPECT_EQ(waitingText(0), "");
    EXPECT_EQ(waitingText(1), "1 change waits until the database can be written");
    EXPECT_EQ(waitingText(3), "3 changes wait until the database can be written");
}

}  // namespace
}  // namespace vl
