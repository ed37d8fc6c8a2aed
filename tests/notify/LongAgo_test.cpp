// What was dealt with months ago: the ledger forgets it, and nothing of it comes back.
#include <gtest/gtest.h>

#include <functional>

#include "FileDesk.h"
#include "db/jet/Transaction.h"

namespace vl {
namespace {

using namespace test;

DateTime on(int year, int month, int day, int hour = 9, int minute = 0) {
    return DateTime::fromCivil(year, month, day, hour, minute, 0);
}

std::shared_ptr<calEvent> exceptionTo(const calEvent& series, DateTime replaced, DateTime start) {
    auto event = single("X", start, {15});
    event->RecurrenceState = 3;
    event->recurringEventId = series.id;
    event->RExceptionStartTimeOrig = replaced;
    return event;
}

class LongAgo : public testing::Test {
protected:
    void act(const std::function<void(Acts&, const ActRow&)>& what, const char* GUID = "A") {
        what(desk->program->acts, desk->listed.at(GUID));
    }
    void dismiss(DismissMode mode = DismissMode::This, const char* GUID = "A") {
        act([&](Acts& acts, const ActRow& row) { acts.Dismiss(row, mode); }, GUID);
    }
    void snooze(int minutes) {
        act([&](Acts& acts, const ActRow& row) { acts.Snooze(row, minutes); });
    }
    /// The program starts anew each day at nine, and checks: what came, and when.
    std::string mornings(DateTime first, int days) {
        std::string came;
        for (int i = 0; i < days; ++i) {
            const DateTime day = first.date().addDays(i).addMinutes(9 * 60);
            desk->program.reset();
            const std::string taken = desk->check(day);
            came += taken.empty() ? "" : formatDateTime(day).substr(0, 10) + ": " + taken + "; ";
        }
        return came;
    }
    void begin(const std::shared_ptr<calEvent>& event) {
        desk = std::make_unique<FileDesk>();
        desk->clock.time = on(2026, 11, 20, 8);
        desk->put(event);
        ASSERT_EQ(desk->check(on(2026, 11, 20, 9, 45)), "A 09:45");
    }

