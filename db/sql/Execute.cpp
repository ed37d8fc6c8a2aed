#include <algorithm>
#include <utility>
#include <vector>

#include "Lexer.h"
#include "Parser.h"
#include "SelectRows.h"
#include "Sql.h"
#include "UpdateRows.h"
#include "base/Text.h"

namespace vl::sql {

namespace {

class TableRows final : public RowSource {
public:
    explicit TableRows(const jet::Table& table) : cursor_(table.scan()) {}
    bool next() override { return cursor_.next(); }
    Variant value(std::size_t column) const override { return cursor_.value(column); }
    jet::RowId id() const { return cursor_.id(); }

private:
    jet::RowCursor cursor_;
};

jet::Table open(jet::Database& db, const TableRef& ref) {
    try {
        return db.table(ref.name);
    } catch (const Error& e) {
        if (e.number() == ErrNo::NotFound) {
            fail(ErrNo::NotFound, ref.at, std::string(e.what()));
        }
        throw;
    }
}

TableShape shapeOf(const jet::Table& table) { return {table.name(), table.columns()}; }

Result run(Select& statement, jet::Database& db) {
    const jet::Table table = open(db, statement.table);
    TableRows rows(table);
    return select(statement, shapeOf(table), rows);
}

struct RowChange {
    jet::RowId id;
    Changes before;
    Changes after;
};

std::vector<RowChange> changesOf(Update& statement, const jet::Table& table) {
    TableRows rows(table);
    std::vector<RowChange> found;
    findChanges(statement, shapeOf(table), rows, [&](Changes after) {
        Changes before;
        for (const auto& [column, value] : after) {
            before.emplace_back(column, rows.value(column));
        }
        found.push_back({rows.id(), std::move(before), std::move(after)});
    });
    return found;
}

// What a row can take is known only when it is written (one may be older than the column): when
// one refuses, those before it get their old values back, so that the statement did nothing. A row
// whose write failed in the middle may hold either; giving it what it holds costs nothing.
void writeAll(jet::Table& table, const std::vector<RowChange>& changes) {
    std::size_t next = 0;
    try {
        for (; next < changes.size(); ++next) {
            table.updateInPlace(changes[next].id, changes[next].after);
        }
    } catch (const Error& e) {
        for (std::size_t undo = next + (e.number() == ErrNo::Io ? 1 : 0); undo > 0; --undo) {
            table.updateInPlace(changes[undo - 1].id, changes[undo - 1].before);
        }
        throw;
    }
}

Result run(Update& statement, jet::Database& db) {
    jet::Table table = open(db, statement.table);
    const std::vector<RowChange> changes = changesOf(statement, table);
    writeAll(table, changes);
    Result result;
    result.affected = static_cast<std::int64_t>(changes.size());
    return result;
}

}  // namespace

bool isQuery(std::string_view statement) noexcept {
    const std::size_t start = statement.find_first_not_of(" \t\r\n\f\v");
    const std::string_view word = statement.substr(std::min(start, statement.size()));
    const auto end = static_cast<std::size_t>(
        std::find_if_not(word.begin(), word.end(), continuesName) - word.begin());
    return text::equalsNoCase(word.substr(0, end), "SELECT");
}

Result execute(jet::Database& db, std::string_view text) {
    Statement statement = parse(text);
    return std::visit([&](auto& parsed) { return run(parsed, db); }, statement);
}

}  // namespace vl::sql
