#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "ZoneForTest.h"
#include "db/DBRemindUtils.h"
#include "model/calEvent.h"
#include "support/Support.h"

namespace vl {
namespace {

using Json = nlohmann::ordered_json;
using test::ZoneForTest;

DateTime at(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    return DateTime::fromCivil(year, month, day, hour, minute, second);
}

calEvent loaded(const std::string& text) {
    calEvent event;
    EXPECT_FALSE(event.LoadJSON(Json::parse(text)));
    return event;
}

// ---- LoadJSON

constexpr const char* kTimed =
    R"({"kind":"calendar#event","etag":"\"35896\"","id":"n50t","status":"confirmed",)"
    R"("htmlLink":"https://calendar.example/e?x=1","created":"2026-11-16T08:02:11.000Z",)"
    R"("updated":"2026-11-17T09:03:12.500Z","summary":"Stand-up","description":"Two minutes",)"
    R"("location":"Room 2.14","color":"#3366cc","creator":{"email":"team@example.com"},)"
    R"("start":{"dateTime":"2026-11-20T09:30:00+01:00","timeZone":"Europe/Berlin"},)"
    R"("end":{"dateTime":"2026-11-20T09:45:00+01:00","timeZone":"Europe/Berlin"},)"
    R"("iCalUID":"n50t@calendar.example","sequence":0,)"
    R"("attendees":[{"email":"a@example.com","responseStatus":"accepted","self":true},)"
    R"({"email":"b@example.com","optional":true}],"extendedProperties":{"private":{"x":"1"}},)"
    R"("reminders":{"useDefault":false,"overrides":[{"method":"popup","minutes":5}]},)"
    R"("eventType":"default"})";

TEST(LoadJSON, FillsATimedEventInLocalTime) {
    const ZoneForTest zone("America/New_York");
    const calEvent event = loaded(kTimed);
    EXPECT_EQ(event.JSON, kTimed) << "unknown members and their order are kept";
    EXPECT_EQ(event.Subject, "Stand-up");
    EXPECT_EQ(event.Body, "Two minutes");
    EXPECT_EQ(event.Location, "Room 2.14");
    EXPECT_EQ(event.Created, at(2026, 11, 16, 3, 2, 11));
    EXPECT_EQ(event.Modified, at(2026, 11, 17, 4, 3, 12));
    EXPECT_FALSE(event.IsAllDayEvent);
    EXPECT_EQ(event.StartDateTime, at(2026, 11, 20, 3, 30));
    EXPECT_EQ(event.EndDateTime, at(2026, 11, 20, 3, 45));
    EXPECT_TRUE(event.RExceptionStartTimeOrig.isZero());
    EXPECT_EQ(event.etag, "\"35896\"");
    EXPECT_EQ(event.id, "n50t");
    EXPECT_EQ(event.Color, "#3366cc");
    EXPECT_EQ(event.iCalUID, "n50t@calendar.example");
    EXPECT_EQ(event.recurrence, "");
    EXPECT_EQ(event.recurringEventId, "");
    EXPECT_EQ(event.RecurrenceState, 0);
    EXPECT_EQ(event.reminders,
              R"({"useDefault":false,"overrides":[{"method":"popup","minutes":5}]})");
    EXPECT_EQ(event.status, "confirmed");
    EXPECT_FALSE(event.deleted);
}

std::string allDay(const std::string& start, const std::string& end) {
    return R"({"summary":"Fair","start":{"date":")" + start + R"("},"end":{"date":")" + end +
           R"("}})";
}

TEST(LoadJSON, KeepsAnAllDayEventOnItsDaysInEveryZone) {
    for (const char* name : {"UTC", "Pacific/Auckland", "America/Los_Angeles"}) {
        SCOPED_TRACE(name);
        const ZoneForTest zone(name);
        const calEvent oneDay = loaded(allDay("2024-05-01", "2024-05-02"));
        EXPECT_TRUE(oneDay.IsAllDayEvent);
        EXPECT_EQ(oneDay.StartDateTime, at(2024, 5, 1));
        EXPECT_EQ(oneDay.EndDateTime, at(2024, 5, 1));
        const calEvent threeDays = loaded(allDay("2024-05-01", "2024-05-04"));
        EXPECT_EQ(threeDays.StartDateTime, at(2024, 5, 1));
        EXPECT_EQ(threeDays.EndDateTime, at(2024, 5, 3));
    }
}

