// Damaged files: whatever a page holds, reading and writing give values or an `Error`,
// never anything else, and they end.
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <random>

#include <gtest/gtest.h>

#include "Cells.h"
#include "MemoryFile.h"
#include "db/jet/Transaction.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using Random = std::mt19937_64;

struct Sample {
    std::string name;
    std::string bytes;
};

std::vector<Sample> samples() {
    std::vector<fs::path> files = {test::repoFile("data/first-light.RemindDB"),
                                   test::repoFile("tests/data/generated-reminders.RemindDB")};
    if (const fs::path shared = test::sharedFolder(); !shared.empty()) {
        for (const fs::directory_entry& entry :
             fs::directory_iterator(shared / "jet4" / "samples")) {
            // Larger ones add time and no kinds of pages.
            if (entry.path().extension() == ".mdb" && entry.file_size() < (1U << 19)) {
                files.push_back(entry.path());
            }
        }
    }
    std::sort(files.begin(), files.end());
    std::vector<Sample> all;
    all.reserve(files.size());
    for (const fs::path& file : files) {
        all.push_back({file.filename().string(), test::readFile(file)});
    }
    return all;
}

std::size_t below(Random& random, std::size_t n) {
    return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
}

// A place to damage: half of them in the first bytes of a page, where its structure stands.
std::size_t somewhere(Random& random, std::size_t size) {
    const std::size_t at = below(random, size);
    return below(random, 2) == 0 ? at : std::min(size - 1, at / 4096 * 4096 + below(random, 128));
}

void mutate(Random& random, std::vector<std::byte>& bytes) {
    static constexpr unsigned kWords[] = {0, 1, 0x7F, 0x80, 0xFF, 0x0FFF, 0x4000, 0xC000, 0xFFFF};
    const std::size_t at = somewhere(random, bytes.size());
    switch (below(random, 6)) {
        case 0:
            bytes[at] ^= static_cast<std::byte>(1U << below(random, 8));
            break;
        case 1:
            bytes[at] = static_cast<std::byte>(below(random, 256));
            break;
        case 2: {
            const unsigned word = kWords[below(random, std::size(kWords))];
            bytes[at] = static_cast<std::byte>(word);
            bytes[std::min(at + 1, bytes.size() - 1)] = static_cast<std::byte>(word >> 8);
            break;
        }
        case 3: {  // a page in another's place
            const std::size_t pages = bytes.size() / 4096;
            if (pages == 0) {
                break;
            }
            const std::size_t from = below(random, pages) * 4096;
            const std::size_t to = below(random, pages) * 4096;
            std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(from), 4096,
                        bytes.begin() + static_cast<std::ptrdiff_t>(to));
            break;
        }
        case 4: {  // a run of noise
            for (std::size_t i = at; i < std::min(bytes.size(), at + 1 + below(random, 64)); ++i) {
                bytes[i] = static_cast<std::byte>(below(random, 256));
            }
            break;
        }
        default:
            bytes.resize(1 + below(random, bytes.size()));
    }
}

struct Outcome {
    long rows = 0;
    long errors = 0;
};

// Tries to write every column of the row: whatever the damage, a value is written or refused.
void writeAll(jet::Database& db, jet::Table& table, jet::RowId id) {
    for (std::size_t i = 0; i < table.columns().size(); ++i) {
        const ErrNo error = test::errorOf([&] {
            jet::Transaction change(db);
            table.update(id, std::vector<jet::Table::Change>{{i, 1}});
            change.commit();
        });
        EXPECT_NE(error, ErrNo::Io);
        EXPECT_NE(error, ErrNo::ReadOnly);
    }
}

long walkIndex(const jet::Table& table, std::size_t index) {
    long rows = 0;
    for (jet::RowCursor row = table.indexScan(index); row.next();) {
        ++rows;
    }
    return rows;
}

// Every table's every value; a table that cannot be read does not keep the others from it.
Outcome readAll(test::Disk& disk, const std::string& what) {
    Outcome outcome;
    const auto guarded = [&](auto&& step) {
        try {
            step();
        } catch (const Error& e) {
            const bool expected = e.number() == ErrNo::Corrupt || e.number() == ErrNo::Format ||
                                  e.number() == ErrNo::NotFound;
            EXPECT_TRUE(expected) << what << ": " << e.what();
            EXPECT_NE(std::string(e.what()).find("memory"), std::string::npos) << e.what();
            ++outcome.errors;
        }
    };
    guarded([&] {
        auto db = test::openMemory(disk, jet::Access::ReadWrite);
        for (const jet::TableInfo& info : db.tables()) {
            guarded([&] {
                jet::Table table = db.table(info.name);
                jet::RowCursor row = table.scan();
                jet::RowCells cells;
                for (bool first = true; row.next(); first = false) {
                    ++outcome.rows;
                    if (first) {
                        writeAll(db, table, row.id());
                    }
                    guarded([&] { test::expectCells(row, table.columns(), cells); });
                    for (std::size_t i = 0; i < table.columns().size(); ++i) {
                        guarded([&] { row.value(i); });
                    }
                }
                for (std::size_t i = 0; i < table.indexes().size(); ++i) {
                    guarded([&] { outcome.rows += walkIndex(table, i); });
                }
            });
        }
    });
    return outcome;
}

long countFromEnvironment(const char* name, long otherwise) {
    const char* text = std::getenv(name);
    return text ? std::atol(text) : otherwise;
}

// VL_MUTATIONS and VL_SEED make a longer run, or repeat one.
TEST(JetDamage, AnyChangeOfAnyByteGivesValuesOrAnError) {
    const long count = countFromEnvironment("VL_MUTATIONS", 3000);
    const auto seed = static_cast<std::uint64_t>(countFromEnvironment("VL_SEED", 20261120));
    std::cout << "seed " << seed << "\n";
    const std::vector<Sample> all = samples();
    std::chrono::steady_clock::duration longest{};
    long damaged = 0;
    for (long i = 0; i < count; ++i) {
        Random random(seed + static_cast<std::uint64_t>(i));
        const Sample& sample = all[below(random, all.size())];
        const std::string what =
            sample.name + " with VL_SEED=" + std::to_string(seed + static_cast<std::uint64_t>(i));
        test::Disk disk(sample.bytes);
        for (std::size_t n = 1 + below(random, 4); n > 0; --n) {
            mutate(random, disk.bytes);
        }
        const auto start = std::chrono::steady_clock::now();
        const Outcome outcome = readAll(disk, what);
        const auto took = std::chrono::steady_clock::now() - start;
        EXPECT_LT(took, std::chrono::seconds(5)) << what;
        longest = std::max(longest, took);
        damaged += outcome.errors > 0 ? 1 : 0;
        if (HasFailure()) {
            break;
        }
    }
    std::cout << count << " damaged copies of " << all.size() << " files read, " << damaged
              << " with errors; the longest took "
              << std::chrono::duration_cast<std::chrono::milliseconds>(longest).count() << " ms\n";
    EXPECT_GT(damaged, count / 10);
}

// Where the page's own bytes are cut off, nothing is read from beyond.
TEST(JetDamage, EveryLengthOfACutOffFileGivesValuesOrAnError) {
    const std::string whole = test::readFile(test::repoFile("data/first-light.RemindDB"));
    long errors = 0;
    for (std::size_t size = 0; size < whole.size(); size += size < 4200 ? 97 : 2048) {
        test::Disk disk(whole.substr(0, size));
        errors += readAll(disk, std::to_string(size) + " bytes").errors;
    }
    EXPECT_GT(errors, 40);
}

}  // namespace
}  // namespace vl
