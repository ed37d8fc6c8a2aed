// What is added to the files of older hosts.
#include "notify/SchemaUpgrade.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "db/DBRemindUtils.h"
#include "db/jet/Transaction.h"
#include "db/jet/check/Check.h"
#include "support/Support.h"

namespace vl {
namespace {

using jet::ColumnType;

class SchemaUpgrade : public testing::Test {
protected:
    /// A database as a host wrote it, with rows, that has these of the program's columns.
    void make(const std::vector<jet::NewColumn>& more) {
        std::filesystem::remove(db.DBFullName);
        std::vector<jet::NewColumn> columns = {{"GUID", ColumnType::Text, 50},
                                               {"Subject", ColumnType::Text}};
        columns.insert(columns.end(), more.begin(), more.end());
        jet::Database::create(db.DBFullName,
                              [&](jet::Database& file) { file.createTable("Reminders", columns); });
        for (const char* guid : {"{1}", "{2}", "{3}"}) {
            auto file = jet::Database::open(db.DBFullName, jet::Access::ReadWrite);
            jet::Transaction change(file);
            using Change = jet::Table::Change;
            file.table("Reminders")
                .insert(std::vector<Change>{{0, guid}, {1, std::string("subject of ") + guid}});
            change.commit();
        }
    }
    int upgrade(int version) {
        return upgradeSchema(db, version, [this] {
            ++statusCalls;
            dismissedThen = db.FieldExistsDB("Reminders", "Dismissed");
        });
    }
    std::vector<bool> columnsThere() {
        std::vector<bool> there;
        for (const char* name : {"id", "NextReminder", "Dismissed", "Hidden"}) {
            there.push_back(db.FieldExistsDB("REMINDERS", name));
        }
        return there;
    }

