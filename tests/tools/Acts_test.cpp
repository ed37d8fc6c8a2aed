// Acts from the command line, on a copy of a file, with a ledger of their own.
#include <gmock/gmock.h>

#include <filesystem>
#include <optional>

#include "Remindb.h"
#include "base/Clock.h"
#include "support/EventFile.h"
#include "support/Events.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using test::Json;
using test::linesOf;
using testing::HasSubstr;

constexpr const char* kDentist = "{437fed06-b0d4-4c70-8ac9-99114cc7b46a}";
constexpr const char* kStandUp = "{956ABE94-E18E-437E-878F-EF5EC79876F1}";

class RemindbActs : public testing::Test {
protected:
    void SetUp() override { fs::copy_file(test::repoFile("data/first-light.RemindDB"), file); }
    test::Outcome act(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin() + 1, file);
        arguments.insert(arguments.end(), {"--ledger", ledger, "--json"});
        return test::remindb(arguments);
    }
    Json stored(const std::string& GUID) {
        const auto rows = test::remindb(
            {"sql", file,
             "SELECT NextReminder, Dismissed, Hidden, status FROM Reminders WHERE GUID=\"" + GUID +
                 "\"",
             "--json"});
        return linesOf(rows.out).at(0);
    }
    std::vector<Json> noted() { return linesOf(test::readFile(ledger)); }

    test::TempFolder folder;
    std::string file = (folder / "Velmora.RemindDB").string();
    std::string ledger = (folder / "VLReminders.ledger").string();
};

TEST_F(RemindbActs, SnoozeNotesAndWrites) {
    const auto run = act({"snooze", kDentist, kStandUp, "--for", "2h"});
    ASSERT_EQ(run.code, 0) << run.err;
    const auto lines = linesOf(run.out);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0]["start"], "2026-11-20T14:00:00");
    EXPECT_EQ(lines[0]["NextReminder"], stored(kDentist)["NextReminder"]);
    EXPECT_FALSE(lines[0]["NextReminder"].is_null());
    EXPECT_TRUE(stored(kDentist)["Dismissed"].is_null());
    EXPECT_EQ(stored(kStandUp)["NextReminder"], lines[1]["NextReminder"]);
    ASSERT_EQ(noted().size(), 2U);
    EXPECT_EQ(noted()[0]["act"], "snooze");
    EXPECT_EQ(noted()[0]["db"], file);
    EXPECT_EQ(noted()[0]["occurrences"][0]["start"], "2026-11-20 14:00:00");
}

TEST_F(RemindbActs, DismissAndReactivate) {
    ASSERT_EQ(act({"dismiss", kDentist, "--mode", "all"}).code, 0);
    EXPECT_FALSE(stored(kDentist)["Dismissed"].is_null());
    EXPECT_EQ(noted().back()["occurrences"][0]["muted"], "ever");
    ASSERT_EQ(act({"reactivate", kDentist}).code, 0);
    EXPECT_EQ(stored(kDentist)["Dismissed"], "1899-12-30T00:00:00");
    EXPECT_EQ(noted().back()["forget"], true);
}

// What the ledger keeps of the occurrence after each way of dismissing.
TEST_F(RemindbActs, DismissesInEachMode) {
    struct Case {
        std::vector<std::string> options;
        const char* muted;
        const char* act;
    };
    const Case cases[] = {{{}, "", "this"},
                          {{"--mode", "this"}, "", "this"},
                          {{"--mode", "except-after"}, "start", "all but after"},
                          {{"--mode", "all"}, "ever", "all"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.options));
        fs::remove(ledger);
        std::vector<std::string> arguments{"dismiss", kDentist};
        arguments.insert(arguments.end(), c.options.begin(), c.options.end());
        const auto run = act(arguments);
        ASSERT_EQ(run.code, 0) << run.err;
        EXPECT_EQ(linesOf(run.out).at(0)["Dismissed"], stored(kDentist)["Dismissed"]);
        EXPECT_FALSE(stored(kDentist)["Dismissed"].is_null());
        const Json line = noted().at(0);
        EXPECT_EQ(line["act"], c.act);
        EXPECT_EQ(line["occurrences"][0].value("muted", ""), c.muted);
        EXPECT_EQ(line["occurrences"][0].contains("handled"), true);
        EXPECT_EQ(stored(kDentist)["status"], "confirmed");
    }
}

