#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>
#include <string>

#include "Inputs.h"
#include "base/ErrorState.h"
#include "db/jet/Database.h"
#include "db/jet/MemoryFile.h"
#include "support/Support.h"

namespace vl::test {

namespace {

constexpr std::size_t kPage = jet::kPageSize;

const std::string& file(std::size_t index) {
    static const std::array kFiles = {
        readFile(repoFile("data/first-light.RemindDB")),
        readFile(repoFile("tests/data/generated-reminders.RemindDB"))};
    return kFiles[index % kFiles.size()];
}

// Takes the input apart from its front.
class Reader {
public:
    explicit Reader(std::span<const std::byte> input) : left_(input) {}
    bool atEnd() const { return left_.empty(); }
    std::size_t byte() {
        if (left_.empty()) {
            return 0;
        }
        const auto value = std::to_integer<std::size_t>(left_.front());
        left_ = left_.subspan(1);
        return value;
    }
    std::span<const std::byte> bytes(std::size_t count) {
        const auto taken = left_.first(std::min(count, left_.size()));
        left_ = left_.subspan(taken.size());
        return taken;
    }

private:
    std::span<const std::byte> left_;
};

Disk damaged(std::span<const std::byte> input) {
    Reader reader(input);
    Disk disk(file(reader.byte()));
    while (!reader.atEnd()) {
        const std::size_t page = reader.byte();
        const std::size_t low = reader.byte();
        const std::size_t at = page * kPage + (low + reader.byte() * 256) % kPage;
        const auto bytes = reader.bytes(reader.byte() % 32);
        if (at + bytes.size() > disk.bytes.size()) {
            continue;
        }
        if (bytes.empty()) {
            disk.bytes.resize(at);
            break;
        }
        std::copy(bytes.begin(), bytes.end(), disk.bytes.begin() + static_cast<std::ptrdiff_t>(at));
    }
    return disk;
}

template <class Step>
void guarded(Step&& step) {
    try {
        step();
    } catch (const Error& e) {
        if (e.number() != ErrNo::Corrupt && e.number() != ErrNo::Format &&
            e.number() != ErrNo::NotFound) {
            std::cerr << "unfitting error: " << e.what() << '\n';
            std::abort();
        }
    }
}

// Whatever the damage, a value is written or refused.
void writeInto(jet::Table& table, jet::RowId id) {
    for (std::size_t i = 0; i < table.columns().size(); ++i) {
        try {
            table.updateInPlace(id, std::array{jet::Table::Change{i, 1}});
        } catch (const Error& e) {
            if (e.number() == ErrNo::Io || e.number() == ErrNo::ReadOnly) {
                std::cerr << "unfitting error: " << e.what() << '\n';
                std::abort();
            }
        }
    }
}

void readTable(const jet::Database& db, const std::string& name) {
    jet::Table table = db.table(name);
    guarded([&] {
        jet::RowCursor row = table.scan();
        for (bool first = true; row.next(); first = false) {
            for (std::size_t i = 0; i < table.columns().size(); ++i) {
                guarded([&] { row.value(i); });
            }
            if (first) {
                writeInto(table, row.id());
            }
        }
    });
    for (std::size_t i = 0; i < table.indexes().size(); ++i) {
        guarded([&] {
            for (jet::RowCursor row = table.indexScan(i); row.next();) {
            }
        });
    }
}

}  // namespace

void readDamaged(std::span<const std::byte> input) {
    Disk disk = damaged(input);
    guarded([&] {
        const jet::Database db = openMemory(disk, jet::Access::ReadWrite);
        for (const jet::TableInfo& info : db.tables()) {
            guarded([&] { readTable(db, info.name); });
        }
    });
}

}  // namespace vl::test