TEST(LoadJSON, RaisesAnAllDayEndToTheStart) {
    EXPECT_EQ(loaded(allDay("2024-05-01", "2024-05-01")).EndDateTime, at(2024, 5, 1));
    EXPECT_EQ(loaded(allDay("2024-05-01", "2023-01-01")).EndDateTime, at(2024, 5, 1));
    EXPECT_EQ(loaded(R"({"start":{"date":"2024-05-01"}})").EndDateTime, at(2024, 5, 1));
}

TEST(LoadJSON, TakesAnEventWithoutStartAsAllDayOnNoDate) {
    const calEvent event = loaded("{}");
    EXPECT_TRUE(event.IsAllDayEvent);
    EXPECT_TRUE(event.StartDateTime.isZero());
    EXPECT_TRUE(event.EndDateTime.isZero());
    EXPECT_EQ(event.JSON, "{}");
    EXPECT_EQ(event.Subject, "");
    EXPECT_EQ(event.reminders, "");
}

TEST(LoadJSON, EmptiesWhatTheResourceDoesNotHave) {
    calEvent event = loaded(kTimed);
    event.RExceptionStartTimeOrig = at(2026, 1, 1);
    event.deleted = true;
    event.RRULE = "FREQ=DAILY";
    event.RecurrenceState = 3;
    event.LoadJSON(Json::parse(allDay("2024-05-01", "2024-05-02")));
    EXPECT_EQ(event.Body, "");
    EXPECT_EQ(event.Location, "");
    EXPECT_TRUE(event.Created.isZero());
    EXPECT_EQ(event.id, "");
    EXPECT_EQ(event.reminders, "");
    EXPECT_EQ(event.status, "");
    // What a missing member says nothing about stays.
    EXPECT_EQ(event.RExceptionStartTimeOrig, at(2026, 1, 1));
    EXPECT_TRUE(event.deleted);
    EXPECT_EQ(event.RRULE, "FREQ=DAILY");
    EXPECT_EQ(event.RecurrenceState, 3);
}

TEST(LoadJSON, LeavesAPropertyWhoseTimeCannotBeRead) {
    calEvent event;
    event.Created = event.StartDateTime = event.EndDateTime = at(2020, 1, 1, 8);
    event.RExceptionStartTimeOrig = at(2020, 2, 2);
    event.LoadJSON(Json::parse(R"({"created":"yesterday","updated":"2026-11-20T09:00:00Z",)"
                               R"("start":{"dateTime":"2026-13-45T99:00:00Z"},)"
                               R"("end":{"dateTime":"noon"},)"
                               R"("originalStartTime":{"dateTime":"?"},"summary":"S"})"));
    EXPECT_EQ(event.Created, at(2020, 1, 1, 8));
    EXPECT_FALSE(event.Modified.isZero());
    EXPECT_FALSE(event.IsAllDayEvent);
    EXPECT_EQ(event.StartDateTime, at(2020, 1, 1, 8));
    EXPECT_EQ(event.EndDateTime, at(2020, 1, 1, 8));
    EXPECT_EQ(event.RExceptionStartTimeOrig, at(2020, 2, 2));
    EXPECT_EQ(event.Subject, "S");
}

TEST(LoadJSON, TakesMembersOfOtherTypesAsEmpty) {
    const calEvent event =
        loaded(R"({"summary":5,"description":null,"location":["x"],"id":{"a":1},"etag":true,)"
               R"("start":"2026-11-20","end":[],"reminders":[{"minutes":5}],"status":1,)"
               R"("recurrence":{"a":1}})");
    for (const char* name :
         {"Subject", "Body", "Location", "id", "etag", "reminders", "status", "recurrence"}) {
        EXPECT_EQ(event.property(name), Variant("")) << name;
    }
    EXPECT_TRUE(event.StartDateTime.isZero());
    EXPECT_EQ(loaded("[1,2]").JSON, "[1,2]");
    EXPECT_EQ(loaded("5").Subject, "");
}

TEST(LoadJSON, KnowsMastersAndExceptions) {
    const calEvent master =
        loaded(R"({"recurrence":["RRULE:FREQ=WEEKLY;BYDAY=MO,WE","EXDATE:20261125T100000"]})");
    EXPECT_EQ(master.recurrence, R"(["RRULE:FREQ=WEEKLY;BYDAY=MO,WE","EXDATE:20261125T100000"])");
    EXPECT_EQ(master.RecurrenceState, 1);
    EXPECT_EQ(master.RRULE, "") << "left to LoadRecurrence";
    EXPECT_FALSE(master.isRecurrenceLoaded);
    EXPECT_EQ(loaded(R"({"recurrence":[]})").RecurrenceState, 1) << "any text makes a master";
    EXPECT_EQ(
        loaded(R"({"recurrence":["RRULE:FREQ=DAILY"],"recurringEventId":"m"})").RecurrenceState, 1);
    EXPECT_EQ(loaded(R"({"recurringEventId":"m"})").RecurrenceState, 3);
}

