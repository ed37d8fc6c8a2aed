// Changing rows: what we write is read by a reader that is not ours.
#include <algorithm>
#include <iostream>

#include <gtest/gtest.h>

#include "DataPage.h"
#include "Mdb.h"
#include "Pages.h"
#include "Rows.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using jet::Access;
using jet::RowId;
using jet::Table;
using test::differences;
using test::Disk;
using test::errorOf;
using test::firstLight;
using test::generated;
using test::position;
using test::Row;
using test::Rows;
using test::rowsOf;
using test::updateRow;
using Change = Table::Change;

constexpr std::size_t kCounter = 0xE02;

// Columns of a row as `mdb-json` would print them.
void expectMdb(const nlohmann::json& row, const std::string& column, const Variant& value) {
    SCOPED_TRACE(column);
    if (value.isNull()) {
        EXPECT_FALSE(row.contains(column));
        return;
    }
    ASSERT_TRUE(row.contains(column));
    const nlohmann::json& printed = row.at(column);
    if (const auto* date = value.get<DateTime>()) {
        const std::string day = formatDateTime(*date);
        EXPECT_EQ(printed, day.size() == 10 ? day + " 00:00:00" : day);
    } else if (const auto* flag = value.get<bool>()) {
        EXPECT_EQ(printed, *flag ? 1 : 0);
    } else {
        EXPECT_EQ(printed.get<double>(), value.toDouble());
    }
}

TEST(JetUpdate, BothReadersFindWhatWasWritten) {
    const test::TempFolder folder;
    const fs::path path = folder / "copy.RemindDB";
    test::writeFile(path, firstLight());
    Rows expected;
    std::vector<std::size_t> written;
    {
        auto db = jet::Database::open(path.string(), Access::ReadWrite);
        Table table = db.table("Reminders");
        expected = rowsOf(table);
        for (const char* name : {"NextReminder", "Dismissed", "Hidden", "EventID", "ItemID"}) {
            written.push_back(position(table, name));
        }
        ASSERT_EQ(expected.ids.size(), 12U);
        for (std::size_t r = 0; r < expected.ids.size(); ++r) {
            const auto n = static_cast<std::int32_t>(r);
            const Row values = {
                DateTime::fromCivil(2026, 11, 20, 9, 30).addSeconds(std::int64_t{61} * n),
                n % 3 == 0 ? Variant(Null{}) : Variant(DateTime::fromCivil(2026, 11, 20)),
                n % 2 == 0, n % 4 == 0 ? Variant(Null{}) : Variant(-1000 - n), 7 * n};
            std::vector<Change> changes;
            for (std::size_t i = 0; i < written.size(); ++i) {
                changes.emplace_back(written[i], values[i]);
                expected.values[r][written[i]] = values[i];
            }
            updateRow(db, table, expected.ids[r], changes);
        }
    }
    const auto db = jet::Database::open(path.string(), Access::Read);
    const Table table = db.table("Reminders");
    const Rows ours = rowsOf(table);
    EXPECT_EQ(ours.ids, expected.ids);
    EXPECT_EQ(ours.values, expected.values);
    const auto theirs = test::mdbRows(path, "Reminders");
    ASSERT_EQ(theirs.size(), expected.ids.size());
    for (std::size_t r = 0; r < theirs.size(); ++r) {
        for (const std::size_t column : written) {
            expectMdb(theirs[r], table.columns()[column].name, expected.values[r][column]);
        }
        EXPECT_EQ(theirs[r].at("GUID"),
                  *expected.values[r][position(table, "GUID")].get<std::string>());
    }
}

TEST(JetUpdate, ATypedColumnTakesNullAndComesBack) {
    Disk disk(firstLight());
    auto db = test::openMemory(disk, Access::ReadWrite);
    Table table = db.table("Reminders");
    const std::size_t start = position(table, "StartDateTime");
    const Rows before = rowsOf(table);
    updateRow(db, table, before.ids[4], std::vector<Change>{{start, Null{}}});
    EXPECT_EQ(rowsOf(table).values[4][start], Variant(Null{}));
    updateRow(db, table, before.ids[4], std::vector<Change>{{start, before.values[4][start]}});
    EXPECT_EQ(rowsOf(table).values, before.values);
}

