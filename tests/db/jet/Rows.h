// A table's rows as values, and what a write has changed.
#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "Cells.h"
#include "MemoryFile.h"
#include "db/jet/Transaction.h"
#include "support/Support.h"

namespace vl::test {

using Row = std::vector<Variant>;

inline std::size_t position(const jet::Table& table, const std::string& name) {
    const auto& columns = table.columns();
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [&](const jet::Column& c) { return c.name == name; });
    EXPECT_NE(found, columns.end()) << name;
    return static_cast<std::size_t>(found - columns.begin());
}

struct Rows {
    std::vector<jet::RowId> ids;
    std::vector<Row> values;
};

inline Rows rowsOf(const jet::Table& table) {
    Rows rows;
    jet::RowCursor cursor = table.scan();
    jet::RowCells cells;
    while (cursor.next()) {
        expectCells(cursor, table.columns(), cells);
        rows.ids.push_back(cursor.id());
        Row& row = rows.values.emplace_back();
        for (std::size_t i = 0; i < table.columns().size(); ++i) {
            row.push_back(cursor.value(i));
        }
    }
    return rows;
}

// A transaction of its own.
inline void updateRow(jet::Database& db, jet::Table& table, jet::RowId id,
                      const std::vector<jet::Table::Change>& changes) {
    jet::Transaction change(db);
    table.update(id, changes);
    change.commit();
}

inline std::string firstLight() {
    return test::readFile(test::repoFile("data/first-light.RemindDB"));
}
inline std::string generated() {
    return test::readFile(test::repoFile("tests/data/generated-reminders.RemindDB"));
}

// Where the two differ, by page and, within it, first and last byte.
inline std::map<std::size_t, std::pair<std::size_t, std::size_t>> differences(
    const std::string& before, const Disk& after) {
    std::map<std::size_t, std::pair<std::size_t, std::size_t>> pages;
    EXPECT_EQ(before.size(), after.bytes.size());
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (static_cast<std::byte>(before[i]) != after.bytes[i]) {
            const auto [entry, fresh] = pages.try_emplace(i / 4096, i % 4096, i % 4096);
            entry->second.second = i % 4096;
        }
    }
    return pages;
}

}  // namespace vl::test
