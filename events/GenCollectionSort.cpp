// Sorting by value, through a table of keys and converted values.
#include <algorithm>
#include <functional>

#include "KeyedSlots.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "events/GenCollection.h"

namespace vl {

namespace {

constexpr std::size_t kFieldUnits = 255;  // width of the table's text columns

struct Row {
    std::string id;
    Variant item;        // as it is kept; Empty when unset
    std::string folded;  // what texts compare by
};

struct ColumnKind {
    const char* dataType;
    Variant (*stored)(const Variant& value);
    bool (*less)(const Row& a, const Row& b);
};

Variant storedText(const Variant& value) { return text::leftUtf16(value.toText(), kFieldUnits); }

// A number could be read as days, yet it is no date.
Variant storedDate(const Variant& value) {
    if (!value.is<DateTime>() && !value.is<std::string>()) {
        throw Error(ErrNo::TypeMismatch, "a value to sort is no date");
    }
    return value.toDateTime();
}

Variant storedNumber(const Variant& value) { return value.toInt64(); }

template <class T>
bool lessValue(const Row& a, const Row& b) {
    return *a.item.get<T>() < *b.item.get<T>();
}

bool lessText(const Row& a, const Row& b) { return a.folded < b.folded; }

constexpr ColumnKind kKinds[] = {
    {"T", storedText, lessText},
    {"D", storedDate, lessValue<DateTime>},
    {"N", storedNumber, lessValue<std::int64_t>},
};

bool isEmptyValue(const Variant& value) {
    const auto* s = value.get<std::string>();
    return value.isEmpty() || value.isNull() || (s != nullptr && s->empty());
}

std::vector<Row> sorted(std::vector<Row> rows, const ColumnKind& kind, bool descending) {
    const auto before = [&](const Row& a, const Row& b) {
        if (a.item.isEmpty() || b.item.isEmpty()) {
            return a.item.isEmpty() && !b.item.isEmpty();
        }
        return kind.less(a, b);
    };
    // With the arguments swapped, and so still stable: equal values keep their order.
    std::stable_sort(rows.begin(), rows.end(), [&](const Row& a, const Row& b) {
        return descending ? before(b, a) : before(a, b);
    });
    return rows;
}

}  // namespace

void GenCollection::SortByItem(std::string_view DataType, std::string_view sOrder,
                               bool bIgnoreEmpty) {
    const ErrScope scope;
    const auto* kind = std::find_if(std::begin(kKinds), std::end(kKinds), [&](const auto& k) {
        return text::equalsNoCase(k.dataType, DataType);
    });
    if (kind == std::end(kKinds)) {
        return;
    }
    const KeyedSlots& items = *items_;
    std::vector<Row> rows;
    rows.reserve(items.count());
    for (std::size_t i = 0; i < items.count(); ++i) {
        Row& row = rows.emplace_back();
        row.id = text::leftUtf16(items.at(i).shownKey(), kFieldUnits);
        if (bIgnoreEmpty && isEmptyValue(items.at(i).value)) {
            continue;
        }
        attempt([&] { row.item = kind->stored(items.at(i).value); });
        if (const auto* s = row.item.get<std::string>()) {
            row.folded = text::foldCase(*s);
        }
    }
    const bool descending = text::equalsNoCase(text::trimBlanks(sOrder), "DESC");
    rows = sorted(std::move(rows), *kind, descending);
    Clear();
    for (const Row& row : rows) {
        Add(row.item, row.id);
    }
}

}  // namespace vl
