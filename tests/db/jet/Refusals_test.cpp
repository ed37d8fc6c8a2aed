// What is not written to a row: refused before anything has changed.
#include <iostream>

#include <gtest/gtest.h>

#include "DataPage.h"
#include "Pages.h"
#include "Rows.h"

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
using test::Rows;
using test::rowsOf;
using test::updateRow;
using Change = Table::Change;

TEST(JetRefusal, ARefusalWritesNothing) {
    const std::string before = generated();
    Disk disk(before);
    auto db = test::openMemory(disk, Access::ReadWrite);
    Table table = db.table("Reminders");
    const RowId id = rowsOf(table).ids[3];
    const std::size_t event = position(table, "EventID");
    struct Case {
        const char* what;
        RowId id;
        std::vector<Change> changes;
        ErrNo error;
    };
    const Case cases[] = {
        {"a word for a number", id, {{event, "x"}}, ErrNo::TypeMismatch},
        {"too large", id, {{event, 1e10}}, ErrNo::Overflow},
        {"the second of two",
         id,
         {{event, 5}, {position(table, "ItemID"), "x"}},
         ErrNo::TypeMismatch},
        {"no such row", {id.page, 255}, {{event, 5}}, ErrNo::NotFound},
        {"no such page", {99999, 0}, {{event, 5}}, ErrNo::NotFound},
        {"a page of others", {1, 0}, {{event, 5}}, ErrNo::NotFound},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(errorOf([&] { updateRow(db, table, c.id, c.changes); }), c.error);
        EXPECT_TRUE(differences(before, disk).empty());
    }
    auto reader = test::openMemory(disk);
    Table readOnly = reader.table("Reminders");
    EXPECT_EQ(errorOf([&] { updateRow(reader, readOnly, id, {{event, 5}}); }), ErrNo::ReadOnly);
    EXPECT_EQ(disk.log, "");
}

TEST(JetRefusal, RefusesADeletedRowAndTheBodyOfAMovedOne) {
    Disk disk(firstLight());
    auto db = test::openMemory(disk, Access::ReadWrite);
    Table table = db.table("Reminders");
    const RowId id = rowsOf(table).ids[2];
    const std::vector<Change> change = {{position(table, "EventID"), 5}};
    for (const unsigned flags : {0xC000U, 0x8000U}) {
        const std::size_t slot = id.page * jet::kPageSize + 14 + std::size_t{2} * id.row;
        const std::uint16_t before = jet::u16(disk.bytes, slot);
        jet::store(std::span(disk.bytes), slot, static_cast<std::uint16_t>(before | flags));
        EXPECT_EQ(errorOf([&] { updateRow(db, table, id, change); }), ErrNo::NotFound);
        jet::store(std::span(disk.bytes), slot, before);
    }
    EXPECT_EQ(disk.log, "");
    updateRow(db, table, id, change);
    EXPECT_NE(disk.log, "");
}

TEST(JetUpdate, ARowThatIsOlderThanAColumnGetsIt) {
    Disk disk(firstLight());
    auto db = test::openMemory(disk, Access::ReadWrite);
    Table table = db.table("Reminders");
    const RowId id = rowsOf(table).ids[0];
    {
        // As if the row had been written before its last three columns were added.
        jet::PageFile file = test::pagesOf(disk);
        const jet::Page page = file.page(id.page);
        const jet::ByteView row = jet::DataPage(page).row(id.row);
        const auto begin = static_cast<std::size_t>(row.data() - page.bytes().data());
        ASSERT_EQ(jet::u16(row, 0), 45);
        jet::store(std::span(disk.bytes), id.page * jet::kPageSize + begin, std::uint16_t{42});
    }
    const auto write = [&](const char* column, const Variant& value) {
        return errorOf([&] {
            updateRow(db, table, id, std::vector<Change>{{position(table, column), value}});
        });
    };
    EXPECT_EQ(rowsOf(table).values[0][position(table, "Dismissed")], Variant(Null{}));
    EXPECT_EQ(write("bModified", true), ErrNo::None);
    EXPECT_EQ(write("Hidden", true), ErrNo::None);
    const Rows rows = rowsOf(table);
    EXPECT_EQ(rows.values[0][position(table, "bModified")], Variant(true));
    EXPECT_EQ(rows.values[0][position(table, "Hidden")], Variant(true));
    EXPECT_EQ(rows.values[0][position(table, "Dismissed")], Variant(Null{}));
    EXPECT_EQ(write("Dismissed", DateTime(1)), ErrNo::None);
    EXPECT_EQ(rowsOf(table).values[0][position(table, "Dismissed")], Variant(DateTime(1)));
}

TEST(JetRefusal, RefusesAnAutonumber) {
    const fs::path shared = test::sharedFolder();
    if (shared.empty()) {
        std::cout << "no sample files beside this checkout: 0 files read\n";
        return;
    }
    Disk disk(test::readFile(shared / "jet4" / "samples" / "testUnicodeCompV2003.mdb"));
    auto db = test::openMemory(disk, Access::ReadWrite);
    Table table = db.table("Table");
    EXPECT_EQ(errorOf([&] {
                  updateRow(db, table, rowsOf(table).ids[0],
                            std::vector<Change>{{position(table, "ID"), 5}});
              }),
              ErrNo::Unsupported);
    EXPECT_EQ(disk.log, "");
    std::cout << "1 file read\n";
}

}  // namespace
}  // namespace vl
