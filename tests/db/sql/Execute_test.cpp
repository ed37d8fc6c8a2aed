// Statements on files, first of all the program's own, letter for letter.
#include <gmock/gmock.h>

#include <iostream>

#include "Memory.h"
#include "db/jet/MemoryFile.h"
#include "db/jet/Transaction.h"
#include "db/sql/Sql.h"
#include "support/Support.h"

namespace vl::sql {
namespace {

using jet::Access;
using jet::ColumnType;
using test::caught;
using testing::ElementsAre;
using testing::StartsWith;
using vl::test::Disk;
using vl::test::openMemory;

constexpr const char* kDentist = "{437FED06-B0D4-4C70-8AC9-99114CC7B46A}";

std::string firstLight() {
    return vl::test::readFile(vl::test::repoFile("data/first-light.RemindDB"));
}

// The events of the sample, in memory.
class Sample {
public:
    explicit Sample(Access access = Access::ReadWrite)
        : disk(firstLight()), db_(openMemory(disk, access)) {}

    Result run(std::string_view statement) { return execute(db_, statement); }

    std::vector<std::int32_t> events(const std::string& condition) {
        std::vector<std::int32_t> ids;
        for (const auto& row : run("SELECT EventID FROM Reminders" + condition).rows) {
            ids.push_back(row[0].toInt32() - 1000);
        }
        return ids;
    }
    Variant one(const std::string& column, const std::string& guid = kDentist) {
        return run("SELECT " + column + " FROM Reminders WHERE GUID=\"" + guid + "\"")
            .rows.at(0)
            .at(0);
    }

    jet::Database& db() { return db_; }

    Disk disk;

private:
    jet::Database db_;
};

TEST(SqlExecute, RowsGoOneByOneToWhoTakesThem) {
    Sample sample;
    for (const char* rest : {"", " WHERE Deleted = 0", " ORDER BY EventID DESC"}) {
        SCOPED_TRACE(rest);
        const std::string statement = std::string("SELECT EventID, Subject FROM Reminders") + rest;
        const Result whole = sample.run(statement);
        std::vector<std::vector<Variant>> taken;
        const Result result =
            execute(sample.db(), statement,
                    [&](const std::vector<Field>& fields, const std::vector<Variant>& row) {
                        EXPECT_EQ(fields.at(1).name, "Subject");
                        taken.push_back(row);
                    });
        EXPECT_TRUE(result.isQuery);
        EXPECT_EQ(result.fields.size(), 2U);
        EXPECT_TRUE(result.rows.empty());
        EXPECT_EQ(taken, whole.rows);
    }
    int rows = 0;
    const auto count = [&](const std::vector<Field>&, const std::vector<Variant>&) { ++rows; };
    execute(sample.db(), "SELECT TOP 3 * FROM Reminders", count);
    execute(sample.db(), "SELECT COUNT(*) FROM Reminders", count);
    EXPECT_EQ(rows, 3 + 1);
    EXPECT_EQ(execute(sample.db(), "DELETE * FROM Reminders", count).affected, 12);
    EXPECT_EQ(rows, 3 + 1);
}

// Somebody reads them page by page, perhaps over lunch.
TEST(SqlExecute, WhoTakesRowsKeepsNobodyFromWriting) {
    const vl::test::TempFolder folder;
    const std::string file = (folder / "shared.RemindDB").string();
    for (const char* rest : {"", " ORDER BY EventID", " WHERE EventID > 0"}) {
        SCOPED_TRACE(rest);
        vl::test::writeFile(file, firstLight());
        auto reader = jet::Database::open(file, Access::Read);
        auto writer = jet::Database::open(file, Access::ReadWrite,
                                          {.patience = std::chrono::milliseconds(0)});
        int rows = 0;
        int written = 0;
        execute(reader, std::string("SELECT EventID, Subject FROM Reminders") + rest,
                [&](const std::vector<Field>&, const std::vector<Variant>& row) {
                    EXPECT_NE(row.at(1), Variant("new"));
                    const auto number = std::to_string(1001 + rows++);
                    written += static_cast<int>(
                        execute(writer,
                                "UPDATE Reminders SET Subject = 'new' WHERE EventID = " + number)
                            .affected);
                });
        EXPECT_EQ(rows, 12);
        EXPECT_EQ(written, 12);
    }
}

// While another engine writes the rows are read again; none is given twice.
TEST(SqlExecute, RowsThatMayNotBelongTogetherAreReadAgain) {
    Sample sample;
    struct Counting final : vl::test::MemoryFile {
        using MemoryFile::MemoryFile;
        void read(std::uint64_t offset, std::span<std::byte> bytes) const override {
            if (bytes.size() >= 4096 && writes-- > 0) {
                disk->bytes[0xE04] ^= std::byte{7};  // another user's counter
            }
            MemoryFile::read(offset, bytes);
        }
        Disk* disk = nullptr;
        mutable int writes = 3;
    };
    auto file = std::make_unique<Counting>(sample.disk);
    file->disk = &sample.disk;
    auto db = jet::Database::open(std::move(file), "memory", Access::Read);
    std::vector<Variant> taken;
    execute(db, "SELECT EventID FROM Reminders",
            [&](const std::vector<Field>&, const std::vector<Variant>& row) {
                taken.push_back(row.at(0));
            });
    EXPECT_EQ(taken.size(), 12U);
}

TEST(SqlExecute, ReadsTheEventsThatAreNeitherDeletedNorDone) {
    Sample sample;
    EXPECT_THAT(sample.events(" WHERE Deleted=0 AND Status <> \"AllDone\""),
                ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 12));
    EXPECT_THAT(sample.events(" WHERE Deleted=0"), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12));
    EXPECT_THAT(sample.events(" WHERE Deleted=0 AND Dismissed is not Null"), ElementsAre(11));
    EXPECT_THAT(sample.events(" WHERE Deleted=0 AND Dismissed is Null"),
                ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 12));
    EXPECT_THAT(sample.events(" WHERE Deleted=0 AND Status <> \"AllDone\" AND Modified > "
                              "#2026-11-19 07:12:30#"),
                ElementsAre(9, 12));
    EXPECT_THAT(sample.events(" WHERE Deleted=0 AND Status <> \"AllDone\" AND Modified > "
                              "#2026-11-19#"),
                ElementsAre(3, 9, 12));
}

