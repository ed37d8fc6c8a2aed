// Rows that come, change and go, as we and another reader find them afterwards.
#include <iostream>
#include <optional>

#include <gtest/gtest.h>

#include "Mdb.h"
#include "Rows.h"
#include "base/Text.h"
#include "db/jet/Transaction.h"
#include "db/jet/check/Check.h"
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

// A file of others, if there is one, in memory.
struct Sample {
    explicit Sample(const char* name) {
        const fs::path shared = test::sharedFolder();
        if (shared.empty()) {
            std::cout << "no sample files beside this checkout\n";
            return;
        }
        disk.emplace(test::readFile(shared / "jet4" / "samples" / name));
        db.emplace(test::openMemory(*disk, Access::ReadWrite));
    }
    explicit operator bool() const { return db.has_value(); }

    std::optional<Disk> disk;
    std::optional<jet::Database> db;
};

std::string whatIsWrong(jet::Database& db) {
    std::string text;
    for (const jet::Finding& finding : checkDatabase(db)) {
        text += "page " + std::to_string(finding.page) + ": " + finding.what + "\n";
    }
    return text;
}

struct FirstLight : testing::Test {
    Disk disk{test::firstLight()};
    jet::Database db = test::openMemory(disk, Access::ReadWrite);
    Table table = db.table("Reminders");
    const Rows before = rowsOf(table);

    Variant value(RowId id, const char* column) const {
        jet::RowCursor cursor = table.scan();
        while (cursor.next()) {
            if (cursor.id() == id) {
                return cursor.value(position(table, column));
            }
        }
        return {};
    }
};

TEST_F(FirstLight, TextsAndLongValuesOfAnyLengthAreReadBack) {
    Transaction change(db);
    const RowId id = table.insert(changesOf(table, {{"GUID", "{any}"}}));
    int values = 0;
    for (const char* letter : {"a", "ä", "й", "漢", "\U0001F514"}) {
        for (const int n : {0,    1,    2,    3,    31,   32,   33,   62,   64,   65,   1023, 1024,
                            1025, 2037, 2038, 2039, 4072, 4074, 4076, 4077, 8144, 8145, 50000}) {
            std::string text;
            for (int i = 0; i < n; ++i) {
                text += letter;
            }
            table.update(id, changesOf(table, {{"Body", text}}));
            ASSERT_EQ(value(id, "Body"), Variant(text)) << letter << " " << n;
            ++values;
        }
        ASSERT_EQ(whatIsWrong(db), "") << letter;
    }
    table.remove(id);
    change.commit();
    EXPECT_EQ(whatIsWrong(db), "");
    EXPECT_EQ(rowsOf(table).values, before.values);
    std::cout << values << " values\n";
}

TEST_F(FirstLight, TextsThatLookCompressedAreReadBackOrRefused) {
    Transaction change(db);
    const RowId id = before.ids[0];
    table.update(id, changesOf(table, {{"Subject", "\uFEFFabc"}, {"Body", "\uFEFF"}}));
    EXPECT_EQ(value(id, "Subject"), Variant("\uFEFFabc"));
    EXPECT_EQ(value(id, "Body"), Variant("\uFEFF"));
    EXPECT_EQ(errorOf([&] {
                  table.update(id, changesOf(table, {{"Subject", "\uFEFF\u0100"}}));
              }),
              ErrNo::Unsupported);
}

TEST_F(FirstLight, WhatMayNotBeIsRefusedAndNothingIsWritten) {
    const std::string guid = before.values[0][position(table, "GUID")].toText();
    struct Case {
        const char* what;
        std::vector<Change> changes;
        ErrNo error;
    };
    const Case cases[] = {
        {"a key that is there", changesOf(table, {{"GUID", guid}}), ErrNo::Exists},
        {"the same in other letters", changesOf(table, {{"GUID", text::foldCase(guid)}}),
         ErrNo::Exists},
        {"no key", changesOf(table, {{"GUID", Null{}}}), ErrNo::TypeMismatch},
        {"a text that is no number", changesOf(table, {{"GUID", "{x}"}, {"EventID", "soon"}}),
         ErrNo::TypeMismatch},
        {"a text too long", changesOf(table, {{"GUID", std::string(256, 'x')}}), ErrNo::Overflow},
        {"a number too large", changesOf(table, {{"GUID", "{x}"}, {"EventID", 3e9}}),
         ErrNo::Overflow},
        {"a year too late", changesOf(table, {{"GUID", "{x}"}, {"StartDateTime", DateTime(3e6)}}),
         ErrNo::Overflow},
    };
    Transaction change(db);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(errorOf([&] { table.insert(c.changes); }), c.error);
        EXPECT_EQ(errorOf([&] { table.update(before.ids[1], c.changes); }), c.error);
    }
    for (const RowId id : {RowId{1, 0}, RowId{99999, 0}, RowId{before.ids[0].page, 200}}) {
        EXPECT_EQ(errorOf([&] { table.update(id, {}); }), ErrNo::NotFound);
        EXPECT_EQ(errorOf([&] { table.remove(id); }), ErrNo::NotFound);
    }
    change.commit();
    EXPECT_EQ(disk.log, "");
}

