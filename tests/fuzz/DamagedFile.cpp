#include "DamagedFile.h"

#include <algorithm>
#include <array>

#include "db/jet/Transaction.h"
#include "db/jet/write/RandomRows.h"
#include "define/NewDatabase.h"
#include "support/Support.h"

namespace vl::test {

namespace {

constexpr std::size_t kPage = jet::kPageSize;

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

class CountedFile final : public MemoryFile {
public:
    explicit CountedFile(Disk& disk) : MemoryFile(disk), disk_(disk) {}
    std::int64_t modified() const override { return disk_.writes; }

private:
    Disk& disk_;
};

void makeTable(jet::Database& db) {
    using jet::ColumnType;
    const std::array columns{
        jet::NewColumn{.name = "No", .type = ColumnType::Long, .autoNumber = true},
        jet::NewColumn{.name = "Label", .type = ColumnType::Text, .length = 60},
        jet::NewColumn{.name = "Yes", .type = ColumnType::Boolean},
        jet::NewColumn{.name = "Small", .type = ColumnType::Byte},
        jet::NewColumn{.name = "Short", .type = ColumnType::Integer},
        jet::NewColumn{.name = "Price", .type = ColumnType::Money},
        jet::NewColumn{.name = "Real", .type = ColumnType::Single},
        jet::NewColumn{.name = "Wide", .type = ColumnType::Double},
        jet::NewColumn{.name = "Day", .type = ColumnType::Date},
        jet::NewColumn{.name = "Raw", .type = ColumnType::Binary, .length = 40},
        jet::NewColumn{.name = "Object", .type = ColumnType::Ole},
        jet::NewColumn{.name = "Note", .type = ColumnType::Memo},
        jet::NewColumn{.name = "Key", .type = ColumnType::Guid},
        jet::NewColumn{.name = "Exact", .type = ColumnType::Numeric, .precision = 18, .scale = 4},
    };
    const std::array indexes{
        jet::NewIndex{.name = "PrimaryKey", .primary = true, .columns = {{"No"}}},
        jet::NewIndex{.name = "ByLabel", .columns = {{"Label"}, {"Day", true}}},
        jet::NewIndex{.name = "ByRaw", .ignoreNulls = true, .columns = {{"Raw", true}}},
        jet::NewIndex{.name = "ByNumbers", .columns = {{"Exact"}, {"Price", true}, {"Wide"}}},
        jet::NewIndex{.name = "ByKey", .columns = {{"Key"}, {"Yes"}, {"Small", true}}},
    };
    db.createTable("Made", columns, indexes);
    db.createTable("Empty", std::array{jet::NewColumn{.name = "Only"}});
}

// Rows that shrink and grow leave holes and move.
void fillTable(jet::Database& db) {
    constexpr std::size_t kRows = 240;
    Random random(20261121);
    jet::Transaction change(db);
    jet::Table table = db.table("Made");
    const auto anyValues = [&] {
        std::vector<jet::Table::Change> values;
        for (std::size_t i = 1; i < table.columns().size(); ++i) {
            values.emplace_back(i, randomValue(random, table.columns()[i]));
        }
        return values;
    };
    std::vector<jet::RowId> ids;
    for (std::size_t i = 0; i < kRows; ++i) {
        ids.push_back(table.insert(anyValues()));
    }
    for (std::size_t i = 0; i < kRows; i += 3) {
        if (i % 2 == 0) {
            table.update(ids[i], anyValues());
        } else {
            table.remove(ids[i]);
        }
    }
    change.commit();
}

std::string madeFile() {
    const std::vector<std::byte> bytes = jet::newDatabase([](jet::Database& db) {
        makeTable(db);
        fillTable(db);
    });
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

void damage(Disk& disk, Reader& reader) {
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
}

}  // namespace

const std::string& soundFile(std::size_t index) {
    static const std::array<std::string, kSoundFiles> kFiles = {
        readFile(repoFile("data/first-light.RemindDB")),
        readFile(repoFile("tests/data/generated-reminders.RemindDB")), madeFile()};
    return kFiles.at(index);
}

DamagedFile damagedFile(std::span<const std::byte> input) {
    Reader reader(input);
    const std::size_t first = reader.byte();
    DamagedFile file{Disk(soundFile(first % kSoundFiles)), first / kSoundFiles};
    damage(file.disk, reader);
    return file;
}

jet::Database openDamaged(Disk& disk) {
    return jet::Database::open(std::make_unique<CountedFile>(disk), "memory",
                               jet::Access::ReadWrite);
}

}  // namespace vl::test
