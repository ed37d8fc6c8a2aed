#include <algorithm>
#include <array>
#include <map>
#include <set>

#include "Header.h"
#include "OtherObjects.h"
#include "PageFile.h"
#include "Relationships.h"
#include "RowBatch.h"
#include "TablePlan.h"
#include "base/Text.h"
#include "db/jet/Database.h"
#include "db/jet/ReadGuard.h"
#include "db/jet/Transaction.h"
#include "db/jet/copy/Copy.h"
#include "define/CatalogWriter.h"

namespace vl::jet {

namespace {

constexpr std::array<std::string_view, 4> kOwnTables = {"MSysObjects", "MSysACEs", "MSysQueries",
                                                        "MSysRelationships"};
// What the desktop product keeps for itself is only noted.
void noteOwnTables(const Database& source, Findings& left) {
    for (const TableInfo& info : source.tables()) {
        const bool own =
            std::find(kOwnTables.begin(), kOwnTables.end(), info.name) != kOwnTables.end();
        if (info.system && !own) {
            left.add(info.definitionPage,
                     "table \"" + info.name + "\" of the desktop product is left out");
        }
    }
}

// The first page is not written by the transaction: it goes to the file at once.
void carryPassword(const File& source, File& target) {
    Page::Bytes from{};
    source.read(0, from);
    Page::Bytes to{};
    target.read(0, to);
    const Page::Bytes before = to;
    copyPassword(from, to);
    if (to != before) {
        target.write(0, to);
        target.flush();
    }
}

}  // namespace

CopyReport copyTables(Database& source, Database& target) {
    const ReadGuard oneMoment(source);
    Findings left(source.name());
    const std::vector<OtherObject> objects =
        otherObjects(*source.file_, source.table("MSysObjects"), left);
    noteOwnTables(source, left);
    std::map<PageNo, PageNo> pages;
    std::set<std::string> names;
    CopyReport report;
    for (const TableInfo& info : source.tables()) {
        if (info.system) {
            continue;
        }
        const TableDefinition definition =
            readTableDefinition(*source.file_, info.definitionPage, info.name);
        const TablePlan plan =
            planOf(definition, CatalogWriter(*source.file_).properties(info.definitionPage));
        target.createTable(info.name, plan.columns);
        RowBatch rows(target, target.table(info.name));
        std::vector<Variant> values(definition.columns.size());
        for (RowCursor row = source.table(info.name).scan(); row.next();) {
            for (std::size_t i = 0; i < values.size(); ++i) {
                values[i] = row.value(i);
            }
            rows.add(values);
            ++report.rows;
        }
        rows.finish();
        // With all rows there each index is made in its own order, and its pages get full.
        for (const NewIndex& index : plan.indexes) {
            target.createIndex(info.name, index);
        }
        const PageNo made = definitionPageOf(target, info.name);
        Transaction change(target);
        finishTable(*target.file_, made, plan);
        change.commit();
        pages[info.definitionPage] = made;
        names.insert(text::foldCase(info.name));
        ++report.tables;
    }
    Transaction change(target);
    carryPassword(source.file_->file(), target.file_->file());
    copyRelationships(*source.file_, *target.file_, pages);
    addObjects(*source.file_, *target.file_, objects, names, left);
    change.commit();
    if (oneMoment.disturbed()) {
        throw Error(ErrNo::Locked,
                    source.name() + ": was written by another program while it was copied");
    }
    report.lost = left.take();
    return report;
}

}  // namespace vl::jet
