#include "RowOrder.h"

#include <algorithm>
#include <numeric>

#include "Evaluate.h"
#include "base/Text.h"

namespace vl::sql {

namespace {

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

bool sortsBefore(const Row& a, const Row& b, const std::vector<OrderBy>& by) {
    for (std::size_t i = 0; i < by.size(); ++i) {
        const int c = order(a[i], b[i], by[i].value->textOrder);
        if (c != 0) {
            return (c < 0) != by[i].descending;
        }
    }
    return false;
}

}  // namespace

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

}  // namespace vl::sql
