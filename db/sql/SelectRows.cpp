#include "SelectRows.h"

#include <algorithm>
#include <numeric>
#include <set>

#include "Evaluate.h"
#include "Value.h"

namespace vl::sql {

namespace {

using Row = std::vector<Variant>;

struct OrderColumn {
    std::size_t column;
    bool decimal;
    TextOrder textOrder;
    bool descending;
};

Variant keyOf(const RowSource& rows, std::size_t column, bool decimal) {
    return decimal ? fromDecimal(rows.value(column)) : rows.value(column);
}

bool isAggregate(const SelectItem& item) noexcept {
    return item.kind != ItemKind::All && item.kind != ItemKind::Column;
}

// The columns of a result and where in the table they come from.
struct Output {
    std::vector<Field> fields;
    std::vector<std::size_t> columns;
};

void addAll(Output& output, const SelectItem& item, const TableShape& shape) {
    if (!item.column.table.empty() && !shape.columns.empty()) {  // checks the table's name
        findColumn({item.column.at, item.column.table, shape.columns.front().name}, shape);
    }
    for (std::size_t i = 0; i < shape.columns.size(); ++i) {
        output.fields.push_back({shape.columns[i].name, shape.columns[i].type});
        output.columns.push_back(i);
    }
}

Output outputOf(const Select& statement, const TableShape& shape) {
    Output output;
    for (const SelectItem& item : statement.items) {
        if (item.kind == ItemKind::All) {
            addAll(output, item, shape);
            continue;
        }
        const std::size_t column = findColumn(item.column, shape);
        const jet::Column& source = shape.columns[column];
        output.fields.push_back({item.alias.empty() ? source.name : item.alias, source.type});
        output.columns.push_back(column);
    }
    return output;
}

// What sorting a DISTINCT result by a column it does not have would mean, nobody can say.
void requireListed(const OrderItem& item, std::size_t column, const Output& output) {
    if (std::find(output.columns.begin(), output.columns.end(), column) == output.columns.end()) {
        fail(ErrNo::Syntax, item.column.at,
             "expected a column of the DISTINCT list, found " + item.column.name);
    }
}

std::vector<OrderColumn> orderOf(const Select& statement, const TableShape& shape,
                                 const Output& output) {
    std::vector<OrderColumn> order;
    for (const OrderItem& item : statement.order) {
        const std::size_t column = findColumn(item.column, shape);
        if (statement.distinct) {
            requireListed(item, column, output);
        }
        const jet::Column& by = shape.columns[column];
        order.push_back({column, isDecimal(by), textOrderOf(by), item.descending});
    }
    return order;
}

bool sortsBefore(const Row& a, const Row& b, const std::vector<OrderColumn>& columns) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const int c = order(a[i], b[i], columns[i].textOrder);
        if (c != 0) {
            return (c < 0) != columns[i].descending;
        }
    }
    return false;
}

struct DistinctLess {
    std::vector<TextOrder> orders;  // of the columns

    bool operator()(const Row& a, const Row& b) const {
        for (std::size_t i = 0; i < a.size(); ++i) {
            const int c = order(a[i], b[i], orders[i]);
            if (c != 0) {
                return c < 0;
            }
        }
        return false;
    }
};

