// SQLite as a second opinion.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace vl::sql::test {

class Sqlite {
public:
    /// An empty database in memory.
    Sqlite() {
        sqlite3* db = nullptr;
        if (sqlite3_open(":memory:", &db) != SQLITE_OK) {
            throw std::runtime_error("no SQLite");
        }
        db_.reset(db);
        // Trees are printed with all their brackets.
        sqlite3_limit(db, SQLITE_LIMIT_EXPR_DEPTH, 1000);
    }

    using Rows = std::vector<std::vector<std::string>>;

    /// Numbers with 15 digits, null as "NULL". Throws `std::runtime_error`.
    Rows run(const std::string& statement) {
        sqlite3_stmt* prepared = nullptr;
        const int refused =
            sqlite3_prepare_v2(db_.get(), statement.c_str(), -1, &prepared, nullptr);
        const std::unique_ptr<sqlite3_stmt, Close> owner(prepared);
        if (refused != SQLITE_OK) {
            throw std::runtime_error(sqlite3_errmsg(db_.get()) + (" in " + statement));
        }
        Rows rows;
        int step = SQLITE_ROW;
        while ((step = sqlite3_step(prepared)) == SQLITE_ROW) {
            std::vector<std::string>& row = rows.emplace_back();
            for (int i = 0; i < sqlite3_column_count(prepared); ++i) {
                row.push_back(textOf(prepared, i));
            }
        }
        if (step != SQLITE_DONE) {
            throw std::runtime_error(sqlite3_errmsg(db_.get()) + (" in " + statement));
        }
        return rows;
    }

    /// Rows that the last statement inserted, changed or removed.
    int changes() const { return sqlite3_changes(db_.get()); }

private:
    struct Close {
        void operator()(sqlite3* db) const { sqlite3_close(db); }
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };

    static std::string textOf(sqlite3_stmt* row, int column) {
        switch (sqlite3_column_type(row, column)) {
            case SQLITE_NULL:
                return "NULL";
            case SQLITE_INTEGER:
            case SQLITE_FLOAT: {
                char text[64];
                std::snprintf(text, sizeof text, "%.15g", sqlite3_column_double(row, column));
                return text;
            }
            default:
                return reinterpret_cast<const char*>(sqlite3_column_text(row, column));
        }
    }

    std::unique_ptr<sqlite3, Close> db_;
};

}  // namespace vl::sql::test
