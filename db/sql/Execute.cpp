#include <algorithm>
#include <utility>

#include "ChangeRows.h"
#include "DefineTables.h"
#include "FileTable.h"
#include "Lexer.h"
#include "Parser.h"
#include "RowSpool.h"
#include "SelectRows.h"
#include "Sql.h"
#include "base/Text.h"
#include "db/jet/FileReplaced.h"
#include "db/jet/ReadGuard.h"
#include "db/jet/Transaction.h"
#include "db/sql/ScanMemory.h"

namespace vl::sql {

namespace {

FileTable open(jet::Database& db, const TableRef& ref) {
    try {
        return FileTable(db.table(ref.name));
    } catch (const Error& e) {
        if (e.number() == ErrNo::NotFound) {
            fail(ErrNo::NotFound, ref.at, std::string(e.what()));
        }
        throw;
    }
}

// The engine keeps its own tables in step with the file; a statement would not.
void requireUserTable(const jet::Database& db, const TableRef& ref) {
    constexpr std::string_view kPrefix = "MSys";
    const auto tables = db.tables();
    const auto hit = std::find_if(tables.begin(), tables.end(), [&](const jet::TableInfo& info) {
        return text::equalsNoCase(info.name, ref.name);
    });
    if ((hit != tables.end() && hit->system) ||
        text::equalsNoCase(std::string_view(ref.name).substr(0, kPrefix.size()), kPrefix)) {
        fail(ErrNo::ReadOnly, ref.at,
             "table " + ref.name + " belongs to the engine and is not changed by statements");
    }
}

/// One statement on a file.
class Run {
public:
    Run(jet::Database& db, std::span<const Parameter> parameters, const RowTaker* take,
        ScanMemory* memory = nullptr)
        : db_(db), parameters_(parameters), take_(take), memory_(memory) {}

    Result operator()(Select& statement) const {
        if (take_ == nullptr) {
            return rowsOf(statement);
        }
        // Nobody may have to wait until somebody has looked at the rows.
        RowSpool spool;
        const RowTaker keep = [&](const std::vector<Field>&, const std::vector<Variant>& row) {
            spool.add(row);
        };
        Result result = jet::readWhole(db_, [&] {
            spool.clear();
            return select(statement, open(db_, statement.table), parameters_, &keep);
        });
        spool.forEach([&](const std::vector<Variant>& row) { (*take_)(result.fields, row); });
        for (const std::vector<Variant>& row : result.rows) {
            (*take_)(result.fields, row);
        }
        result.rows.clear();
        return result;
    }

    Result operator()(Insert& statement) const {
        return changing(statement.table, [&] {
            FileTable table = open(db_, statement.table);
            Result rows = statement.rows ? rowsOf(*statement.rows) : Result();
            return insertRows(statement, table, std::move(rows), parameters_);
        });
    }

    Result operator()(Update& statement) const {
        return changing(statement.table, [&] {
            FileTable table = open(db_, statement.table);
            return updateRows(statement, table, parameters_);
        });
    }

    Result operator()(Delete& statement) const {
        return changing(statement.table, [&] {
            FileTable table = open(db_, statement.table);
            return deleteRows(statement, table, parameters_);
        });
    }

    template <class Definition>
    Result operator()(Definition& statement) const {
        std::string done;
        Result result = changing(statement.table, [&] {
            done = define(statement, db_);
            return 0;
        });
        result.done = std::move(done);
        return result;
    }

private:
    Result rowsOf(Select& statement) const {
        int readings = 0;
        const auto read = [&] {
            if (++readings > 1) {
                forgetSeen();
            }
            return select(statement, open(db_, statement.table), parameters_, nullptr, memory_);
        };
        Result result = jet::readWhole(db_, read);
        if (readings > 1) {
            forgetSeen();
        }
        return result;
    }

    // What was seen while others wrote may not belong together.
    void forgetSeen() const {
        if (memory_ != nullptr) {
            memory_->forget();
        }
    }

    // The table is looked up inside: what others write meanwhile must not be undone.
    template <class Step>
    Result changing(const TableRef& table, Step&& step) const {
        jet::Transaction transaction(db_);
        requireUserTable(db_, table);
        Result result;
        result.affected = std::forward<Step>(step)();
        transaction.commit();
        return result;
    }

    jet::Database& db_;
    std::span<const Parameter> parameters_;
    const RowTaker* take_;
    ScanMemory* memory_;
};

// Who waited while a file was written anew has the old one open. The error comes before anything
// was given or changed.
Result executeWhole(jet::Database& db, std::string_view text, const RowTaker* take,
                    std::span<const Parameter> parameters, ScanMemory* memory = nullptr) {
    constexpr int kMostFiles = 3;
    for (int times = 1;; ++times) {
        Statement statement = parse(text);
        try {
            return std::visit(Run(db, parameters, take, memory), statement);
        } catch (const jet::FileReplaced&) {
            if (times == kMostFiles || !db.openAnew()) {
                throw;
            }
        }
    }
}

}  // namespace

bool isQuery(std::string_view statement) noexcept {
    const std::size_t start = statement.find_first_not_of(" \t\r\n\f\v");
    const std::string_view word = statement.substr(std::min(start, statement.size()));
    const auto end = static_cast<std::size_t>(
        std::find_if_not(word.begin(), word.end(), continuesName) - word.begin());
    return text::equalsNoCase(word.substr(0, end), "SELECT");
}

Result execute(jet::Database& db, std::string_view text, std::span<const Parameter> parameters) {
    return executeWhole(db, text, nullptr, parameters);
}

Result execute(jet::Database& db, std::string_view text, ScanMemory& memory) {
    memory.ask(text);
    return executeWhole(db, text, nullptr, {}, &memory);
}

Result execute(jet::Database& db, std::string_view text, const RowTaker& take,
               std::span<const Parameter> parameters) {
    return executeWhole(db, text, &take, parameters);
}

}  // namespace vl::sql