// Moves the rows into the order of their keys and cuts behind TOP, but not between equal rows.
void arrange(std::vector<Row>& rows, const std::vector<Row>& keys,
             const std::vector<OrderColumn>& columns, std::optional<std::int32_t> top) {
    std::vector<std::size_t> places(rows.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
    std::stable_sort(places.begin(), places.end(), [&](std::size_t a, std::size_t b) {
        return sortsBefore(keys[a], keys[b], columns);
    });
    if (top && static_cast<std::size_t>(*top) < places.size()) {
        auto end = static_cast<std::size_t>(*top);
        while (end < places.size() &&
               !sortsBefore(keys[places[end - 1]], keys[places[end]], columns)) {
            ++end;
        }
        places.resize(end);
    }
    std::vector<Row> sorted;
    sorted.reserve(places.size());
    for (const std::size_t place : places) {
        sorted.push_back(std::move(rows[place]));
    }
    rows = std::move(sorted);
}

Result selectColumns(Select& statement, const TableShape& shape, RowSource& rows) {
    Output output = outputOf(statement, shape);
    const std::vector<OrderColumn> order = orderOf(statement, shape, output);
    const auto full = [&](const Result& result) {
        return order.empty() && statement.top &&
               result.rows.size() == static_cast<std::size_t>(*statement.top);
    };
    Result result;
    result.isQuery = true;
    std::vector<Row> keys;
    DistinctLess distinctLess;
    for (const std::size_t column : output.columns) {
        distinctLess.orders.push_back(textOrderOf(shape.columns[column]));
    }
    std::set<Row, DistinctLess> seen(std::move(distinctLess));
    while (!full(result) && rows.next()) {
        if (!keeps(statement.where.get(), rows)) {
            continue;
        }
        if (statement.distinct) {
            Row values;
            for (const std::size_t column : output.columns) {
                values.push_back(keyOf(rows, column, isDecimal(shape.columns[column])));
            }
            if (!seen.insert(std::move(values)).second) {
                continue;
            }
        }
        Row values;
        values.reserve(output.columns.size());
        for (const std::size_t column : output.columns) {
            values.push_back(rows.value(column));
        }
        result.rows.push_back(std::move(values));
        if (!order.empty()) {
            Row& key = keys.emplace_back();
            for (const OrderColumn& by : order) {
                key.push_back(keyOf(rows, by.column, by.decimal));
            }
        }
    }
    if (!order.empty()) {
        arrange(result.rows, keys, order, statement.top);
    }
    result.fields = std::move(output.fields);
    return result;
}

// One COUNT, MIN or MAX while the rows pass by.
class Aggregate {
public:
    Aggregate(const SelectItem& item, const TableShape& shape) : kind_(item.kind) {
        if (kind_ != ItemKind::CountAll) {
            column_ = findColumn(item.column, shape);
            decimal_ = isDecimal(shape.columns[column_]);
            textOrder_ = textOrderOf(shape.columns[column_]);
            type_ = shape.columns[column_].type;
        }
    }

    jet::ColumnType type() const noexcept {
        return kind_ == ItemKind::Min || kind_ == ItemKind::Max ? type_ : jet::ColumnType::Long;
    }

    void see(const RowSource& rows) {
        if (kind_ == ItemKind::CountAll) {
            ++count_;
            return;
        }
        const Variant key = keyOf(rows, column_, decimal_);
        if (key.isNull()) {
            return;
        }
        ++count_;
        if (kind_ == ItemKind::Count) {
            return;
        }
        const int c = order(key, bestKey_, textOrder_);
        if (bestKey_.isNull() || (kind_ == ItemKind::Min ? c < 0 : c > 0)) {
            best_ = rows.value(column_);
            bestKey_ = key;
        }
    }

    /// Null for MIN and MAX of no values.
    Variant result() const {
        return kind_ == ItemKind::Min || kind_ == ItemKind::Max ? best_ : Variant(count_);
    }

private:
    ItemKind kind_;
    std::size_t column_ = 0;
    bool decimal_ = false;
    TextOrder textOrder_ = TextOrder::General;
    jet::ColumnType type_ = jet::ColumnType::Long;
    std::int32_t count_ = 0;
    Variant best_ = Null{};
    Variant bestKey_ = Null{};
};

Result selectAggregates(const Select& statement, const TableShape& shape, RowSource& rows) {
    if (!statement.order.empty()) {
        fail(ErrNo::Syntax, statement.order.front().column.at,
             "expected no ORDER BY: COUNT, MIN and MAX give one row");
    }
    Result result;
    result.isQuery = true;
    std::vector<Aggregate> aggregates;
    for (const SelectItem& item : statement.items) {
        if (!isAggregate(item)) {
            fail(ErrNo::Syntax, item.column.at,
                 "expected COUNT, MIN or MAX, as the other columns are");
        }
        aggregates.emplace_back(item, shape);
        result.fields.push_back(
            {item.alias.empty() ? "Expr" + std::to_string(1000 + result.fields.size()) : item.alias,
             aggregates.back().type()});
    }
    while (rows.next()) {
        if (keeps(statement.where.get(), rows)) {
            for (Aggregate& aggregate : aggregates) {
                aggregate.see(rows);
            }
        }
    }
    Row& values = result.rows.emplace_back();
    for (const Aggregate& aggregate : aggregates) {
        values.push_back(aggregate.result());
    }
    return result;
}

}  // namespace

Result select(Select& statement, const TableShape& shape, RowSource& rows) {
    bind(statement.where.get(), shape);
    const bool aggregates =
        std::any_of(statement.items.begin(), statement.items.end(), isAggregate);
    return aggregates ? selectAggregates(statement, shape, rows)
                      : selectColumns(statement, shape, rows);
}

}  // namespace vl::sql
