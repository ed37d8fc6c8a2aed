#include "Statements.h"

#include <optional>

#include <gtest/gtest.h>

#include "Journal.h"
#include "Rows.h"
#include "db/jet/Transaction.h"
#include "db/jet/check/Check.h"

namespace vl::test {

namespace {

using jet::Database;
using jet::RowId;
using jet::Table;
using jet::Transaction;
using Changes = std::vector<Table::Change>;

std::vector<RowId> idsOf(const Table& table) {
    std::vector<RowId> ids;
    jet::RowCursor cursor = table.scan();
    while (cursor.next()) {
        ids.push_back(cursor.id());
    }
    return ids;
}

void insertRows(Table& table, int count, int from, std::size_t memo) {
    for (int i = from; i < from + count; ++i) {
        table.insert(
            Changes{{position(table, "GUID"), "{row-" + std::to_string(i) + "}"},
                    {position(table, "Subject"), "Subject of " + std::to_string(i)},
                    {position(table, "JSON"), std::string(memo, static_cast<char>('a' + i % 26))}});
    }
}

// All rows, so that what the table holds is of one statement.
void updateAll(Table& table, int value) {
    for (const RowId id : idsOf(table)) {
        table.update(id, Changes{{position(table, "EventID"), value},
                                 {position(table, "Subject"), std::string(120, 'u')}});
    }
}

void committed(Database& db, const std::function<void(Table&)>& step) {
    Transaction change(db);
    Table table = db.table("Reminders");
    step(table);
    change.commit();
}

}  // namespace

const std::vector<Statement>& statements() {
    static const std::vector<Statement> all = {
        {"one row",
         [](Database& db) {
             committed(db, [](Table& table) {
                 table.update(idsOf(table).at(3), Changes{{position(table, "EventID"), 77}});
             });
         }},
        {"three rows more, with long texts",
         [](Database& db) { committed(db, [](Table& t) { insertRows(t, 3, 0, 9000); }); }},
        {"all rows grow", [](Database& db) { committed(db, [](Table& t) { updateAll(t, 5); }); }},
        {"given up",
         [](Database& db) {
             const Transaction change(db);
             Table table = db.table("Reminders");
             insertRows(table, 12, 100, 5000);
             updateAll(table, 6);
         }},
        {"many rows more, written early",
         [](Database& db) { committed(db, [](Table& t) { insertRows(t, 25, 10, 5000); }); }, true},
        {"every other row goes, written early",
         [](Database& db) {
             committed(db, [](Table& table) {
                 const std::vector<RowId> ids = idsOf(table);
                 for (std::size_t i = 0; i < ids.size(); i += 2) {
                     table.remove(ids[i]);
                 }
             });
         }},
        {"one row, opened anew",
         [](Database& db) {
             committed(db, [](Table& table) {
                 table.update(idsOf(table).at(0), Changes{{position(table, "EventID"), 78}});
             });
         },
         true},
    };
    return all;
}

jet::OpenOptions fewPages(MemoryFolder& folder) {
    jet::OpenOptions options;
    options.files = &folder;
    options.mostChangedPages = 12;
    options.patience = std::chrono::milliseconds(0);
    return options;
}

void runStatements(MemoryFolder& folder, std::size_t first, std::size_t& done,
                   std::vector<std::string>* images) {
    std::optional<Database> db;
    for (done = first; done < statements().size(); ++done) {
        if (images != nullptr) {
            images->push_back(folder.bytes(kDatabase));
        }
        const Statement& statement = statements()[done];
        if (!db || statement.opensAnew) {
            db.reset();
            db = Database::open(kDatabase, jet::Access::ReadWrite, fewPages(folder));
        }
        statement.run(*db);
    }
    if (images != nullptr) {
        images->push_back(folder.bytes(kDatabase));
    }
}

std::unique_ptr<MemoryFolder> brokenOff() {
    const std::string before = firstLight();
    for (int at = 1;; ++at) {
        MemoryFolder folder;
        folder.put(kDatabase, before);
        folder.fail(MemoryFolder::Fault::Stop, at);
        std::size_t done = 0;
        try {
            runStatements(folder, 0, done);
        } catch (const Error&) {
            auto left = std::make_unique<MemoryFolder>();
            folder.copyTo(*left, MemoryFolder::Left::All);
            const std::string bytes = left->bytes(kDatabase);
            const bool changed = bytes.substr(0, before.size()).substr(jet::kPageSize) !=
                                 before.substr(jet::kPageSize);
            if (changed && done == 0 && jet::tellsOfAChange(*left, kDatabase)) {
                return left;
            }
        }
        if (!folder.hit() || done > 0) {
            ADD_FAILURE() << "the first statement was never broken off in the middle";
            return std::make_unique<MemoryFolder>();
        }
    }
}

void expectSound(const std::string& bytes) {
    Disk disk(bytes);
    EXPECT_EQ(bytes.size() % jet::kPageSize, 0U);
    Database db = openMemory(disk);
    for (const jet::Finding& finding : jet::checkDatabase(db)) {
        ADD_FAILURE() << "page " << finding.page << ": " << finding.what;
    }
}

}  // namespace vl::test
