// What remindb finds due, and what it lists for a period.
#include <gmock/gmock.h>

#include "Remindb.h"
#include "support/Support.h"

namespace vl {
namespace {

using test::Json;
using test::linesOf;
using test::remindb;
using testing::HasSubstr;

const std::string kFile = test::repoFile("data/first-light.RemindDB").string();

std::vector<std::string> subjectsOf(const std::string& out) {
    std::vector<std::string> subjects;
    for (const Json& line : linesOf(out)) {
        subjects.push_back(line.at("Subject"));
    }
    return subjects;
}

TEST(RemindbDue, GivesTheEarliestReminderOfEachEventInTheWindow) {
    const auto run =
        remindb({"due", kFile, "--from", "2026-11-20", "--to", "2026-11-20T13:45:00", "--json"});
    EXPECT_EQ(run.code, 0) << run.err;
    const auto lines = linesOf(run.out);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].dump(),
              R"({"Reminder":"2026-11-20T09:25:00","Start":"2026-11-20T09:30:00","iRemMinutes":5,)"
              R"("iRemMinutesNext":0,"Subject":"Stand-up meeting",)"
              R"("GUID":"{956ABE94-E18E-437E-878F-EF5EC79876F1}"})");
    EXPECT_EQ(lines[1].at("Reminder"), "2026-11-20T13:45:00");
    const auto text =
        remindb({"due", kFile, "--from", "2026-11-20T13:45:01", "--to", "2026-11-20T16:45:00"});
    EXPECT_EQ(text.out.substr(0, text.out.find('\n')),
              "Reminder\tStart\tiRemMinutes\tiRemMinutesNext\tSubject\tGUID");
    EXPECT_THAT(text.out, HasSubstr("2026-11-20T16:45:00\t"));
    EXPECT_THAT(text.out, HasSubstr("Call the insurance"));
}

TEST(RemindbList, ListsWhatTheViewsOfAPeriodShow) {
    const auto list = [](const char* period, bool events) {
        std::vector<std::string> arguments = {"list",   kFile,   "--period",           period,
                                              "--json", "--now", "2026-11-20T14:00:00"};
        if (events) {
            arguments.emplace_back("--events");
        }
        const auto run = remindb(arguments);
        EXPECT_EQ(run.code, 0) << run.err;
        return subjectsOf(run.out);
    };
    EXPECT_EQ(list("t", false).size(), 4U) << "codes in any case";
    EXPECT_EQ(list("R", false),
              (std::vector<std::string>{"Stand-up meeting", "Dentist: check-up"}));
    EXPECT_EQ(list("Di", true).size(), 0U);
    const auto today = list("T", true);
    EXPECT_EQ(today.size(), 3U);
    EXPECT_THAT(list("D+7", true), testing::IsSupersetOf(today));
}

TEST(RemindbList, SaysWhatWasCalledWrongly) {
    EXPECT_EQ(remindb({"list", kFile, "--period", "D+8"}).code, 2);
    EXPECT_THAT(remindb({"list", kFile}).err, HasSubstr("D+30"));
    EXPECT_THAT(remindb({"due", kFile, "--from", "2026-11-20"}).err, HasSubstr("--to"));
    const auto none =
        remindb({"due", "no-such-file", "--from", "2026-11-20", "--to", "2026-11-21"});
    EXPECT_EQ(none.code, 1);
    EXPECT_THAT(none.err, HasSubstr("no-such-file"));
    EXPECT_EQ(remindb({"due", kFile, "--from", "noon", "--to", "2026-11-21"}).code, 1);
}

}  // namespace
}  // namespace vl