TEST(LoadJSON, ReadsTheOriginalStartOfAMovedInstance) {
    const ZoneForTest zone("Europe/Berlin");
    const calEvent timed =
        loaded(R"({"recurringEventId":"m","originalStartTime":{"dateTime":"2026-11-23T10:00:00Z",)"
               R"("date":"2020-01-01"},"start":{"dateTime":"2026-11-24T14:00:00Z"}})");
    EXPECT_EQ(timed.RExceptionStartTimeOrig, at(2026, 11, 23, 11));
    const calEvent dateOnly =
        loaded(R"({"recurringEventId":"m","originalStartTime":{"date":"2026-11-23"}})");
    EXPECT_EQ(dateOnly.RExceptionStartTimeOrig, at(2026, 11, 23)) << "not shifted";
    calEvent event;
    for (const bool isAllDay : {false, true}) {
        event.IsAllDayEvent = isAllDay;
        event.RExceptionStartTimeOrig = dateOnly.RExceptionStartTimeOrig;
        EXPECT_EQ(event.SaveJSON()["originalStartTime"].dump(), R"({"date":"2026-11-23"})");
        event.RExceptionStartTimeOrig = timed.RExceptionStartTimeOrig;
        EXPECT_EQ(event.SaveJSON()["originalStartTime"].dump(),
                  R"({"dateTime":"2026-11-23T11:00:00+01:00"})");
    }
}

TEST(LoadJSON, TakesCancelledInThatSpellingOnly) {
    EXPECT_TRUE(loaded(R"({"status":"cancelled"})").deleted);
    for (const char* status : {"Cancelled", "CANCELLED", "canceled", "cancelled ", "confirmed"}) {
        const calEvent event = loaded(std::string(R"({"status":")") + status + "\"}");
        EXPECT_FALSE(event.deleted) << status;
        EXPECT_EQ(event.status, status);
    }
}

TEST(LoadJSON, KeepsLongAndForeignTexts) {
    const std::string huge(200000, 'x');
    Json js;
    js["summary"] = "Caf\xC3\xA9 \xF0\x9F\x8E\x89 \"quoted\" \\ \t";
    js["description"] = huge;
    const calEvent event = loaded(js.dump(-1, ' ', true));  // with escapes and surrogate pairs
    EXPECT_EQ(event.Subject, "Caf\xC3\xA9 \xF0\x9F\x8E\x89 \"quoted\" \\ \t");
    EXPECT_EQ(event.Body, huge);
    EXPECT_NE(event.JSON.view().find("\xF0\x9F\x8E\x89 \\\"quoted\\\" \\\\ \\t"),
              std::string::npos);
    EXPECT_EQ(loaded(R"({"summary":"\uD83C\uDF89"})").Subject, "\xF0\x9F\x8E\x89");
}

TEST(LoadJSON, SurvivesTextThatIsNotUtf8) {
    Json js;
    js["summary"] = "a\xFFz";
    calEvent event;
    event.LoadJSON(js);
    EXPECT_EQ(event.Subject, "a\xFFz");
    EXPECT_EQ(event.JSON, "{\"summary\":\"a\xEF\xBF\xBDz\"}");
}

TEST(LoadJSON, LeavesOutWhatIsNestedWithoutEnd) {
    const std::string deep = std::string(100000, '[') + std::string(100000, ']');
    calEvent event;
    // One at a time: the parser itself copies what is there when another member comes.
    for (const char* member : {R"("reminders":{"x":)", R"("recurrence":{"x":)"}) {
        event.LoadJSON(Json::parse(R"({"summary":"S",)" + (member + deep) + "}}"));
        EXPECT_EQ(event.Subject, "S");
        EXPECT_EQ(event.JSON, "");
        EXPECT_EQ(event.reminders, "");
        EXPECT_EQ(event.recurrence, "");
    }
    const std::string sound = R"({"x":)" + std::string(400, '[') + std::string(400, ']') + "}";
    EXPECT_EQ(loaded(sound).JSON, sound);
}

// ---- SaveJSON

calEvent timedEvent() {
    calEvent event;
    event.Subject = "Stand-up";
    event.StartDateTime = at(2026, 11, 20, 9, 30);
    event.EndDateTime = at(2026, 11, 20, 9, 45);
    return event;
}

