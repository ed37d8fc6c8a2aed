// Databases that the tests make, and whether they are sound.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "NewDatabase.h"
#include "Rows.h"
#include "Space.h"
#include "db/jet/Database.h"
#include "db/jet/check/Check.h"

namespace vl::test {

inline std::string emptyDatabase() {
    const std::vector<std::byte> bytes = jet::newDatabase();
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// What a check of the whole file finds, a line each.
inline std::string findingsOf(Disk& disk) {
    std::string text;
    jet::Database db = openMemory(disk);
    for (const jet::Finding& finding : jet::checkDatabase(db)) {
        text += "page " + std::to_string(finding.page) + ": " + finding.what + "\n";
    }
    return text;
}

/// How many pages are in use.
inline std::size_t usedPages(Disk& disk) {
    jet::PageFile file(std::make_unique<MemoryFile>(disk), "memory", jet::Access::Read);
    jet::Space space(file);
    std::size_t used = 0;
    for (jet::PageNo page = 0; page < file.pageCount(); ++page) {
        used += space.contains({1, 0}, page) ? 0U : 1U;
    }
    return used;
}

/// Every index of the table gives the rows of a plain scan, each once. Only for indexes that leave
/// no row out.
inline void expectIndexesComplete(const jet::Table& table) {
    const auto less = [](const jet::RowId& a, const jet::RowId& b) {
        return std::pair(a.page, a.row) < std::pair(b.page, b.row);
    };
    std::vector<jet::RowId> rows = rowsOf(table).ids;
    std::sort(rows.begin(), rows.end(), less);
    for (std::size_t i = 0; i < table.indexes().size(); ++i) {
        if (table.indexes()[i].ignoreNulls) {
            continue;
        }
        std::vector<jet::RowId> found;
        for (jet::RowCursor row = table.indexScan(i); row.next();) {
            found.push_back(row.id());
        }
        std::sort(found.begin(), found.end(), less);
        EXPECT_TRUE(found == rows) << "index " << table.indexes()[i].name << " has " << found.size()
                                   << " of " << rows.size() << " rows";
    }
}

}  // namespace vl::test