TEST(SqlExecute, ReadsWholeEventsInColumnOrder) {
    Sample sample;
    const Result all = sample.run(
        "SELECT * FROM Reminders WHERE Deleted=0 AND Status <> "
        "\"AllDone\"");
    EXPECT_EQ(all.fields.size(), 45U);
    EXPECT_EQ(all.fields.front().name, "BeforeMoveStartDateTime");
    EXPECT_EQ(all.fields.front().type, ColumnType::Date);
    EXPECT_EQ(all.fields.back().name, "Hidden");
    EXPECT_EQ(all.fields.back().type, ColumnType::Boolean);
    EXPECT_EQ(all.rows.size(), 10U);
}

TEST(SqlExecute, FindsAnEventByIdAndByGuid) {
    Sample sample;
    // No semicolon: the statement ends with the quote.
    const Result byGuid = sample.run(std::string("SELECT * FROM Reminders WHERE GUID=\"") +
                                     "{437fed06-b0d4-4c70-8ac9-99114cc7b46a}" + "\"");
    ASSERT_EQ(byGuid.rows.size(), 1U);
    EXPECT_EQ(sample.run("SELECT * FROM Reminders WHERE id=\"2fbnt5ha62tosd8fhgnm7l1kc5\"").rows,
              byGuid.rows);
    EXPECT_TRUE(sample.run("SELECT * FROM Reminders WHERE id=\"nobody\"").rows.empty());
}

