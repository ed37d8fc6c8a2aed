#include "FindRows.h"

#include <algorithm>

#include "ColumnLimits.h"
#include "Evaluate.h"
#include "base/Text.h"

namespace vl::sql {

namespace {

// More ranges than this are not worth looking up one by one.
constexpr std::size_t kMostRanges = 1000;

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

// What one index can do for the condition, column by column from its first one.
class Plan {
public:
    explicit Plan(std::size_t index) { ranges.push_back({index, {}, {}}); }

    std::vector<IndexRange> ranges;
    int score = 0;  // how much of the condition it serves
    bool onlyNulls = true;
    std::size_t matched = 0;  // columns with one value, or some

    /// Whether the index's next column can narrow the ranges further.
    bool narrow(const jet::Column& column, const Limits& limits, bool descending) {
        if (limits.equal && multiply(ranges, *limits.equal, descending)) {
            onlyNulls = false;
            match();
            // What a range of keys leaves open, no further column can narrow.
            return std::all_of(limits.equal->begin(), limits.equal->end(), isExact);
        }
        if (limits.isNull) {
            extend(ranges, Variant(Null{}), Variant(Null{}), descending);
            match();
            return true;
        }
        narrowEnds(column, limits, descending);
        return false;
    }

private:
    void match() {
        constexpr int kEqual = 4;
        score += kEqual;
        ++matched;
    }

    void narrowEnds(const jet::Column& column, const Limits& limits, bool descending) {
        constexpr int kEnd = 1;
        const bool lowHelps = limits.low.has_value();
        const bool highHelps = limits.high && (lowHelps || hasNumbersOnly(column));
        if (lowHelps || highHelps) {
            extend(ranges, limits.low, highHelps ? limits.high : std::nullopt, descending);
            onlyNulls = false;
            score += (lowHelps ? kEnd : 0) + (highHelps ? kEnd : 0);
        }
    }
};

Plan planFor(std::size_t number, const ColumnLimits& limits, const TableShape& shape) {
    constexpr int kUnique = 100;
    const jet::Index& index = shape.indexes[number];
    Plan plan(number);
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
        if (!plan.narrow(column, limits.of(place), part.descending)) {
            break;
        }
    }
    if (plan.onlyNulls && index.ignoreNulls) {
        plan.score = 0;
    } else if (index.unique && plan.matched == index.columns.size()) {
        plan.score += kUnique;
    }
    return plan;
}

}  // namespace

std::optional<std::vector<IndexRange>> planRanges(const Expr* where, const TableShape& shape) {
    if (where == nullptr || shape.indexes.empty()) {
        return std::nullopt;
    }
    const ColumnLimits limits(*where, shape);
    std::optional<Plan> best;
    for (std::size_t i = 0; i < shape.indexes.size(); ++i) {
        Plan plan = planFor(i, limits, shape);
        if (plan.score > (best ? best->score : 0)) {
            best = std::move(plan);
        }
    }
    return best ? std::optional(std::move(best->ranges)) : std::nullopt;
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
