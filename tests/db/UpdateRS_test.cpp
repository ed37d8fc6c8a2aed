// Record sets whose rows are changed and saved.
#include <gmock/gmock.h>

#include "db/DBRemindUtils.h"
#include "support/ErrorOf.h"
#include "support/Support.h"

namespace vl {
namespace {

using jet::ColumnType;
using test::errorOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kOne = "SELECT * FROM Reminders WHERE EventID = 1003";

TEST(RecordSetChange, ConvertsToTheFieldsType) {
    sql::Result result;
    result.isQuery = true;
    result.fields = {{"Flag", ColumnType::Boolean},    {"Byte", ColumnType::Byte},
                     {"Small", ColumnType::Integer},   {"Long", ColumnType::Long},
                     {"Double", ColumnType::Double},   {"Date", ColumnType::Date},
                     {"Text", ColumnType::Text, 10},   {"Memo", ColumnType::Memo},
                     {"Binary", ColumnType::Binary, 2}};
    result.rows.emplace_back(result.fields.size(), Variant(Null{}));
    const DateTime day = DateTime::fromCivil(2026, 11, 20);
    struct Case {
        const char* field;
        Variant given;
        Variant held;
        ErrNo error = ErrNo::None;
    };
    const Case cases[] = {
        {"Flag", 7, true},
        {"Flag", "False", false},
        {"Flag", Null{}, false},
        {"Flag", "maybe", Null{}, ErrNo::TypeMismatch},
        {"Byte", 255, 255},
        {"Byte", 256, Null{}, ErrNo::Overflow},
        {"Byte", -1, Null{}, ErrNo::Overflow},
        {"Small", "-32768", -32768},
        {"Small", 32768, Null{}, ErrNo::Overflow},
        {"Long", 2.5, 2},
        {"Long", 3e9, Null{}, ErrNo::Overflow},
        {"Long", "seven", Null{}, ErrNo::TypeMismatch},
        {"Double", 1, 1.0},
        {"Date", "2026-11-20", day},
        {"Date", "tomorrow", Null{}, ErrNo::TypeMismatch},
        {"Text", 12345, "12345"},
        {"Text", "123456", Null{}, ErrNo::Overflow},
        {"Text", "\U0001F4C5\U0001F4C5x", "\U0001F4C5\U0001F4C5x"},
        {"Memo", std::string(100'000, 'm'), std::string(100'000, 'm')},
        {"Memo", Null{}, Null{}},
        {"Binary", Bytes{std::byte{1}}, Bytes{std::byte{1}}},
        {"Binary", Bytes(3), Null{}, ErrNo::Overflow},
        {"Binary", "ab", Null{}, ErrNo::TypeMismatch},
        {"Absent", 1, Null{}, ErrNo::NotFound},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.field + (": " + testing::PrintToString(c.given.value().index())));
        RecordSet rs(result);
        EXPECT_EQ(errorOf([&] { rs.setValue(c.field, c.given); }), c.error);
        if (c.error != ErrNo::NotFound) {
            EXPECT_EQ(rs.value(c.field), c.held);
        }
        EXPECT_EQ(rs.changed().size(),
                  c.error == ErrNo::None && c.held != Variant(Null{}) ? 1U : 0U);
    }
}

TEST(RecordSetChange, IsTakenBackUnlessItWasSaved) {
    sql::Result result;
    result.isQuery = true;
    result.fields = {{"Name", ColumnType::Text, 100}, {"Age", ColumnType::Long}};
    result.rows = {{"Ann", 30}, {"Bob", 40}};
    RecordSet rs(result);
    rs.setValue("Age", 31);
    EXPECT_THAT(rs.changed(), ElementsAre(1U));
    EXPECT_EQ(rs.valueBefore(1), Variant(30));
    rs.setValue("Name", "Ann");
    EXPECT_THAT(rs.changed(), ElementsAre(1U)) << "a value that it has is no change";
    rs.MoveNext();
    EXPECT_THAT(rs.changed(), IsEmpty());
    rs.MoveFirst();
    EXPECT_EQ(rs.value("Age"), Variant(30));
    rs.AddNew();
    EXPECT_TRUE(rs.isNew());
    EXPECT_EQ(rs.RecordCount(), 3U);
    EXPECT_EQ(rs.value("Name"), Variant(Null{}));
    rs.CancelUpdate();
    EXPECT_EQ(rs.RecordCount(), 2U);
    EXPECT_TRUE(rs.EOF_());
    EXPECT_EQ(errorOf([&] { rs.setValue("Age", 1); }), ErrNo::NotFound);
    rs.MoveFirst();
    rs.setValue("Age", 31);
    rs.markSaved();
    rs.CancelUpdate();
    EXPECT_EQ(rs.value("Age"), Variant(31));
}

class UpdateRSTest : public testing::Test {
protected:
    UpdateRSTest() {
        db_.DBFullName = (folder_ / "Velmora.RemindDB").string();
        test::writeFile(db_.DBFullName,
                        test::readFile(test::repoFile("data/first-light.RemindDB")));
    }

