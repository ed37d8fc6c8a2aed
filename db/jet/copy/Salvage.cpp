#include <algorithm>

#include "Header.h"
#include "MendDefinition.h"
#include "RowBatch.h"
#include "SalvageReader.h"
#include "TablePlan.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "db/jet/ReadGuard.h"
#include "db/jet/copy/Copy.h"
#include "define/CatalogWriter.h"

namespace vl::jet {

namespace {

// A file of another generation, or an encrypted one, has its name where ours has its own. Whatever
// has none there is taken for one whose first page is lost.
void lookAtHeader(const File& file, const std::string& path, Findings& findings) {
    Page::Bytes first{};
    const std::size_t there = std::min<std::uint64_t>(file.size(), first.size());
    file.read(0, std::span(first).first(there));
    try {
        checkHeader(path, ByteView(first).first(there));
    } catch (const Error& e) {
        const std::string_view start(reinterpret_cast<const char*>(first.data()), 20);
        if (there < first.size() || start.find("Standard ") != std::string_view::npos ||
            file.size() < 3 * kPageSize) {
            throw;
        }
        findings.add(0, e.what());
    }
}

Properties propertiesOf(PageFile& file, PageNo definition, Findings& findings) {
    Properties properties;
    findings.attempt(definition, [&] { properties = CatalogWriter(file).properties(definition); });
    return properties;
}

std::uint64_t copyRows(SalvageReader& reader, const TableDefinition& table, Database& target,
                       Findings& findings) {
    std::uint64_t count = 0;
    RowBatch batch(target, target.table(table.name));
    reader.rows(table, [&](RowId id, const std::vector<Variant>& values) {
        try {
            batch.add(values);
            ++count;
        } catch (const Error& e) {
            if (e.number() == ErrNo::Io || e.number() == ErrNo::Corrupt) {
                throw;
            }
            findings.add(id.page, "row " + std::to_string(id.row) + " is lost: " + e.what());
        }
    });
    batch.finish();
    return count;
}

// Values that were lost, or rows that other programs wrote, may be against what an index asks for:
// the index goes before a row does.
void makeIndex(Database& target, const TableDefinition& table, NewIndex index, Findings& findings) {
    const auto refusal = [&]() -> std::string {
        try {
            target.createIndex(table.name, index);
            return {};
        } catch (const Error& e) {
            if (e.number() == ErrNo::Io || e.number() == ErrNo::Corrupt) {
                throw;
            }
            return e.what();
        }
    };
    const std::string label = "index \"" + index.name + "\" of table \"" + table.name + "\"";
    const std::string why = refusal();
    if (why.empty()) {
        return;
    }
    index.primary = index.unique = index.required = false;
    if (const std::string plain = refusal(); !plain.empty()) {
        findings.add(table.page, label + " is lost: " + plain);
    } else {
        findings.add(table.page, label + " is made a plain one: " + why);
    }
}

bool hasTable(const Database& db, std::string_view name) {
    const std::vector<TableInfo> tables = db.tables();
    return std::any_of(tables.begin(), tables.end(), [name](const TableInfo& info) {
        return text::equalsNoCase(info.name, name);
    });
}

CopyReport salvageTables(PageFile& file, Database& target, PageFile& targetFile,
                         Findings& findings) {
    lookAtHeader(file.file(), file.name(), findings);
    SalvageReader reader(file, findings);
    CopyReport report;
    for (TableDefinition& table : reader.tables()) {
        mendDefinition(
            table, [&](std::string_view name) { return hasTable(target, name); }, findings);
        const TablePlan plan = planOf(table, propertiesOf(file, table.page, findings));
        try {
            target.createTable(table.name, plan.columns);
        } catch (const Error& e) {
            if (e.number() == ErrNo::Io || e.number() == ErrNo::Corrupt) {
                throw;
            }
            findings.add(table.page, "table \"" + table.name + "\" is lost: " + e.what());
            continue;
        }
        report.rows += copyRows(reader, table, target, findings);
        for (const NewIndex& index : plan.indexes) {
            makeIndex(target, table, index, findings);
        }
        Transaction change(target);
        finishTable(targetFile, definitionPageOf(target, table.name), plan);
        change.commit();
        ++report.tables;
    }
    return report;
}

}  // namespace

CopyReport salvage(const std::string& path, Database& target, const OpenOptions& options) {
    OpenOptions asItIs = options;
    asItIs.takesBack = false;
    PageFile file(options.files->open(path, Access::Read), path, Access::Read, asItIs);
    const ReadGuard guard(file);
    Findings findings(path);
    CopyReport report = salvageTables(file, target, *target.file_, findings);
    if (guard.disturbed()) {
        findings.add(0, "another program wrote while this was read: rows may be lost or halves");
    }
    report.lost = findings.take();
    return report;
}

CopyReport salvage(std::unique_ptr<File> source, const std::string& name, Database& target) {
    PageFile file(std::move(source), name, Access::Read);
    Findings findings(name);
    CopyReport report = salvageTables(file, target, *target.file_, findings);
    report.lost = findings.take();
    return report;
}

}  // namespace vl::jet