TEST(SqlExecute, ReadsForMaintenance) {
    Sample sample;
    const Result deleted = sample.run("SELECT GUID FROM Reminders WHERE (Deleted=True);");
    ASSERT_EQ(deleted.rows.size(), 1U);
    EXPECT_EQ(deleted.rows[0][0], Variant("{AAB5536C-C33C-4286-B8E3-52AED7DF151C}"));
    const Result bases = sample.run("SELECT DISTINCT Reminders.VLBase FROM Reminders;");
    EXPECT_THAT(bases.fields.size(), 1U);
    EXPECT_GT(bases.rows.size(), 1U);
    EXPECT_LT(bases.rows.size(), 12U);
    const Variant base = bases.rows[0][0];
    EXPECT_GT(
        sample.run("SELECT * FROM Reminders WHERE (VLBase=\"" + base.toText() + "\");").rows.size(),
        1U);
}

TEST(SqlExecute, WritesTheStateColumns) {
    Sample sample;
    const std::string here = std::string(" WHERE (GUID=\"") + kDentist + "\");";
    EXPECT_EQ(
        sample.run("UPDATE Reminders SET NextReminder = #2026-11-20 14:30:00#" + here).affected, 1);
    EXPECT_EQ(sample.one("NextReminder"), Variant(DateTime::fromCivil(2026, 11, 20, 14, 30)));
    EXPECT_EQ(sample.run("UPDATE Reminders SET NextReminder = #2026-11-21#" + here).affected, 1);
    EXPECT_EQ(sample.one("NextReminder"), Variant(DateTime::fromCivil(2026, 11, 21)));
    EXPECT_EQ(sample.run("UPDATE Reminders SET Hidden = -1" + here).affected, 1);
    EXPECT_EQ(sample.one("Hidden"), Variant(true));
    EXPECT_EQ(sample.run("UPDATE Reminders SET Hidden = 0" + here).affected, 1);
    EXPECT_EQ(sample.one("Hidden"), Variant(false));
    // The date literal of 0 is a date, not a null.
    EXPECT_EQ(sample.run("UPDATE Reminders SET Dismissed = #1899-12-30#" + here).affected, 1);
    EXPECT_EQ(sample.one("Dismissed"), Variant(DateTime()));
    EXPECT_THAT(sample.events(" WHERE Dismissed is not Null"), ElementsAre(2, 11));
    EXPECT_EQ(sample.run("UPDATE Reminders SET Dismissed = Null" + here).affected, 1);
    EXPECT_THAT(sample.events(" WHERE Dismissed is not Null"), ElementsAre(11));
    EXPECT_EQ(sample.run("UPDATE Reminders SET Hidden = 0 WHERE (GUID=\"nobody\");").affected, 0);
}

TEST(SqlExecute, OtherColumnsAndRowsStayAsTheyAre) {
    Sample sample;
    const Result before = sample.run("SELECT * FROM Reminders");
    sample.run(std::string("UPDATE Reminders SET Hidden = -1 WHERE (GUID=\"") + kDentist + "\");");
    const Result after = sample.run("SELECT * FROM Reminders");
    ASSERT_EQ(after.rows.size(), before.rows.size());
    for (std::size_t row = 0; row < before.rows.size(); ++row) {
        for (std::size_t column = 0; column < before.fields.size(); ++column) {
            const bool changed = row == 1 && before.fields[column].name == "Hidden";
            EXPECT_EQ(after.rows[row][column] == before.rows[row][column], !changed)
                << row << ' ' << before.fields[column].name;
        }
    }
}

TEST(SqlExecute, UpdatesManyRowsFromTheirOwnValues) {
    Sample sample;
    EXPECT_EQ(sample
                  .run("UPDATE Reminders SET NextReminder = StartDateTime - "
                       "ReminderMinutesBeforeStart / 1440, Hidden = Deleted")
                  .affected,
              12);
    EXPECT_EQ(sample.one("NextReminder"), Variant(DateTime::fromCivil(2026, 11, 20, 13, 45)));
    EXPECT_THAT(sample.events(" WHERE Hidden"), ElementsAre(10));
}

