#include "SelectRows.h"

#include <algorithm>
#include <numeric>
#include <set>

#include "Evaluate.h"
#include "FindRows.h"
#include "base/Text.h"

namespace vl::sql {

namespace {

using Row = std::vector<Variant>;

bool isAggregate(const SelectItem& item) noexcept {
    return item.kind != ItemKind::All && item.kind != ItemKind::Value;
}

std::string madeUpName(std::size_t place) { return "Expr" + std::to_string(1000 + place); }

std::string nameOf(const SelectItem& item, const TableShape& shape, std::size_t place) {
    if (!item.alias.empty()) {
        return item.alias;
    }
    if (item.kind == ItemKind::Value && item.value->op == Op::Column) {
        return shape.columns[item.value->ordinal].name;
    }
    return madeUpName(place);
}

// A name that a column of the result has already says nothing: then the made-up one.
std::string unusedName(std::string name, const std::vector<Field>& fields) {
    const auto taken = [&] {
        return std::any_of(fields.begin(), fields.end(), [&](const Field& field) {
            return text::equalsNoCase(field.name, name);
        });
    };
    for (std::size_t place = fields.size(); taken(); ++place) {
        name = madeUpName(place);
    }
    return name;
}

// The columns of a result and what gives their values. Of `*` too, which stands for columns.
struct Output {
    std::vector<Field> fields;
    std::vector<const Expr*> values;
    std::vector<ExprPtr> own;
};

void addAll(Output& output, const SelectItem& item, const Scope& scope) {
    const std::vector<jet::Column>& columns = scope.shape().columns;
    if (!columns.empty()) {  // checks the table's name
        scope.column({item.at, item.table, columns.front().name});
    }
    const bool alone = output.fields.empty();  // a table's columns differ in their names
    for (std::size_t place = 0; place < columns.size(); ++place) {
        const jet::Column& column = columns[place];
        auto value = std::make_unique<Expr>();
        value->column = {item.at, item.table, column.name};
        scope.bindTo(*value, place);
        output.fields.push_back({alone ? column.name : unusedName(column.name, output.fields),
                                 column.type, column.length});
        output.values.push_back(value.get());
        output.own.push_back(std::move(value));
    }
}

Output outputOf(const Select& statement, const Scope& scope) {
    Output output;
    for (const SelectItem& item : statement.items) {
        if (item.kind == ItemKind::All) {
            addAll(output, item, scope);
            continue;
        }
        scope.bind(item.value.get());
        const Expr& value = *item.value;
        const std::uint16_t length =
            value.op == Op::Column ? scope.shape().columns[value.ordinal].length : std::uint16_t{0};
        output.fields.push_back(
            {unusedName(nameOf(item, scope.shape(), output.fields.size()), output.fields),
             value.type, length});
        output.values.push_back(item.value.get());
    }
    return output;
}

struct OrderBy {
    const Expr* value;
    bool descending;
};

// What an alias of the list stands for; columns of the table go before it.
const Expr* aliased(const Expr& value, const Scope& scope, const Output& output) {
    if (value.op != Op::Column || !value.column.table.empty() || scope.has(value.column)) {
        return nullptr;
    }
    for (std::size_t i = 0; i < output.fields.size(); ++i) {
        if (text::equalsNoCase(output.fields[i].name, value.column.name)) {
            return output.values[i];
        }
    }
    return nullptr;
}

const Expr* listed(const Expr& value, const Scope& scope, const Output& output) {
    if (const Expr* named = aliased(value, scope, output)) {
        return named;
    }
    const auto* number = value.op == Op::Literal ? value.literal.get<std::int32_t>() : nullptr;
    if (number == nullptr) {
        return nullptr;
    }
    const std::size_t count = output.values.size();
    if (*number < 1 || static_cast<std::size_t>(*number) > count) {
        fail(ErrNo::Syntax, value.at,
             "expected a place in the list from 1 to " + std::to_string(count) + ", found " +
                 std::to_string(*number));
    }
    return output.values[static_cast<std::size_t>(*number) - 1];
}

// What sorting a DISTINCT result by a column it does not have would mean, nobody can say.
void requireListed(const Expr& value, const Output& output) {
    const bool found = std::any_of(output.values.begin(), output.values.end(), [&](const Expr* e) {
        return e == &value ||
               (e->op == Op::Column && value.op == Op::Column && e->ordinal == value.ordinal);
    });
    if (!found) {
        fail(ErrNo::Syntax, value.at,
             "expected a column of the DISTINCT list" +
                 (value.op == Op::Column ? ", found " + value.column.name : std::string()));
    }
}

std::vector<OrderBy> orderOf(const Select& statement, const Scope& scope, const Output& output) {
    std::vector<OrderBy> order;
    for (const OrderItem& item : statement.order) {
        const Expr* value = listed(*item.value, scope, output);
        if (value == nullptr) {
            scope.bind(item.value.get());
            value = item.value.get();
            if (!hasColumns(*value)) {
                fail(ErrNo::Syntax, value->at,
                     "expected a column or a place in the list, found what is the same for all "
                     "rows");
            }
        }
        if (statement.distinct) {
            requireListed(*value, output);
        }
        order.push_back({value, item.descending});
    }
    return order;
}

bool sortsBefore(const Row& a, const Row& b, const std::vector<OrderBy>& by) {
    for (std::size_t i = 0; i < by.size(); ++i) {
        const int c = order(a[i], b[i], by[i].value->textOrder);
        if (c != 0) {
            return (c < 0) != by[i].descending;
        }
    }
    return false;
}

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

// Moves the rows into the order of their keys and cuts behind TOP, but not between equal rows.
void arrange(std::vector<Row>& rows, const std::vector<Row>& keys, const std::vector<OrderBy>& by,
             std::optional<std::size_t> top) {
    std::vector<std::size_t> places(rows.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
    std::stable_sort(places.begin(), places.end(), [&](std::size_t a, std::size_t b) {
        return sortsBefore(keys[a], keys[b], by);
    });
    if (top && *top < places.size()) {
        auto end = *top;
        while (end < places.size() && !sortsBefore(keys[places[end - 1]], keys[places[end]], by)) {
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

Result selectColumns(Select& statement, const StoredTable& table, const Scope& scope,
                     const RowTaker* take, ScanMemory* memory) {
    Output output = outputOf(statement, scope);
    const std::vector<OrderBy> by = orderOf(statement, scope, output);
    std::vector<const Expr*> sortColumns;
    sortColumns.reserve(by.size());
    for (const OrderBy& item : by) {
        sortColumns.push_back(item.value);
    }
    std::size_t found = 0;
    const auto full = [&] {
        return by.empty() && !statement.percent && found == rowsOnTop(statement, found);
    };
    Result result;
    result.isQuery = true;
    std::vector<Row> keys;
    std::set<Row, DistinctLess> seen(DistinctLess{&output.values});
    const auto rows = findRows(table, statement.where.get(), memory);
    while (!full() && rows->next()) {
        if (!keeps(statement.where.get(), *rows) ||
            (statement.distinct && !seen.insert(keysOf(output.values, *rows)).second)) {
            continue;
        }
        ++found;
        if (take && by.empty() && !statement.percent) {
            (*take)(output.fields, valuesOf(output.values, *rows));
            continue;
        }
        result.rows.push_back(valuesOf(output.values, *rows));
        if (!by.empty()) {
            keys.push_back(keysOf(sortColumns, *rows));
        }
    }
    if (!by.empty()) {
        arrange(result.rows, keys, by, rowsOnTop(statement, found));
    } else if (statement.percent) {
        result.rows.resize(*rowsOnTop(statement, found));
    }
    result.fields = std::move(output.fields);
    return result;
}

// One COUNT, MIN or MAX while the rows pass by.
class Aggregate {
public:
    explicit Aggregate(const SelectItem& item) : kind_(item.kind), value_(item.value.get()) {}

    jet::ColumnType type() const noexcept {
        return isBest() ? value_->type : jet::ColumnType::Long;
    }

    void see(const RowSource& row) {
        if (kind_ == ItemKind::CountAll) {
            ++count_;
            return;
        }
        Variant key = evaluate(*value_, row);
        if (key.isNull()) {
            return;
        }
        ++count_;
        if (!isBest()) {
            return;
        }
        const int c = order(key, bestKey_, value_->textOrder);
        if (bestKey_.isNull() || (kind_ == ItemKind::Min ? c < 0 : c > 0)) {
            best_ = exactValue(*value_, row);
            bestKey_ = std::move(key);
        }
    }

    /// Null for MIN and MAX of no values.
    Variant result() const { return isBest() ? best_ : Variant(count_); }

private:
    bool isBest() const noexcept { return kind_ == ItemKind::Min || kind_ == ItemKind::Max; }

    ItemKind kind_;
    const Expr* value_;
    std::int32_t count_ = 0;
    Variant best_ = Null{};
    Variant bestKey_ = Null{};
};

Result selectAggregates(const Select& statement, const StoredTable& table, const Scope& scope,
                        ScanMemory* memory) {
    if (!statement.order.empty()) {
        fail(ErrNo::Syntax, statement.order.front().value->at,
             "expected no ORDER BY: COUNT, MIN and MAX give one row");
    }
    Result result;
    result.isQuery = true;
    std::vector<Aggregate> aggregates;
    for (const SelectItem& item : statement.items) {
        if (!isAggregate(item)) {
            fail(ErrNo::Syntax, item.at, "expected COUNT, MIN or MAX, as the other columns are");
        }
        scope.bind(item.value.get());
        aggregates.emplace_back(item);
        result.fields.push_back(
            {unusedName(nameOf(item, scope.shape(), result.fields.size()), result.fields),
             aggregates.back().type(), 0});
    }
    const auto rows = findRows(table, statement.where.get(), memory);
    while (rows->next()) {
        if (keeps(statement.where.get(), *rows)) {
            for (Aggregate& aggregate : aggregates) {
                aggregate.see(*rows);
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
