#include "Evaluate.h"

#include <algorithm>

#include "Like.h"
#include "Value.h"

namespace vl::sql {

namespace {

// AND is decided by a false operand, OR by a true one; else an unknown operand makes it unknown.
Variant chain(const Expr& expr, const RowSource& row, bool decides) {
    bool unknown = false;
    for (const ExprPtr& operand : expr.operands) {
        const auto value = truth(evaluate(*operand, row), operand->at);
        if (value == decides) {
            return decides;
        }
        unknown = unknown || !value;
    }
    return unknown ? Variant(Null{}) : Variant(!decides);
}

bool holds(Op op, int comparison) noexcept {
    switch (op) {
        case Op::Equal:
            return comparison == 0;
        case Op::NotEqual:
            return comparison != 0;
        case Op::Less:
            return comparison < 0;
        case Op::LessEqual:
            return comparison <= 0;
        case Op::Greater:
            return comparison > 0;
        default:
            return comparison >= 0;
    }
}

Variant compared(const Expr& expr, const RowSource& row) {
    const auto result = compare(evaluate(*expr.operands[0], row), evaluate(*expr.operands[1], row),
                                expr.at, expr.textOrder);
    return result ? Variant(holds(expr.op, *result)) : Variant(Null{});
}

Variant like(const Expr& expr, const RowSource& row) {
    const Variant value = evaluate(*expr.operands[0], row);
    const Variant pattern = evaluate(*expr.operands[1], row);
    if (value.isNull() || pattern.isNull()) {
        return Null{};
    }
    return LikePattern(textOf(pattern, expr.at), expr.at).matches(textOf(value, expr.at));
}

Variant in(const Expr& expr, const RowSource& row) {
    const Variant value = evaluate(*expr.operands[0], row);
    bool unknown = false;
    for (std::size_t i = 1; i < expr.operands.size(); ++i) {
        const auto result =
            compare(value, evaluate(*expr.operands[i], row), expr.at, expr.textOrder);
        if (result == 0) {
            return true;
        }
        unknown = unknown || !result;
    }
    return unknown ? Variant(Null{}) : Variant(false);
}

// value >= low AND value <= high, so a null bound may still leave it false.
Variant between(const Expr& expr, const RowSource& row) {
    const Variant value = evaluate(*expr.operands[0], row);
    const auto low = compare(value, evaluate(*expr.operands[1], row), expr.at, expr.textOrder);
    const auto high = compare(value, evaluate(*expr.operands[2], row), expr.at, expr.textOrder);
    if ((low && *low < 0) || (high && *high > 0)) {
        return false;
    }
    return low && high ? Variant(true) : Variant(Null{});
}

Variant arithmetic(Arithmetic op, const Expr& expr, const RowSource& row) {
    return calculate(op, evaluate(*expr.operands[0], row), evaluate(*expr.operands[1], row),
                     expr.at);
}

Variant negated(const Expr& expr, const RowSource& row) {
    const auto value = truth(evaluate(*expr.operands[0], row), expr.at);
    return value ? Variant(!*value) : Variant(Null{});
}

Variant columnValue(const Expr& expr, const RowSource& row) {
    return expr.decimal ? fromDecimal(row.value(expr.ordinal)) : row.value(expr.ordinal);
}

}  // namespace

Variant evaluate(const Expr& expr, const RowSource& row) {
    switch (expr.op) {
        case Op::Literal:
            return expr.literal;
        case Op::Column:
            return columnValue(expr, row);
        case Op::And:
            return chain(expr, row, false);
        case Op::Or:
            return chain(expr, row, true);
        case Op::Not:
            return negated(expr, row);
        case Op::IsNull:
            return evaluate(*expr.operands[0], row).isNull();
        case Op::Like:
            return like(expr, row);
        case Op::In:
            return in(expr, row);
        case Op::Between:
            return between(expr, row);
        case Op::Concatenate:
            return concatenate(evaluate(*expr.operands[0], row), evaluate(*expr.operands[1], row),
                               expr.at);
        case Op::Add:
            return arithmetic(Arithmetic::Add, expr, row);
        case Op::Subtract:
            return arithmetic(Arithmetic::Subtract, expr, row);
        case Op::Multiply:
            return arithmetic(Arithmetic::Multiply, expr, row);
        case Op::Divide:
            return arithmetic(Arithmetic::Divide, expr, row);
        case Op::IntegerDivide:
            return arithmetic(Arithmetic::IntegerDivide, expr, row);
        case Op::Modulo:
            return arithmetic(Arithmetic::Modulo, expr, row);
        case Op::Power:
            return arithmetic(Arithmetic::Power, expr, row);
        case Op::Negate:
            return negate(evaluate(*expr.operands[0], row), expr.at);
        default:
            return compared(expr, row);
    }
}

Variant exactValue(const Expr& expr, const RowSource& row) {
    return expr.op == Op::Column ? row.value(expr.ordinal) : evaluate(expr, row);
}

bool hasColumns(const Expr& expr) {
    return expr.op == Op::Column ||
           std::any_of(expr.operands.begin(), expr.operands.end(),
                       [](const ExprPtr& operand) { return hasColumns(*operand); });
}

bool keeps(const Expr* where, const RowSource& row) {
    return where == nullptr || truth(evaluate(*where, row), where->at).value_or(false);
}

}  // namespace vl::sql