TEST(SaveJSON, WritesATimedEventInLocalTime) {
    const ZoneForTest zone("Europe/Berlin");
    calEvent event = timedEvent();
    EXPECT_EQ(event.SaveJSON().dump(),
              R"({"kind":"calendar#event","summary":"Stand-up","etag":"",)"
              R"("start":{"dateTime":"2026-11-20T09:30:00+01:00","timeZone":"GMT+01:00"},)"
              R"("end":{"dateTime":"2026-11-20T09:45:00+01:00","timeZone":"GMT+01:00"},)"
              R"("status":"confirmed"})");
    event.Subject.clear();
    event.Body = "B";
    event.Location = "L";
    event.recurringEventId = "m";
    event.id = "i";
    event.etag = "\"e\"";
    event.deleted = true;
    event.RExceptionStartTimeOrig = at(2026, 7, 1, 10);
    event.reminders = R"({"useDefault":true, "x":1})";
    EXPECT_EQ(event.SaveJSON().dump(),
              R"({"kind":"calendar#event","summary":"","description":"B","location":"L",)"
              R"("recurringEventId":"m","etag":"\"e\"","id":"i",)"
              R"("start":{"dateTime":"2026-11-20T09:30:00+01:00","timeZone":"GMT+01:00"},)"
              R"("end":{"dateTime":"2026-11-20T09:45:00+01:00","timeZone":"GMT+01:00"},)"
              R"("originalStartTime":{"dateTime":"2026-07-01T10:00:00+02:00"},)"
              R"("reminders":{"useDefault":true,"x":1},"status":"cancelled"})");
}

TEST(SaveJSON, LabelsAZoneWestOfGreenwichWithAPlusSign) {
    const ZoneForTest zone("America/New_York");
    const Json js = timedEvent().SaveJSON();
    EXPECT_EQ(js["start"]["dateTime"], "2026-11-20T09:30:00-05:00");
    EXPECT_EQ(js["start"]["timeZone"], "GMT+05:00");
    EXPECT_EQ(js["end"]["timeZone"], "GMT+05:00");
}

TEST(SaveJSON, GivesATimestampInUtcNoZone) {
    calEvent event = timedEvent();
    event.StartDateTime = DateTime();  // an empty timestamp has no offset either
    const Json js = event.SaveJSON();
    EXPECT_EQ(js["start"].dump(), R"({"dateTime":""})");
    const ZoneForTest zone("UTC");
    const Json utc = timedEvent().SaveJSON();
    const std::string timestamp = utc["start"]["dateTime"];
    EXPECT_EQ(timestamp.back() != 'Z', utc["start"].contains("timeZone")) << timestamp;
}

TEST(SaveJSON, WritesAnAllDayEventWithAnExclusiveEndInEveryZone) {
    for (const char* name : {"UTC", "Pacific/Auckland", "America/Los_Angeles"}) {
        SCOPED_TRACE(name);
        const ZoneForTest zone(name);
        calEvent event = loaded(allDay("2024-05-01", "2024-05-02"));
        EXPECT_EQ(event.SaveJSON()["start"].dump(), R"({"date":"2024-05-01"})");
        EXPECT_EQ(event.SaveJSON()["end"].dump(), R"({"date":"2024-05-02"})");
        event = loaded(allDay("2024-02-28", "2024-03-02"));
        EXPECT_EQ(event.SaveJSON()["end"].dump(), R"({"date":"2024-03-02"})");
    }
}

TEST(SaveJSON, WritesTheRecurrenceOnlyOnceARuleHasBeenRead) {
    calEvent event = timedEvent();
    event.recurrence = R"(["RRULE:FREQ=DAILY",5,"EXDATE:20261125T093000"])";
    EXPECT_FALSE(event.SaveJSON().contains("recurrence"));
    event.RRULE = "FREQ=DAILY";
    EXPECT_EQ(event.SaveJSON()["recurrence"].dump(),
              R"(["RRULE:FREQ=DAILY","EXDATE:20261125T093000"])");
    for (const char* text : {"RRULE:FREQ=DAILY", "{}", "\"x\"", ""}) {
        event.recurrence = text;
        EXPECT_FALSE(event.SaveJSON().contains("recurrence")) << text;
    }
}

TEST(SaveJSON, LeavesOutWhatCannotBeWritten) {
    calEvent event = timedEvent();
    for (const char* text : {"not JSON", "[]", "5", "{\"a\":"}) {
        event.reminders = text;
        const Json js = event.SaveJSON();
        EXPECT_FALSE(js.contains("reminders")) << text;
        EXPECT_EQ(js["status"], "confirmed");
    }
}

