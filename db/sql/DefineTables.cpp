#include "DefineTables.h"

#include <algorithm>

#include "base/Text.h"
#include "db/jet/define/TableRules.h"

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

// What is wrong with a thing gets the place where the statement names it; errors of the file, and
// such as have a place, stay as they are.
template <class Step>
void at(Position place, Step&& step) {
    try {
        std::forward<Step>(step)();
    } catch (const Error& e) {
        switch (e.number()) {
            case ErrNo::NotFound:
            case ErrNo::Exists:
            case ErrNo::Syntax:
            case ErrNo::Overflow:
            case ErrNo::TypeMismatch:
            case ErrNo::Unsupported:
                fail(e.number(), place, std::string(e.what()));
            default:
                throw;
        }
    }
}

// Column by column and index by index: the first that is too much is the one to name.
void checkEach(const CreateTable& statement, std::span<const jet::NewColumn> columns,
               std::span<const jet::NewIndex> indexes) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        at(statement.columns[i].name.at,
           [&] { jet::checkNewTable("x", columns.first(i + 1), {}); });
    }
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        at(statement.indexes[i].at,
           [&] { jet::checkNewTable("x", columns, indexes.first(i + 1)); });
    }
}

std::string indexText(const std::string& index, const TableRef& table) {
    return "index " + index + " of table " + table.name;
}

}  // namespace

std::string define(const CreateTable& statement, jet::Database& db) {
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
    checkEach(statement, columns, indexes);
    at(statement.table.at, [&] { db.createTable(statement.table.name, columns, indexes); });
    return "table " + statement.table.name + " was made";
}

std::string define(const AddColumn& statement, jet::Database& db) {
    const std::string& table = statement.table.name;
    at(statement.table.at, [&] { db.table(table); });
    at(statement.column.name.at, [&] { db.addColumn(table, columnOf(statement.column)); });
    for (const IndexSpec& spec : statement.indexes) {
        at(spec.at, [&] { db.createIndex(table, indexOf(spec)); });
    }
    return "column " + statement.column.name.name + " was added to table " + table;
}

std::string define(const CreateIndex& statement, jet::Database& db) {
    std::vector<jet::Column> columns;
    at(statement.table.at, [&] { columns = db.table(statement.table.name).columns(); });
    requireColumns(statement.index, statement.table, [&](const std::string& name) {
        return std::any_of(columns.begin(), columns.end(), [&](const jet::Column& column) {
            return text::equalsNoCase(column.name, name);
        });
    });
    const jet::NewIndex index = indexOf(statement.index);
    at(statement.index.at, [&] { db.createIndex(statement.table.name, index); });
    return indexText(index.name, statement.table) + " was made";
}

std::string define(const DropTable& statement, jet::Database& db) {
    at(statement.table.at, [&] { db.dropTable(statement.table.name); });
    return "table " + statement.table.name + " was dropped";
}

std::string define(const DropIndex& statement, jet::Database& db) {
    at(statement.table.at, [&] { db.table(statement.table.name); });
    at(statement.at, [&] { db.dropIndex(statement.table.name, statement.name); });
    return indexText(statement.name, statement.table) + " was dropped";
}

}  // namespace vl::sql
