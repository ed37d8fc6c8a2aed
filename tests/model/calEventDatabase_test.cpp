#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "db/DBRemindUtils.h"
#include "model/calEvent.h"
#include "support/Support.h"

namespace vl {
namespace {

calEvent known() {
    calEvent event;
    event.GUID = "abc";
    return event;
}

TEST(StateStatements, StandToTheLetter) {
    calEvent event = known();
    event.status = "AllDone";
    EXPECT_EQ(event.StatusStatement(),
              "UPDATE Reminders SET status = \"AllDone\" WHERE (GUID=\"abc\");");
    event.NextReminder = DateTime::fromCivil(2026, 11, 15, 14, 30);
    EXPECT_EQ(event.NextReminderStatement(),
              "UPDATE Reminders SET NextReminder = #2026-11-15 14:30:00# WHERE (GUID=\"abc\");");
    event.Hidden = true;
    EXPECT_EQ(event.HiddenStatement(), "UPDATE Reminders SET Hidden = -1 WHERE (GUID=\"abc\");");
    event.Hidden = false;
    EXPECT_EQ(event.HiddenStatement(), "UPDATE Reminders SET Hidden = 0 WHERE (GUID=\"abc\");");
    event.Dismissed = DateTime::fromCivil(2026, 11, 15, 0, 0, 1);
    EXPECT_EQ(event.DismissedStatement(),
              "UPDATE Reminders SET Dismissed = #2026-11-15 00:00:01# WHERE (GUID=\"abc\");");
}

TEST(StateStatements, WriteMidnightAndNoDateWithoutATime) {
    calEvent event = known();
    event.NextReminder = DateTime::fromCivil(2026, 11, 15);
    EXPECT_EQ(event.NextReminderStatement(),
              "UPDATE Reminders SET NextReminder = #2026-11-15# WHERE (GUID=\"abc\");");
    EXPECT_EQ(event.DismissedStatement(),
              "UPDATE Reminders SET Dismissed = #1899-12-30# WHERE (GUID=\"abc\");");
}

TEST(StateStatements, EscapeNothing) {
    calEvent event = known();
    event.GUID = "a\"b";
    event.status = "\"";
    EXPECT_EQ(event.StatusStatement(),
              "UPDATE Reminders SET status = \"\"\" WHERE (GUID=\"a\"b\");");
    event.status.clear();
    event.GUID = "x";
    EXPECT_EQ(event.StatusStatement(), "UPDATE Reminders SET status = \"\" WHERE (GUID=\"x\");");
}

TEST(StateStatements, NameTheRowsOfOthersEscaped) {
    calEvent event;
    event.Dismissed = DateTime::fromCivil(2026, 11, 15);
    const std::vector<std::string> GUIDs = {"a", "b\"c"};
    EXPECT_EQ(event.DismissedStatement(GUIDs),
              "UPDATE Reminders SET Dismissed = #2026-11-15# WHERE (GUID IN (\"a\", \"b\"\"c\"));");
    EXPECT_EQ(known().HiddenStatement(std::span(GUIDs).first(1)),
              "UPDATE Reminders SET Hidden = 0 WHERE (GUID IN (\"a\"));");
}

TEST(StateStatements, AreEmptyWithoutAGuid) {
    const calEvent event;
    EXPECT_EQ(event.StatusStatement(), "");
    EXPECT_EQ(event.NextReminderStatement(), "");
    EXPECT_EQ(event.HiddenStatement(), "");
    EXPECT_EQ(event.DismissedStatement(), "");
}

TEST(DeleteDB, DoesNothing) { EXPECT_FALSE(calEvent::DeleteDB()); }

class calEventDatabase : public testing::Test {
protected:
    calEventDatabase() {
        db.DBFullName = (folder_ / "Velmora.RemindDB").string();
        test::writeFile(db.DBFullName, test::readFile(test::repoFile("data/first-light.RemindDB")));
        event.GUID = "{437FED06-B0D4-4C70-8AC9-99114CC7B46A}";
    }

    std::string bytes() const { return test::readFile(db.DBFullName); }

