// Whether a database is sound, and whether two hold the same.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "Rows.h"
#include "db/jet/check/Check.h"

namespace vl::test {

inline std::string whatIsWrong(jet::Database& db) {
    std::string text;
    for (const jet::Finding& finding : jet::checkDatabase(db)) {
        text += "page " + std::to_string(finding.page) + ": " + finding.what + "\n";
    }
    return text;
}

// In no order: rows of a copy may stand in another one.
inline std::vector<std::string> sortedRows(const jet::Table& table) {
    std::vector<std::string> rows;
    for (jet::RowCursor row = table.scan(); row.next();) {
        std::string& text = rows.emplace_back();
        for (std::size_t i = 0; i < table.columns().size(); ++i) {
            const Variant value = row.value(i);
            if (const auto* bytes = value.get<Bytes>()) {
                text += std::string(reinterpret_cast<const char*>(bytes->data()), bytes->size());
            } else {
                text += value.isNull() ? "null" : "'" + value.toText() + "'";
            }
            text += '|';
        }
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

inline void expectSameTables(const jet::Database& a, const jet::Database& b) {
    int tables = 0;
    for (const jet::TableInfo& info : a.tables()) {
        if (!info.system) {
            SCOPED_TRACE(info.name);
            ++tables;
            EXPECT_EQ(sortedRows(a.table(info.name)), sortedRows(b.table(info.name)));
            EXPECT_EQ(a.table(info.name).rowCount(), b.table(info.name).rowCount());
        }
    }
    EXPECT_GT(tables, 0);
}

}  // namespace vl::test
