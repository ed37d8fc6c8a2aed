#include "ChangeRows.h"

#include <algorithm>
#include <numeric>

#include "Evaluate.h"
#include "FindRows.h"

namespace vl::sql {

namespace {

// A place in the table for each, no place twice.
std::vector<std::size_t> places(const std::vector<const ColumnRef*>& refs, const Scope& scope) {
    std::vector<std::size_t> columns;
    for (const ColumnRef* ref : refs) {
        const std::size_t column = scope.column(*ref);
        if (std::find(columns.begin(), columns.end(), column) != columns.end()) {
            fail(ErrNo::Syntax, ref->at,
                 "expected each column once, found " + ref->name + " again");
        }
        columns.push_back(column);
    }
    return columns;
}

std::vector<std::size_t> targets(const Insert& statement, const Scope& scope) {
    if (statement.columns.empty()) {
        std::vector<std::size_t> all(scope.shape().columns.size());
        std::iota(all.begin(), all.end(), std::size_t{0});
        return all;
    }
    std::vector<const ColumnRef*> refs;
    for (const ColumnRef& ref : statement.columns) {
        refs.push_back(&ref);
    }
    return places(refs, scope);
}

std::vector<std::size_t> targets(const Update& statement, const Scope& scope) {
    std::vector<const ColumnRef*> refs;
    for (const Assignment& assignment : statement.assignments) {
        refs.push_back(&assignment.column);
    }
    std::vector<std::size_t> columns = places(refs, scope);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (scope.shape().columns[columns[i]].autoNumber) {
            fail(ErrNo::ReadOnly, refs[i]->at,
                 "column " + refs[i]->name + " numbers its rows itself");
        }
    }
    return columns;
}

void requireCount(const Insert& statement, std::size_t expected, std::size_t found) {
    if (expected != found) {
        fail(ErrNo::Syntax, statement.at,
             "expected " + std::to_string(expected) + " values, one for each column, found " +
                 std::to_string(found));
    }
}

// A column that numbers its rows does so where nothing else is given.
void add(Changes& row, std::size_t place, const jet::Column& column, const Variant& value,
         Position at) {
    if (!(column.autoNumber && value.isNull())) {
        row.emplace_back(place, convertFor(column, value, at));
    }
}

Changes rowOf(const Insert& statement, const std::vector<std::size_t>& columns,
              const std::vector<jet::Column>& shape, const std::vector<Variant>& values) {
    Changes row;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const Position at = statement.rows ? statement.at : statement.values[i]->at;
        add(row, columns[i], shape[columns[i]], values[i], at);
    }
    return row;
}

Changes changesOf(const Update& statement, const std::vector<std::size_t>& columns,
                  const TableShape& shape, const RowSource& row) {
    Changes changes;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const Expr& value = *statement.assignments[i].value;
        changes.emplace_back(
            columns[i], convertFor(shape.columns[columns[i]], exactValue(value, row), value.at));
    }
    return changes;
}

// Keys that are taken and nulls that may not be are found out by the table: they get the place of
// what gives the values.
template <class Step>
void placed(Position at, Step&& step) {
    try {
        std::forward<Step>(step)();
    } catch (const Error& e) {
        switch (e.number()) {
            case ErrNo::Exists:
            case ErrNo::TypeMismatch:
            case ErrNo::Overflow:
            case ErrNo::Unsupported:
                fail(e.number(), at, std::string(e.what()));
            default:
                throw;
        }
    }
}

}  // namespace

std::int64_t insertRows(Insert& statement, StoredTable& table, Result rows,
                        std::span<const Parameter> parameters) {
    const TableShape& shape = table.shape();
    const std::vector<std::size_t> columns =
        targets(statement, Scope(shape, statement.table, parameters));
    if (!statement.rows) {
        requireCount(statement, columns.size(), statement.values.size());
        const Scope noColumns(parameters);
        std::vector<Variant>& values = rows.rows.emplace_back();
        for (const ExprPtr& value : statement.values) {
            noColumns.bind(value.get());
            values.push_back(evaluate(*value, NoRow()));
        }
    } else {
        requireCount(statement, columns.size(), rows.fields.size());
    }
    std::vector<Changes> converted;
    converted.reserve(rows.rows.size());
    for (std::vector<Variant>& values : rows.rows) {
        converted.push_back(rowOf(statement, columns, shape.columns, values));
        values = {};
    }
    for (const Changes& row : converted) {
        placed(statement.at, [&] { table.insert(row); });
    }
    return static_cast<std::int64_t>(converted.size());
}

std::int64_t updateRows(Update& statement, StoredTable& table,
                        std::span<const Parameter> parameters) {
    const TableShape& shape = table.shape();
    const Scope scope(shape, statement.table, parameters);
    const std::vector<std::size_t> columns = targets(statement, scope);
    for (Assignment& assignment : statement.assignments) {
        scope.bind(assignment.value.get());
    }
    scope.bind(statement.where.get());
    // Computed twice: first to find out whether all can be, then to write it row by row.
    std::vector<jet::RowId> found;
    const auto all = findRows(table, statement.where.get());
    while (all->next()) {
        if (keeps(statement.where.get(), *all)) {
            changesOf(statement, columns, shape, *all);
            found.push_back(all->id());
        }
    }
    const auto count = static_cast<std::int64_t>(found.size());
    const auto again = table.rows(std::move(found));
    while (again->next()) {
        const Changes changes = changesOf(statement, columns, shape, *again);
        placed(statement.assignments.front().column.at,
               [&] { table.update(again->id(), changes); });
    }
    return count;
}

std::int64_t deleteRows(Delete& statement, StoredTable& table,
                        std::span<const Parameter> parameters) {
    const TableShape& shape = table.shape();
    const Scope scope(shape, statement.table, parameters);
    if (statement.named && !shape.columns.empty()) {  // checks the table's name
        scope.column({statement.named->at, statement.named->table, shape.columns.front().name});
    }
    scope.bind(statement.where.get());
    std::vector<jet::RowId> found;
    const auto all = findRows(table, statement.where.get());
    while (all->next()) {
        if (keeps(statement.where.get(), *all)) {
            found.push_back(all->id());
        }
    }
    for (const jet::RowId row : found) {
        placed(statement.table.at, [&] { table.remove(row); });
    }
    return static_cast<std::int64_t>(found.size());
}

}  // namespace vl::sql
