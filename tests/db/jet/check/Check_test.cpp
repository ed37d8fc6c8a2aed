// Whole files have no findings.
#include "db/jet/check/Check.h"

#include <iostream>

#include <gtest/gtest.h>

#include "DataPage.h"
#include "Pages.h"
#include "Rows.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using test::Disk;

std::string textOf(const std::vector<jet::Finding>& findings) {
    std::string text;
    for (const jet::Finding& finding : findings) {
        text += "page " + std::to_string(finding.page) + ": " + finding.what + "\n";
    }
    return text;
}

std::string findingsIn(const std::string& bytes) {
    Disk disk(bytes);
    auto db = test::openMemory(disk);
    return textOf(checkDatabase(db));
}

TEST(JetCheck, FindsNothingInFilesThatAreWhole) {
    EXPECT_EQ(findingsIn(test::firstLight()), "");
    EXPECT_EQ(findingsIn(test::generated()), "");
    const fs::path shared = test::sharedFolder();
    int files = 0;
    if (!shared.empty()) {
        for (const auto& file : fs::directory_iterator(shared / "jet4" / "samples")) {
            if (file.is_regular_file() && file.path().extension() != ".md") {
                EXPECT_EQ(findingsIn(test::readFile(file.path())), "") << file.path().filename();
                ++files;
            }
        }
        EXPECT_GT(files, 20);
    }
    std::cout << files << " files of others\n";
}

// The file's pages while they are damaged by hand. Page 16 is the definition of `Reminders`.
struct Damaged {
    Disk disk{test::firstLight()};

    std::span<std::byte> page(std::size_t number) {
        return std::span(disk.bytes).subspan(number * jet::kPageSize, jet::kPageSize);
    }
    std::uint8_t byte(std::size_t number, std::size_t at) {
        return std::to_integer<std::uint8_t>(page(number)[at]);
    }
    void flip(std::size_t number, std::size_t at, unsigned bits) {
        page(number)[at] ^= static_cast<std::byte>(bits);
    }
    std::string findings() {
        auto db = test::openMemory(disk);
        return textOf(checkDatabase(db));
    }
};

// Of each kind of page the first that belongs to the table: data, index, long values.
struct Places {
    std::size_t data = 0;
    std::size_t leaf = 0;
    std::size_t longValues = 0;
    std::size_t map = 0;
};

Places placesOf(const Disk& disk) {
    Places places;
    for (std::size_t page = 3; page < disk.bytes.size() / jet::kPageSize; ++page) {
        const jet::ByteView bytes =
            jet::ByteView(disk.bytes).subspan(page * jet::kPageSize, jet::kPageSize);
        const unsigned kind = jet::u8(bytes, 0);
        const std::uint32_t owner = jet::u32(bytes, 4);
        if (kind == 1 && owner == 16 && places.data == 0) {
            places.data = page;
        } else if (kind == 4 && owner == 16 && places.leaf == 0) {
            places.leaf = page;
        } else if (kind == 1 && owner == jet::DataPage::kLongValues && places.longValues == 0) {
            places.longValues = page;
        }
    }
    places.map = jet::RowPointer::read(disk.bytes, 16 * jet::kPageSize + 0x37).page;
    return places;
}