TEST(JetUpdate, NothingChangesButTheRowAndTheCounter) {
    const std::string before = generated();
    Disk disk(before);
    auto db = test::openMemory(disk, Access::ReadWrite);
    Table table = db.table("Reminders");
    const Rows rows = rowsOf(table);
    const RowId id = rows.ids[77];
    updateRow(db, table, id,
              std::vector<Change>{{position(table, "EventID"), 0x12345678},
                                  {position(table, "Deleted"), true},
                                  {position(table, "EndDateTime"), Null{}}});
    EXPECT_EQ(disk.log, "wfw");  // the page, on the disk, before the counter

    auto pages = differences(before, disk);
    ASSERT_EQ(pages.size(), 2U);
    jet::PageFile file = test::pagesOf(disk);
    const jet::Page page = file.page(id.page);
    const jet::ByteView row = jet::DataPage(page).row(id.row);
    const auto begin = static_cast<std::size_t>(row.data() - page.bytes().data());
    EXPECT_GE(pages[id.page].first, begin);
    EXPECT_LT(pages[id.page].second, begin + row.size());
    EXPECT_EQ(pages[0], std::make_pair(kCounter, kCounter));
    EXPECT_EQ(jet::u16(disk.bytes, kCounter),
              jet::u16(std::as_bytes(std::span(before)), kCounter) + 1);

    Rows expected = rows;
    expected.values[77][position(table, "EventID")] = 0x12345678;
    expected.values[77][position(table, "Deleted")] = true;
    expected.values[77][position(table, "EndDateTime")] = Null{};
    EXPECT_EQ(rowsOf(table).values, expected.values);
}

TEST(JetUpdate, AMovedRowIsChangedWhereItIs) {
    const test::TempFolder folder;
    const fs::path path = folder / "copy.RemindDB";
    const std::string before = firstLight();
    Disk disk(before);
    auto db = test::openMemory(disk, Access::ReadWrite);
    Table table = db.table("MSysObjects");
    const Rows rows = rowsOf(table);
    const std::size_t name = position(table, "Name");
    const std::size_t date = position(table, "DateUpdate");
    std::size_t moved = 0;
    while (rows.values[moved][name] != Variant("Reminders")) {
        ++moved;
    }
    const DateTime value = DateTime::fromCivil(2027, 1, 2, 3, 4, 5);
    updateRow(db, table, rows.ids[moved], std::vector<Change>{{date, value}});
    const RowId id = rows.ids[moved];
    jet::PageFile file = test::pagesOf(disk);
    const jet::Page page = file.page(id.page);
    const jet::DataPage data(page);
    ASSERT_EQ(data.slot(id.row), jet::DataPage::Slot::Moved);
    // It leads to where it led before.
    Disk old(before);
    jet::PageFile oldFile = test::pagesOf(old);
    const jet::Page oldPage = oldFile.page(id.page);
    const jet::ByteView pointer = data.row(id.row);
    const jet::ByteView oldPointer = jet::DataPage(oldPage).row(id.row);
    ASSERT_GE(oldPointer.size(), 4U);
    EXPECT_TRUE(std::equal(pointer.begin(), pointer.begin() + 4, oldPointer.begin()));
    EXPECT_EQ(differences(before, disk).size(), 2U);
    Rows expected = rows;
    expected.values[moved][date] = value;
    EXPECT_EQ(rowsOf(table).values, expected.values);

    test::writeFile(
        path, std::string(reinterpret_cast<const char*>(disk.bytes.data()), disk.bytes.size()));
    bool found = false;
    for (const nlohmann::json& row : test::mdbRows(path, "MSysObjects")) {
        if (row.at("Name") == "Reminders") {
            expectMdb(row, "DateUpdate", value);
            found = true;
        }
    }
    EXPECT_TRUE(found);
}

TEST(JetUpdate, EveryTypeIsReadBackByBothReaders) {
    const fs::path shared = test::sharedFolder();
    if (shared.empty()) {
        std::cout << "no sample files beside this checkout: 0 files written\n";
        return;
    }
    struct Case {
        const char* file;
        const char* table;
        std::vector<std::pair<const char*, Variant>> values;
    };
    const Case cases[] = {
        {"testV2000.mdb",
         "Table1",
         {{"C", 200},
          {"D", -12345},
          {"E", -2147483647},
          {"F", -0.125},
          {"G", DateTime::fromCivil(1931, 2, 28, 18, 0, 1)},
          {"H", "-1234.5678"},
          {"I", false}}},
        {"fixedNumericTestV2000.mdb",
         "test",
         {{"col2", "12"}, {"col3", "-7"}, {"col4", "1"}, {"col5", Null{}}, {"col6", "0"}}},
    };
    int values = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        const test::TempFolder folder;
        const fs::path path = folder / c.file;
        test::writeFile(path, test::readFile(shared / "jet4" / "samples" / c.file));
        auto db = jet::Database::open(path.string(), Access::ReadWrite);
        Table table = db.table(c.table);
        Rows expected = rowsOf(table);
        std::vector<Change> changes;
        for (const auto& [name, value] : c.values) {
            changes.emplace_back(position(table, name), value);
            expected.values[0][changes.back().first] = value;
        }
        updateRow(db, table, expected.ids[0], changes);
        EXPECT_EQ(rowsOf(table).values, expected.values);
        const auto theirs = test::mdbRows(path, c.table);
        ASSERT_EQ(theirs.size(), expected.ids.size());
        for (const auto& [name, value] : c.values) {
            expectMdb(theirs[0], name, value);
            ++values;
        }
    }
    std::cout << std::size(cases) << " files, " << values << " values written and read back\n";
}

