#include "DefineTables.h"

#include <algorithm>

#include "base/Text.h"

namespace vl::sql {

namespace {

jet::NewColumn columnOf(const ColumnSpec& spec) {
    jet::NewColumn column;
    column.name = spec.name.name;
    column.type = spec.type;
    column.length = spec.length;
    column.autoNumber = spec.autoNumber;
    column.precision = spec.precision;
    column.scale = spec.scale;
    column.required = spec.required;
    return column;
}

// A constraint without a name is called by what it keeps.
std::string nameOf(const IndexSpec& spec) {
    if (!spec.name.empty()) {
        return spec.name;
    }
    if (spec.primary) {
        return "PrimaryKey";
    }
    std::string name;
    for (const KeySpec& key : spec.keys) {
        name += key.column.name;
    }
    constexpr std::size_t kLongestName = 64;
    return std::string(text::leftUtf16(name, kLongestName));
}

jet::NewIndex indexOf(const IndexSpec& spec) {
    jet::NewIndex index;
    index.name = nameOf(spec);
    index.primary = spec.primary;
    index.unique = spec.unique;
    index.required = spec.required;
    index.ignoreNulls = spec.ignoreNulls;
    for (const KeySpec& key : spec.keys) {
        index.columns.push_back({key.column.name, key.descending});
    }
    return index;
}

void requireOnce(const std::vector<ColumnSpec>& columns) {
    for (auto column = columns.begin(); column != columns.end(); ++column) {
        if (std::any_of(columns.begin(), column, [&](const ColumnSpec& before) {
                return text::equalsNoCase(before.name.name, column->name.name);
            })) {
            fail(ErrNo::Exists, column->name.at,
                 "expected each column once, found " + column->name.name + " again");
        }
    }
}

template <class HasColumn>
void requireColumns(const IndexSpec& index, const TableRef& table, HasColumn&& hasColumn) {
    for (const KeySpec& key : index.keys) {
        const ColumnRef& ref = key.column;
        if (!ref.table.empty() && !text::equalsNoCase(ref.table, table.name)) {
            fail(ErrNo::NotFound, ref.at,
                 "no table " + ref.table + " is meant here, expected " + table.name);
        }
        if (!hasColumn(ref.name)) {
            fail(ErrNo::NotFound, ref.at,
                 "no column " + ref.name + ", expected one of table " + table.name);
        }
    }
}

// An error about the table itself gets the place where it is named.
template <class Step>
void at(const TableRef& table, Step&& step) {
    try {
        std::forward<Step>(step)();
    } catch (const Error& e) {
        if (e.number() == ErrNo::NotFound || e.number() == ErrNo::Exists ||
            e.number() == ErrNo::Syntax) {
            fail(e.number(), table.at, std::string(e.what()));
        }
        throw;
    }
}

}  // namespace

void define(const CreateTable& statement, jet::Database& db) {
    requireOnce(statement.columns);
    std::vector<jet::NewColumn> columns;
    for (const ColumnSpec& spec : statement.columns) {
        columns.push_back(columnOf(spec));
    }
    std::vector<jet::NewIndex> indexes;
    for (const IndexSpec& spec : statement.indexes) {
        requireColumns(spec, statement.table, [&](const std::string& name) {
            return std::any_of(columns.begin(), columns.end(), [&](const jet::NewColumn& column) {
                return text::equalsNoCase(column.name, name);
            });
        });
        indexes.push_back(indexOf(spec));
    }
    at(statement.table, [&] { db.createTable(statement.table.name, columns, indexes); });
}

void define(const AddColumn& statement, jet::Database& db) {
    at(statement.table, [&] {
        db.addColumn(statement.table.name, columnOf(statement.column));
        for (const IndexSpec& spec : statement.indexes) {
            db.createIndex(statement.table.name, indexOf(spec));
        }
    });
}

void define(const CreateIndex& statement, jet::Database& db) {
    std::vector<jet::Column> columns;
    at(statement.table, [&] { columns = db.table(statement.table.name).columns(); });
    requireColumns(statement.index, statement.table, [&](const std::string& name) {
        return std::any_of(columns.begin(), columns.end(), [&](const jet::Column& column) {
            return text::equalsNoCase(column.name, name);
        });
    });
    at(statement.table, [&] { db.createIndex(statement.table.name, indexOf(statement.index)); });
}

void define(const DropTable& statement, jet::Database& db) {
    at(statement.table, [&] { db.dropTable(statement.table.name); });
}

void define(const DropIndex& statement, jet::Database& db) {
    at(statement.table, [&] { db.table(statement.table.name); });
    at({statement.at, statement.name, {}},
       [&] { db.dropIndex(statement.table.name, statement.name); });
}

}  // namespace vl::sql