TEST_F(FirstLight, ARowMayKeepItsOwnKey) {
    Transaction change(db);
    const std::string guid = before.values[0][position(table, "GUID")].toText();
    table.update(before.ids[0], changesOf(table, {{"GUID", text::foldCase(guid)}}));
    EXPECT_EQ(value(before.ids[0], "GUID"), Variant(text::foldCase(guid)));
    EXPECT_EQ(whatIsWrong(db), "");
}

TEST_F(FirstLight, WhatIsThereAlreadyIsNotWritten) {
    Transaction change(db);
    for (std::size_t r = 0; r < before.ids.size(); ++r) {
        std::vector<Change> same;
        for (std::size_t i = 0; i < table.columns().size(); ++i) {
            same.emplace_back(i, before.values[r][i]);
        }
        table.update(before.ids[r], same);
    }
    change.commit();
    EXPECT_EQ(disk.log, "");
}

TEST_F(FirstLight, WhatIsTakenBackNeverWas) {
    const std::vector<std::byte> bytes = disk.bytes;
    {
        const Transaction change(db);
        for (int i = 0; i < 50; ++i) {
            table.insert(changesOf(table, {{"GUID", "{" + std::to_string(i) + "}"},
                                           {"Body", std::string(5000, 'x')}}));
        }
        for (const RowId id : before.ids) {
            table.remove(id);
        }
    }
    EXPECT_EQ(disk.bytes, bytes);
    EXPECT_EQ(rowsOf(table).values, before.values);
}

TEST_F(FirstLight, RoomThatWasGivenBackIsUsedAgain) {
    std::size_t size = 0;
    for (int round = 0; round < 6; ++round) {
        Transaction change(db);
        std::vector<RowId> ids;
        for (int i = 0; i < 300; ++i) {
            ids.push_back(table.insert(
                changesOf(table, {{"GUID", "{" + std::to_string(i) + "}"},
                                  {"Subject", std::string(static_cast<std::size_t>(i) % 250, 's')},
                                  {"Body", std::string(static_cast<std::size_t>(i) * 40, 'x')}})));
        }
        for (const RowId id : ids) {
            table.remove(id);
        }
        change.commit();
        if (round == 0) {
            size = disk.bytes.size();
        }
    }
    EXPECT_EQ(disk.bytes.size(), size);
    EXPECT_EQ(rowsOf(table).values, before.values);
    EXPECT_EQ(whatIsWrong(db), "");
}

// The maps of free pages, of the table and of the column no longer fit into their rows.
TEST_F(FirstLight, TheFileGrowsBeyondEachMap) {
    std::size_t rows = before.ids.size();
    {
        Transaction change(db);
        for (int i = 0; i < 400; ++i, ++rows) {
            table.insert(changesOf(table, {{"GUID", "{" + std::to_string(i) + "}"},
                                           {"Body", std::string(9000, 'x')},
                                           {"Subject", std::string(250, 'y')},
                                           {"Location", std::string(250, 'z')}}));
        }
        change.commit();
    }
    EXPECT_GT(disk.bytes.size(), 1100 * jet::kPageSize);
    EXPECT_EQ(whatIsWrong(db), "");
    EXPECT_EQ(rowsOf(db.table("Reminders")).ids.size(), rows);
    const std::size_t size = disk.bytes.size();
    {
        Transaction change(db);
        for (const RowId id : rowsOf(table).ids) {
            table.remove(id);
        }
        change.commit();
    }
    // At most a page for a map that has to be written in another way before the first page is free.
    EXPECT_LE(disk.bytes.size(), size + jet::kPageSize);
    EXPECT_EQ(whatIsWrong(db), "");
    EXPECT_EQ(rowsOf(db.table("Reminders")).ids.size(), 0U);
    EXPECT_EQ(db.table("Reminders").rowCount(), 0U);
}

// What lies before the part of the file that the map of free pages speaks about is in use, until a
// page of it is given back.
TEST(JetRowWriter, AMapOfFreePagesMayBeginInTheMiddleOfTheFile) {
    Disk disk(test::readFile(test::repoFile("bench/reminders-5000.RemindDB")));
    auto db = test::openMemory(disk, Access::ReadWrite);
    Table table = db.table("Reminders");
    const auto changed = [&](auto&& step) {
        Transaction change(db);
        step();
        change.commit();
        EXPECT_EQ(whatIsWrong(db), "");
    };
    const std::size_t size = disk.bytes.size();
    std::vector<RowId> more;
    const auto grow = [&] {
        for (int i = 0; i < 60; ++i) {
            more.push_back(
                table.insert(changesOf(table, {{"GUID", "{" + std::to_string(more.size()) + "}"},
                                               {"Body", std::string(9000, 'x')}})));
        }
    };
    changed(grow);  // within the map
    EXPECT_GT(disk.bytes.size(), size);
    for (int i = 0; i < 8; ++i) {
        changed(grow);  // and beyond it
    }
    EXPECT_GT(disk.bytes.size(), (2048 + 512) * jet::kPageSize);
    const std::size_t rows = rowsOf(table).ids.size();
    EXPECT_EQ(rows, 5000U + more.size());

    // The first rows lie where the map had nothing to say.
    Disk second(test::readFile(test::repoFile("bench/reminders-5000.RemindDB")));
    auto other = test::openMemory(second, Access::ReadWrite);
    Table whole = other.table("Reminders");
    Transaction removing(other);
    for (const RowId id : rowsOf(whole).ids) {
        whole.remove(id);
    }
    removing.commit();
    EXPECT_EQ(whatIsWrong(other), "");
    EXPECT_LE(second.bytes.size(), size + 8 * jet::kPageSize) << "pages for this and other maps";
    EXPECT_EQ(rowsOf(whole).ids.size(), 0U);
}

