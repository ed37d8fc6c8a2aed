// A statement as the parser understands it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "Lexer.h"
#include "Value.h"
#include "base/Variant.h"

namespace vl::sql {

enum class Op : std::uint8_t {
    Literal,
    Column,
    And,  ///< two operands or more, so that a long chain is no deep tree
    Or,   ///< as `And`
    Not,
    Equal,
    NotEqual,
    Less,
    LessEqual,
    Greater,
    GreaterEqual,
    IsNull,
    Like,
    In,       ///< the value, then the list
    Between,  ///< the value, the lower bound, the upper bound
    Concatenate,
    Add,
    Subtract,
    Multiply,
    Divide,
    Negate,
};

/// No node lies deeper than this, so walking and freeing a tree may recurse.
constexpr int kMaxDepth = 200;

struct ColumnRef {
    Position at;
    std::string table;  ///< empty when it was not named
    std::string name;
};

struct Expr {
    Op op = Op::Literal;
    Position at;
    int depth = 1;
    Variant literal;
    ColumnRef column;
    std::size_t ordinal = 0;  ///< set by `bind`
    bool decimal = false;     ///< set by `bind`: the column's values are decimal texts
    TextOrder textOrder = TextOrder::General;  ///< set by `bind`: of the columns in it
    std::vector<std::unique_ptr<Expr>> operands;
};
using ExprPtr = std::unique_ptr<Expr>;

enum class ItemKind : std::uint8_t { All, Column, CountAll, Count, Min, Max };

/// One entry of a SELECT list. `column` is empty for `CountAll`; for `All` only its table counts.
struct SelectItem {
    ItemKind kind = ItemKind::All;
    ColumnRef column;
    std::string alias;  ///< the name behind AS, or empty
};

struct OrderItem {
    ColumnRef column;
    bool descending = false;
};

struct TableRef {
    Position at;
    std::string name;
};

struct Select {
    bool distinct = false;
    std::optional<std::int32_t> top;
    std::vector<SelectItem> items;
    TableRef table;
    ExprPtr where;  ///< null: every row
    std::vector<OrderItem> order;
};

struct Assignment {
    ColumnRef column;
    ExprPtr value;
};

struct Update {
    TableRef table;
    std::vector<Assignment> assignments;
    ExprPtr where;  ///< null: every row
};

using Statement = std::variant<Select, Update>;

}  // namespace vl::sql