TEST_F(RemindbActs, DoneEndsASingleEventAndOneOccurrenceOfASeries) {
    const auto found = test::remindb(
        {"sql", file, "SELECT GUID FROM Reminders WHERE Subject = \"Project review\"", "--json"});
    const auto series = linesOf(found.out).at(0)["GUID"].get<std::string>();
    const auto run = act({"dismiss", kDentist, series, "--done"});
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(linesOf(run.out).at(0)["status"], "AllDone");
    EXPECT_EQ(stored(kDentist)["status"], "AllDone");
    EXPECT_EQ(stored(series)["status"], "confirmed") << "others are to come";
    for (const Json& line : noted()) {
        EXPECT_EQ(line["act"], "done");
        EXPECT_EQ(line["occurrences"][0]["muted"], "ever");
    }
    ASSERT_EQ(act({"reactivate", kDentist}).code, 0);
    EXPECT_EQ(stored(kDentist)["status"], "");
}

TEST_F(RemindbActs, HideAndShow) {
    ASSERT_EQ(act({"hide", kDentist}).code, 0);
    EXPECT_EQ(stored(kDentist)["Hidden"], true);
    ASSERT_EQ(act({"hide", kDentist, "--show"}).code, 0);
    EXPECT_EQ(stored(kDentist)["Hidden"], false);
}

TEST_F(RemindbActs, AnOccurrenceOfASeriesIsNamedByItsStart) {
    const auto found = test::remindb(
        {"sql", file, "SELECT GUID FROM Reminders WHERE Subject = \"Project review\"", "--json"});
    const auto series = linesOf(found.out).at(0)["GUID"].get<std::string>();
    const auto run = act({"snooze", series, "--at", "2026-11-30T10:00:00"});
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(linesOf(run.out).at(0)["start"], "2026-11-30T10:00:00");
    const auto wrong = act({"snooze", series, "--at", "2026-12-01T10:00:00"});
    EXPECT_EQ(wrong.code, 1);
    EXPECT_THAT(wrong.err, HasSubstr("no occurrence at 2026-12-01T10:00:00"));
}

TEST_F(RemindbActs, AnEventWithoutADateIsPutOffAndHiddenLikeAnyOther) {
    fs::remove(file);
    test::EventFile events(file);
    const auto event = test::single("{U}", test::at(10, 0), {15});
    event->StartDateTime = event->EndDateTime = DateTime();
    events.put(*event);
    ASSERT_EQ(act({"hide", "{U}"}).code, 0);
    EXPECT_EQ(stored("{U}")["Hidden"], true);
    const auto run = act({"snooze", "{U}", "--for", "2h"});
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(linesOf(run.out).at(0)["NextReminder"], stored("{U}")["NextReminder"]);
    ASSERT_EQ(act({"dismiss", "{U}"}).code, 0);
    EXPECT_TRUE(noted().back()["occurrences"][0].value("snoozed", "").empty());
    ASSERT_EQ(act({"reactivate", "{U}"}).code, 0);
    EXPECT_EQ(stored("{U}")["Dismissed"], "1899-12-30T00:00:00");
}

TEST_F(RemindbActs, SaysWhatFailed) {
    EXPECT_THAT(act({"dismiss", "{nobody}"}).err, HasSubstr("there is no event {nobody}"));
    EXPECT_EQ(act({"dismiss", "{nobody}"}).code, 1);
    EXPECT_EQ(act({"dismiss", kDentist, "--mode", "some"}).code, 2);
    EXPECT_EQ(act({"snooze", kDentist, "--for", "0"}).code, 2);
    for (const char* ofAllOccurrences : {"reactivate", "hide"}) {
        EXPECT_EQ(act({ofAllOccurrences, kDentist, "--at", "2026-11-20T14:00:00"}).code, 2);
    }
    EXPECT_EQ(test::remindb({"snooze", file}).code, 2);
    EXPECT_FALSE(fs::exists(ledger)) << "nothing was done";
    ledger = (folder / "no" / "ledger").string();
    const auto run = act({"snooze", kDentist});
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("the ledger cannot be written"));
}

