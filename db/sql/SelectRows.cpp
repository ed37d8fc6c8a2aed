#include "SelectRows.h"

#include <algorithm>
#include <set>

#include "Evaluate.h"
#include "FindRows.h"
#include "RowOrder.h"
#include "SelectAggregates.h"

namespace vl::sql {

namespace {

struct DistinctLess {
    const std::vector<const Expr*>* columns;

    bool operator()(const Row& a, const Row& b) const {
        for (std::size_t i = 0; i < a.size(); ++i) {
            const int c = order(a[i], b[i], (*columns)[i]->textOrder);
            if (c != 0) {
                return c < 0;
            }
        }
        return false;
    }
};

// So many rows TOP gives of all that were found; a part of one counts as one.
std::optional<std::size_t> rowsOnTop(const Select& statement, std::size_t all) {
    if (!statement.top) {
        return std::nullopt;
    }
    constexpr std::size_t kPercent = 100;
    const auto top = static_cast<std::size_t>(*statement.top);
    return statement.percent ? (all * top + kPercent - 1) / kPercent : top;
}

Row valuesOf(const std::vector<const Expr*>& columns, const RowSource& row) {
    Row values;
    values.reserve(columns.size());
    for (const Expr* column : columns) {
        values.push_back(exactValue(*column, row));
    }
    return values;
}

Row keysOf(const std::vector<const Expr*>& columns, const RowSource& row) {
    Row values;
    values.reserve(columns.size());
    for (const Expr* column : columns) {
        values.push_back(evaluate(*column, row));
    }
    return values;
}

// The rows of one SELECT while they come.
class Selection {
public:
    /// Binds the list and the order.
    Selection(Select& statement, const Scope& scope, const RowTaker* take)
        : statement_(statement),
          output_(outputOf(statement, scope)),
          by_(orderOf(statement, scope, output_)),
          take_(by_.empty() && !statement.percent ? take : nullptr) {
        for (const OrderBy& item : by_) {
            sortColumns_.push_back(item.value);
        }
    }

    /// No further row changes the result.
    bool isFull() const {
        return by_.empty() && !statement_.percent && found_ == rowsOnTop(statement_, found_);
    }

    /// A row that WHERE keeps.
    void add(const RowSource& row) {
        if (statement_.distinct && !seen_.insert(keysOf(output_.values, row)).second) {
            return;
        }
        ++found_;
        if (take_ != nullptr) {
            (*take_)(output_.fields, valuesOf(output_.values, row));
            return;
        }
        rows_.push_back(valuesOf(output_.values, row));
        if (!by_.empty()) {
            keys_.push_back(keysOf(sortColumns_, row));
        }
    }

    /// Once, after the last row.
    Result result() {
        if (!by_.empty()) {
            arrange(rows_, keys_, by_, rowsOnTop(statement_, found_));
        } else if (statement_.percent) {
            rows_.resize(*rowsOnTop(statement_, found_));
        }
        Result result;
        result.isQuery = true;
        result.fields = std::move(output_.fields);
        result.rows = std::move(rows_);
        return result;
    }

private:
    const Select& statement_;
    Output output_;
    std::vector<OrderBy> by_;
    std::vector<const Expr*> sortColumns_;
    const RowTaker* take_;  // null: rows are kept
    std::size_t found_ = 0;
    std::set<Row, DistinctLess> seen_{DistinctLess{&output_.values}};
    std::vector<Row> rows_;
    std::vector<Row> keys_;  // where there is an order
};

Result selectColumns(Select& statement, const StoredTable& table, const Scope& scope,
                     const RowTaker* take, ScanMemory* memory) {
    Selection selection(statement, scope, take);
    const auto rows = findRows(table, statement.where.get(), memory);
    while (!selection.isFull() && rows->next()) {
        if (keeps(statement.where.get(), *rows)) {
            selection.add(*rows);
        }
    }
    return selection.result();
}

}  // namespace

Result select(Select& statement, const StoredTable& table, std::span<const Parameter> parameters,
              const RowTaker* take, ScanMemory* memory) {
    const Scope scope(table.shape(), statement.table, parameters);
    scope.bind(statement.where.get());
    const bool aggregates =
        std::any_of(statement.items.begin(), statement.items.end(), isAggregate);
    return aggregates ? selectAggregates(statement, table, scope, memory)
                      : selectColumns(statement, table, scope, take, memory);
}

}  // namespace vl::sql
