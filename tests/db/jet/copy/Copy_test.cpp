// Databases that are written anew: all of a whole one, and of a damaged one what can be read.
#include "db/jet/copy/Copy.h"

#include <algorithm>
#include <iostream>

#include <gtest/gtest.h>

#include "Rows.h"
#include "db/jet/Transaction.h"
#include "db/jet/check/Check.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using jet::Access;
using jet::Database;
using jet::Table;

std::string whatIsWrong(Database& db) {
    std::string text;
    for (const jet::Finding& finding : checkDatabase(db)) {
        text += "page " + std::to_string(finding.page) + ": " + finding.what + "\n";
    }
    return text;
}

// In no order: rows of a copy may stand in another one.
std::vector<std::string> sortedRows(const Table& table) {
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

void expectSameTables(const Database& a, const Database& b) {
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

TEST(JetCopy, EveryFileThatIsNotRefusedHasTheSameRows) {
    const test::TempFolder folder;
    std::vector<fs::path> files = {test::repoFile("data/first-light.RemindDB"),
                                   test::repoFile("tests/data/generated-reminders.RemindDB")};
    if (const fs::path shared = test::sharedFolder(); !shared.empty()) {
        for (const auto& file : fs::directory_iterator(shared / "jet4" / "samples")) {
            if (file.is_regular_file() && file.path().extension() == ".mdb") {
                files.push_back(file.path());
            }
        }
    }
    int copied = 0;
    int refused = 0;
    int salvaged = 0;
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.filename());
        const fs::path path = folder / "source.mdb";
        test::writeFile(path, test::readFile(file));
        auto source = Database::open(path.string(), Access::Read);
        {
            auto target = Database::create((folder / "copy.mdb").string());
            const ErrNo error = test::errorOf([&] { copyTables(source, target); });
            EXPECT_TRUE(error == ErrNo::None || error == ErrNo::Unsupported);
            ++(error == ErrNo::None ? copied : refused);
            EXPECT_EQ(whatIsWrong(target), "");
            if (error == ErrNo::None && target.tables().size() > 4) {
                expectSameTables(source, target);
            }
        }
        fs::remove(folder / "copy.mdb");
        {
            auto target = Database::create((folder / "saved.mdb").string());
            const jet::CopyReport report = jet::salvage(path.string(), target);
            EXPECT_EQ(whatIsWrong(target), "");
            if (report.lost.empty() && report.tables > 0) {
                expectSameTables(source, target);
                ++salvaged;
            }
        }
        fs::remove(folder / "saved.mdb");
    }
    std::cout << copied << " files copied, " << refused << " refused, " << salvaged
              << " salvaged without a loss\n";
    EXPECT_GE(copied, 2);
    EXPECT_GE(salvaged, 2);
}

TEST(JetCopy, NumbersGoOnWhereTheyAre) {
    const test::TempFolder folder;
    auto source = Database::create((folder / "source.mdb").string());
    std::vector<jet::NewColumn> columns(2);
    columns[0].name = "Id";
    columns[0].type = jet::ColumnType::Long;
    columns[0].autoNumber = true;
    columns[1].name = "Name";
    columns[1].allowZeroLength = false;
    source.createTable("Things", columns);
    {
        jet::Transaction change(source);
        Table table = source.table("Things");
        for (int i = 0; i < 5; ++i) {
            const jet::RowId id = table.insert({});
            if (i > 2) {
                table.remove(id);
            }
        }
        change.commit();
    }
    auto target = Database::create((folder / "target.mdb").string());
    const jet::CopyReport report = copyTables(source, target);
    EXPECT_EQ(report.tables, 1U);
    EXPECT_EQ(report.rows, 3U);
    jet::Transaction change(target);
    Table table = target.table("Things");
    const jet::RowId id = table.insert({});
    jet::RowCursor row = table.scan();
    while (row.next() && row.id() != id) {
    }
    EXPECT_EQ(row.value(0), Variant(6));
    EXPECT_EQ(test::errorOf([&] {
                  table.insert(std::vector<Table::Change>{{1, ""}});
              }),
              ErrNo::TypeMismatch)
        << "the rules come with it";
}

}  // namespace
}  // namespace vl