    test::TempFolder folder_;
    DBRemindUtils db_;
};

TEST_F(UpdateRSTest, SavesWhatWasChangedAndNothingElse) {
    const auto rs = db_.OpenRS(kOne);
    ASSERT_FALSE(rs->EOF_());
    EXPECT_EQ(db_.UpdateRS(*rs, "Reminders"), 0) << "nothing was changed";
    rs->setValue("Subject", "A \"new\" subject?");
    rs->setValue("NextReminder", DateTime::fromCivil(2026, 11, 21, 9, 30));
    // The host changes another column meanwhile.
    db_.Execute("UPDATE Reminders SET LabelID = 77 WHERE EventID = 1003");
    EXPECT_EQ(db_.UpdateRS(*rs, "Reminders"), 1);
    EXPECT_FALSE(db_.isOpen);
    EXPECT_THAT(rs->changed(), IsEmpty());
    const auto again = db_.OpenRS(kOne);
    EXPECT_EQ(again->value("Subject"), Variant("A \"new\" subject?"));
    EXPECT_EQ(again->value("NextReminder"), Variant(DateTime::fromCivil(2026, 11, 21, 9, 30)));
    EXPECT_EQ(again->value("LabelID"), Variant(77));
    EXPECT_EQ(again->value("JSON"), rs->value("JSON"));
}

TEST_F(UpdateRSTest, FindsTheRowByTheGuidItHad) {
    const auto rs = db_.OpenRS(kOne);
    rs->setValue("GUID", "{another}");
    EXPECT_EQ(db_.UpdateRS(*rs, "Reminders"), 1);
    EXPECT_EQ(db_.OpenRS(kOne)->value("GUID"), Variant("{another}"));
}

TEST_F(UpdateRSTest, AddsARow) {
    const auto rs = db_.OpenRS("SELECT * FROM Reminders WHERE False");
    ASSERT_TRUE(rs->isOpen());
    rs->AddNew();
    rs->setValue("GUID", "{new}");
    rs->setValue("Subject", "Added");
    EXPECT_EQ(db_.UpdateRS(*rs, "Reminders"), 1);
    EXPECT_FALSE(rs->isNew());
    const auto found = db_.OpenRS("SELECT Subject, Hidden FROM Reminders WHERE GUID=\"{new}\"");
    ASSERT_FALSE(found->EOF_());
    EXPECT_EQ(found->value("Subject"), Variant("Added"));
    EXPECT_EQ(found->value("Hidden"), Variant(false));
}

TEST_F(UpdateRSTest, WhatCannotBeSavedStaysChanged) {
    const auto rs = db_.OpenRS(kOne);
    rs->setValue("Subject", "Changed");
    EXPECT_EQ(db_.UpdateRS(*rs, "NoSuchTable"), 0);
    EXPECT_EQ(db_.LastError(), ErrNo::NotFound);
    EXPECT_FALSE(rs->changed().empty());
    db_.Execute("DELETE * FROM Reminders WHERE EventID = 1003");
    EXPECT_EQ(db_.UpdateRS(*rs, "Reminders"), 0) << "the row is gone";
    EXPECT_EQ(db_.LastError(), ErrNo::None);
    EXPECT_FALSE(rs->changed().empty());
}

}  // namespace
}  // namespace vl
