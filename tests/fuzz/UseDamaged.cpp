#include <array>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <optional>
#include <string>

#include "DamagedFile.h"
#include "Inputs.h"
#include "SameRows.h"
#include "base/ErrorState.h"
#include "db/jet/Database.h"
#include "db/jet/MemoryFolder.h"
#include "db/jet/RowCells.h"
#include "db/jet/Transaction.h"
#include "db/jet/check/Check.h"
#include "db/jet/copy/Copy.h"
#include "db/jet/write/RandomRows.h"
#include "db/sql/Sql.h"
#include "define/NewDatabase.h"

namespace vl::test {

namespace {

using jet::Table;

[[noreturn]] void die(const std::string& what) {
    std::cerr << what << '\n';
    std::abort();
}

// Of reading.
template <class Step>
void guarded(Step&& step) {
    try {
        step();
    } catch (const Error& e) {
        if (e.number() != ErrNo::Corrupt && e.number() != ErrNo::Format &&
            e.number() != ErrNo::NotFound) {
            die(std::string("unfitting error: ") + e.what());
        }
    }
}

std::string firstFinding(jet::Database& db) {
    const std::vector<jet::Finding> findings = checkDatabase(db);
    return findings.empty() ? ""
                            : "page " + std::to_string(findings[0].page) + ": " + findings[0].what;
}

/// A damaged file that is written to.
class Subject {
public:
    explicit Subject(Disk& disk)
        : disk_(disk), db_(openDamaged(disk)), sound_(firstFinding(db_).empty()) {}

    jet::Database& db() { return db_; }
    bool sound() const { return sound_; }
    /// What is in the file, as far as it is in whole pages.
    std::string pages() const {
        const std::size_t whole = disk_.bytes.size() / jet::kPageSize * jet::kPageSize;
        return {reinterpret_cast<const char*>(disk_.bytes.data()), whole};
    }
    std::vector<std::string> tables() {
        std::vector<std::string> names;
        guarded([&] {
            for (const jet::TableInfo& info : db_.tables()) {
                if (!info.system) {
                    names.push_back(info.name);
                }
            }
        });
        return names;
    }

