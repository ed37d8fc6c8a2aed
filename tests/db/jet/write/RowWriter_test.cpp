// Rows that come, change and go, as we and another reader find them afterwards.
#include <gtest/gtest.h>

#include "Mdb.h"
#include "Rows.h"
#include "db/jet/Transaction.h"
#include "support/ErrorOf.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using jet::Access;
using jet::RowId;
using jet::Table;
using jet::Transaction;
using test::Disk;
using test::errorOf;
using test::position;
using test::Row;
using test::Rows;
using test::rowsOf;
using Change = Table::Change;

std::vector<Change> changesOf(const Table& table,
                              std::initializer_list<std::pair<const char*, Variant>> values) {
    std::vector<Change> changes;
    for (const auto& [name, value] : values) {
        changes.emplace_back(position(table, name), value);
    }
    return changes;
}

TEST(JetRowWriter, ARowIsInsertedChangedAndRemoved) {
    Disk disk(test::firstLight());
    auto db = test::openMemory(disk, Access::ReadWrite);
    Table table = db.table("Reminders");
    Rows expected = rowsOf(table);
    Transaction change(db);
    const std::string memo(9000, 'm');
    const RowId id =
        table.insert(changesOf(table, {{"GUID", "{new}"}, {"Subject", "Dentist"}, {"JSON", memo}}));
    Rows found = rowsOf(table);
    ASSERT_EQ(found.ids.size(), expected.ids.size() + 1);
    const auto at = static_cast<std::size_t>(std::find(found.ids.begin(), found.ids.end(), id) -
                                             found.ids.begin());
    ASSERT_LT(at, found.ids.size());
    EXPECT_EQ(found.values[at][position(table, "Subject")], Variant("Dentist"));
    EXPECT_EQ(found.values[at][position(table, "JSON")], Variant(memo));

    table.update(id, changesOf(table, {{"Subject", std::string(200, 's')}, {"JSON", "short"}}));
    found = rowsOf(table);
    EXPECT_EQ(found.values[at][position(table, "Subject")], Variant(std::string(200, 's')));
    EXPECT_EQ(found.values[at][position(table, "JSON")], Variant("short"));

    table.remove(id);
    found = rowsOf(table);
    EXPECT_EQ(found.ids, expected.ids);
    EXPECT_EQ(found.values, expected.values);
    change.commit();
    EXPECT_EQ(rowsOf(test::openMemory(disk).table("Reminders")).values, expected.values);
}

TEST(JetRowWriter, NeedsATransaction) {
    Disk disk(test::firstLight());
    auto db = test::openMemory(disk, Access::ReadWrite);
    Table table = db.table("Reminders");
    const RowId id = rowsOf(table).ids[0];
    EXPECT_EQ(errorOf([&] { table.insert({}); }), ErrNo::Unexpected);
    EXPECT_EQ(errorOf([&] { table.update(id, {}); }), ErrNo::Unexpected);
    EXPECT_EQ(errorOf([&] { table.remove(id); }), ErrNo::Unexpected);
    EXPECT_EQ(disk.log, "");
}

}  // namespace
}  // namespace vl
