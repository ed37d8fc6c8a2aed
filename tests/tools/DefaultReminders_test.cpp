// Events that use the calendar's defaults: the command finds, and deals with, what the window
// shows.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "Remindb.h"
#include "base/Clock.h"
#include "events/CalEvents.h"
#include "events/Ledger.h"
#include "support/EventFile.h"
#include "support/Events.h"
#include "support/Support.h"

namespace vl {
namespace {

using test::linesOf;
using test::remindb;

// "2026-11-20T10:00:00"
std::string named(DateTime time) {
    std::string text = formatDateTime(time) + (time.hasTime() ? "" : " 00:00:00");
    text[10] = 'T';
    return text;
}

/// A daily series whose next occurrence begins in half an hour; its user is reminded an hour
/// before.
class RemindbDefaultReminders : public testing::Test {
protected:
    RemindbDefaultReminders() {
        auto event = test::series("S", next.addDays(-3), "FREQ=DAILY", {});
        event->reminders = R"({"useDefault":true})";
        event->SetRemindersCol();
        calendar.put(*event);
        std::filesystem::create_directories(home);
        test::writeFile(home + "/VLReminders.ini", "[Reminders]\nDefaultReminders=60m\n");
    }
    test::Outcome run(std::vector<std::string> arguments, bool byOption) {
        arguments.insert(arguments.begin() + 1, calendar.path());
        arguments.emplace_back("--json");
        if (byOption) {
            arguments.insert(arguments.end(), {"--settings", home + "/VLReminders.ini"});
        }
        return remindb(arguments, {}, {}, byOption ? std::string() : (folder / "share").string());
    }
    /// What the program would show now.
    std::size_t pending(const std::string& ledgerPath) {
        const SystemClock clock;
        DBRemindUtils db;
        db.DBFullName = calendar.path();
        Ledger ledger(clock, ledgerPath);
        CalEvents set(db, clock, "60m");
        set.UseLedger(ledger, {});
        set.ReadDB(true, false);
        return set.RemindCol(next.addMinutes(-70), clock.now(), true)->Count();
    }

    const DateTime next = SystemClock().now().addMinutes(30);
    test::TempFolder folder;
    test::EventFile calendar{(folder / "Velmora.RemindDB").string()};
    std::string home = (folder / "share" / "Velmora").string();
};

TEST_F(RemindbDefaultReminders, DueAndListGiveWhatTheWindowShows) {
    for (const bool byOption : {false, true}) {
        SCOPED_TRACE(byOption ? "named" : "the program's own");
        const auto due =
            run({"due", "--from", named(next.addMinutes(-61)), "--to", named(next.addMinutes(-59))},
                byOption);
        ASSERT_EQ(due.code, 0) << due.err;
        ASSERT_EQ(linesOf(due.out).size(), 1U);
        EXPECT_EQ(linesOf(due.out)[0]["Reminder"], named(next.addMinutes(-60)));
        EXPECT_EQ(linesOf(due.out)[0]["Start"], named(next));
        const auto list =
            run({"list", "--period", "R", "--now", named(next.addMinutes(-60))}, byOption);
        ASSERT_EQ(list.code, 0) << list.err;
        EXPECT_EQ(linesOf(list.out).size(), 1U);
    }
}

TEST_F(RemindbDefaultReminders, WithoutTheSettingThereIsNone) {
    const auto due = remindb({"due", calendar.path(), "--from", named(next.addDays(-2)), "--to",
                              named(next.addDays(2)), "--json"});
    ASSERT_EQ(due.code, 0) << due.err;
    EXPECT_EQ(due.out, "");
}

TEST_F(RemindbDefaultReminders, DismissIsOnTheOccurrenceThatTheWindowShows) {
    for (const bool byOption : {false, true}) {
        SCOPED_TRACE(byOption ? "named" : "the program's own");
        const std::string ledger = (folder / (byOption ? "named.ledger" : "own.ledger")).string();
        calendar.change("S", {{"NextReminder", Variant(Null{})}, {"Dismissed", Variant(Null{})}});
        ASSERT_EQ(pending(ledger), 1U);
        const auto dismissed = run({"dismiss", "S", "--ledger", ledger}, byOption);
        ASSERT_EQ(dismissed.code, 0) << dismissed.err;
        const auto line = linesOf(dismissed.out).at(0);
        EXPECT_EQ(line["start"], named(next));
        EXPECT_EQ(line["NextReminder"], named(next.addDays(1).addMinutes(-60)));
        EXPECT_EQ(pending(ledger), 0U);
    }
}

}  // namespace
}  // namespace vl
