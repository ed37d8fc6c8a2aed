// Random statements in two spellings: our dialect and SQLite's.
#pragma once

#include <string>
#include <vector>

#include "Random.h"

namespace vl::sql::test {

/// Columns that both databases have a type for. Texts are letters and digits, which both sort
/// alike.
enum class Kind { Whole, Real, Text, Memo, Date, Flag };

struct ScriptColumn {
    std::string name;
    Kind kind;
    bool unique = false;
};

/// As it is after the statements so far.
struct ScriptTable {
    std::string name;
    std::vector<ScriptColumn> columns;  ///< the first is the primary key
    int indexes = 0;
};

enum class What { Create, AddColumn, Index, Drop, Insert, InsertSelect, Update, Delete, Select };

struct ScriptStatement {
    What what;
    std::string ours;
    std::string theirs;
    std::string table;     ///< whose rows it changes
    bool ordered = false;  ///< a query that says the order of its rows
    bool anyCase = false;  ///< which of several equal texts comes is left open
};

class Script {
public:
    explicit Script(Random& random) : random_(random) {}

    ScriptStatement next();

    /// Tells whether the statement did something: one that failed leaves the tables as they were.
    void succeeded(const ScriptStatement& statement);

private:
    struct Both {
        std::string ours;
        std::string theirs;
    };

    Both literal(Kind kind);
    Both value(const ScriptTable& table, const ScriptColumn& column);
    Both condition(const ScriptTable& table, int depth);
    Both test(const ScriptTable& table);
    Both where(const ScriptTable& table);
    ScriptColumn newColumn(int number, bool mayBeUnique);
    ScriptTable& anyTable() { return tables_[random_.below(tables_.size())]; }

    ScriptStatement create();
    ScriptStatement addColumn(const ScriptTable& table);
    ScriptStatement index(const ScriptTable& table);
    ScriptStatement insert(const ScriptTable& table);
    ScriptStatement insertSelect(const ScriptTable& table);
    ScriptStatement update(const ScriptTable& table);
    ScriptStatement remove(const ScriptTable& table);
    ScriptStatement select(const ScriptTable& table);
    ScriptStatement aggregate(const ScriptTable& table);

    Random& random_;
    std::vector<ScriptTable> tables_;
    ScriptTable changed_;  // the table as the last definition would leave it
    int created_ = 0;
};

}  // namespace vl::sql::test