    // In the row of the event.
    Variant stored(const std::string& column) {
        const auto row = db.OpenRS("SELECT * FROM Reminders WHERE GUID=\"" + event.GUID + "\"");
        return row->EOF_() ? Variant() : row->value(column);
    }

    test::TempFolder folder_;
    DBRemindUtils db;
    calEvent event;
};

TEST_F(calEventDatabase, WritesTheOneColumnOfItsRow) {
    event.NextReminder = DateTime::fromCivil(2026, 11, 20, 13, 50);
    EXPECT_EQ(event.SaveNextReminderDB(db), 1);
    EXPECT_FALSE(db.isOpen) << "closed after each statement";
    EXPECT_EQ(stored("NextReminder"), Variant(event.NextReminder));
    event.Dismissed = DateTime::fromCivil(2026, 11, 20);
    EXPECT_EQ(event.SaveDismissedDB(db), 1);
    EXPECT_EQ(stored("Dismissed"), Variant(event.Dismissed));
    event.Hidden = true;
    EXPECT_EQ(event.SaveHiddenDB(db), 1);
    EXPECT_EQ(stored("Hidden"), Variant(true));
    event.Hidden = false;
    EXPECT_EQ(event.SaveHiddenDB(db), 1);
    EXPECT_EQ(stored("Hidden"), Variant(false));
    EXPECT_EQ(stored("NextReminder"), Variant(event.NextReminder)) << "left alone by the others";
    event.status = "put off";
    EXPECT_EQ(event.SaveStatusDB(db), 1);
    EXPECT_EQ(stored("status"), Variant("put off"));
    EXPECT_EQ(db.OpenRS("SELECT * FROM Reminders WHERE status=\"put off\"")->RecordCount(), 1U);
    const auto others = db.OpenRS("SELECT * FROM Reminders WHERE Hidden=True");
    EXPECT_TRUE(others->EOF_());
}

TEST_F(calEventDatabase, WritesNoDateAsADate) {
    EXPECT_TRUE(stored("Dismissed").isNull());
    EXPECT_EQ(event.SaveDismissedDB(db), 1);
    EXPECT_EQ(stored("Dismissed"), Variant(DateTime())) << "no null any more";
}

TEST_F(calEventDatabase, WritesNothingWithoutItsRow) {
    const std::string before = bytes();
    event.Hidden = true;
    for (const char* GUID : {"", "{00000000-0000-0000-0000-000000000000}"}) {
        event.GUID = GUID;
        EXPECT_EQ(event.SaveNextReminderDB(db), 0);
        EXPECT_EQ(event.SaveHiddenDB(db), 0);
        EXPECT_EQ(event.SaveDismissedDB(db), 0);
        EXPECT_EQ(event.SaveStatusDB(db), 0);
    }
    EXPECT_EQ(bytes(), before);
    EXPECT_TRUE(event.Hidden);
}

TEST_F(calEventDatabase, ABrokenStatementFailsSilently) {
    const std::string before = bytes();
    event.status = "say \"AllDone\"";
    EXPECT_EQ(event.SaveStatusDB(db), 0);
    EXPECT_EQ(db.LastError(), ErrNo::Syntax);
    EXPECT_FALSE(db.isOpen);
    EXPECT_EQ(bytes(), before);
    EXPECT_EQ(event.status, "say \"AllDone\"");
}

TEST_F(calEventDatabase, KeepsPendingError) {
    ErrorState::set(ErrNo::Locked);
    event.status = "\"";
    event.SaveStatusDB(db);
    db.DBFullName = (folder_ / "absent").string();
    event.Hidden = true;
    EXPECT_EQ(event.SaveHiddenDB(db), 0);
    EXPECT_EQ(event.SaveNextReminderDB(db), 0);
    EXPECT_EQ(event.SaveDismissedDB(db), 0);
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    EXPECT_NE(db.LastError(), ErrNo::None);
    EXPECT_TRUE(event.Hidden) << "in memory it stays";
    ErrorState::clear();
}

}  // namespace
}  // namespace vl