    // A change is made or refused. What is refused has written nothing, and what is made in a sound
    // file leaves it sound. False: refused.
    bool change(const std::string& what, const std::function<void(jet::Database&)>& step) {
        const std::vector<std::byte> before = disk_.bytes;
        try {
            step(db_);
        } catch (const Error& e) {
            if (e.number() == ErrNo::Io || e.number() == ErrNo::ReadOnly ||
                e.number() == ErrNo::Unexpected) {
                die(what + ": unfitting error: " + e.what());
            }
            if (disk_.bytes != before) {
                die(what + ": has failed and written: " + e.what());
            }
            return false;
        }
        if (const std::string finding = sound_ ? firstFinding(db_) : ""; !finding.empty()) {
            die(what + ": the file was sound before, now: " + finding);
        }
        return true;
    }

private:
    Disk& disk_;
    jet::Database db_;
    bool sound_;
};

void readAll(Subject& subject) {
    jet::RowCells cells;
    for (const jet::TableInfo& info : subject.db().tables()) {
        guarded([&] {
            const Table table = subject.db().table(info.name);
            guarded([&] {
                for (jet::RowCursor row = table.scan(); row.next();) {
                    row.fingerprint();
                    guarded([&] { row.readAll(cells); });
                    for (std::size_t i = 0; i < table.columns().size(); ++i) {
                        guarded([&] { row.value(i); });
                    }
                }
            });
            for (std::size_t i = 0; i < table.indexes().size(); ++i) {
                guarded([&] {
                    for (jet::RowCursor row = table.indexScan(i); row.next();) {
                    }
                });
            }
        });
    }
}

std::vector<jet::RowId> someRows(const Table& table) {
    constexpr std::size_t kMost = 200;
    std::vector<jet::RowId> ids;
    guarded([&] {
        for (jet::RowCursor row = table.scan(); ids.size() < kMost && row.next();) {
            ids.push_back(row.id());
        }
    });
    return ids;
}

std::vector<Table::Change> anyValues(Random& random, const Table& table, std::size_t oneOf) {
    std::vector<Table::Change> changes;
    for (std::size_t i = 0; i < table.columns().size(); ++i) {
        if (!table.columns()[i].autoNumber && below(random, oneOf) == 0) {
            changes.emplace_back(i, randomValue(random, table.columns()[i]));
        }
    }
    return changes;
}

// A transaction for each change, and one with many.
void changeRows(Subject& subject) {
    constexpr int kSingle = 6;
    constexpr int kMany = 25;
    Random random(7);
    for (const std::string& name : subject.tables()) {
        std::vector<jet::RowId> ids;
        guarded([&] { ids = someRows(subject.db().table(name)); });
        const auto step = [&](Table& table, std::size_t kind) {
            if (kind == 0 || ids.empty()) {
                table.insert(anyValues(random, table, 2));
            } else if (kind == 1) {
                table.update(ids[below(random, ids.size())], anyValues(random, table, 4));
            } else {
                const std::size_t at = below(random, ids.size());
                table.remove(ids[at]);
                ids.erase(ids.begin() + static_cast<std::ptrdiff_t>(at));
            }
        };
        for (int i = 0; i < kSingle; ++i) {
            subject.change("change of a row", [&](jet::Database& db) {
                jet::Transaction change(db);
                Table table = db.table(name);
                step(table, static_cast<std::size_t>(i) % 3);
                change.commit();
            });
        }
        subject.change("many changes", [&](jet::Database& db) {
            jet::Transaction change(db);
            Table table = db.table(name);
            for (int i = 0; i < kMany; ++i) {
                try {
                    step(table, below(random, 3));
                } catch (const Error& e) {
                    // What is refused before anything is written is no reason to stop.
                    if (e.number() == ErrNo::Corrupt || e.number() == ErrNo::Unexpected) {
                        throw;
                    }
                }
            }
            change.commit();
        });
    }
}

// In the middle of the alphabet, of the dates and of the numbers, as the column asks.
std::string literalFor(const jet::Column& column) {
    switch (column.type) {
        case jet::ColumnType::Text:
        case jet::ColumnType::Memo:
        case jet::ColumnType::Guid:
            return "\"m\"";
        case jet::ColumnType::Date:
            return "#2026-11-20 10:00:00#";
        default:
            return "7";
    }
}

std::vector<std::string> statementsFor(const std::string& name,
                                       const std::vector<jet::Column>& columns) {
    const jet::Column& key = columns[columns.size() / 3];
    const std::string table = "[" + name + "]";
    const std::string k = "[" + key.name + "]";
    const std::string last = "[" + columns.back().name + "]";
    const std::string value = literalFor(key);
    return {"SELECT DISTINCT TOP 9 * FROM " + table + " WHERE " + k + " >= " + value + " OR " +
                last + " IS NULL ORDER BY " + k + " DESC",
            "INSERT INTO " + table + " SELECT TOP 5 * FROM " + table,
            "INSERT INTO " + table + " (" + k + ") VALUES (" + value + ")",
            "UPDATE " + table + " SET " + last + " = Null WHERE " + k + " < " + value,
            "UPDATE " + table + " SET " + k + " = " + value,
            "DELETE * FROM " + table + " WHERE " + k + " = " + value,
            "DELETE FROM " + table};
}

void runStatements(Subject& subject) {
    for (const std::string& name : subject.tables()) {
        std::vector<jet::Column> columns;
        guarded([&] { columns = subject.db().table(name).columns(); });
        if (columns.empty()) {
            continue;
        }
        for (const std::string& statement : statementsFor(name, columns)) {
            subject.change(statement, [&](jet::Database& db) { sql::execute(db, statement); });
        }
    }
}

void changeTables(Subject& subject) {
    const std::vector<std::string> tables = subject.tables();
    for (const std::string& name : tables) {
        subject.change("new column", [&](jet::Database& db) {
            db.addColumn(name, {.name = "Added", .type = jet::ColumnType::Memo});
        });
        subject.change("new yes/no column", [&](jet::Database& db) {
            db.addColumn(name, {.name = "AddedFlag", .type = jet::ColumnType::Boolean});
        });
        subject.change("new index", [&](jet::Database& db) {
            const std::vector<jet::Column> columns = db.table(name).columns();
            db.createIndex(name, {.name = "AddedIndex",
                                  .columns = {{columns.front().name, true},
                                              {columns[columns.size() / 2].name, false}}});
        });
        subject.change("row in all of it", [&](jet::Database& db) {
            jet::Transaction change(db);
            Random random(11);
            Table table = db.table(name);
            table.insert(anyValues(random, table, 1));
            change.commit();
        });
    }
    for (const std::string& name : tables) {
        subject.change("dropped index", [&](jet::Database& db) {
            const std::vector<jet::Index> indexes = db.table(name).indexes();
            db.dropIndex(name, indexes.empty() ? "none" : indexes.front().name);
        });
    }
    subject.change("new table", [&](jet::Database& db) {
        db.createTable("Fresh", std::vector<jet::NewColumn>{{.name = "Text"}},
                       std::vector<jet::NewIndex>{{.name = "ByText", .columns = {{"Text"}}}});
    });
    for (const std::string& name : tables) {
        subject.change("dropped table", [&](jet::Database& db) { db.dropTable(name); });
    }
}

/// What copies go to.
class Target {
public:
    Target() : disk_(empty()), db_(openDamaged(disk_)) {}

