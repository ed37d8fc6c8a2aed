#include "Scope.h"

#include <algorithm>
#include <limits>

#include "base/Text.h"

namespace vl::sql {

namespace {

using jet::ColumnType;

std::string_view withoutSign(std::string_view name) {
    return name.substr(name.empty() || name.front() != '@' ? 0 : 1);
}

// As a literal would be.
Variant literalOf(const Variant& given, Position at) {
    if (given.isEmpty()) {
        return Null{};
    }
    if (const auto* whole = given.get<std::int64_t>()) {
        const bool fits = *whole >= std::numeric_limits<std::int32_t>::min() &&
                          *whole <= std::numeric_limits<std::int32_t>::max();
        return fits ? Variant(static_cast<std::int32_t>(*whole))
                    : Variant(static_cast<double>(*whole));
    }
    if (given.is<ObjectRef>()) {
        fail(ErrNo::TypeMismatch, at, "expected a value for the parameter, an object was given");
    }
    return given;
}

ColumnType typeOf(const Variant& literal) noexcept {
    if (literal.is<bool>()) {
        return ColumnType::Boolean;
    }
    if (literal.is<std::int32_t>()) {
        return ColumnType::Long;
    }
    if (literal.is<double>()) {
        return ColumnType::Double;
    }
    if (literal.is<DateTime>()) {
        return ColumnType::Date;
    }
    return literal.is<Bytes>() ? ColumnType::Ole : ColumnType::Text;
}

bool isWhole(ColumnType type) noexcept {
    return type == ColumnType::Boolean || type == ColumnType::Byte || type == ColumnType::Integer ||
           type == ColumnType::Long;
}

bool isText(ColumnType type) noexcept {
    return type == ColumnType::Text || type == ColumnType::Memo;
}

ColumnType typeOfArithmetic(const Expr& expr) noexcept {
    const ColumnType a = expr.operands.front()->type;
    const ColumnType b = expr.operands.back()->type;
    const int dates = (a == ColumnType::Date ? 1 : 0) + (b == ColumnType::Date ? 1 : 0);
    if (expr.op == Op::Add && isText(a) && isText(b)) {
        return ColumnType::Text;
    }
    if ((expr.op == Op::Add && dates == 1) ||
        (expr.op == Op::Subtract && a == ColumnType::Date && dates == 1)) {
        return ColumnType::Date;
    }
    return expr.op != Op::Divide && expr.op != Op::Power && isWhole(a) && isWhole(b)
               ? ColumnType::Long
               : ColumnType::Double;
}

ColumnType typeOf(const Expr& expr) noexcept {
    switch (expr.op) {
        case Op::Literal:
            return typeOf(expr.literal);
        case Op::Column:
            return expr.type;
        case Op::Concatenate:
            return ColumnType::Text;
        case Op::Add:
        case Op::Subtract:
        case Op::Multiply:
        case Op::Divide:
        case Op::Power:
        case Op::Negate:
            return typeOfArithmetic(expr);
        case Op::IntegerDivide:
        case Op::Modulo:
            return ColumnType::Long;
        default:
            return ColumnType::Boolean;
    }
}

}  // namespace

std::optional<std::size_t> Scope::find(const ColumnRef& ref) const {
    if (shape_ == nullptr) {
        return std::nullopt;
    }
    const auto& columns = shape_->columns;
    const auto hit = std::find_if(columns.begin(), columns.end(), [&](const jet::Column& column) {
        return text::equalsNoCase(column.name, ref.name);
    });
    return hit == columns.end() ? std::nullopt
                                : std::optional(static_cast<std::size_t>(hit - columns.begin()));
}

std::size_t Scope::column(const ColumnRef& ref) const {
    if (shape_ == nullptr) {
        fail(ErrNo::NotFound, ref.at,
             "expected a literal or a parameter, no value is given for " + ref.name);
    }
    if (!ref.table.empty() && !text::equalsNoCase(ref.table, table_->calledBy())) {
        fail(ErrNo::NotFound, ref.at,
             "no table " + ref.table + " is read here, expected " + table_->calledBy());
    }
    const auto place = find(ref);
    if (!place) {
        fail(ErrNo::NotFound, ref.at,
             "no column " + ref.name + ", expected one of table " + shape_->name);
    }
    return *place;
}

const Variant* Scope::named(const ColumnRef& ref) const {
    const auto hit =
        std::find_if(parameters_.begin(), parameters_.end(), [&](const Parameter& parameter) {
            return ref.table.empty() && !parameter.name.empty() &&
                   text::equalsNoCase(withoutSign(parameter.name), withoutSign(ref.name));
        });
    return hit == parameters_.end() ? nullptr : &hit->value;
}

const Variant& Scope::numbered(const Expr& expr) const {
    std::size_t number = expr.ordinal;
    for (const Parameter& parameter : parameters_) {
        if (parameter.name.empty() && number-- == 0) {
            return parameter.value;
        }
    }
    fail(ErrNo::NotFound, expr.at,
         "expected a value for the parameter number " + std::to_string(expr.ordinal + 1));
}

void Scope::bindName(Expr& expr) const {
    if (!find(expr.column)) {
        if (const Variant* value = named(expr.column)) {
            expr.op = Op::Literal;
            expr.literal = literalOf(*value, expr.at);
            return;
        }
    }
    bindTo(expr, column(expr.column));
}

void Scope::bindTo(Expr& expr, std::size_t place) const {
    const jet::Column& hit = shape_->columns[place];
    expr.op = Op::Column;
    expr.ordinal = place;
    expr.decimal = isDecimal(hit);
    expr.textOrder = textOrderOf(hit);
    expr.type = hit.type;
}

void Scope::bind(Expr* expr) const {
    if (expr == nullptr) {
        return;
    }
    if (expr->op == Op::Column) {
        bindName(*expr);
    } else if (expr->op == Op::Parameter) {
        expr->literal = literalOf(numbered(*expr), expr->at);
        expr->op = Op::Literal;
    }
    for (const ExprPtr& operand : expr->operands) {
        bind(operand.get());
        if (operand->textOrder != TextOrder::General) {
            expr->textOrder = operand->textOrder;
        }
    }
    expr->type = typeOf(*expr);
}

}  // namespace vl::sql