TEST_F(FirstLight, RowsOfTooManyLongTextsAreRefused) {
    std::vector<Change> changes = changesOf(table, {{"GUID", "{long}"}});
    for (std::size_t i = 0; i < table.columns().size(); ++i) {
        if (table.columns()[i].type == jet::ColumnType::Text && table.columns()[i].name != "GUID") {
            changes.emplace_back(i, std::string(table.columns()[i].length / 2U, 'x') + "");
        }
    }
    Transaction change(db);
    std::size_t stored = 0;
    for (const auto& [column, text] : changes) {
        stored += text.toText().size();
    }
    const ErrNo error = errorOf([&] { table.insert(changes); });
    EXPECT_EQ(error, stored > 4000 ? ErrNo::Overflow : ErrNo::None) << stored;
}

TEST_F(FirstLight, ATableThatHasChangedSinceIsNotWritten) {
    // As if another program had added a column.
    const std::size_t at = 16 * jet::kPageSize + 0x29;
    ASSERT_EQ(disk.bytes[at - 0x29], std::byte{2});
    disk.bytes[at] = static_cast<std::byte>(std::to_integer<unsigned>(disk.bytes[at]) + 1);
    const Transaction change(db);
    EXPECT_EQ(errorOf([&] { table.remove(before.ids[0]); }), ErrNo::Unexpected);
}

TEST(JetRowWriter, NumbersRowsByItself) {
    Sample sample("testIndexPropertiesV2000.mdb");
    if (!sample) {
        return;
    }
    for (const jet::TableInfo& info : sample.db->tables()) {
        Table table = sample.db->table(info.name);
        const auto& columns = table.columns();
        const auto number = std::find_if(columns.begin(), columns.end(),
                                         [](const jet::Column& c) { return c.autoNumber; });
        if (info.system || number == columns.end()) {
            continue;
        }
        SCOPED_TRACE(info.name);
        const auto at = static_cast<std::size_t>(number - columns.begin());
        const auto numberOf = [&](RowId id) {
            jet::RowCursor cursor = table.scan();
            while (cursor.next() && cursor.id() != id) {
            }
            return cursor.value(at).toInt32();
        };
        const Transaction change(*sample.db);
        const int first = numberOf(table.insert({}));
        EXPECT_EQ(numberOf(table.insert({})), first + 1);
        const std::vector<Change> given{{at, first + 100}};
        EXPECT_EQ(numberOf(table.insert(given)), first + 100);
        const RowId last = table.insert({});
        EXPECT_EQ(numberOf(last), first + 101);
        EXPECT_EQ(errorOf([&] { table.update(last, given); }), ErrNo::Unsupported);
        EXPECT_EQ(whatIsWrong(*sample.db), "");
    }
}

// Table1 refers to Table2.
TEST(JetRowWriter, RelationshipsAreKept) {
    Sample sample("indexTestV2000.mdb");
    if (!sample) {
        return;
    }
    int relations = 0;
    for (const jet::TableInfo& info : sample.db->tables()) {
        if (info.system) {
            continue;
        }
        Table table = sample.db->table(info.name);
        const Rows rows = rowsOf(table);
        for (const jet::Index& index : table.indexes()) {
            if (!index.foreign) {
                continue;
            }
            ++relations;
            SCOPED_TRACE(info.name + " " + index.name);
            const std::size_t column = position(table, index.columns[0].name);
            const std::vector<Change> other{{column, 987654}};
            const Transaction change(*sample.db);
            ASSERT_FALSE(rows.ids.empty());
            if (index.referenced) {
                int kept = 0;
                for (const RowId id : rows.ids) {
                    const ErrNo error = errorOf([&] { table.remove(id); });
                    EXPECT_TRUE(error == ErrNo::None || error == ErrNo::Exists);
                    kept += error == ErrNo::Exists ? 1 : 0;
                }
                EXPECT_GT(kept, 0);
            } else {
                EXPECT_EQ(errorOf([&] { table.update(rows.ids[0], other); }), ErrNo::NotFound);
            }
            EXPECT_EQ(whatIsWrong(*sample.db), "");
        }
    }
    EXPECT_GT(relations, 1);
}

}  // namespace
}  // namespace vl