    jet::Database& db() { return db_; }
    // Sound in each case, and with the same rows where the source is sound, too.
    void expectGood(const std::string& what, Subject* source) {
        if (const std::string finding = firstFinding(db_); !finding.empty()) {
            die(what + " is damaged: " + finding);
        }
        if (source != nullptr && source->sound()) {
            if (const std::string other = differenceOfRows(source->db(), db_); !other.empty()) {
                die(what + " of a sound file differs: " + other);
            }
        }
    }

private:
    static const std::string& empty() {
        static const std::vector<std::byte> kBytes = jet::newDatabase();
        static const std::string kText(reinterpret_cast<const char*>(kBytes.data()), kBytes.size());
        return kText;
    }

    Disk disk_;
    jet::Database db_;
};

void backUp(Subject& subject) {
    MemoryFolder folder;
    subject.db().backUp("copy", folder);
    if (folder.files() != 1 || folder.bytes("copy") != subject.pages()) {
        die("a backup is another than its source");
    }
}

void copy(Subject& subject) {
    backUp(subject);
    Target target;
    try {
        jet::copyTables(subject.db(), target.db());
    } catch (const Error& e) {
        const bool fits =
            subject.sound() ? e.number() == ErrNo::Unsupported : e.number() != ErrNo::Io;
        if (!fits) {
            die(std::string("copying: unfitting error: ") + e.what());
        }
        return;
    }
    target.expectGood("the copy", &subject);
}

void save(Disk& disk) {
    Target target;
    try {
        jet::salvage(std::make_unique<MemoryFile>(disk), "memory", target.db());
    } catch (const Error& e) {
        if (e.number() != ErrNo::Format) {
            die(std::string("saving: unfitting error: ") + e.what());
        }
        return;
    }
    std::optional<Subject> source;
    guarded([&] { source.emplace(disk); });
    target.expectGood("what was saved", source ? &*source : nullptr);
}

}  // namespace

void useDamaged(std::span<const std::byte> input) {
    DamagedFile file = damagedFile(input);
    static constexpr std::array<void (*)(Subject&), 5> kActs = {readAll, changeRows, runStatements,
                                                                changeTables, copy};
    const std::size_t act = file.act % (kActs.size() + 1);
    if (act == kActs.size()) {
        save(file.disk);
        return;
    }
    guarded([&] {
        Subject subject(file.disk);
        kActs[act](subject);
    });
}

}  // namespace vl::test
