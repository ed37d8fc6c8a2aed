#include "UpdateRows.h"

#include <algorithm>

#include "Evaluate.h"
#include "Value.h"

namespace vl::sql {

namespace {

std::vector<std::size_t> targets(Update& statement, const TableShape& shape) {
    std::vector<std::size_t> columns;
    for (Assignment& assignment : statement.assignments) {
        const ColumnRef& ref = assignment.column;
        const std::size_t column = findColumn(ref, shape);
        if (std::find(columns.begin(), columns.end(), column) != columns.end()) {
            fail(ErrNo::Syntax, ref.at, "expected each column once, found " + ref.name + " again");
        }
        if (shape.columns[column].autoNumber) {
            fail(ErrNo::ReadOnly, ref.at, "column " + ref.name + " numbers its rows itself");
        }
        bind(assignment.value.get(), shape);
        columns.push_back(column);
    }
    return columns;
}

}  // namespace

void findChanges(Update& statement, const TableShape& shape, RowSource& rows,
                 const std::function<void(Changes)>& found) {
    const std::vector<std::size_t> columns = targets(statement, shape);
    bind(statement.where.get(), shape);
    while (rows.next()) {
        if (!keeps(statement.where.get(), rows)) {
            continue;
        }
        Changes changes;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const Expr& value = *statement.assignments[i].value;
            changes.emplace_back(
                columns[i], convertFor(shape.columns[columns[i]], evaluate(value, rows), value.at));
        }
        found(std::move(changes));
    }
}

}  // namespace vl::sql
