#include "SharedTable.h"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <vector>

#include "db/jet/ReadGuard.h"
#include "db/jet/Transaction.h"

namespace vl::test {

namespace {

using jet::RowId;
using jet::Table;
using Changes = std::vector<Table::Change>;

struct Columns {
    std::size_t guid, stamp, number, text;

    explicit Columns(const Table& table)
        : guid(of(table, "GUID")),
          stamp(of(table, "EventID")),
          number(of(table, "ItemID")),
          text(of(table, "JSON")) {}

    static std::size_t of(const Table& table, const char* name) {
        const auto& columns = table.columns();
        const auto found = std::find_if(columns.begin(), columns.end(),
                                        [&](const jet::Column& c) { return c.name == name; });
        return static_cast<std::size_t>(found - columns.begin());
    }
};

std::string ownRow(int writer) { return "{writer-" + std::to_string(writer) + "}"; }
std::string rowName(int writer, int number) {
    return "{row-" + std::to_string(writer) + "-" + std::to_string(number) + "}";
}
// Several pages now and then.
std::string textOf(int writer, int number) {
    return std::string(100 + static_cast<std::size_t>(number % 7) * 1500,
                       static_cast<char>('a' + (writer + number) % 26));
}

void require(bool fits, const std::string& what) {
    if (!fits) {
        throw std::logic_error(what);
    }
}

std::map<int, int> readOnce(const jet::Database& db) {
    const Table table = db.table("Reminders");
    const Columns columns(table);
    std::map<int, int> last;
    std::map<std::string, std::string> rows;
    std::set<std::int64_t> stamps;
    std::uint32_t count = 0;
    jet::RowCursor cursor = table.scan();
    while (cursor.next()) {
        ++count;
        stamps.insert(cursor.value(columns.stamp).toInt64());
        const std::string guid = cursor.value(columns.guid).toText();
        if (guid.rfind("{writer-", 0) == 0) {
            last[std::stoi(guid.substr(8))] =
                static_cast<int>(cursor.value(columns.number).toInt64());
        } else if (guid.rfind("{row-", 0) == 0) {
            rows[guid] = cursor.value(columns.text).toText();
        }
    }
    require(count == table.rowCount(), "the definition counts " + std::to_string(table.rowCount()) +
                                           " rows, there are " + std::to_string(count));
    require(last.empty() || stamps.size() == 1,
            std::to_string(stamps.size()) + " stamps at one moment");
    std::size_t expected = 0;
    for (const auto& [writer, number] : last) {
        for (int n = std::max(1, number - SharedTable::kKept + 1); n <= number; ++n) {
            const auto row = rows.find(rowName(writer, n));
            require(row != rows.end(), rowName(writer, n) + " is not there");
            require(row->second == textOf(writer, n), rowName(writer, n) + " has another text");
            ++expected;
        }
    }
    require(rows.size() == expected, "rows that should be gone");
    std::size_t inIndex = 0;
    jet::RowCursor ordered = table.indexScan(0);
    while (ordered.next()) {
        ++inIndex;
    }
    require(inIndex == count,
            "the index has " + std::to_string(inIndex) + " rows of " + std::to_string(count));
    return last;
}

}  // namespace

int SharedTable::join(jet::Database& db, int writer) {
    jet::Transaction change(db);
    Table table = db.table("Reminders");
    const Columns columns(table);
    std::int64_t stamp = 0;
    {
        jet::RowCursor cursor = table.scan();
        while (cursor.next()) {
            stamp = cursor.value(columns.stamp).toInt64();
            if (cursor.value(columns.guid).toText() == ownRow(writer)) {
                return static_cast<int>(cursor.value(columns.number).toInt64());
            }
        }
    }
    table.insert(Changes{{columns.guid, ownRow(writer)},
                         {columns.stamp, static_cast<std::int32_t>(stamp)},
                         {columns.number, 0}});
    change.commit();
    return 0;
}

void SharedTable::write(jet::Database& db, int writer, int number, int stamp) {
    jet::Transaction change(db);
    Table table = db.table("Reminders");
    const Columns columns(table);
    std::vector<std::pair<RowId, std::string>> rows;
    {
        jet::RowCursor cursor = table.scan();
        while (cursor.next()) {
            rows.emplace_back(cursor.id(), cursor.value(columns.guid).toText());
        }
    }
    for (const auto& [id, guid] : rows) {
        if (guid == rowName(writer, number - kKept)) {
            table.remove(id);
            continue;
        }
        Changes changes{{columns.stamp, stamp}};
        if (guid == ownRow(writer)) {
            changes.emplace_back(columns.number, number);
        }
        table.update(id, changes);
    }
    table.insert(Changes{{columns.guid, rowName(writer, number)},
                         {columns.stamp, stamp},
                         {columns.text, textOf(writer, number)}});
    change.commit();
}

std::map<int, int> SharedTable::read(const jet::Database& db) {
    return jet::readWhole(db, [&] { return readOnce(db); });
}

}  // namespace vl::test