    std::unique_ptr<FileDesk> desk;
};

TEST_F(LongAgo, NoActOnASeldomSeriesIsForgotten) {
    struct Case {
        const char* what;
        std::function<void(Acts&, const ActRow&)> act;
    };
    const Case acts[] = {
        {"this", [](Acts& a, const ActRow& row) { a.Dismiss(row, DismissMode::This); }},
        {"all but after", [](Acts& a, const ActRow& r) { a.Dismiss(r, DismissMode::AllButAfter); }},
        {"all", [](Acts& a, const ActRow& row) { a.Dismiss(row, DismissMode::All); }},
        {"done", [](Acts& a, const ActRow& row) { a.Dismiss(row, DismissMode::This, true); }},
    };
    for (const char* rule :
         {"FREQ=YEARLY", "FREQ=MONTHLY;INTERVAL=6", "FREQ=YEARLY;BYMONTH=10,11,12"}) {
        for (const Case& c : acts) {
            SCOPED_TRACE(std::string(rule) + ", " + c.what);
            begin(series("A", on(2026, 11, 20, 10), rule, {15}));
            desk->clock.time = on(2026, 11, 20, 9, 50);
            act(c.act);
            if (std::string_view(rule).ends_with("12")) {
                ASSERT_EQ(desk->check(on(2026, 12, 20, 9, 45)), "A 09:45");
                act(c.act);
            }
            EXPECT_EQ(mornings(on(2027, 2, 16), 5), "");
            EXPECT_EQ(mornings(on(2027, 3, 18), 5), "");
            EXPECT_EQ(mornings(on(2027, 5, 1), 1), "");
        }
    }
}

TEST_F(LongAgo, ADismissalThatCameAfterTheOccurrenceHoldsToo) {
    begin(series("A", on(2026, 11, 20, 10), "FREQ=YEARLY", {15}));
    desk->clock.time = on(2026, 11, 21, 12);
    dismiss();
    EXPECT_EQ(mornings(on(2027, 2, 16), 10), "");
    EXPECT_EQ(mornings(on(2027, 11, 21), 1), "2027-11-21: A 09:45; ") << "the next one comes";
}

TEST_F(LongAgo, ASnoozeThatWasDismissedBeforeItCameStaysSo) {
    for (const char* rule : {"", "FREQ=YEARLY", "FREQ=MONTHLY;INTERVAL=6"}) {
        for (const int minutes : {15, 14 * 24 * 60}) {
            for (const auto mode :
                 {DismissMode::This, DismissMode::AllButAfter, DismissMode::All}) {
                SCOPED_TRACE(std::string(rule) + ", " + std::to_string(minutes));
                const DateTime start = on(2026, 11, 20, 10);
                // Of a single event a reminder to come keeps it from being finished.
                begin(*rule == '\0' ? single("A", start, {15, -300 * 24 * 60})
                                    : series("A", start, rule, {15}));
                snooze(minutes);
                desk->clock.time = on(2026, 11, 20, 9, 50);
                dismiss(mode);
                EXPECT_EQ(mornings(on(2026, 12, 5), 1), "");
                EXPECT_EQ(mornings(on(2027, 2, 16), 8), "");
                EXPECT_EQ(mornings(on(2027, 3, 2), 6), "");
            }
        }
    }
}

TEST_F(LongAgo, AllIsForTheReminderLongAfterTheEventToo) {
    for (const int daysLater : {0, 20, 85}) {
        SCOPED_TRACE(daysLater);
        begin(single("A", on(2026, 11, 20, 10), {15, -100 * 24 * 60}));
        if (daysLater > 0) {
            ASSERT_EQ(desk->check(on(2026, 11, 20, 9, 45).addDays(daysLater)), "");
        }
        dismiss(DismissMode::All);
        EXPECT_EQ(mornings(on(2027, 2, 18), 14), "");
        EXPECT_EQ(mornings(on(2027, 6, 18), 3), "");
    }
}

TEST_F(LongAgo, ARowThatNobodyHasActedUponStaysInTheList) {
    begin(series("A", on(2026, 11, 20, 10), "FREQ=YEARLY", {15}));
    desk->clock.time = on(2026, 11, 20, 9, 50);
    desk->put(single("B", on(2026, 11, 20, 11), {15}));
    ASSERT_EQ(desk->check(on(2026, 11, 20, 10, 45)), "B 10:45");
    for (const DateTime day : {on(2027, 2, 17), on(2027, 2, 25), on(2027, 7, 1)}) {
        desk->program.reset();
        EXPECT_EQ(desk->check(day), "A 09:45, B 10:45");
    }
    dismiss();
    dismiss(DismissMode::This, "B");
    EXPECT_EQ(desk->check(on(2027, 7, 1, 9, 1)), "");
    EXPECT_EQ(mornings(on(2027, 7, 2), 2), "");
    EXPECT_EQ(mornings(on(2027, 10, 20), 3), "");
}

// Two occurrences rang while the row of the first stood in the list; the second is not lost.
TEST_F(LongAgo, WhatFellDueBehindAListedRowComesWhenItIsDealtWith) {
    begin(series("A", on(2026, 11, 20, 10), "FREQ=MONTHLY;INTERVAL=3", {15}));
    ASSERT_EQ(desk->check(on(2027, 2, 20, 9, 45)), "") << "it rings, and is the same row";
    ASSERT_EQ(desk->check(on(2027, 5, 25, 9)), "");
    dismiss();
    EXPECT_EQ(desk->check(on(2027, 5, 25, 9, 1)), "A 09:45");
    EXPECT_EQ(desk->listed.at("A").InstanceStart, on(2027, 5, 20, 10)) << "the latest";
    dismiss();
    EXPECT_EQ(desk->check(on(2027, 5, 25, 9, 2)), "");
    EXPECT_EQ(mornings(on(2027, 5, 26), 3), "");
}

TEST_F(LongAgo, WhatAnExceptionHasEndedStaysEnded) {
    for (const char* rule : {"FREQ=WEEKLY;COUNT=2", "FREQ=YEARLY"}) {
        for (const bool isSnoozed : {true, false}) {
            SCOPED_TRACE(std::string(rule) + (isSnoozed ? ", snoozed" : ", listed"));
            const auto master = series("A", on(2026, 11, 20, 10), rule, {15});
            begin(master);
            if (isSnoozed) {
                snooze(120);
            }
            desk->clock.time = on(2026, 11, 20, 9, 50);
            desk->put(exceptionTo(*master, on(2026, 11, 20, 10), on(2026, 11, 20, 16)));
            ASSERT_EQ(desk->check(on(2026, 11, 20, 9, 51)), "");
            ASSERT_EQ(desk->check(on(2026, 11, 20, 12)), "") << "gone with its occurrence";
            ASSERT_EQ(desk->check(on(2026, 11, 20, 15, 45)), "X 15:45");
            dismiss(DismissMode::This, "X");
            desk->check(on(2026, 11, 20, 15, 46));
            if (std::string_view(rule).starts_with("FREQ=W")) {
                desk->program.reset();
                ASSERT_EQ(desk->check(on(2026, 11, 27, 9, 45)), "A 09:45");
                dismiss();
            }
            EXPECT_EQ(mornings(on(2026, 12, 10), 3), "");
            EXPECT_EQ(mornings(on(2027, 2, 16), 6), "");
            EXPECT_EQ(mornings(on(2027, 3, 16), 4), "");
        }
    }
}

// The row is the last that knows what its exception has replaced.
TEST_F(LongAgo, WhatIsPurgedOrFinishedUnderAClockThatIsAheadStaysReplaced) {
    enum class Goes { Purged, Finished, Removed };
    struct Case {
        Goes goes;
        bool isSeen;  // a check by that clock has seen the exception
        bool isRestarted;
    };
    static constexpr Case cases[] = {{Goes::Purged, false, true},
                                     {Goes::Finished, false, true},
                                     {Goes::Purged, true, true},
                                     {Goes::Removed, true, false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << static_cast<int>(c.goes) << c.isSeen);
        desk = std::make_unique<FileDesk>();
        desk->clock.time = on(2026, 11, 20, 8);
        const auto master = series("A", on(2026, 11, 27, 10), "FREQ=WEEKLY;COUNT=3", {15});
        desk->put(master);
        desk->put(exceptionTo(*master, on(2026, 12, 4, 10), on(2026, 11, 26, 10)));
        ASSERT_EQ(desk->check(on(2026, 11, 20, 9)), "");
        if (c.isSeen) {
            desk->program.reset();
            ASSERT_EQ(desk->check(on(2027, 11, 20, 8)), "");
        }
        if (c.isRestarted) {
            desk->program.reset();
        }
        if (c.goes == Goes::Removed) {
            desk->file.remove("X");
        } else {
            desk->file.change("X",
                              {c.goes == Goes::Purged ? std::pair("Deleted", Variant(true))
                                                      : std::pair("status", Variant("AllDone"))});
        }
        desk->check(on(2027, 11, 20, 9));
        desk->file.remove("X");
        desk->program.reset();
        desk->check(on(2026, 11, 20, 10));
        ASSERT_EQ(desk->check(on(2026, 11, 27, 9, 45)), "A 09:45");
        dismiss();
        EXPECT_EQ(desk->check(on(2026, 12, 4, 9, 45)), "") << "that one was brought forward";
        EXPECT_EQ(desk->check(on(2026, 12, 11, 9, 45)), "A 09:45");
    }
}

}  // namespace
}  // namespace vl
