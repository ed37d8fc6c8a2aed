#include "FindRows.h"

#include <algorithm>

#include "Evaluate.h"
#include "IndexBounds.h"
#include "base/Text.h"

namespace vl::sql {

namespace {

// More ranges than this are not worth looking up one by one.
constexpr std::size_t kMostRanges = 1000;

// What the conditions that are joined by AND say of one column.
struct Limits {
    std::optional<std::vector<Bounds>> equal;  // one of these
    bool isNull = false;
    std::optional<Variant> low;
    std::optional<Variant> high;
};

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

class Analysis {
public:
    Analysis(const Expr& where, const TableShape& shape)
        : shape_(shape), limits_(shape.columns.size()) {
        see(where);
    }

    const Limits& of(std::size_t column) const { return limits_[column]; }

private:
    void see(const Expr& condition) {
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

    void seeComparison(const Expr& condition) {
        const Expr& left = *condition.operands[0];
        const Expr& right = *condition.operands[1];
        if (left.op == Op::Column) {
            limit(left.ordinal, condition.op, right);
        } else if (right.op == Op::Column) {
            limit(right.ordinal, mirrored(condition.op), left);
        }
    }

    void limit(std::size_t column, Op op, const Expr& expr) {
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
    void seeList(const Expr& condition) {
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

    const TableShape& shape_;
    std::vector<Limits> limits_;
};

std::size_t placeOf(const std::string& column, const TableShape& shape) {
    return static_cast<std::size_t>(
        std::find_if(shape.columns.begin(), shape.columns.end(),
                     [&](const jet::Column& c) { return text::equalsNoCase(c.name, column); }) -
        shape.columns.begin());
}

bool isExact(const Bounds& bounds) { return bounds.low == bounds.high; }

// Then the rows themselves may well be read; a search goes on without the index. Damage is told: a
// check of the file says more.
bool isOfTheIndex(const Error& error) {
    switch (error.number()) {
        case ErrNo::Corrupt:
            trace(std::string("an index that is damaged is passed over: ") + error.what());
            return true;
        case ErrNo::TypeMismatch:
        case ErrNo::Overflow:
        case ErrNo::Unsupported:
            return true;  // no such key can be made
        default:
            return false;
    }
}

// What one index can do for the condition: `score` tells how much of it.
struct Plan {
    std::vector<IndexRange> ranges;
    int score = 0;
};

void extend(std::vector<IndexRange>& ranges, const std::optional<Variant>& low,
            const std::optional<Variant>& high, bool descending) {
    for (IndexRange& range : ranges) {
        const auto& from = descending ? high : low;
        const auto& to = descending ? low : high;
        if (from) {
            range.from.push_back(*from);
        }
        if (to) {
            range.to.push_back(*to);
        }
    }
}

// Each range goes on with each of the values; false when there are too many.
bool multiply(std::vector<IndexRange>& ranges, const std::vector<Bounds>& values, bool descending) {
    if (ranges.size() * values.size() > kMostRanges) {
        return false;
    }
    std::vector<IndexRange> longer;
    for (const Bounds& value : values) {
        std::vector<IndexRange> part = ranges;
        extend(part, value.low, value.high, descending);
        longer.insert(longer.end(), part.begin(), part.end());
    }
    ranges = std::move(longer);
    return true;
}

Plan planFor(std::size_t number, const Analysis& analysis, const TableShape& shape) {
    constexpr int kEqual = 4;
    constexpr int kEnd = 1;
    constexpr int kUnique = 100;
    const jet::Index& index = shape.indexes[number];
    Plan plan;
    plan.ranges.push_back({number, {}, {}});
    bool onlyNulls = true;
    std::size_t matched = 0;
    for (const jet::IndexColumn& part : index.columns) {
        const std::size_t place = placeOf(part.name, shape);
        if (place == shape.columns.size()) {
            break;
        }
        const jet::Column& column = shape.columns[place];
        // Descending keys of this type are not really in descending order.
        if (column.type == jet::ColumnType::Numeric && part.descending) {
            break;
        }
        const Limits& limits = analysis.of(place);
        if (limits.equal && multiply(plan.ranges, *limits.equal, part.descending)) {
            onlyNulls = false;
            plan.score += kEqual;
            ++matched;
            // What a range of keys leaves open, no further column can narrow.
            if (!std::all_of(limits.equal->begin(), limits.equal->end(), isExact)) {
                break;
            }
        } else if (limits.isNull) {
            extend(plan.ranges, Variant(Null{}), Variant(Null{}), part.descending);
            plan.score += kEqual;
            ++matched;
        } else {
            const bool lowHelps = limits.low.has_value();
            const bool highHelps = limits.high && (lowHelps || hasNumbersOnly(column));
            if (lowHelps || highHelps) {
                extend(plan.ranges, limits.low, highHelps ? limits.high : std::nullopt,
                       part.descending);
                onlyNulls = false;
                plan.score += (lowHelps ? kEnd : 0) + (highHelps ? kEnd : 0);
            }
            break;
        }
    }
    if (onlyNulls && index.ignoreNulls) {
        return {};
    }
    if (index.unique && matched == index.columns.size()) {
        plan.score += kUnique;
    }
    return plan;
}

}  // namespace

std::optional<std::vector<IndexRange>> planRanges(const Expr* where, const TableShape& shape) {
    if (where == nullptr || shape.indexes.empty()) {
        return std::nullopt;
    }
    const Analysis analysis(*where, shape);
    Plan best;
    for (std::size_t i = 0; i < shape.indexes.size(); ++i) {
        Plan plan = planFor(i, analysis, shape);
        if (plan.score > best.score) {
            best = std::move(plan);
        }
    }
    return best.score > 0 ? std::optional(std::move(best.ranges)) : std::nullopt;
}

std::unique_ptr<RowSource> findRows(const StoredTable& table, const Expr* where,
                                    ScanMemory* memory) {
    const auto ranges = planRanges(where, table.shape());
    if (!ranges) {
        const auto pages = memory != nullptr && where != nullptr ? table.pages() : nullptr;
        return pages ? table.rows(memory->find(*pages, [&] { return keeps(where, *pages); }))
                     : table.scan();
    }
    std::vector<jet::RowId> found;
    try {
        for (const IndexRange& range : *ranges) {
            const std::vector<jet::RowId> part = table.find(range);
            found.insert(found.end(), part.begin(), part.end());
        }
    } catch (const Error& e) {
        if (!isOfTheIndex(e)) {
            throw;
        }
        return table.scan();
    }
    std::sort(found.begin(), found.end(), [](const jet::RowId& a, const jet::RowId& b) {
        return a.page != b.page ? a.page < b.page : a.row < b.row;
    });
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return table.rows(std::move(found));
}

}  // namespace vl::sql
