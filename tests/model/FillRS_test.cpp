// An event copied back into its row.
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "db/DBRemindUtils.h"
#include "model/calEvent.h"
#include "support/Support.h"

namespace vl {
namespace {

DateTime at(int hour, int minute = 0) { return DateTime::fromCivil(2026, 11, 20, hour, minute); }

class FillRS : public testing::Test {
protected:
    FillRS() {
        db.DBFullName = (folder / "Velmora.RemindDB").string();
        test::writeFile(db.DBFullName, test::readFile(test::repoFile("data/first-light.RemindDB")));
        row = db.OpenRS("SELECT * FROM Reminders WHERE EventID = 1003");
        event.GUID = "{filled}";
        event.EventID = 5;
        event.Subject = "Filled";
        event.StartDateTime = at(9);
        event.EndDateTime = at(10);
        event.deleted = true;
        event.bModified = true;
        event.recurrence = R"(["RRULE:FREQ=DAILY"])";
        event.NextReminder = at(8, 45);
    }

    test::TempFolder folder;
    DBRemindUtils db;
    std::shared_ptr<RecordSet> row;
    calEvent event;
};

TEST_F(FillRS, CopiesEveryPropertyThatIsAColumn) {
    EXPECT_FALSE(event.FillRS(*row));
    ASSERT_EQ(db.UpdateRS(*row, "Reminders"), 1);
    const auto saved = db.OpenRS("SELECT * FROM Reminders WHERE GUID = \"{filled}\"");
    ASSERT_FALSE(saved->EOF_());
    int columns = 0;
    for (const RecordSet::Field& field : saved->fields()) {
        const EventProperty* property = calEvent::findProperty(field.name);
        if (property == nullptr || field.name == "EventID") {
            continue;
        }
        SCOPED_TRACE(field.name);
        EXPECT_EQ(saved->value(field.name), event.property(*property));
        ++columns;
    }
    EXPECT_GT(columns, 40);
    EXPECT_EQ(saved->value("EventID"), Variant(1003)) << "the host's own";
}

TEST_F(FillRS, AnEventWithoutALengthIsMadeAnHourLong) {
    for (const DateTime end : {at(9), at(8)}) {
        event.EndDateTime = end;
        event.FillRS(*row);
        EXPECT_EQ(event.EndDateTime, at(10));
        EXPECT_EQ(row->value("EndDateTime"), Variant(at(10)));
    }
    event.EndDateTime = at(9, 1);
    event.FillRS(*row);
    EXPECT_EQ(event.EndDateTime, at(9, 1));
}

TEST_F(FillRS, AnAllDayEventIsLengthenedToo) {
    event.IsAllDayEvent = true;
    event.StartDateTime = event.EndDateTime = at(0);
    event.FillRS(*row);
    EXPECT_EQ(event.EndDateTime, at(1));
    EXPECT_EQ(row->value("EndDateTime"), Variant(at(1)));
}

TEST_F(FillRS, KeepsPendingError) {
    ErrorState::set(ErrNo::Locked);
    event.Location = std::string(300, 'x');
    event.FillRS(*row);
    RecordSet none;
    event.FillRS(none);
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

TEST_F(FillRS, AnotherEventMayBeTheSource) {
    calEvent other;
    other.GUID = "{other}";
    other.Subject = "Other";
    other.StartDateTime = at(15);
    other.EndDateTime = at(15);
    event.EndDateTime = event.StartDateTime;
    event.FillRS(*row, &other);
    EXPECT_EQ(row->value("Subject"), Variant("Other"));
    EXPECT_EQ(row->value("EndDateTime"), Variant(at(15))) << "only this event is lengthened";
    EXPECT_EQ(event.EndDateTime, at(10));
    EXPECT_EQ(row->value("recurrence"), Variant(""));
    EXPECT_EQ(row->value("Deleted"), Variant(false));
}

TEST_F(FillRS, WhatAColumnRefusesIsLeftOut) {
    event.Location = std::string(300, 'x');
    const Variant before = row->value("Location");
    event.FillRS(*row);
    EXPECT_EQ(row->value("Location"), before);
    EXPECT_EQ(row->value("Subject"), Variant("Filled"));
    RecordSet none;
    EXPECT_FALSE(event.FillRS(none));
}

TEST_F(FillRS, FieldsThatNoEventHasAreLeftAlone) {
    sql::Result result;
    result.isQuery = true;
    result.fields = {{"Foreign", jet::ColumnType::Text, 20},
                     {"subject", jet::ColumnType::Text, 99}};
    result.rows = {{"theirs", "old"}};
    RecordSet records(std::move(result));
    event.FillRS(records);
    EXPECT_EQ(records.value("Foreign"), Variant("theirs"));
    EXPECT_EQ(records.value("Subject"), Variant("Filled"));
}

}  // namespace
}  // namespace vl
