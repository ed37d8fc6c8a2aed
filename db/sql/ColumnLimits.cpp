#include "ColumnLimits.h"

#include "Evaluate.h"
#include "base/ErrorState.h"

namespace vl::sql {

namespace {

// The value of an expression that is the same for all rows and not null.
std::optional<Variant> constantOf(const Expr& expr) {
    if (hasColumns(expr)) {
        return std::nullopt;
    }
    try {
        Variant value = evaluate(expr, NoRow());
        return value.isNull() ? std::nullopt : std::optional(std::move(value));
    } catch (const Error&) {
        return std::nullopt;  // the scan will say so, if it comes to that
    }
}

Op mirrored(Op op) noexcept {
    switch (op) {
        case Op::Less:
            return Op::Greater;
        case Op::LessEqual:
            return Op::GreaterEqual;
        case Op::Greater:
            return Op::Less;
        case Op::GreaterEqual:
            return Op::LessEqual;
        default:
            return op;
    }
}

}  // namespace

void ColumnLimits::see(const Expr& condition) {
    switch (condition.op) {
        case Op::And:
            for (const ExprPtr& operand : condition.operands) {
                see(*operand);
            }
            break;
        case Op::Equal:
        case Op::Less:
        case Op::LessEqual:
        case Op::Greater:
        case Op::GreaterEqual:
            seeComparison(condition);
            break;
        case Op::In:
            seeList(condition);
            break;
        case Op::Between:
            if (condition.operands[0]->op == Op::Column) {
                limit(condition.operands[0]->ordinal, Op::GreaterEqual, *condition.operands[1]);
                limit(condition.operands[0]->ordinal, Op::LessEqual, *condition.operands[2]);
            }
            break;
        case Op::IsNull:
            if (condition.operands[0]->op == Op::Column) {
                limits_[condition.operands[0]->ordinal].isNull = true;
            }
            break;
        default:
            break;
    }
}

void ColumnLimits::seeComparison(const Expr& condition) {
    const Expr& left = *condition.operands[0];
    const Expr& right = *condition.operands[1];
    if (left.op == Op::Column) {
        limit(left.ordinal, condition.op, right);
    } else if (right.op == Op::Column) {
        limit(right.ordinal, mirrored(condition.op), left);
    }
}

void ColumnLimits::limit(std::size_t column, Op op, const Expr& expr) {
    const auto value = constantOf(expr);
    if (!value) {
        return;
    }
    Limits& limits = limits_[column];
    if (op == Op::Equal) {
        if (const auto bounds = equalBounds(shape_.columns[column], *value)) {
            limits.equal = std::vector{*bounds};
        }
        return;
    }
    const auto bounds = rangeBounds(shape_.columns[column], *value);
    if (!bounds) {
        return;
    }
    if (op == Op::Less || op == Op::LessEqual) {
        limits.high = bounds->high;
    } else {
        limits.low = bounds->low;
    }
}

// A null in the list makes no row true.
void ColumnLimits::seeList(const Expr& condition) {
    if (condition.operands[0]->op != Op::Column) {
        return;
    }
    const std::size_t column = condition.operands[0]->ordinal;
    std::vector<Bounds> all;
    for (std::size_t i = 1; i < condition.operands.size(); ++i) {
        const Expr& item = *condition.operands[i];
        if (item.op == Op::Literal && item.literal.isNull()) {
            continue;
        }
        const auto value = constantOf(item);
        const auto bounds = value ? equalBounds(shape_.columns[column], *value) : std::nullopt;
        if (!bounds) {
            return;
        }
        all.push_back(*bounds);
    }
    Limits& limits = limits_[column];
    if (!limits.equal || all.size() < limits.equal->size()) {
        limits.equal = std::move(all);
    }
}

}  // namespace vl::sql
