// Row writes in damaged files: an error, or a change; never anything else.
#include <chrono>
#include <cstdlib>
#include <iostream>

#include <gtest/gtest.h>

#include "Pages.h"
#include "RandomRows.h"
#include "Rows.h"
#include "db/jet/Transaction.h"
#include "db/jet/check/Check.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using jet::Access;
using jet::Table;
using test::below;
using test::Disk;
using test::Random;

std::size_t fromEnvironment(const char* name, std::size_t otherwise) {
    const char* text = std::getenv(name);
    return text ? std::strtoull(text, nullptr, 10) : otherwise;
}

// Mostly where structure stands: the first bytes of pages, their slots and maps.
void damage(Random& random, std::vector<std::byte>& bytes) {
    const std::size_t pages = bytes.size() / jet::kPageSize;
    const std::size_t page = 1 + below(random, pages - 1);
    const std::size_t reach = below(random, 2) == 0 ? 64 : jet::kPageSize;
    std::byte& b = bytes[page * jet::kPageSize + below(random, reach)];
    b = below(random, 2) == 0 ? static_cast<std::byte>(random())
                              : b ^ static_cast<std::byte>(1U << below(random, 8));
}

std::vector<Table::Change> anyChanges(Random& random, const Table& table) {
    std::vector<Table::Change> changes;
    for (std::size_t i = 0; i < table.columns().size(); ++i) {
        if (!table.columns()[i].autoNumber && below(random, 3) == 0) {
            changes.emplace_back(i, test::randomValue(random, table.columns()[i]));
        }
    }
    return changes;
}

struct Outcome {
    int done = 0;
    int errors = 0;
};

// A few changes, each in a transaction of its own that an error takes back.
Outcome change(Random& random, Disk& disk) {
    Outcome outcome;
    const auto guarded = [&](auto&& step) {
        try {
            step();
            ++outcome.done;
        } catch (const Error&) {
            ++outcome.errors;
        }
    };
    guarded([&] {
        auto db = test::openMemory(disk, Access::ReadWrite);
        for (const jet::TableInfo& info : db.tables()) {
            if (info.system) {
                continue;
            }
            guarded([&] {
                Table table = db.table(info.name);
                std::vector<jet::RowId> ids;
                guarded([&] {
                    for (jet::RowCursor cursor = table.scan(); cursor.next();) {
                        ids.push_back(cursor.id());
                    }
                });
                for (int i = 0; i < 8; ++i) {
                    guarded([&] {
                        jet::Transaction change(db);
                        const std::size_t kind = below(random, 3);
                        if (kind == 0 || ids.empty()) {
                            table.insert(anyChanges(random, table));
                        } else if (kind == 1) {
                            table.update(ids[below(random, ids.size())], anyChanges(random, table));
                        } else {
                            table.remove(ids[below(random, ids.size())]);
                        }
                        change.commit();
                    });
                }
            });
        }
        checkDatabase(db);
    });
    return outcome;
}

// VL_DAMAGED_WRITES and VL_SEED make a longer run, or repeat one.
TEST(JetDamagedWrites, GiveAnErrorOrAChange) {
    const std::size_t count = fromEnvironment("VL_DAMAGED_WRITES", 1500);
    const std::size_t seed = fromEnvironment("VL_SEED", 20261121);
    std::vector<std::string> files = {test::firstLight(), test::firstLight()};
    if (const fs::path shared = test::sharedFolder(); !shared.empty()) {
        for (const char* name : {"testV2000.mdb", "overflowTestV2000.mdb", "indexTestV2000.mdb",
                                 "testIndexPropertiesV2000.mdb", "delTestV2000.mdb"}) {
            files.push_back(test::readFile(shared / "jet4" / "samples" / name));
        }
    }
    Outcome all;
    std::chrono::steady_clock::duration longest{};
    for (std::size_t i = 0; i < count; ++i) {
        SCOPED_TRACE(testing::Message() << "VL_SEED=" << seed + i);
        Random random(seed + i);
        Disk disk(files[below(random, files.size())]);
        for (std::size_t n = 1 + below(random, 4); n > 0; --n) {
            damage(random, disk.bytes);
        }
        const auto start = std::chrono::steady_clock::now();
        const Outcome one = change(random, disk);
        const auto took = std::chrono::steady_clock::now() - start;
        EXPECT_LT(took, std::chrono::seconds(5));
        longest = std::max(longest, took);
        all.done += one.done;
        all.errors += one.errors;
    }
    std::cout << count << " damaged copies of " << files.size() << " files written to: " << all.done
              << " steps done, " << all.errors << " errors; the longest took "
              << std::chrono::duration_cast<std::chrono::milliseconds>(longest).count() << " ms\n";
    EXPECT_GT(all.errors, 0);
    EXPECT_GT(all.done, all.errors);
}

// One wrong bit in a map, a page or a tree that a change needs: it is refused and nothing is
// written.
TEST(JetDamagedWrites, DamageOnTheWayIsRefused) {
    const std::string whole = test::firstLight();
    const auto errorOf = [&](std::size_t page, std::size_t at, unsigned value) {
        Disk disk(whole);
        disk.bytes[page * jet::kPageSize + at] = static_cast<std::byte>(value);
        auto db = test::openMemory(disk, Access::ReadWrite);
        Table table = db.table("Reminders");
        const std::vector<Table::Change> changes{
            {test::position(table, "GUID"), "{damage}"},
            {test::position(table, "Body"), std::string(60000, 'x')}};
        const ErrNo error = test::errorOf([&] {
            jet::Transaction change(db);
            for (int i = 0; i < 3; ++i) {
                table.insert(changes);
            }
            change.commit();
        });
        EXPECT_EQ(disk.log, "");
        return error;
    };
    const std::size_t bitmap = jet::u16(Disk(whole).bytes, jet::kPageSize + 14) & 0x1FFFU;
    EXPECT_EQ(errorOf(1, 0, 9), ErrNo::Corrupt) << "no map of free pages";
    EXPECT_EQ(errorOf(1, bitmap, 2), ErrNo::Corrupt) << "of no kind";
    EXPECT_EQ(errorOf(1, bitmap + 5, 0xFF), ErrNo::Corrupt) << "with the header's page in it";
    EXPECT_EQ(errorOf(1, bitmap + 4, 0x7F), ErrNo::Corrupt) << "that begins behind every file";
}

}  // namespace
}  // namespace vl
