// Databases that are written anew.
#include "db/jet/copy/Copy.h"

#include <algorithm>
#include <array>
#include <bit>
#include <iostream>

#include <gmock/gmock.h>

#include "Bytes.h"
#include "Header.h"
#include "SameDatabase.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using jet::Access;
using jet::Database;
using jet::Table;
using test::Disk;
using test::expectSameTables;
using test::sortedRows;
using test::whatIsWrong;

// The desktop product's own, which stay behind.
bool isLeftOut(const std::string& what) { return what.find("MSysNavPane") != std::string::npos; }

// The same queries, and the same relationships.
void expectSameObjects(const Database& a, const Database& b) {
    for (const char* table : {"MSysQueries", "MSysRelationships"}) {
        std::vector<std::string> expected = sortedRows(a.table(table));
        std::erase_if(expected, isLeftOut);
        EXPECT_EQ(expected, sortedRows(b.table(table))) << table;
    }
    const auto objects = [](const Database& db) {
        const Table catalog = db.table("MSysObjects");
        const std::size_t type = test::position(catalog, "Type");
        std::vector<std::string> names;
        for (jet::RowCursor row = catalog.scan(); row.next();) {
            if (const Variant kind = row.value(type); kind.toInt32() > 3) {
                names.push_back(kind.toText() + " " +
                                row.value(test::position(catalog, "Id")).toText() + " " +
                                row.value(test::position(catalog, "Name")).toText());
            }
        }
        std::erase_if(names, isLeftOut);
        std::sort(names.begin(), names.end());
        return names;
    };
    EXPECT_EQ(objects(a), objects(b));
}

// What each index of a relationship says, the other side by its table's and its own name.
std::vector<std::string> relations(const Database& db) {
    std::vector<std::string> all;
    for (const jet::TableInfo& info : db.tables()) {
        for (const jet::Index& index : db.table(info.name).indexes()) {
            if (info.system || !index.foreign) {
                continue;
            }
            std::string& text = all.emplace_back(info.name + "." + index.name);
            text += index.referenced ? " <- " : " -> ";
            for (const jet::TableInfo& other : db.tables()) {
                if (other.definitionPage == index.otherDefinition) {
                    for (const jet::Index& far : db.table(other.name).indexes()) {
                        text += far.number == index.otherNumber ? other.name + "." + far.name : "";
                    }
                }
            }
        }
    }
    std::sort(all.begin(), all.end());
    return all;
}

