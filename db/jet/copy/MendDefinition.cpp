#include "MendDefinition.h"

#include <algorithm>
#include <utility>

#include "base/Text.h"
#include "define/Rules.h"

namespace vl::jet {

namespace {

bool isName(std::string_view what, std::string_view name) {
    try {
        checkName(what, name);
        return true;
    } catch (const Error&) {
        return false;
    }
}

template <class IsTaken>
std::string freeName(std::string name, IsTaken&& isTaken) {
    while (isTaken(name)) {
        name += '_';
    }
    return name;
}

void mendNames(TableDefinition& table, Findings& findings) {
    for (auto column = table.columns.begin(); column != table.columns.end(); ++column) {
        const auto isOf = [&](std::string_view name) {
            return [name](const Column& other) { return text::equalsNoCase(other.name, name); };
        };
        if (isName("column", column->name) &&
            std::none_of(table.columns.begin(), column, isOf(column->name))) {
            continue;
        }
        const std::string name =
            freeName("Column" + std::to_string(column->number), [&](const std::string& wanted) {
                return std::any_of(table.columns.begin(), table.columns.end(), isOf(wanted));
            });
        findings.add(table.page, "column \"" + column->name + "\" of table \"" + table.name +
                                     "\" is named \"" + name +
                                     "\": its name is none, or another column's");
        column->name = name;
    }
    for (Index& index : table.indexes) {
        const std::vector<KeyColumn>& parts = table.trees[index.tree].columns;
        for (std::size_t i = 0; i < index.columns.size(); ++i) {
            index.columns[i].name = table.columns[parts[i].position].name;
        }
    }
}

void mendSize(Column& column) {
    if (column.type == ColumnType::Text) {
        column.length = std::min<std::uint16_t>(column.length, 2 * kLongestField);
    } else if (column.type == ColumnType::Binary) {
        column.length = std::min(column.length, kLongestField);
    } else if (column.type == ColumnType::Numeric && !isNumeric(column.precision, column.scale)) {
        column.precision = kMostDigits;
        column.scale = std::min(column.scale, kMostDigits);
    }
}

void mendSizes(TableDefinition& table, Findings& findings) {
    bool counts = false;
    for (Column& column : table.columns) {
        const Column before = column;
        mendSize(column);
        if (column.autoNumber && column.type == ColumnType::Long) {
            column.autoNumber = !std::exchange(counts, true);
        }
        if (column.length != before.length || column.precision != before.precision ||
            column.scale != before.scale || column.autoNumber != before.autoNumber) {
            findings.add(table.page, "column \"" + column.name + "\" of table \"" + table.name +
                                         "\" is made another one: none can be as it was");
        }
    }
}

}  // namespace

void mendDefinition(TableDefinition& table, const std::function<bool(std::string_view)>& isTaken,
                    Findings& findings) {
    if (!isName("table", table.name) || isTaken(table.name)) {
        const std::string name = freeName("Table" + std::to_string(table.page), isTaken);
        findings.add(table.page, "table \"" + table.name + "\" is named \"" + name +
                                     "\": its name is none, or another table's");
        table.name = name;
    }
    mendNames(table, findings);
    mendSizes(table, findings);
}

}  // namespace vl::jet
