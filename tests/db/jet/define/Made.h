// Databases that the tests make, and whether they are sound.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Bytes.h"
#include "DefinitionPages.h"
#include "IndexCheck.h"
#include "NewDatabase.h"
#include "Rows.h"
#include "TableDefinition.h"
#include "UsageMap.h"
#include "db/jet/Database.h"

namespace vl::test {

inline std::string emptyDatabase() {
    const std::vector<std::byte> bytes = jet::newDatabase();
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Who uses which page of a file, found by walking everything that the catalog names. Complains
/// about a page that is used twice, or used and free, or neither.
class PageAudit {
public:
    explicit PageAudit(Disk& disk)
        : disk_(disk), file_(std::make_unique<MemoryFile>(disk), "memory", jet::Access::Read) {
        use(0, "header");
        use(1, "map of free pages");
        for (const jet::TableInfo& info : openMemory(disk).tables()) {
            walk(info);
        }
        std::map<jet::PageNo, bool> free;
        for (jet::PageNo page : freePages()) {
            free[page] = true;
        }
        for (jet::PageNo page = 0; page < file_.pageCount(); ++page) {
            const bool used = users_.contains(page);
            if (used == free.contains(page)) {
                say(page, used ? "is used (" + users_[page] + ") and free" : "is lost");
            }
        }
    }

    const std::string& findings() const { return findings_; }
    std::size_t used() const { return users_.size(); }

private:
    void say(jet::PageNo page, const std::string& what) {
        findings_ += "page " + std::to_string(page) + " " + what + "\n";
    }
    void use(jet::PageNo page, const std::string& user) {
        const auto [entry, fresh] = users_.try_emplace(page, user);
        if (!fresh && (entry->second != user || user != "maps")) {
            say(page, "is used by " + entry->second + " and " + user);
        }
    }
    // The map's own page, too, and the pages by which it refers to others.
    std::vector<jet::PageNo> map(jet::RowPointer pointer) {
        use(pointer.page, "maps");
        jet::Page page;
        const jet::ByteView row = jet::plainRow(file_, pointer, page);
        if (jet::u8(row, 0) == 1) {
            for (std::size_t at = 1; at + 4 <= row.size(); at += 4) {
                if (const jet::PageNo bitmap = jet::u32(row, at); bitmap != 0) {
                    use(bitmap, "bitmap of " + std::to_string(pointer.page) + "/" +
                                    std::to_string(pointer.row));
                }
            }
        }
        return jet::readUsageMap(file_, pointer);
    }
    void walk(const jet::TableInfo& info) {
        for (jet::PageNo page : jet::definitionChain(file_, info.definitionPage)) {
            use(page, info.name + " definition");
        }
        const auto table = jet::readTableDefinition(file_, info.definitionPage, info.name);
        for (jet::PageNo page : map(table.ownedPages)) {
            use(page, info.name + " rows");
        }
        map(table.freePages);
        for (const jet::LongColumn& column : table.longColumns) {
            for (jet::PageNo page : map(column.ownedPages)) {
                use(page, info.name + " long values");
            }
            map(column.freePages);
        }
        for (const jet::IndexDefinition& tree : table.trees) {
            const std::vector<jet::PageNo> owned = map(tree.ownedPages);
            for (jet::PageNo page : owned) {
                use(page, info.name + " index");
            }
            jet::FilePages pages(file_);
            const auto report = jet::checkIndex(pages, tree, table.page, owned);
            for (const jet::IndexFinding& finding : report.findings) {
                say(finding.page, "of " + info.name + ": " + finding.what);
            }
        }
    }
    // The map speaks of pages behind the file's end, too.
    std::vector<jet::PageNo> freePages() {
        jet::Page page;
        const jet::ByteView row = jet::plainRow(file_, {1, 0}, page);
        std::vector<jet::PageNo> free;
        const auto add = [&](jet::ByteView bits, std::size_t first) {
            for (std::size_t i = 0; i < 8 * bits.size() && first + i < file_.pageCount(); ++i) {
                if ((jet::u8(bits, i / 8) & 1U << i % 8) != 0) {
                    free.push_back(static_cast<jet::PageNo>(first + i));
                }
            }
        };
        if (jet::u8(row, 0) == 0) {
            add(row.subspan(5), jet::u32(row, 1));
            return free;
        }
        for (std::size_t range = 0; 4 * range + 5 <= row.size(); ++range) {
            if (const jet::PageNo bitmap = jet::u32(row, 1 + 4 * range); bitmap != 0) {
                use(bitmap, "bitmap of free pages");
                const jet::Page bits = file_.page(bitmap);
                add(bits.bytes().subspan(4), range * 32736);
            }
        }
        return free;
    }

    Disk& disk_;
    jet::PageFile file_;
    std::map<jet::PageNo, std::string> users_;
    std::string findings_;
};

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