TEST(JetCopy, EveryFileIsCopiedWithTheSameRows) {
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
    int salvaged = 0;
    std::size_t related = 0;
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.filename());
        const fs::path path = folder / "source.mdb";
        test::writeFile(path, test::readFile(file));
        auto source = Database::open(path.string(), Access::Read);
        {
            auto target = Database::create((folder / "copy.mdb").string());
            const ErrNo error = test::errorOf([&] { copyTables(source, target); });
            EXPECT_EQ(error, ErrNo::None);
            copied += error == ErrNo::None ? 1 : 0;
            EXPECT_EQ(whatIsWrong(target), "");
            if (error == ErrNo::None && target.tables().size() > 4) {
                expectSameTables(source, target);
                expectSameObjects(source, target);
                EXPECT_EQ(relations(source), relations(target));
                related += relations(target).size();
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
    std::cout << copied << " files copied, " << salvaged << " salvaged without a loss; " << related
              << " sides of relationships\n";
    EXPECT_EQ(copied, static_cast<int>(files.size()));
    EXPECT_GE(salvaged, 2);
}

/// Another engine writes to it in the middle of being read.
class Disturbed : public test::MemoryFile {
public:
    explicit Disturbed(Disk& disk) : MemoryFile(disk), disk_(disk) {}
    void read(std::uint64_t offset, std::span<std::byte> bytes) const override {
        MemoryFile::read(offset, bytes);
        if (reads > 0 && --reads == 0) {
            disk_.bytes[0xE04] ^= std::byte{1};
        }
    }
    mutable int reads = 0;  // until it writes; 0 never

private:
    Disk& disk_;
};

TEST(JetCopy, IsOfOneMomentOrNone) {
    for (const int reads : {0, 12, 16}) {
        SCOPED_TRACE(reads);
        Disk disk(test::firstLight());
        auto file = std::make_unique<Disturbed>(disk);
        Disturbed& engine = *file;
        auto source = Database::open(std::move(file), "memory", Access::Read);
        const test::TempFolder folder;
        auto target = Database::create((folder / "copy.mdb").string());
        engine.reads = reads;
        EXPECT_EQ(test::errorOf([&] { copyTables(source, target); }),
                  reads == 0 ? ErrNo::None : ErrNo::Locked);
        EXPECT_EQ(engine.reads, 0) << "it wrote";
    }
}

// What the original refuses to lose, the copy refuses to lose.
TEST(JetCopy, RelationshipsHoldInTheCopy) {
    const fs::path shared = test::sharedFolder();
    if (shared.empty()) {
        std::cout << "no sample files beside this checkout: 0 files copied\n";
        return;
    }
    const test::TempFolder folder;
    const fs::path path = folder / "source.mdb";
    test::writeFile(path, test::readFile(shared / "jet4" / "samples" / "indexTestV2000.mdb"));
    auto source = Database::open(path.string(), Access::Read);
    auto target = Database::create((folder / "copy.mdb").string());
    copyTables(source, target);
    const auto refusals = [](Database& db) {
        std::vector<ErrNo> errors;
        for (const jet::TableInfo& info : db.tables()) {
            if (info.system) {
                continue;
            }
            Table table = db.table(info.name);
            for (const jet::RowId id : test::rowsOf(table).ids) {
                const jet::Transaction change(db);
                errors.push_back(test::errorOf([&] { table.remove(id); }));
            }
        }
        return errors;
    };
    auto original = Database::open(path.string(), Access::ReadWrite);
    const std::vector<ErrNo> expected = refusals(original);
    EXPECT_THAT(expected, testing::Contains(ErrNo::Exists));
    EXPECT_EQ(refusals(target), expected);
    std::cout << "1 file copied\n";
}

// It is hidden behind the day on which a file was made, which is another one in the copy.
TEST(JetCopy, ThePasswordIsThatOfTheOriginal) {
    const test::TempFolder folder;
    const auto copied = [&](const std::string& source) {
        test::Disk disk(source);
        auto from = test::openMemory(disk);
        const std::string path = (folder / "copy.mdb").string();
        {
            auto to = Database::create(path);
            copyTables(from, to);
            EXPECT_EQ(whatIsWrong(to), "");
        }
        const std::string bytes = test::readFile(path);
        fs::remove(path);
        return bytes.substr(0x42, 40);
    };
    // As if it had been made on another day.
    std::string open = test::firstLight();
    const std::span<std::byte> page = std::as_writable_bytes(std::span(open)).first(jet::kPageSize);
    jet::maskHeader(page);
    jet::store(page, 0x72, std::bit_cast<std::uint64_t>(40000.75));
    for (std::size_t at = 0x42; at < 0x6A; at += 4) {
        jet::store(page, at, std::uint32_t{40000});
    }
    jet::maskHeader(page);
    std::string closed = open;
    const std::string password("s\0e\0c\0r\0e\0t\0", 12);
    for (std::size_t i = 0; i < password.size(); ++i) {
        closed[0x42 + i] = static_cast<char>(closed[0x42 + i] ^ password[i]);
    }
    std::string expected = copied(open);
    EXPECT_NE(expected, open.substr(0x42, 40)) << "another day";
    for (std::size_t i = 0; i < password.size(); ++i) {
        expected[i] = static_cast<char>(expected[i] ^ password[i]);
    }
    EXPECT_EQ(copied(closed), expected);
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
