#include "db/DBRemindUtils.h"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <functional>

#include "db/jet/Database.h"
#include "db/jet/check/Check.h"
#include "support/Support.h"

namespace vl {
namespace {

constexpr const char* kAllHidden = "UPDATE Reminders SET Hidden = True;";
constexpr const char* kAll = "SELECT * FROM Reminders";

class DBRemindUtilsTest : public testing::Test {
protected:
    DBRemindUtilsTest() {
        path_ = (folder_ / "Velmora.RemindDB").string();
        vl::test::writeFile(path_,
                            vl::test::readFile(vl::test::repoFile("data/first-light.RemindDB")));
        db_.DBFullName = path_;
    }

    std::string bytes() const { return vl::test::readFile(path_); }

    vl::test::TempFolder folder_;
    std::string path_;
    DBRemindUtils db_;
};

TEST_F(DBRemindUtilsTest, OpenDBConnectsWithItsOptions) {
    EXPECT_FALSE(db_.isOpen);
    EXPECT_EQ(db_.ConnectString(), "");
    EXPECT_TRUE(db_.OpenDB());
    EXPECT_TRUE(db_.isOpen);
    EXPECT_EQ(db_.ADOConnectString,
              "Provider=Microsoft.Jet.OLEDB.4.0; Data Source=" + path_ + "; User Id=admin;");
    EXPECT_EQ(db_.ConnectString(), db_.ADOConnectString);
    EXPECT_EQ(db_.Connection().State(), Connection::kStateOpen);
    EXPECT_EQ(db_.Connection().ConnectionTimeout, 60);
    EXPECT_EQ(db_.Connection().CommandTimeout, 60);
    EXPECT_EQ(db_.Connection().IsolationLevel, 1048576);
    EXPECT_EQ(db_.Connection().CursorLocation, 2);
    EXPECT_EQ(db_.LastError(), ErrNo::None);
    EXPECT_TRUE(db_.OpenDB());  // a new connection takes the old one's place
}

TEST_F(DBRemindUtilsTest, WhatIsKnownOfPagesOutlivesClosing) {
    ASSERT_TRUE(db_.OpenDB());
    const auto known = db_.Connection().Digests;
    ASSERT_NE(known, nullptr);
    db_.CloseDB();
    ASSERT_TRUE(db_.OpenDB());
    EXPECT_EQ(db_.Connection().Digests, known);
    EXPECT_NE(DBRemindUtils().Connection().Digests, known);
}

TEST_F(DBRemindUtilsTest, AnEmptyNameDoesNotOpen) {
    db_.OpenDB();
    db_.DBFullName.clear();
    EXPECT_FALSE(db_.OpenDB());
    EXPECT_FALSE(db_.isOpen);
    EXPECT_EQ(db_.ADOConnectString,
              "Provider=Microsoft.Jet.OLEDB.4.0; Data Source=; User Id=admin;");
    EXPECT_EQ(db_.LastError(), ErrNo::NotFound);
    const auto rows = db_.OpenRS(kAll);
    ASSERT_NE(rows, nullptr);
    EXPECT_FALSE(rows->isOpen());
    EXPECT_TRUE(rows->EOF_());
    EXPECT_EQ(db_.LastError(), ErrNo::NotFound);
}

TEST_F(DBRemindUtilsTest, WhatIsNoDatabaseDoesNotOpen) {
    vl::test::writeFile(path_, std::string(8192, 'x'));
    EXPECT_FALSE(db_.OpenDB());
    EXPECT_EQ(db_.LastError(), ErrNo::Format);
    EXPECT_EQ(db_.Execute(kAllHidden), 0);
    EXPECT_EQ(db_.LastError(), ErrNo::Format);
    EXPECT_EQ(bytes(), std::string(8192, 'x'));
}

TEST_F(DBRemindUtilsTest, CloseDBCloses) {
    db_.CloseDB();
    EXPECT_FALSE(db_.isOpen);
    db_.OpenDB();
    db_.CloseDB();
    EXPECT_FALSE(db_.isOpen);
    EXPECT_EQ(db_.Connection().State(), Connection::kStateClosed);
    EXPECT_EQ(db_.ConnectString(), db_.ADOConnectString);
}

TEST_F(DBRemindUtilsTest, ReConnectOpensOnlyWhatIsClosed) {
    db_.ReConnect();
    EXPECT_TRUE(db_.isOpen);
    db_.DBFullName = "elsewhere";
    db_.ReConnect();
    EXPECT_THAT(db_.ADOConnectString, testing::HasSubstr(path_));
    db_.CloseDB();
    db_.ReConnect();
    EXPECT_FALSE(db_.isOpen);
    EXPECT_THAT(db_.ADOConnectString, testing::HasSubstr("elsewhere"));
}

TEST_F(DBRemindUtilsTest, CloseAndOpenDBKeepsToTheConnectionsText) {
    db_.CloseAndOpenDB();  // there is no text yet
    EXPECT_FALSE(db_.isOpen);
    EXPECT_EQ(db_.LastError(), ErrNo::NotFound);
    db_.OpenDB();
    db_.DBFullName = "elsewhere";
    db_.CloseAndOpenDB();
    EXPECT_TRUE(db_.isOpen);
    EXPECT_EQ(db_.Connection().State(), Connection::kStateOpen);
    EXPECT_THAT(db_.ConnectString(), testing::HasSubstr(path_));
    EXPECT_EQ(db_.Connection().IsolationLevel, 1048576);
    std::filesystem::remove(path_);
    db_.CloseAndOpenDB();
    EXPECT_FALSE(db_.isOpen);
}

TEST_F(DBRemindUtilsTest, OpenRSOpensAndLeavesOpen) {
    const auto rows =
        db_.OpenRS("SELECT * FROM Reminders WHERE Deleted=0 AND Status <> \"AllDone\"");
    EXPECT_TRUE(db_.isOpen);
    ASSERT_TRUE(rows->isOpen());
    EXPECT_EQ(rows->RecordCount(), 10U);
    EXPECT_EQ(rows->fields().size(), 45U);
    EXPECT_EQ(rows->value("Subject"), Variant("Stand-up meeting"));
    db_.CloseDB();
    EXPECT_EQ(rows->value("EventID"), Variant(1001));  // rows outlive the connection
    EXPECT_TRUE(db_.OpenRS(kAll, 3)->isOpen());
}

TEST_F(DBRemindUtilsTest, OpenRSOfABrokenStatementIsUnopened) {
    for (const char* statement :
         {"", "SELECT * FROM Nowhere", "SELECT x FROM Reminders", "SELECT", kAllHidden}) {
        SCOPED_TRACE(statement);
        const std::string before = bytes();
        const auto rows = db_.OpenRS(statement);
        ASSERT_NE(rows, nullptr);
        EXPECT_FALSE(rows->isOpen());
        EXPECT_TRUE(rows->EOF_());
        EXPECT_NE(db_.LastError(), ErrNo::None);
        EXPECT_TRUE(db_.isOpen);
        EXPECT_EQ(bytes(), before);
    }
    EXPECT_TRUE(db_.OpenRS(kAll)->isOpen());
    EXPECT_EQ(db_.LastError(), ErrNo::None);
}

TEST_F(DBRemindUtilsTest, ExecuteOpensCountsAndCloses) {
    EXPECT_EQ(
        db_.Execute("UPDATE Reminders SET NextReminder = " +
                    DBRemindUtils::ToSQLDateTime(DateTime::fromCivil(2026, 11, 20, 14, 30), true) +
                    " WHERE (GUID=\"{956ABE94-E18E-437E-878F-EF5EC79876F1}\");"),
        1);
    EXPECT_EQ(db_.LastError(), ErrNo::None);
    EXPECT_FALSE(db_.isOpen);
    EXPECT_EQ(db_.Connection().State(), Connection::kStateClosed);
    const auto rows = db_.OpenRS(
        "SELECT NextReminder FROM Reminders WHERE "
        "GUID=\"{956ABE94-E18E-437E-878F-EF5EC79876F1}\"");
    EXPECT_EQ(rows->value(0), Variant(DateTime::fromCivil(2026, 11, 20, 14, 30)));
    EXPECT_TRUE(db_.isOpen);
    EXPECT_EQ(db_.Execute(kAllHidden), 12);  // through the connection that a read left open
    EXPECT_FALSE(db_.isOpen);
    EXPECT_EQ(db_.Execute("UPDATE Reminders SET Hidden = 0 WHERE (GUID=\"nobody\");"), 0);
    EXPECT_EQ(db_.LastError(), ErrNo::None);
}

TEST_F(DBRemindUtilsTest, AFailedStatementChangesNothingAndCloses) {
    const std::string before = bytes();
    struct Case {
        const char* statement;
        ErrNo error;
    };
    static constexpr Case cases[] = {
        {"UPDATE Reminders SET status = \"a\"b\" WHERE (GUID=\"x\");", ErrNo::Syntax},
        {"UPDATE Reminders SET Nowhere = 1", ErrNo::NotFound},
        {"UPDATE Reminders SET Hidden = \"maybe\"", ErrNo::TypeMismatch},
        {"DELETE * FROM Reminders WHERE (Gone=True);", ErrNo::NotFound},
        {"", ErrNo::Syntax},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.statement);
        db_.OpenDB();
        EXPECT_EQ(db_.Execute(c.statement), 0);
        EXPECT_EQ(db_.LastError(), c.error);
        EXPECT_FALSE(db_.isOpen);
        EXPECT_EQ(bytes(), before);
    }
}

TEST_F(DBRemindUtilsTest, LastErrorOutlivesCloseDB) {
    db_.OpenRS("SELECT x FROM Reminders");
    db_.CloseDB();
    EXPECT_EQ(db_.LastError(), ErrNo::NotFound);
}

TEST(DBRemindUtilsToSQLDateTime, LeavesMidnightOut) {
    struct Case {
        DateTime date;
        const char* text;
    };
    const Case cases[] = {
        {DateTime::fromCivil(2026, 11, 15), "2026-11-15"},
        {DateTime::fromCivil(2026, 11, 15, 0, 0, 1), "2026-11-15 00:00:01"},
        {DateTime::fromCivil(2026, 11, 15, 14, 30), "2026-11-15 14:30:00"},
        {DateTime::fromCivil(2026, 11, 15, 23, 59, 59), "2026-11-15 23:59:59"},
        {DateTime(), "1899-12-30"},
        {DateTime(-1.25), "1899-12-29 06:00:00"},
        {DateTime::fromCivil(2026, 1, 2, 3, 4, 5), "2026-01-02 03:04:05"},
        // The second that has begun, as the file has it: never the day after.
        {DateTime(46341.0 + 0.3 / 86400), "2026-11-15 00:00:00"},
        {DateTime(46342.0 - 0.3 / 86400), "2026-11-15 23:59:59"},
        {DateTime(46341.5 + 0.999 / 86400), "2026-11-15 12:00:00"},
        // A sum of days that misses midnight in its last bit.
        {DateTime(46341.0 - 1e-11), "2026-11-15"},
        {DateTime(46341.0 + 1e-11), "2026-11-15"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(DBRemindUtils::ToSQLDateTime(c.date, false), c.text);
        EXPECT_EQ(DBRemindUtils::ToSQLDateTime(c.date, true), "#" + std::string(c.text) + "#");
    }
}

TEST_F(DBRemindUtilsTest, FieldExistsDBLooksIntoTheFile) {
    EXPECT_TRUE(db_.FieldExistsDB("Reminders", "NextReminder"));
    EXPECT_TRUE(db_.FieldExistsDB("reminders", "NEXTREMINDER"));
    EXPECT_FALSE(db_.FieldExistsDB("Reminders", "NextReminders"));
    EXPECT_EQ(db_.LastError(), ErrNo::None);
    EXPECT_FALSE(db_.FieldExistsDB("Reminder", "NextReminder"));
    EXPECT_FALSE(db_.isOpen);
    db_.DBFullName += "x";
    EXPECT_FALSE(db_.FieldExistsDB("Reminders", "NextReminder"));
    EXPECT_EQ(db_.LastError(), ErrNo::NotFound);
}

TEST_F(DBRemindUtilsTest, AddFieldKnowsEachTypeByItsNumber) {
    using jet::ColumnType;
    struct Case {
        int number;
        ColumnType type;
    };
    const Case cases[] = {
        {1, ColumnType::Boolean}, {2, ColumnType::Byte},    {3, ColumnType::Integer},
        {4, ColumnType::Long},    {5, ColumnType::Money},   {6, ColumnType::Single},
        {7, ColumnType::Double},  {8, ColumnType::Date},    {9, ColumnType::Binary},
        {10, ColumnType::Text},   {11, ColumnType::Ole},    {12, ColumnType::Memo},
        {15, ColumnType::Guid},   {20, ColumnType::Numeric}};
    for (const Case& c : cases) {
        const std::string name = "c" + std::to_string(c.number);
        EXPECT_EQ(db_.AddField("Reminders", name, c.number), ErrNo::None) << c.number;
        EXPECT_TRUE(db_.FieldExistsDB("Reminders", name)) << c.number;
        const auto file = jet::Database::open(path_, jet::Access::Read);
        EXPECT_EQ(file.table("Reminders").columns().back().type, c.type) << c.number;
    }
    const std::string before = bytes();
    for (const int number : {-1, 0, 13, 14, 16, 19, 21, 101}) {
        EXPECT_EQ(db_.AddField("Reminders", "none", number), ErrNo::Unsupported) << number;
    }
    EXPECT_EQ(bytes(), before);
    EXPECT_EQ(db_.Execute("UPDATE Reminders SET c10 = \"\", c12 = \"\" WHERE EventID = 1001"), 1)
        << "texts may be empty";
    EXPECT_EQ(db_.OpenRS("SELECT c10 FROM Reminders WHERE EventID = 1001")->value("c10"),
              Variant(""));
    db_.CloseDB();
    auto file = jet::Database::open(path_, jet::Access::Read);
    EXPECT_TRUE(jet::checkDatabase(file).empty());
}

TEST_F(DBRemindUtilsTest, GetDeletedColListsTheDeletedRows) {
    const auto one = db_.GetDeletedCol();
    ASSERT_EQ(one->Count(), 1);
    EXPECT_EQ(one->Item(1), Variant("{AAB5536C-C33C-4286-B8E3-52AED7DF151C}"));
    EXPECT_TRUE(one->Exists("{aab5536c-c33c-4286-b8e3-52aed7df151c}"));
    EXPECT_EQ(db_.Execute("UPDATE Reminders SET deleted = (EventID >= 1011)"), 12);
    const auto two = db_.GetDeletedCol();
    ASSERT_EQ(two->Count(), 2);
    EXPECT_EQ(two->Key(2), "{AD32DEC8-9C9E-49B8-B224-7234B76CD9ED}");
    db_.DBFullName.clear();
    db_.CloseDB();
    EXPECT_EQ(db_.GetDeletedCol()->Count(), 0);
    EXPECT_EQ(db_.LastError(), ErrNo::NotFound);
}

// Every procedure, succeeding and failing, leaves what was pending.
TEST_F(DBRemindUtilsTest, KeepsPendingError) {
    const std::function<void(DBRemindUtils&)> procedures[] = {
        [](DBRemindUtils& db) { db.OpenDB(); },
        [](DBRemindUtils& db) { db.ReConnect(); },
        [](DBRemindUtils& db) { db.CloseDB(); },
        [](DBRemindUtils& db) { db.CloseAndOpenDB(); },
        [](DBRemindUtils& db) { db.OpenRS(kAll); },
        [](DBRemindUtils& db) { db.OpenRS("SELECT x FROM Reminders"); },
        [](DBRemindUtils& db) { db.Execute(kAllHidden); },
        [](DBRemindUtils& db) { db.Execute("nonsense"); },
        [](DBRemindUtils& db) { db.FieldExistsDB("Reminders", "id"); },
        [](DBRemindUtils& db) { db.FieldExistsDB("Nowhere", "id"); },
        [](DBRemindUtils& db) { db.GetDeletedCol(); },
    };
    for (const std::string& file : {path_, std::string("no such file"), std::string()}) {
        for (std::size_t i = 0; i < std::size(procedures); ++i) {
            for (const ErrNo pending : {ErrNo::None, ErrNo::Overflow}) {
                SCOPED_TRACE(testing::Message() << file << ", procedure " << i);
                DBRemindUtils db;
                db.DBFullName = file;
                ErrorState::set(pending);
                procedures[i](db);
                EXPECT_EQ(ErrorState::number(), pending);
                ErrorState::clear();
            }
        }
    }
}

TEST_F(DBRemindUtilsTest, SaysWhyTheLastCallFailed) {
    EXPECT_EQ(db_.LastErrorText(), "");
    db_.OpenRS("SELECT Nothing FROM Reminders");
    EXPECT_THAT(db_.LastErrorText(), testing::HasSubstr("Nothing"));
    db_.OpenRS(kAll);
    EXPECT_EQ(db_.LastErrorText(), "");
    std::filesystem::remove(path_);
    db_.OpenDB();
    EXPECT_EQ(db_.LastErrorText().substr(0, path_.size() + 13), path_ + ": cannot open");
}

TEST_F(DBRemindUtilsTest, KnowsWhetherTheRowsCanBeRead) {
    EXPECT_EQ(db_.ReadTrouble().number, ErrNo::None);
    vl::test::writeFile(path_, "no database");
    db_.OpenRS(kAll);
    EXPECT_EQ(db_.ReadTrouble().number, ErrNo::Format);
    EXPECT_EQ(db_.ReadTrouble().text, db_.LastErrorText());
    db_.Execute(kAllHidden);
    db_.OpenDB();
    db_.CloseDB();
    EXPECT_EQ(db_.ReadTrouble().number, ErrNo::Format) << "nobody has read it since";
    vl::test::writeFile(path_, vl::test::readFile(vl::test::repoFile("data/first-light.RemindDB")));
    db_.OpenRS("no SQL at all");
    EXPECT_EQ(db_.LastError(), ErrNo::Syntax);
    EXPECT_EQ(db_.ReadTrouble().number, ErrNo::Format);
    db_.OpenRS(kAll);
    EXPECT_EQ(db_.ReadTrouble().number, ErrNo::None);
    EXPECT_EQ(db_.ReadTrouble().text, "");
    db_.OpenRS("no SQL at all");
    EXPECT_EQ(db_.ReadTrouble().number, ErrNo::None) << "that is not the file's fault";
}

TEST_F(DBRemindUtilsTest, ALookTellsWhetherAnybodyHasWritten) {
    const DBRemindUtils::Look never;
    const DBRemindUtils::Look first = db_.TakeLook();
    EXPECT_TRUE(first.same(db_.TakeLook()));
    EXPECT_FALSE(first.same(never));
    EXPECT_FALSE(never.same(never));
    EXPECT_FALSE(db_.isOpen) << "looking opens nothing";
    db_.OpenRS(kAll);
    EXPECT_TRUE(first.same(db_.TakeLook())) << "reading is no writing";

    db_.Execute(kAllHidden);
    const DBRemindUtils::Look written = db_.TakeLook();
    EXPECT_FALSE(written.same(first));
    db_.Execute("UPDATE Reminders SET Hidden = True WHERE GUID = \"none\"");
    EXPECT_FALSE(db_.TakeLook().same(written)) << "ours count even when they change nothing";
}

TEST_F(DBRemindUtilsTest, ALookSeesSizeTimeAndCommitWord) {
    namespace fs = std::filesystem;
    const auto time = fs::last_write_time(path_);
    const std::string before = bytes();
    const DBRemindUtils::Look first = db_.TakeLook();

    std::string changed = before;
    changed[0xE00 + 2] = static_cast<char>(changed[0xE00 + 2] + 1);
    vl::test::writeFile(path_, changed);
    fs::last_write_time(path_, time);
    EXPECT_FALSE(first.same(db_.TakeLook())) << "the first sharing user's commit word";

    vl::test::writeFile(path_, before);
    fs::last_write_time(path_, time);
    EXPECT_TRUE(first.same(db_.TakeLook()));
    fs::last_write_time(path_, time + std::chrono::milliseconds(20));
    EXPECT_FALSE(first.same(db_.TakeLook()));

    vl::test::writeFile(path_, before + std::string(4096, '\0'));
    fs::last_write_time(path_, time);
    EXPECT_FALSE(first.same(db_.TakeLook()));

    fs::remove(path_);
    EXPECT_FALSE(first.same(db_.TakeLook()));
    EXPECT_FALSE(db_.TakeLook().same(db_.TakeLook())) << "what cannot be read never counts as same";
}

}  // namespace
}  // namespace vl
