// When series happen, asked of remindb line by line.
#include <gmock/gmock.h>

#include <iostream>
#include <sstream>

#include "Remindb.h"
#include "support/Support.h"

namespace vl {
namespace {

using test::Json;
using test::linesOf;
using test::remindb;
using testing::HasSubstr;

const char* const kDaily = R"({"id": "d", "lines": ["RRULE:FREQ=DAILY;COUNT=3"],)"
                           R"( "dtstart": "2026-11-20T09:00:00", "from": "2026-11-20",)"
                           R"( "to": "2026-12-31")";

TEST(RemindbOccurrences, AnswersALineWithALine) {
    const std::string line(kDaily);
    const std::string all = R"({"id":"d","occurrences":["2026-11-20T09:00:00",)"
                            R"("2026-11-21T09:00:00","2026-11-22T09:00:00"],)"
                            R"("last":"2026-11-22T09:00:00")";
    struct Case {
        const char* name;
        std::string input;
        std::string output;
    };
    const Case cases[] = {
        {"no end asked for", line + "}\n", all + "}\n"},
        {"at most", line + R"(, "max": 1})",
         R"({"id":"d","occurrences":["2026-11-20T09:00:00"],"last":"2026-11-22T09:00:00"})"
         "\n"},
        {"next", line + R"(, "next": [{"after": "2026-11-21T09:00:00"}, {"after": "2026-12-01"}]})",
         all + R"(,"next":[{"after":"2026-11-21T09:00:00","next":"2026-11-22T09:00:00"},)"
               R"({"after":"2026-12-01T00:00:00","next":null}]})"
               "\n"},
        {"empty lines", "\n \r\n", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto run = remindb({"occurrences"}, c.input);
        EXPECT_EQ(run.code, 0);
        EXPECT_EQ(run.err, "");
        EXPECT_EQ(run.out, c.output);
    }
}

TEST(RemindbOccurrences, TheStartIsOnTheClockOfTheSeries) {
    const auto run =
        remindb({"occurrences", "-"},
                R"({"id": 1, "lines": ["RRULE:FREQ=WEEKLY"], "dtstart": "2026-10-19T12:00:00",)"
                R"( "tz": "America/New_York", "local_tz": "Europe/Berlin", "from": "2026-10-19",)"
                R"( "to": "2026-11-03"})");
    EXPECT_EQ(run.out, R"({"id":1,"occurrences":["2026-10-19T18:00:00","2026-10-26T17:00:00",)"
                       R"("2026-11-02T18:00:00"],"last":null})"
                       "\n");
}

TEST(RemindbOccurrences, ALineThatCannotBeAnsweredSaysWhyAndTheNextOnesFollow) {
    const std::string good = std::string(kDaily) + "}\n";
    const struct {
        const char* line;
        const char* error;
    } cases[] = {
        {"[", "parse error"},
        {"[]", "no JSON object"},
        {R"({"id": "d"})", "\"dtstart\" is missing"},
        {R"({"id": "d", "dtstart": "2026-11-31"})", "2026-11-31"},
        {R"({"id": "d", "dtstart": "20261120T090000Z"})", "yyyy-mm-ddThh:mm:ss"},
        {R"({"id": "d", "dtstart": "2026-11-20", "lines": "RRULE:FREQ=DAILY"})", "\"lines\""},
        {R"({"id": "d", "dtstart": "2026-11-20", "lines": [], "from": "2026-11-20"})", "\"to\""},
        {R"({"id": "d", "dtstart": "2026-11-20", "local_tz": "Nowhere/Atall"})", "Nowhere/Atall"},
        {R"({"id": "d", "dtstart": "2026-11-20", "lines": [], "from": "2026-11-20",)"
         R"( "to": "2026-11-20", "max": -1})",
         "\"max\""},
        {R"({"id": "d", "dtstart": "2026-11-20", "allday": 3})", "boolean"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        const auto run = remindb({"occurrences"}, std::string(c.line) + "\n" + good);
        EXPECT_EQ(run.code, 0);
        const auto lines = linesOf(run.out);
        ASSERT_EQ(lines.size(), 2U);
        EXPECT_FALSE(lines[0].contains("occurrences"));
        EXPECT_THAT(lines[0].at("error").get<std::string>(), HasSubstr(c.error));
        EXPECT_EQ(lines[1].at("occurrences").size(), 3U);
    }
}

TEST(RemindbOccurrences, SurvivesEndlessNesting) {
    const std::string deep = std::string(100000, '[') + std::string(100000, ']');
    const auto run =
        remindb({"occurrences"}, R"({"id":)" + deep + "}\n" + R"({"lines":)" + deep + "}");
    EXPECT_EQ(run.code, 0);
    const auto lines = linesOf(run.out);
    ASSERT_EQ(lines.size(), 2U);
    for (const Json& line : lines) {
        EXPECT_THAT(line.at("error").get<std::string>(), HasSubstr("nested too deep"));
    }
}

TEST(RemindbOccurrences, AFileThatIsNotThereIsAnError) {
    const auto run = remindb({"occurrences", "/nowhere/cases.jsonl"});
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("/nowhere/cases.jsonl"));
}

// Every case that other libraries were asked, when the shared folder is there.
TEST(RemindbOccurrences, AgreesWithTheCaseFile) {
    std::size_t compared = 0;
    const auto shared = test::sharedFolder();
    if (!shared.empty()) {
        const auto file = shared / "recurrence-cases.jsonl";
        const auto cases = linesOf(test::readFile(file));
        const auto answers = linesOf(remindb({"occurrences", file.string()}).out);
        ASSERT_EQ(answers.size(), cases.size());
        for (std::size_t i = 0; i < cases.size(); ++i) {
            // All-day instances stand in the file without a time.
            Json expected = Json::array();
            for (const Json& time : cases[i].at("expected")) {
                const auto text = time.get<std::string>();
                expected.push_back(text.size() == 10 ? text + "T00:00:00" : text);
            }
            EXPECT_EQ(answers[i].at("occurrences"), expected) << cases[i].dump();
            ++compared;
        }
        EXPECT_GT(compared, 0U);
    }
    std::cout << "compared " << compared << " cases"
              << (shared.empty() ? " (no shared folder)" : "") << '\n';
}

}  // namespace
}  // namespace vl
