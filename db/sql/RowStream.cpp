#include "db/sql/RowStream.h"

#include <variant>

#include "Evaluate.h"
#include "FileTable.h"
#include "Parser.h"
#include "Scope.h"
#include "Value.h"
#include "base/ErrorState.h"

namespace vl::sql {

namespace {

Select plainSelect(std::string_view text) {
    Statement statement = parse(text);
    auto* select = std::get_if<Select>(&statement);
    if (select == nullptr || select->distinct || select->top || !select->order.empty() ||
        select->items.size() != 1 || select->items.front().kind != ItemKind::All) {
        throw Error(ErrNo::Unsupported, "expected SELECT * without DISTINCT, TOP and ORDER BY");
    }
    return std::move(*select);
}

}  // namespace

struct RowStream::State {
    State(jet::Database& db, std::string_view text)
        : statement(plainSelect(text)),
          table(db.table(statement.table.name)),
          shape{table.name(), table.columns(), {}},
          row(table.scan()) {
        Scope(shape, statement.table, {}).bind(statement.where.get());
        for (const jet::Column& column : shape.columns) {
            fields.push_back({column.name, column.type});
        }
    }

    Select statement;
    jet::Table table;
    TableShape shape;
    CursorRows row;
    std::vector<Field> fields;
};

RowStream::RowStream(jet::Database& db, std::string_view statement)
    : state_(std::make_unique<State>(db, statement)) {}

RowStream::~RowStream() = default;

const std::vector<Field>& RowStream::fields() const noexcept { return state_->fields; }
bool RowStream::next() { return state_->row.next(); }
std::optional<jet::RowCursor::Unreadable> RowStream::passOver() {
    return state_->row.cursor.passOver();
}
bool RowStream::nextPage() { return state_->row.nextPage(); }
bool RowStream::nextOnPage() { return state_->row.nextOnPage(); }
bool RowStream::holds(const jet::PageMark& mark) const { return state_->row.holds(mark); }
jet::PageMark RowStream::mark() { return state_->row.mark(); }
jet::PageNo RowStream::page() const { return state_->row.page(); }
bool RowStream::matches() const { return keeps(state_->statement.where.get(), state_->row); }
Variant RowStream::value(std::size_t field) const { return state_->row.value(field); }
const jet::RowCursor& RowStream::cursor() const { return state_->row.cursor; }
jet::RowId RowStream::id() const { return state_->row.id(); }
std::uint64_t RowStream::fingerprint() const { return state_->row.cursor.fingerprint(); }

}  // namespace vl::sql
