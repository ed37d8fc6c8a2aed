// Events as remindb reads and writes them.
#include <gmock/gmock.h>

#include "Remindb.h"

namespace vl {
namespace {

using test::Json;
using test::linesOf;
using test::remindb;
using testing::HasSubstr;

const char* const kWeekly = R"({
  "id": "a1", "summary": "Project \"meeting\" \ud83d\udcc5",
  "start": {"date": "2026-11-20"}, "end": {"date": "2026-11-22"},
  "recurrence": ["RRULE:FREQ=WEEKLY", "EXDATE;VALUE=DATE:20261127"],
  "reminders": {"useDefault": false, "overrides": [{"method": "popup", "minutes": 10},
                                                   {"method": "email", "minutes": 1440}]}
})";

TEST(RemindbEvent, GivesAllProperties) {
    const auto run = remindb({"event"}, kWeekly);
    EXPECT_EQ(run.code, 0);
    const auto lines = linesOf(run.out);
    ASSERT_EQ(lines.size(), 1U);
    const Json& event = lines[0];
    EXPECT_EQ(event.size(), 63U);
    EXPECT_EQ(event.begin().key(), "BeforeMoveStartDateTime");
    EXPECT_EQ(event.at("Subject"), "Project \"meeting\" \U0001F4C5");
    EXPECT_EQ(event.at("IsAllDayEvent"), true);
    EXPECT_EQ(event.at("StartDateTime"), "2026-11-20T00:00:00");
    EXPECT_EQ(event.at("EndDateTime"), "2026-11-21T00:00:00");
    EXPECT_EQ(event.at("Dismissed"), nullptr);
    EXPECT_EQ(event.at("RRULE"), "FREQ=WEEKLY");
    EXPECT_EQ(event.at("RemindersCol"), Json::array({"10m", "1d (e)"}));
    EXPECT_EQ(event.at("ExDates"), Json::array({"2026-11-27T00:00:00"}));
    EXPECT_EQ(event.at("RepDates"), nullptr);
}

TEST(RemindbEvent, RemindersAreGivenAsTheyAreTyped) {
    const struct {
        const char* given;
        const char* typed;
    } cases[] = {
        {R"("method":"popup","minutes":0)", "0m"},
        {R"("method":"popup","minutes":45)", "45m"},
        {R"("method":"email","minutes":75)", "75m (e)"},
        {R"("method":"popup","minutes":1440)", "1d"},
        {R"("method":"email","minutes":1620)", "27h (e)"},
        {R"("method":"popup","minutes":5100)", "5100m"},
        {R"("method":"popup","minutes":-10)", "-10m"},
        {R"("method":"email","minutes":-60)", "-1h (e)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.given);
        const auto run =
            remindb({"event"}, std::string(R"({"reminders":{"overrides":[{)") + c.given + "}]}}");
        EXPECT_EQ(run.code, 0);
        EXPECT_EQ(linesOf(run.out).at(0).at("RemindersCol"), Json::array({c.typed}));
    }
}

TEST(RemindbEvent, SurvivesEndlessNesting) {
    const std::string deep = std::string(100000, '[') + std::string(100000, ']');
    const auto run = remindb({"event"}, R"({"summary":"S","x":)" + deep + "}");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(linesOf(run.out).at(0).at("Subject"), "S");
}

TEST(RemindbEvent, SavedAndReadAgainItIsTheSame) {
    const auto saved = remindb({"event", "--save"}, kWeekly);
    EXPECT_EQ(saved.code, 0);
    const auto lines = linesOf(saved.out);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].at("summary"), "Project \"meeting\" \U0001F4C5");
    EXPECT_EQ(lines[0].at("end").at("date"), "2026-11-22");
    EXPECT_EQ(remindb({"event", "--save"}, saved.out).out, saved.out);
}

TEST(RemindbEvent, TakesOneAfterTheOther) {
    EXPECT_EQ(linesOf(remindb({"event"}, std::string(kWeekly) + kWeekly + "\n\n").out).size(), 2U);
    EXPECT_EQ(remindb({"event"}, " \n").out, "");
}

TEST(RemindbEvent, SaysWhatIsNoEvent) {
    const struct {
        const char* input;
        const char* message;
    } cases[] = {{"{\"id\": ", "no JSON"}, {"[1]", "an event is a JSON object"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.input);
        const auto run = remindb({"event"}, c.input);
        EXPECT_EQ(run.code, 1);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err, HasSubstr(c.message));
    }
    EXPECT_EQ(remindb({"event", "a", "b"}).code, 2);
    EXPECT_EQ(remindb({"event", "--json"}).code, 2);
}

}  // namespace
}  // namespace vl
