#include "SelectAggregates.h"

#include "Evaluate.h"
#include "FindRows.h"
#include "SelectList.h"

namespace vl::sql {

namespace {

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

}  // namespace

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
            {nameOf(item, scope.shape(), result.fields), aggregates.back().type(), 0});
    }
    const auto rows = findRows(table, statement.where.get(), memory);
    while (rows->next()) {
        if (keeps(statement.where.get(), *rows)) {
            for (Aggregate& aggregate : aggregates) {
                aggregate.see(*rows);
            }
        }
    }
    std::vector<Variant>& values = result.rows.emplace_back();
    for (const Aggregate& aggregate : aggregates) {
        values.push_back(aggregate.result());
    }
    return result;
}

}  // namespace vl::sql
