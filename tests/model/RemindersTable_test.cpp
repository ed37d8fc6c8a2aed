// The template database, as the rest of the program finds it.
#include "model/RemindersTable.h"

#include <gtest/gtest.h>

#include "db/DBRemindUtils.h"
#include "model/calEvent.h"
#include "support/ErrorOf.h"
#include "support/Support.h"

namespace vl {
namespace {

TEST(RemindersTable, HasAColumnForEachPropertyThatIsOne) {
    const test::TempFolder folder;
    const std::string path = (folder / "Velmora.RemindDB").string();
    makeRemindersDatabase(path);
    const auto db = jet::Database::open(path, jet::Access::Read);
    const jet::Table table = db.table("Reminders");
    EXPECT_EQ(table.rowCount(), 0U);
    std::size_t columns = 0;
    for (const EventProperty& property : calEvent::properties()) {
        columns += property.isColumn() ? 1U : 0U;
    }
    ASSERT_EQ(table.columns().size(), columns);
    EXPECT_EQ(columns, 45U);

    // The sample is of other hands.
    const auto sample = jet::Database::open(test::repoFile("data/first-light.RemindDB").string(),
                                            jet::Access::Read);
    const jet::Table other = sample.table("Reminders");
    for (std::size_t i = 0; i < columns; ++i) {
        const jet::Column& ours = table.columns()[i];
        const jet::Column& theirs = other.columns()[i];
        EXPECT_EQ(ours.name, theirs.name);
        EXPECT_EQ(ours.type, theirs.type) << ours.name;
        EXPECT_EQ(ours.length, theirs.length) << ours.name;
    }
}

TEST(RemindersTable, IsIndexedByWhatIsAskedFor) {
    const std::vector<jet::NewIndex> indexes = remindersIndexes();
    ASSERT_EQ(indexes.size(), 4U);
    EXPECT_EQ(indexes[0].columns[0].name, "GUID");
    EXPECT_TRUE(indexes[0].primary);
    for (std::size_t i = 1; i < indexes.size(); ++i) {
        EXPECT_FALSE(indexes[i].primary || indexes[i].unique || indexes[i].required);
    }
}

TEST(RemindersTable, NeedsNoUpgrade) {
    const test::TempFolder folder;
    DBRemindUtils db;
    db.DBFullName = (folder / "Velmora.RemindDB").string();
    makeRemindersDatabase(db.DBFullName);
    for (const char* column : {"id", "NextReminder", "Dismissed", "Hidden"}) {
        EXPECT_TRUE(db.FieldExistsDB("reminders", column)) << column;
    }
}

TEST(RemindersTable, ReplacesNothing) {
    const test::TempFolder folder;
    const std::string path = (folder / "Velmora.RemindDB").string();
    test::writeFile(path, "mine");
    EXPECT_EQ(test::errorOf([&] { makeRemindersDatabase(path); }), ErrNo::Exists);
    EXPECT_EQ(test::readFile(path), "mine");
}

}  // namespace
}  // namespace vl