    test::TempFolder folder;
    DBRemindUtils db = [this] {
        DBRemindUtils utils;
        utils.DBFullName = (folder / "Velmora.RemindDB").string();
        return utils;
    }();
    int statusCalls = 0;
    bool dismissedThen = false;
};

TEST_F(SchemaUpgrade, AddsAllFourColumnsToAnOldFile) {
    make({});
    EXPECT_EQ(upgrade(0), 4);
    EXPECT_EQ(statusCalls, 1);
    EXPECT_TRUE(dismissedThen) << "after the step that adds it";
    auto file = jet::Database::open(db.DBFullName, jet::Access::Read);
    EXPECT_TRUE(jet::checkDatabase(file).empty());
    const jet::Table table = file.table("Reminders");
    ASSERT_EQ(table.columns().size(), 6U);
    EXPECT_EQ(table.columns()[2].name, "id");
    EXPECT_EQ(table.columns()[2].type, ColumnType::Text);
    EXPECT_EQ(table.columns()[2].length, 510);
    EXPECT_EQ(table.columns()[3].type, ColumnType::Date);
    EXPECT_EQ(table.columns()[4].type, ColumnType::Date);
    EXPECT_EQ(table.columns()[5].type, ColumnType::Boolean);
    int rows = 0;
    for (jet::RowCursor row = table.scan(); row.next(); ++rows) {
        EXPECT_EQ(row.value(1), Variant("subject of " + row.value(0).toText()));
        EXPECT_EQ(row.value(2), Variant(Null{}));
        EXPECT_EQ(row.value(5), Variant(false));
    }
    EXPECT_EQ(rows, 3);
}

TEST_F(SchemaUpgrade, ARowCanHoldWhatWasAdded) {
    make({});
    upgrade(0);
    EXPECT_EQ(db.Execute("UPDATE Reminders SET Hidden = -1 WHERE (GUID=\"{2}\");"), 1);
    EXPECT_EQ(
        db.Execute("UPDATE Reminders SET NextReminder = #2026-11-21 09:30:00# WHERE GUID=\"{2}\";"),
        1)
        << db.LastErrorText();
    const auto rows = db.OpenRS("SELECT NextReminder FROM Reminders WHERE Hidden");
    ASSERT_FALSE(rows->EOF_());
    EXPECT_EQ(rows->value("NextReminder"), Variant(DateTime::fromCivil(2026, 11, 21, 9, 30)));
    db.CloseDB();
}

TEST_F(SchemaUpgrade, WhatIsThereIsNotAddedAgain) {
    make({{"ID", ColumnType::Text, 20},
          {"nextreminder", ColumnType::Date},
          {"Dismissed", ColumnType::Date},
          {"Hidden", ColumnType::Boolean}});
    const std::string before = test::readFile(db.DBFullName);
    EXPECT_EQ(upgrade(0), 4);
    EXPECT_EQ(statusCalls, 1);
    EXPECT_EQ(test::readFile(db.DBFullName), before);
}

TEST_F(SchemaUpgrade, StartsBehindTheVersionReached) {
    make({});
    EXPECT_EQ(upgrade(2), 4);
    EXPECT_EQ(columnsThere(), (std::vector<bool>{false, false, true, true}));
    EXPECT_EQ(statusCalls, 1);
    make({});
    EXPECT_EQ(upgrade(3), 4);
    EXPECT_EQ(columnsThere(), (std::vector<bool>{false, false, false, true}));
    EXPECT_EQ(statusCalls, 1) << "no more";
    make({});
    for (const int version : {4, 5, 2147483647}) {
        EXPECT_EQ(upgrade(version), version);
    }
    EXPECT_EQ(columnsThere(), std::vector<bool>(4));
}

TEST_F(SchemaUpgrade, AStepThatFailsIsTriedAgain) {
    EXPECT_EQ(upgrade(0), 0) << "there is no file";
    EXPECT_EQ(statusCalls, 1) << "whether the step succeeded or not";
    EXPECT_FALSE(std::filesystem::exists(db.DBFullName));
    jet::Database::create(db.DBFullName);
    EXPECT_EQ(upgrade(1), 1) << "there is no table";
    EXPECT_EQ(db.LastError(), ErrNo::NotFound);
    EXPECT_EQ(upgrade(-3), -3);
    make({});
    EXPECT_EQ(upgrade(0), 4);
}

// A table with as many columns as there can be has no room for what is missing.
TEST_F(SchemaUpgrade, TheVersionIsThatOfTheLastStepThatSucceeded) {
    struct Case {
        std::vector<bool> there;  // of the four columns
        int from;
        int version;
        int statusCalls;
    };
    const Case cases[] = {
        {{false, true, true, true}, 0, 4, 1},   {{true, false, true, true}, 0, 4, 1},
        {{true, true, false, true}, 0, 4, 1},   {{true, true, true, false}, 0, 3, 1},
        {{true, true, false, false}, 0, 2, 1},  {{true, false, false, false}, 0, 1, 1},
        {{false, false, false, true}, 0, 4, 1}, {{true, true, false, false}, 2, 2, 1},
        {{true, true, true, false}, 3, 3, 0},
    };
    for (const Case& c : cases) {
        const std::vector<jet::NewColumn> four = {{"id", ColumnType::Text, 20},
                                                  {"NextReminder", ColumnType::Date},
                                                  {"Dismissed", ColumnType::Date},
                                                  {"Hidden", ColumnType::Boolean}};
        std::vector<jet::NewColumn> columns;
        for (std::size_t i = 0; i < four.size(); ++i) {
            if (c.there[i]) {
                columns.push_back(four[i]);
            }
        }
        for (int i = 0; columns.size() < 253; ++i) {
            columns.push_back({"more" + std::to_string(i), ColumnType::Boolean});
        }
        make(columns);
        statusCalls = 0;
        SCOPED_TRACE(testing::PrintToString(c.there));
        EXPECT_EQ(upgrade(c.from), c.version);
        EXPECT_EQ(statusCalls, c.statusCalls);
        EXPECT_EQ(columnsThere(), c.there);
        EXPECT_EQ(upgrade(c.version), c.version) << "the next time";
    }
}

TEST_F(SchemaUpgrade, KeepsPendingError) {
    ErrorState::set(ErrNo::Overflow);
    upgrade(0);
    make({});
    upgrade(0);
    EXPECT_EQ(ErrorState::number(), ErrNo::Overflow);
    ErrorState::clear();
}

TEST_F(SchemaUpgrade, AddFieldSaysWhyItFailed) {
    make({});
    const std::string before = test::readFile(db.DBFullName);
    EXPECT_EQ(db.AddField("Reminders", "guid", DBRemindUtils::kText), ErrNo::None);
    EXPECT_EQ(db.AddField("Reminders", "bad.name", DBRemindUtils::kText), ErrNo::Syntax);
    EXPECT_EQ(db.AddField("Reminders", "strange", 99), ErrNo::Unsupported);
    EXPECT_EQ(db.AddField("Reminder", "id", DBRemindUtils::kText), ErrNo::NotFound);
    EXPECT_NE(db.LastErrorText().find("Velmora.RemindDB"), std::string::npos);
    EXPECT_EQ(test::readFile(db.DBFullName), before);
    EXPECT_EQ(db.AddField("reminders", "id", DBRemindUtils::kText, 5, "x", true), ErrNo::None);
    EXPECT_EQ(db.LastError(), ErrNo::None);
    EXPECT_FALSE(db.isOpen) << "the connection stays as it was";
}

}  // namespace
}  // namespace vl