TEST(JetCheck, FindsEachKindOfDamage) {
    const Places at = placesOf(Disk(test::firstLight()));
    ASSERT_TRUE(at.data != 0 && at.leaf != 0 && at.longValues != 0 && at.map != 0);
    struct Case {
        const char* what;
        void (*damage)(Damaged& file, const Places& at);
        const char* finding;
    };
    const Case cases[] = {
        {"the number of rows", [](Damaged& f, const Places&) { f.flip(16, 0x10, 1); },
         "rows, but it has"},
        {"a page's free bytes", [](Damaged& f, const Places& p) { f.flip(p.data, 2, 1); },
         "free bytes, but has"},
        {"a page of another owner", [](Damaged& f, const Places& p) { f.flip(p.data, 4, 1); },
         "is in the map of table"},
        {"a row that is deleted", [](Damaged& f, const Places& p) { f.flip(p.data, 15, 0xC0); },
         "has an entry that is of no row"},
        {"a body without a pointer", [](Damaged& f, const Places& p) { f.flip(p.data, 15, 0x80); },
         "nothing points to it"},
        {"a row outside its page", [](Damaged& f, const Places& p) { f.flip(p.data, 15, 0x1F); },
         "is not inside the page"},
        {"a key of another value", [](Damaged& f, const Places& p) { f.flip(p.leaf, 0x1E2, 1); },
         "has no entry in index 0"},
        {"a tree whose root is no index page",
         [](Damaged& f, const Places& p) { f.flip(p.leaf, 0, 1); },
         "index 0 of table \"Reminders\""},
        {"a long value that is gone",
         [](Damaged& f, const Places& p) { f.flip(p.longValues, 15, 0xC0); }, "is pointed to"},
        {"a page in use that counts as free",
         [](Damaged& f, const Places& p) {
             const std::size_t bitmap = jet::u16(f.page(1), 14) & 0x1FFFU;
             f.flip(1, bitmap + 5 + p.data / 8, 1U << (p.data % 8));
         },
         "is in the map of free pages, but belongs to"},
        {"a map of another kind",
         [](Damaged& f, const Places& p) {
             const std::size_t row = jet::RowPointer::read(f.page(16), 0x37).row;
             f.flip(p.map, jet::u16(f.page(p.map), 14 + 2 * row) & 0x1FFFU, 7);
         },
         "is no usage map"},
        {"two maps in one row",
         [](Damaged& f, const Places&) { f.page(16)[0x3B] = f.page(16)[0x37]; }, "but also of"},
        {"no definition", [](Damaged& f, const Places&) { f.flip(16, 0, 2); },
         "is no table definition"},
        {"no catalog", [](Damaged& f, const Places&) { f.flip(2, 0, 2); },
         "is no table definition"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Damaged file;
        ASSERT_EQ(file.findings(), "");
        c.damage(file, at);
        EXPECT_NE(file.findings().find(c.finding), std::string::npos) << file.findings();
    }
}

// What the catalog does not name is lost to all who go by names.
TEST(JetCheck, FindsEveryRowThatTheCatalogHasLost) {
    Disk whole(test::firstLight());
    std::size_t rows = 0;
    {
        const auto db = test::openMemory(whole);
        rows = test::rowsOf(db.table("MSysObjects")).ids.size();
    }
    ASSERT_GT(rows, 8U);
    for (std::size_t i = 0; i < rows; ++i) {
        Disk disk(test::firstLight());
        auto db = test::openMemory(disk, jet::Access::ReadWrite);
        jet::Table catalog = db.table("MSysObjects");
        const test::Rows all = test::rowsOf(catalog);
        const std::string name = all.values[i][test::position(catalog, "Name")].toText();
        SCOPED_TRACE(name);
        jet::Transaction change(db);
        catalog.remove(all.ids[i]);
        change.commit();
        const std::string found = textOf(checkDatabase(db));
        if (name == "Reminders") {
            EXPECT_EQ(found,
                      "page 16: is the definition of a table that the catalog does not name\n");
        }
        EXPECT_NE(found, "");
    }
}

TEST(JetCheck, FindsACatalogThatNamesWhatIsNotThere) {
    for (const std::int32_t page : {5000, 17}) {
        SCOPED_TRACE(page);
        Disk disk(test::firstLight());
        auto db = test::openMemory(disk, jet::Access::ReadWrite);
        jet::Table catalog = db.table("MSysObjects");
        jet::Transaction change(db);
        catalog.insert(
            std::vector<jet::Table::Change>{{test::position(catalog, "Id"), page},
                                            {test::position(catalog, "ParentId"), 0x0F000001},
                                            {test::position(catalog, "Name"), "Ghost"},
                                            {test::position(catalog, "Type"), 1},
                                            {test::position(catalog, "Flags"), 0}});
        change.commit();
        EXPECT_NE(textOf(checkDatabase(db)), "");
    }
}

TEST(JetCheck, GivesUpCountingAtSomePoint) {
    jet::Findings findings("file");
    for (std::size_t i = 0; i < jet::Findings::kMost + 7; ++i) {
        findings.add(1, "something");
    }
    const std::vector<jet::Finding> all = findings.take();
    ASSERT_EQ(all.size(), jet::Findings::kMost + 1);
    EXPECT_EQ(all.back().what, "and 7 more");
}

}  // namespace
}  // namespace vl