TEST(SqlExecute, WhatCannotBeWrittenComesThroughAndChangesNothing) {
    Sample sample;
    const auto before = sample.disk.bytes;
    struct Case {
        const char* statement;
        ErrNo number;
    };
    static constexpr Case cases[] = {
        // The last row only: nothing may have been written when it is found out.
        {"UPDATE Reminders SET Hidden = True, BusyStatus = 1 / (EventID - 1012)", ErrNo::Overflow},
        {"UPDATE Reminders SET Hidden = True WHERE Subject > 5", ErrNo::TypeMismatch},
        {"UPDATE Nowhere SET Hidden = True", ErrNo::NotFound},
        {"DELETE * FROM Reminders WHERE (Delete=True);", ErrNo::NotFound},
        {"DELETE Other.* FROM Reminders", ErrNo::NotFound},
        {"DELETE * FROM Reminders WHERE Subject > 5", ErrNo::TypeMismatch},
        {"INSERT INTO Reminders (GUID) VALUES (1, 2)", ErrNo::Syntax},
        {"INSERT INTO Reminders (GUID, EventID) VALUES (\"new\", \"many\")", ErrNo::TypeMismatch},
        // Found out by the key, when some rows have been written already.
        {"INSERT INTO Reminders (GUID) SELECT BusyStatus & \"\" FROM Reminders", ErrNo::Exists},
        {"UPDATE Reminders SET GUID = \"one for all\"", ErrNo::Exists},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.statement);
        EXPECT_EQ(caught([&] { sample.run(c.statement); }).number, c.number);
        EXPECT_EQ(sample.disk.bytes, before);
    }
    EXPECT_EQ(sample.run("UPDATE Reminders SET status = \"\" WHERE status = \"none\"").affected, 0);
    Sample reading(Access::Read);
    EXPECT_EQ(caught([&] { reading.run("UPDATE Reminders SET Hidden = True"); }).number,
              ErrNo::ReadOnly);
}

TEST(SqlExecute, WritesTheStatus) {
    Sample sample;
    EXPECT_EQ(sample
                  .run(std::string("UPDATE Reminders SET status = \"AllDone\" WHERE (GUID=\"") +
                       kDentist + "\");")
                  .affected,
              1);
    EXPECT_EQ(sample.one("status"), Variant("AllDone"));
    EXPECT_EQ(sample.events(" WHERE Deleted=0 AND Status <> \"AllDone\"").front(), 1);
    const auto done = sample.events(" WHERE Status = \"alldone\"").size();
    EXPECT_GT(done, 1U);
    EXPECT_EQ(sample
                  .run("UPDATE Reminders SET Reminders.status = \"\" WHERE "
                       "(((Reminders.status)=\"AllDone\"));")
                  .affected,
              static_cast<std::int64_t>(done));
    EXPECT_TRUE(sample.events(" WHERE Status = \"alldone\"").empty());
    EXPECT_EQ(sample.one("status"), Variant(""));
}

TEST(SqlExecute, RemovesRows) {
    Sample sample;
    EXPECT_EQ(sample.run("DELETE * FROM Reminders WHERE (Deleted=True);").affected, 1);
    EXPECT_EQ(sample.run("DELETE * FROM Reminders WHERE (Deleted=True);").affected, 0);
    EXPECT_EQ(sample.run(std::string("DELETE * FROM Reminders WHERE (GUID=\"") + kDentist + "\");")
                  .affected,
              1);
    EXPECT_EQ(sample.events("").size(), 10U);
    EXPECT_TRUE(sample.events(std::string(" WHERE GUID = '") + kDentist + "'").empty());
    EXPECT_EQ(sample.run("DELETE FROM Reminders WHERE EventID IN (1001, 1003)").affected, 2);
    EXPECT_EQ(sample.run("DELETE Reminders.* FROM Reminders WHERE EventID = 1004").affected, 1);
    EXPECT_EQ(sample.run("DELETE * FROM Reminders;").affected, 7);
    EXPECT_EQ(sample.run("SELECT COUNT(*) FROM Reminders").rows[0][0], Variant(0));
}