TEST(calEventJson, KeepsPendingError) {
    ErrorState::set(ErrNo::Locked);
    calEvent event;
    event.LoadJSON(Json::parse(R"({"created":"?","start":{"dateTime":"?"}})"));
    event.reminders = "not JSON";
    event.recurrence = "not JSON";
    event.RRULE = "x";
    event.SaveJSON();
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

// ---- Rows that others made: the column JSON says what the other columns say, on a machine that
// runs on UTC.

std::vector<Json> rowsOf(const std::filesystem::path& dump) {
    std::vector<Json> rows;
    std::ifstream file(dump);
    std::string line;
    std::getline(file, line);  // the columns
    while (std::getline(file, line)) {
        rows.push_back(Json::parse(line));
    }
    return rows;
}

// Null is 0 for numbers and dates and an empty text for all else.
void fill(calEvent& event, const Json& row) {
    for (const auto& [name, value] : row.items()) {
        const EventProperty* p = calEvent::findProperty(name);
        ASSERT_NE(p, nullptr) << name;
        const bool isDate = std::holds_alternative<DateTime calEvent::*>(p->member);
        if (value.is_null()) {
            event.setProperty(*p, isDate ? Variant(0) : Variant(""));
        } else if (value.is_boolean()) {
            event.setProperty(*p, value.get<bool>());
        } else if (value.is_number()) {
            event.setProperty(*p, value.get<std::int32_t>());
        } else {
            event.setProperty(*p, value.get<std::string>());
        }
    }
}

constexpr const char* kFromJson[] = {"Subject",
                                     "Body",
                                     "Location",
                                     "Created",
                                     "Modified",
                                     "IsAllDayEvent",
                                     "StartDateTime",
                                     "EndDateTime",
                                     "RExceptionStartTimeOrig",
                                     "etag",
                                     "id",
                                     "Color",
                                     "iCalUID",
                                     "recurrence",
                                     "recurringEventId",
                                     "RecurrenceState",
                                     "reminders",
                                     "JSON"};

void agree(const calEvent& row) {
    SCOPED_TRACE(row.Subject);
    calEvent event;
    event.LoadJSON(Json::parse(row.JSON.view()));
    for (const char* name : kFromJson) {
        EXPECT_EQ(event.property(name), row.property(name)) << name;
    }
    EXPECT_EQ(event.deleted, row.deleted);
    // And back: what the service is sent reads as the same event.
    event.LoadRecurrence();
    calEvent again;
    again.LoadJSON(event.SaveJSON());
    for (const char* name : {"Subject", "Body", "Location", "IsAllDayEvent", "StartDateTime",
                             "EndDateTime", "RExceptionStartTimeOrig", "etag", "id", "recurrence",
                             "recurringEventId", "RecurrenceState", "reminders", "deleted"}) {
        EXPECT_EQ(again.property(name), event.property(name)) << name;
    }
}

TEST(calEventJson, AgreesWithTheColumnsOfRowsThatOthersMade) {
    const ZoneForTest zone("UTC");
    const auto shared = test::sharedFolder();
    if (shared.empty()) {
        return;
    }
    const auto folder = shared / "jet4/samples/dumps";
    int files = 0;
    std::size_t rows = 0;
    for (const char* name : {"first-light.RemindDB/Reminders.a.jsonl",
                             "reminders-5000.RemindDB/Reminders.a.first200.jsonl",
                             "reminders-5000.RemindDB/Reminders.a.last50.jsonl"}) {
        SCOPED_TRACE(name);
        ++files;
        for (const Json& row : rowsOf(folder / name)) {
            calEvent event;
            ASSERT_NO_FATAL_FAILURE(fill(event, row));
            agree(event);
            ++rows;
        }
    }
    std::printf("read %d files, %zu rows\n", files, rows);
    EXPECT_GT(rows, 0U);
}

TEST(calEventJson, AgreesWithTheColumnsOfTheSampleDatabase) {
    const ZoneForTest zone("UTC");
    DBRemindUtils db;
    db.DBFullName = test::repoFile("data/first-light.RemindDB").string();
    const auto rows = db.OpenRS("SELECT * FROM Reminders");
    ASSERT_EQ(rows->RecordCount(), 12U);
    for (; !rows->EOF_(); rows->MoveNext()) {
        calEvent event;
        for (std::size_t i = 0; i < rows->fields().size(); ++i) {
            const EventProperty* p = calEvent::findProperty(rows->fields()[i].name);
            ASSERT_NE(p, nullptr) << rows->fields()[i].name;
            if (!rows->value(i).isNull()) {  // a new event has what null stands for
                event.setProperty(*p, rows->value(i));
            }
        }
        EXPECT_NE(event.JSON, "");
        agree(event);
    }
}

}  // namespace
}  // namespace vl
