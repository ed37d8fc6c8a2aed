#include "SameRows.h"

#include <algorithm>
#include <string_view>
#include <type_traits>
#include <vector>

#include "base/ErrorState.h"

namespace vl::test {

namespace {

template <class T>
std::string bytesOf(const T& value) {
    if constexpr (std::is_same_v<T, DateTime>) {
        return bytesOf(value.days());
    } else if constexpr (std::is_same_v<T, std::string> || std::is_same_v<T, Bytes>) {
        return bytesOf(value.size()) +
               std::string(reinterpret_cast<const char*>(value.data()), value.size());
    } else if constexpr (std::is_arithmetic_v<T>) {
        return {reinterpret_cast<const char*>(&value), sizeof value};
    } else {
        return {};  // null
    }
}

// Equal for equal rows alone.
std::vector<std::string> rowsOf(const jet::Table& table) {
    std::vector<std::string> rows;
    for (jet::RowCursor row = table.scan(); row.next();) {
        std::string& bytes = rows.emplace_back();
        for (std::size_t i = 0; i < table.columns().size(); ++i) {
            const Variant value = row.value(i);
            bytes += static_cast<char>(value.value().index());
            bytes += std::visit([](const auto& v) { return bytesOf(v); }, value.value());
        }
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

std::vector<std::string> namesOf(const jet::Database& db) {
    std::vector<std::string> names;
    for (const jet::TableInfo& info : db.tables()) {
        if (!info.system) {
            names.push_back(info.name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string difference(const jet::Database& source, const jet::Database& copy) {
    const std::vector<std::string> names = namesOf(source);
    if (names != namesOf(copy)) {
        return "other tables";
    }
    for (const std::string& name : names) {
        const std::vector<std::string> rows = rowsOf(source.table(name));
        const std::vector<std::string> others = rowsOf(copy.table(name));
        const auto [here, there] =
            std::mismatch(rows.begin(), rows.end(), others.begin(), others.end());
        if (here != rows.end() || there != others.end()) {
            return "table \"" + name + "\": " + std::to_string(rows.size()) + " rows, " +
                   std::to_string(others.size()) + " in the copy, alike the first " +
                   std::to_string(here - rows.begin());
        }
    }
    return {};
}

}  // namespace

std::string differenceOfRows(const jet::Database& source, const jet::Database& copy) {
    try {
        return difference(source, copy);
    } catch (const Error& e) {
        return std::string("cannot be read: ") + e.what();
    }
}

}  // namespace vl::test