TEST(SqlExecute, AddsRows) {
    Sample sample;
    EXPECT_EQ(sample
                  .run("INSERT INTO Reminders (GUID, EventID, Subject, StartDateTime, Deleted, "
                       "JSON) VALUES (\"new\", 2001, \"said \"\"hi\"\"\", #2026-11-20 09:00#, "
                       "True, Null)")
                  .affected,
              1);
    const Result row = sample.run(
        "SELECT EventID, Subject, StartDateTime, Deleted, Hidden, JSON FROM Reminders WHERE "
        "GUID = \"NEW\"");
    ASSERT_EQ(row.rows.size(), 1U);
    EXPECT_THAT(row.rows[0], ElementsAre(Variant(2001), Variant("said \"hi\""),
                                         Variant(DateTime::fromCivil(2026, 11, 20, 9)),
                                         Variant(true), Variant(false), Variant(Null{})));
    const std::string copy =
        "INSERT INTO Reminders (GUID, EventID, Subject) SELECT GUID & \"-copy\", EventID + 1000, "
        "Subject FROM Reminders WHERE EventID < 2000";
    EXPECT_EQ(sample.run(copy).affected, 12);
    EXPECT_EQ(sample.run("SELECT COUNT(*) FROM Reminders").rows[0][0], Variant(25));
    EXPECT_EQ(sample.run("SELECT COUNT(*) FROM Reminders WHERE EventID > 2000").rows[0][0],
              Variant(13));
    const Parameter given[] = {{"", "by parameter"}, {"", 3001}};
    EXPECT_EQ(
        execute(sample.db(), "INSERT INTO Reminders (GUID, EventID) VALUES (?, ?)", given).affected,
        1);
    EXPECT_EQ(sample.events(" WHERE GUID = 'by parameter'"), std::vector<std::int32_t>{2001});
}

TEST(SqlExecute, NamesTheTableThatIsNotThere) {
    Sample sample;
    const auto error = caught([&] { sample.run("SELECT *\nFROM Reminder"); });
    EXPECT_EQ(error.number, ErrNo::NotFound);
    EXPECT_THAT(error.text, StartsWith("line 2, column 6: "));
    EXPECT_EQ(sample.run("SELECT COUNT(*) FROM reminders").rows[0][0], Variant(12));
    EXPECT_GT(sample.run("SELECT COUNT(*) FROM MSysObjects").rows[0][0].toInt32(), 5);
}

TEST(SqlExecute, TheEnginesOwnTablesAreReadAndNeverChanged) {
    Sample sample;
    const auto before = sample.disk.bytes;
    struct Case {
        const char* statement;
        const char* place;
    };
    static constexpr Case cases[] = {
        {"DELETE FROM MSysObjects", "line 1, column 13: "},
        {"DELETE * FROM msysobjects WHERE Name = 'Reminders'", "line 1, column 15: "},
        {"UPDATE MSysObjects SET Name = 'x' WHERE Id = 16", "line 1, column 8: "},
        {"UPDATE [MSysACEs] SET ACM = 0", "line 1, column 8: "},
        {"INSERT INTO MSysObjects (Id, Name) VALUES (5000, 'ghost')", "line 1, column 13: "},
        {"INSERT INTO MSysQueries SELECT * FROM MSysQueries", "line 1, column 13: "},
        {"DROP TABLE MSysObjects", "line 1, column 12: "},
        {"DROP TABLE MSysRelationships", "line 1, column 12: "},
        {"ALTER TABLE MSysObjects ADD COLUMN more TEXT", "line 1, column 13: "},
        {"ALTER TABLE MSysObjects ADD CONSTRAINT c UNIQUE (Name)", "line 1, column 13: "},
        {"CREATE INDEX more ON MSysObjects (Name)", "line 1, column 22: "},
        {"DROP INDEX Id ON MSysObjects", "line 1, column 18: "},
        {"CREATE TABLE MSysMine (a LONG)", "line 1, column 14: "},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.statement);
        const auto error = caught([&] { sample.run(c.statement); });
        EXPECT_EQ(error.number, ErrNo::ReadOnly);
        EXPECT_THAT(error.text, StartsWith(c.place));
        EXPECT_THAT(error.text, testing::HasSubstr("belongs to the engine"));
        EXPECT_EQ(sample.disk.bytes, before);
    }
    sample.run("CREATE TABLE MSy (a LONG)");
    EXPECT_EQ(
        sample.run("INSERT INTO MSy SELECT Id FROM MSysObjects WHERE Name = 'Reminders'").affected,
        1);
}