// A daily series whose occurrence of today an exception has moved.
class RemindbActsOnSeries : public testing::Test {
protected:
    /// Who knows of the exception.
    enum class Known { ByItsRow, ByItsFinishedRow, ByTheLedger };

    void begin(Known known) {
        folder.emplace();
        ledger = (*folder / "VLReminders.ledger").string();
        calendar.emplace((*folder / "Velmora.RemindDB").string());
        calendar->put(*test::series("M", today.addDays(-3), "FREQ=DAILY", {15}));
        auto exception = test::single("X", today.addMinutes(300), {15});
        exception->RecurrenceState = 3;
        exception->recurringEventId = "idM";
        exception->RExceptionStartTimeOrig = today;
        exception->status = known == Known::ByItsFinishedRow ? "AllDone" : "";
        if (known == Known::ByTheLedger) {
            const Json line = {
                {"db", calendar->path()}, {"master", "idM"}, {"replaced", formatDateTime(today)}};
            test::writeFile(ledger, line.dump() + "\n");
        } else {
            calendar->put(*exception);
        }
    }
    test::Outcome act(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin() + 1, calendar->path());
        arguments.insert(arguments.end(), {"--ledger", ledger, "--json"});
        return test::remindb(arguments);
    }
    /// "2026-11-20T10:00:00"
    static std::string named(DateTime time) {
        std::string text = formatDateTime(time) + (time.hasTime() ? "" : " 00:00:00");
        text[10] = 'T';
        return text;
    }
    /// What the ledger's last line says of the occurrence.
    Json noted(DateTime start) {
        const Json last = linesOf(test::readFile(ledger)).back();
        for (const Json& one : last.value("occurrences", Json::array())) {
            if (one["start"] == formatDateTime(start)) {
                return one;
            }
        }
        return Json();
    }

    const DateTime today = SystemClock().now().addMinutes(-10);
    std::optional<test::TempFolder> folder;
    std::optional<test::EventFile> calendar;
    std::string ledger;
};

TEST_F(RemindbActsOnSeries, NoActIsOnAnOccurrenceThatAnExceptionHasReplaced) {
    for (const Known known : {Known::ByItsRow, Known::ByItsFinishedRow, Known::ByTheLedger}) {
        SCOPED_TRACE(static_cast<int>(known));
        for (const char* command : {"snooze", "dismiss"}) {
            begin(known);
            const auto refused = act({command, "M", "--at", named(today)});
            EXPECT_EQ(refused.code, 1);
            EXPECT_THAT(refused.err, HasSubstr("an exception has taken the place"));
            const auto run = act({command, "M"});
            ASSERT_EQ(run.code, 0) << run.err;
            EXPECT_EQ(linesOf(run.out).at(0)["start"], named(today.addDays(-1)));
            EXPECT_TRUE(noted(today).is_null());
            EXPECT_FALSE(noted(today.addDays(-1)).is_null());
        }
    }
}

TEST_F(RemindbActsOnSeries, ASnoozeInTheRowIsNotOfAnOccurrenceThatAnExceptionHasReplaced) {
    for (const Known known : {Known::ByItsRow, Known::ByItsFinishedRow, Known::ByTheLedger}) {
        SCOPED_TRACE(static_cast<int>(known));
        begin(known);
        calendar->change("M", {{"NextReminder", Variant(today.addMinutes(40))}});
        const auto run = act({"dismiss", "M", "--at", named(today.addDays(1))});
        ASSERT_EQ(run.code, 0) << run.err;
        EXPECT_FALSE(noted(today.addDays(-1)).value("snoozed", "").empty()) << "it still comes";
        EXPECT_TRUE(noted(today).is_null());
    }
}

TEST_F(RemindbActsOnSeries, AnExceptionInAnotherOfTheHostsDatabasesReplacesNothingHere) {
    begin(Known::ByItsRow);
    calendar->change("X", {{"VLBase", Variant(std::string("C:\\Work.vldb"))}});
    auto other = test::series("N", today.addDays(-3), "FREQ=DAILY", {15});
    other->id = "idM";
    other->VLBase = "C:\\Work.vldb";
    calendar->put(*other);
    EXPECT_EQ(act({"dismiss", "M", "--at", named(today)}).code, 0);
    EXPECT_EQ(act({"dismiss", "N", "--at", named(today)}).code, 1);
}

}  // namespace
}  // namespace vl