TEST(JetUpdate, WhatIsThereAlreadyIsNotWritten) {
    Disk disk(firstLight());
    auto db = test::openMemory(disk, Access::ReadWrite);
    Table table = db.table("Reminders");
    const Rows rows = rowsOf(table);
    std::vector<Change> changes;
    for (const char* name : {"EventID", "StartDateTime", "ReadOnly"}) {
        changes.emplace_back(position(table, name), rows.values[1][position(table, name)]);
    }
    updateRow(db, table, rows.ids[1], changes);
    EXPECT_EQ(disk.log, "");
}

// Whichever operation fails, the row is afterwards the old one or the new one, and the caller
// knows.
TEST(JetUpdate, AFailingWriteIsAnErrorAndTheRowIsWhole) {
    const std::string before = firstLight();
    bool finished = false;
    for (int n = 1; !finished; ++n) {
        SCOPED_TRACE(testing::Message() << "operation " << n << " fails");
        Disk disk(before);
        disk.failAt = n;
        auto db = test::openMemory(disk, Access::ReadWrite);
        Table table = db.table("Reminders");
        const Rows without = rowsOf(table);
        Rows with = without;
        with.values[5][position(table, "EventID")] = 5;
        const ErrNo error = errorOf([&] {
            updateRow(db, table, without.ids[5],
                      std::vector<Change>{{position(table, "EventID"), 5}});
        });
        finished = disk.log.size() < static_cast<std::size_t>(n);
        EXPECT_EQ(error, finished ? ErrNo::None : ErrNo::Io);
        const auto left = rowsOf(table).values;
        EXPECT_TRUE(left == with.values || (!finished && left == without.values));
        EXPECT_EQ(rowsOf(test::openMemory(disk).table("Reminders")).values, left);
        ASSERT_LT(n, 10);
    }
}

TEST(JetUpdate, TwoWritersToOnePageKeepEachOthersRows) {
    Disk disk(firstLight());
    auto one = test::openMemory(disk, Access::ReadWrite);
    auto other = test::openMemory(disk, Access::ReadWrite);
    Table mine = one.table("Reminders");
    Table theirs = other.table("Reminders");
    Rows rows = rowsOf(mine);
    ASSERT_EQ(rowsOf(theirs).ids, rows.ids);  // both know the pages now
    ASSERT_EQ(rows.ids[0].page, rows.ids[1].page);
    const std::size_t event = position(mine, "EventID");
    updateRow(one, mine, rows.ids[0], std::vector<Change>{{event, 100}});
    updateRow(other, theirs, rows.ids[1], std::vector<Change>{{event, 200}});
    rows.values[0][event] = 100;
    rows.values[1][event] = 200;
    EXPECT_EQ(rowsOf(one.table("Reminders")).values, rows.values);
    EXPECT_EQ(rowsOf(other.table("Reminders")).values, rows.values);
}

// A statement that changes rows while it scans them sees each row once, as it was.
TEST(JetUpdate, ACursorGoesOnOverRowsThatAreWrittenMeanwhile) {
    Disk disk(generated());
    auto db = test::openMemory(disk, Access::ReadWrite);
    Table table = db.table("Reminders");
    const Rows before = rowsOf(table);
    const std::size_t event = position(table, "EventID");
    jet::RowCursor cursor = table.scan();
    std::size_t n = 0;
    while (cursor.next()) {
        ASSERT_EQ(cursor.id(), before.ids[n]);
        ASSERT_EQ(cursor.value(event), before.values[n][event]);
        updateRow(db, table, cursor.id(), std::vector<Change>{{event, 900000}});
        ++n;
    }
    EXPECT_EQ(n, before.ids.size());
    for (const Row& row : rowsOf(table).values) {
        ASSERT_EQ(row[event], Variant(900000));
    }
}

}  // namespace
}  // namespace vl
