#include "db/jet/check/Check.h"

#include "Bytes.h"
#include "Catalog.h"
#include "CatalogCheck.h"
#include "SystemPages.h"
#include "TableCheck.h"
#include "UsageMap.h"
#include "copy/TablePlan.h"
#include "db/jet/ReadGuard.h"
#include "db/jet/define/TableRules.h"
#include "define/CatalogWriter.h"

namespace vl::jet {

namespace {

constexpr RowPointer kSecondMap{1, 1};

// Pages that nobody has and that are not free either are waste, no damage.
void checkFreePages(PageFile& file, const Claims& claims, Findings& findings) {
    findings.attempt(kFreePages.page, [&] {
        for (const PageNo page : readUsageMap(file, kFreePages, Beyond::Ignored)) {
            if (claims.isClaimed(page)) {
                findings.add(page,
                             "is in the map of free pages, but belongs to " + claims.ownerOf(page));
            }
        }
    });
}

void claimFixedPages(PageFile& file, Claims& claims, Findings& findings) {
    claims.claim(0, "the header");
    claims.claimMapRow(kFreePages, "free pages");
    claims.claimMapRow(kSecondMap, "the second map");
    findings.attempt(kFreePages.page, [&] {
        for (const PageNo page : bitmapPages(file, kFreePages)) {
            claims.claim(page, "the map of free pages");
        }
    });
}

// What reads well may still be what no table can have: a name that is none, a column beyond all
// sizes. Types that are only read here are no fault of the file.
void checkRules(PageFile& file, const TableDefinition& table, Findings& findings) {
    const TablePlan plan = planOf(table, CatalogWriter(file).properties(table.page));
    try {
        checkNewTable(table.name, plan.columns, plan.indexes);
    } catch (const Error& e) {
        if (e.number() != ErrNo::Unsupported) {
            findings.add(table.page,
                         "table \"" + table.name + "\" cannot be as it is: " + e.what());
        }
    }
}

}  // namespace

std::vector<Finding> checkDatabase(PageFile& file) {
    Findings findings(file.name());
    Claims claims(file.pageCount(), findings);
    claimFixedPages(file, claims, findings);
    std::vector<TableInfo> tables;
    findings.attempt(2, [&] { tables = readCatalog(file); });
    for (const TableInfo& info : tables) {
        findings.attempt(info.definitionPage, [&] {
            const TableDefinition table = readTableDefinition(file, info.definitionPage, info.name);
            TableCheck(file, table, claims, findings).run(!info.system);
            if (!info.system) {
                checkRules(file, table, findings);
            }
        });
    }
    checkFreePages(file, claims, findings);
    checkCatalog(file, tables, claims, findings);
    return findings.take();
}

std::vector<Finding> checkDatabase(Database& db) {
    return readWhole(db, [&] {
        db.file_->refresh();  // what stands in the file, not what is remembered of it
        return checkDatabase(*db.file_);
    });
}

}  // namespace vl::jet
