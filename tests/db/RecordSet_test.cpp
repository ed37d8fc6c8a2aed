#include "db/RecordSet.h"

#include <gmock/gmock.h>

#include "base/ErrorState.h"
#include "support/ErrorOf.h"
#include "support/Support.h"

namespace vl {
namespace {

using test::errorOf;

using jet::ColumnType;

RecordSet people() {
    sql::Result result;
    result.isQuery = true;
    result.fields = {{"Name", ColumnType::Text}, {"Age", ColumnType::Long}};
    result.rows = {{"Ann", 30}, {"Bob", Null{}}};
    return RecordSet(std::move(result));
}

void expectNoRows(RecordSet& rs) {
    EXPECT_TRUE(rs.BOF_());
    EXPECT_TRUE(rs.EOF_());
    EXPECT_EQ(rs.RecordCount(), 0U);
    rs.MoveFirst();
    rs.MoveNext();
    EXPECT_TRUE(rs.EOF_());
    EXPECT_EQ(errorOf([&] { rs.value(0); }), ErrNo::NotFound);
    EXPECT_EQ(errorOf([&] { rs.value("Name"); }), ErrNo::NotFound);
}

TEST(RecordSet, UnopenedHoldsNoRows) {
    RecordSet rs;
    EXPECT_EQ(rs.State(), RecordSet::kStateClosed);
    EXPECT_FALSE(rs.isOpen());
    EXPECT_TRUE(rs.fields().empty());
    expectNoRows(rs);
}

TEST(RecordSet, WalksItsRows) {
    RecordSet rs = people();
    EXPECT_EQ(rs.State(), RecordSet::kStateOpen);
    EXPECT_EQ(rs.RecordCount(), 2U);
    EXPECT_FALSE(rs.BOF_());
    EXPECT_FALSE(rs.EOF_());
    EXPECT_EQ(rs.value(0), Variant("Ann"));
    EXPECT_EQ(rs.value("AGE"), Variant(30));
    rs.MoveNext();
    EXPECT_EQ(rs.value("name"), Variant("Bob"));
    EXPECT_EQ(rs.value(1), Variant(Null{}));
    EXPECT_FALSE(rs.EOF_());
    rs.MoveNext();
    EXPECT_TRUE(rs.EOF_());
    EXPECT_EQ(errorOf([&] { rs.value(0); }), ErrNo::NotFound);
    rs.MoveNext();
    EXPECT_EQ(rs.RecordCount(), 2U);
    rs.MoveFirst();
    EXPECT_EQ(rs.value(0), Variant("Ann"));
}

TEST(RecordSet, KnowsWhereItStands) {
    RecordSet rs = people();
    EXPECT_EQ(rs.AbsolutePosition(), 1);
    rs.MoveNext();
    EXPECT_EQ(rs.AbsolutePosition(), 2);
    rs.MoveNext();
    EXPECT_EQ(rs.AbsolutePosition(), RecordSet::kPositionEnd);
    rs.setAbsolutePosition(2);
    EXPECT_EQ(rs.value(0), Variant("Bob"));
    rs.setAbsolutePosition(1);
    EXPECT_EQ(rs.value(0), Variant("Ann"));
    for (const std::size_t none : {std::size_t{0}, std::size_t{3}}) {
        EXPECT_EQ(errorOf([&] { rs.setAbsolutePosition(none); }), ErrNo::NotFound);
        EXPECT_EQ(rs.AbsolutePosition(), 1);
    }
    rs.AddNew();
    EXPECT_EQ(rs.AbsolutePosition(), 3);
    rs.setAbsolutePosition(2);
    EXPECT_EQ(rs.RecordCount(), 2U) << "a row that was not saved goes";
    rs.Close();
    EXPECT_EQ(rs.AbsolutePosition(), RecordSet::kPositionUnknown);
    EXPECT_EQ(RecordSet().AbsolutePosition(), RecordSet::kPositionUnknown);
}

TEST(RecordSet, AnUnknownFieldIsAnError) {
    RecordSet rs = people();
    EXPECT_EQ(errorOf([&] { rs.value(2); }), ErrNo::NotFound);
    EXPECT_EQ(errorOf([&] { rs.value("Town"); }), ErrNo::NotFound);
}

TEST(RecordSet, AnEmptyResultIsOpenAndAtItsEnd) {
    sql::Result result;
    result.fields = {{"Name", ColumnType::Text}};
    RecordSet rs(std::move(result));
    EXPECT_TRUE(rs.isOpen());
    EXPECT_EQ(rs.fields().size(), 1U);
    expectNoRows(rs);
}

TEST(RecordSet, ClosedHoldsNothing) {
    RecordSet rs = people();
    rs.MoveNext();
    rs.Close();
    EXPECT_FALSE(rs.isOpen());
    EXPECT_TRUE(rs.fields().empty());
    expectNoRows(rs);
}

TEST(RecordSet, TellsTheTypesOfItsFields) {
    struct Case {
        ColumnType type;
        int code;
    };
    static constexpr Case cases[] = {
        {ColumnType::Integer, 2},  {ColumnType::Long, 3},      {ColumnType::Single, 4},
        {ColumnType::Double, 5},   {ColumnType::Money, 6},     {ColumnType::Date, 7},
        {ColumnType::Boolean, 11}, {ColumnType::Byte, 17},     {ColumnType::Guid, 72},
        {ColumnType::Binary, 128}, {ColumnType::Numeric, 131}, {ColumnType::Text, 202},
        {ColumnType::Memo, 203},   {ColumnType::Ole, 205},
    };
    sql::Result result;
    for (const Case& c : cases) {
        result.fields.push_back({"f", c.type});
    }
    const RecordSet rs(std::move(result));
    ASSERT_EQ(rs.fields().size(), std::size(cases));
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        EXPECT_EQ(rs.fields()[i].type, cases[i].code) << static_cast<int>(cases[i].type);
    }
}

}  // namespace
}  // namespace vl
