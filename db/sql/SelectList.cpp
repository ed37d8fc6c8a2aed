#include "SelectList.h"

#include <algorithm>

#include "base/Text.h"

namespace vl::sql {

namespace {

std::string madeUpName(std::size_t place) { return "Expr" + std::to_string(1000 + place); }

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

}  // namespace

std::string nameOf(const SelectItem& item, const TableShape& shape,
                   const std::vector<Field>& fields) {
    if (!item.alias.empty()) {
        return unusedName(item.alias, fields);
    }
    if (item.kind == ItemKind::Value && item.value->op == Op::Column) {
        return unusedName(shape.columns[item.value->ordinal].name, fields);
    }
    return unusedName(madeUpName(fields.size()), fields);
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
        output.fields.push_back({nameOf(item, scope.shape(), output.fields), value.type, length});
        output.values.push_back(item.value.get());
    }
    return output;
}

}  // namespace vl::sql