// Not every table that a product keeps for itself is called so: the catalog says which they are.
TEST(SqlExecute, ATableIsTheEnginesOwnByItsFlagToo) {
    Sample sample;
    {
        jet::Transaction change(sample.db());
        jet::Table catalog = sample.db().table("MSysObjects");
        const auto& columns = catalog.columns();
        const auto flags = static_cast<std::size_t>(
            std::find_if(columns.begin(), columns.end(),
                         [](const jet::Column& c) { return c.name == "Flags"; }) -
            columns.begin());
        jet::RowCursor row = catalog.scan();
        while (row.next() && row.value(0) != Variant(16)) {
        }
        catalog.update(row.id(), std::vector<jet::Table::Change>{{flags, 2}});
        change.commit();
    }
    EXPECT_EQ(caught([&] { sample.run("DELETE FROM Reminders"); }).number, ErrNo::ReadOnly);
    EXPECT_EQ(sample.events("").size(), 12U);
}

TEST(SqlIsQuery, GoesByTheFirstWord) {
    EXPECT_TRUE(isQuery("SELECT * FROM T"));
    EXPECT_TRUE(isQuery(" \n\tselect*from T"));
    EXPECT_TRUE(isQuery("SELECT"));
    for (const char* other : {"", "  ", "UPDATE T SET a = 1", "SELECTED", "SELECT_1", "(SELECT",
                              "\"SELECT\"", "DELETE * FROM T"}) {
        EXPECT_FALSE(isQuery(other)) << other;
    }
}

// Counts, a whole read, sorting and comparing over every table of the files that others made.
TEST(SqlSamples, EveryTableIsReadSortedAndCounted) {
    std::vector<std::filesystem::path> files = {
        vl::test::repoFile("data/first-light.RemindDB"),
        vl::test::repoFile("tests/data/generated-reminders.RemindDB")};
    const auto shared = vl::test::sharedFolder();
    if (!shared.empty()) {
        for (const auto& entry : std::filesystem::directory_iterator(shared / "jet4" / "samples")) {
            if (entry.path().extension() == ".mdb") {
                files.push_back(entry.path());
            }
        }
    }
    int tables = 0;
    std::size_t rows = 0;
    for (const auto& file : files) {
        jet::Database db = jet::Database::open(file.string(), Access::Read);
        for (const jet::TableInfo& info : db.tables()) {
            SCOPED_TRACE(testing::Message() << file << ' ' << info.name);
            const std::string from = " FROM [" + info.name + "]";
            const Result all = execute(db, "SELECT *" + from);
            const auto count = all.rows.size();
            ASSERT_EQ(execute(db, "SELECT COUNT(*)" + from).rows[0][0].toInt32(),
                      static_cast<std::int32_t>(count));
            const std::string column = "[" + all.fields.at(0).name + "]";
            const std::string every = "SELECT *" + from;
            const Result sorted = execute(db, every + " ORDER BY " + column);
            ASSERT_THAT(sorted.rows, testing::UnorderedElementsAreArray(all.rows));
            const auto matching = [&](const char* condition) {
                std::string statement = every;
                statement.append(" WHERE ").append(column).append(condition);
                return execute(db, statement).rows.size();
            };
            EXPECT_EQ(matching(" IS NULL") + matching((" = " + column).c_str()), count);
            ++tables;
            rows += count;
        }
    }
    EXPECT_GE(tables, 2);
    std::cout << "read " << tables << " tables of " << files.size() << " files, " << rows
              << " rows; "
              << (shared.empty() ? "no files of the shared folder" : "shared files included")
              << '\n';
}

}  // namespace
}  // namespace vl::sql
