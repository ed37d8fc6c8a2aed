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
    Parameter,  ///< `?`; `bind` makes it a literal
    And,        ///< two operands or more, so that a long chain is no deep tree
    Or,         ///< as `And`
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
    IntegerDivide,
    Modulo,
    Power,
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
    std::size_t ordinal = 0;  ///< of a parameter, from 0; of a column, set by `bind`
    bool decimal = false;     ///< set by `bind`: the column's values are decimal texts
    TextOrder textOrder = TextOrder::General;         ///< set by `bind`: of the columns in it
    jet::ColumnType type = jet::ColumnType::Boolean;  ///< set by `bind`: of its values, as a rule
    std::vector<std::unique_ptr<Expr>> operands;
};
using ExprPtr = std::unique_ptr<Expr>;

enum class ItemKind : std::uint8_t { All, Value, CountAll, Count, Min, Max };

/// One entry of a SELECT list. `value` is null for `All` and `CountAll`; `table` belongs to `All`.
struct SelectItem {
    ItemKind kind = ItemKind::All;
    Position at;
    std::string table;  ///< empty when it was not named
    ExprPtr value;
    std::string alias;  ///< the name behind AS, or empty
};

/// A whole number as `value` is a place in the SELECT list, from 1; a name that is none of the
/// table's is one of the list.
struct OrderItem {
    ExprPtr value;
    bool descending = false;
};

struct TableRef {
    Position at;
    std::string name;
    std::string alias;  ///< what the rest of the statement calls it, or empty

    const std::string& calledBy() const noexcept { return alias.empty() ? name : alias; }
};

struct Select {
    bool distinct = false;
    std::optional<std::int32_t> top;
    bool percent = false;  ///< `top` is of a hundred
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

struct Insert {
    TableRef table;
    std::vector<ColumnRef> columns;  ///< empty: all, in their order
    Position at;                     ///< of what gives the values
    std::vector<ExprPtr> values;     ///< of one row; empty where `rows` gives them
    std::optional<Select> rows;
};

struct Delete {
    TableRef table;
    std::optional<ColumnRef> named;  ///< `Table.*` before FROM; only its table counts
    ExprPtr where;                   ///< null: every row
};

struct ColumnSpec {
    ColumnRef name;
    jet::ColumnType type = jet::ColumnType::Long;
    std::uint16_t length = 0;  ///< of a text in characters, of binary in bytes
    bool autoNumber = false;
    std::uint8_t precision = 0;  ///< of a numeric column
    std::uint8_t scale = 0;
    bool required = false;  ///< NOT NULL
};

struct KeySpec {
    ColumnRef column;
    bool descending = false;
};

/// An index, or a constraint that one keeps.
struct IndexSpec {
    Position at;
    std::string name;  ///< empty: one is made up
    bool primary = false;
    bool unique = false;
    bool required = false;
    bool ignoreNulls = false;
    std::vector<KeySpec> keys;
};

struct CreateTable {
    TableRef table;
    std::vector<ColumnSpec> columns;
    std::vector<IndexSpec> indexes;
};

struct AddColumn {
    TableRef table;
    ColumnSpec column;
    std::vector<IndexSpec> indexes;  ///< of that column
};

struct CreateIndex {
    TableRef table;
    IndexSpec index;
};

struct DropTable {
    TableRef table;
};

struct DropIndex {
    Position at;
    std::string name;
    TableRef table;
};

using Statement = std::variant<Select, Update, Insert, Delete, CreateTable, AddColumn, CreateIndex,
                               DropTable, DropIndex>;

}  // namespace vl::sql
