#include "EventFile.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl::test {

namespace {

constexpr std::array<std::string_view, 5> kMemos = {"Body", "CustomPropertiesXMLData", "recurrence",
                                                    "JSON", "reminders"};

jet::ColumnType typeOf(const EventProperty& property) {
    if (std::find(kMemos.begin(), kMemos.end(), property.name) != kMemos.end()) {
        return jet::ColumnType::Memo;
    }
    if (std::holds_alternative<bool calEvent::*>(property.member)) {
        return jet::ColumnType::Boolean;
    }
    if (std::holds_alternative<std::int32_t calEvent::*>(property.member)) {
        return jet::ColumnType::Long;
    }
    return std::holds_alternative<DateTime calEvent::*>(property.member) ? jet::ColumnType::Date
                                                                         : jet::ColumnType::Text;
}

std::vector<jet::NewColumn> columns() {
    std::vector<jet::NewColumn> all;
    for (const EventProperty& property : calEvent::properties()) {
        if (property.isColumn()) {
            all.push_back({.name = std::string(property.name), .type = typeOf(property)});
        }
    }
    return all;
}

std::vector<jet::NewIndex> indexes() {
    return {{.name = "PrimaryKey", .primary = true, .unique = true, .columns = {{"GUID", false}}},
            {.name = "id", .columns = {{"id", false}}},
            {.name = "VLBase", .columns = {{"VLBase", false}}},
            {.name = "Modified", .columns = {{"Modified", false}}}};
}

std::size_t columnNamed(const jet::Table& table, std::string_view name) {
    const auto& all = table.columns();
    return static_cast<std::size_t>(
        std::find_if(all.begin(), all.end(),
                     [&](const auto& c) { return text::equalsNoCase(c.name, name); }) -
        all.begin());
}

Variant stored(const Variant& value) {
    const auto* date = value.get<DateTime>();
    return date != nullptr && date->isZero() ? Variant(Null{}) : value;
}

std::vector<jet::Table::Change> rowOf(const calEvent& event) {
    std::vector<jet::Table::Change> row;
    for (const EventProperty& property : calEvent::properties()) {
        if (property.isColumn()) {
            row.emplace_back(row.size(), stored(event.property(property)));
        }
    }
    return row;
}

// The program's three are the last ones.
std::span<const jet::Table::Change> ofTheHost(const std::vector<jet::Table::Change>& row) {
    constexpr std::size_t kOfTheProgram = 3;
    return std::span(row).first(row.size() - kOfTheProgram);
}

}  // namespace

EventFile::EventFile(std::string path, bool indexed) : path_(std::move(path)) {
    auto db = jet::Database::create(path_);
    db.createTable("Reminders", columns(), indexed ? indexes() : std::vector<jet::NewIndex>());
}

template <class Step>
void EventFile::write(Step&& step) {
    auto db = jet::Database::open(path_, jet::Access::ReadWrite);
    jet::Transaction transaction(db);
    jet::Table table = db.table("Reminders");
    step(table);
    transaction.commit();
}

// Others may have removed the row.
std::optional<jet::RowId> EventFile::find(const jet::Table& table, const std::string& GUID) {
    const auto known = rows_.find(GUID);
    if (known == rows_.end()) {
        return std::nullopt;
    }
    jet::RowCursor cursor = table.rows({known->second});
    try {
        if (cursor.next() && cursor.value(columnNamed(table, "GUID")) == Variant(GUID)) {
            return known->second;
        }
    } catch (const Error& e) {
        if (e.number() != ErrNo::NotFound) {
            throw;
        }
    }
    rows_.erase(known);
    return std::nullopt;
}

void EventFile::put(std::span<const std::shared_ptr<calEvent>> events) {
    // Known from when they are in the file: a write that fails takes its rows back.
    std::unordered_map<std::string, jet::RowId> added;
    write([&](jet::Table& table) {
        for (const auto& event : events) {
            const auto row = rowOf(*event);
            const auto again = added.find(event->GUID);
            if (const auto id = again == added.end() ? find(table, event->GUID) : again->second) {
                table.update(*id, ofTheHost(row));
            } else {
                added[event->GUID] = table.insert(row);
            }
        }
    });
    rows_.merge(added);
}

void EventFile::put(const calEvent& event) {
    const auto copy = std::make_shared<calEvent>(event);
    put(std::span(&copy, 1));
}

void EventFile::change(const std::string& GUID, const Values& values) {
    write([&](jet::Table& table) {
        if (const auto id = find(table, GUID)) {
            std::vector<jet::Table::Change> changes;
            for (const auto& [name, value] : values) {
                changes.emplace_back(columnNamed(table, name), stored(value));
            }
            table.update(*id, changes);
        }
    });
}

std::optional<Variant> EventFile::value(const std::string& GUID, std::string_view column) {
    auto db = jet::Database::open(path_, jet::Access::Read);
    const jet::Table table = db.table("Reminders");
    const auto id = find(table, GUID);
    if (!id) {
        return std::nullopt;
    }
    jet::RowCursor cursor = table.rows({*id});
    cursor.next();
    return cursor.value(columnNamed(table, column));
}

void EventFile::remove(const std::string& GUID) {
    write([&](jet::Table& table) {
        if (const auto id = find(table, GUID)) {
            table.remove(*id);
        }
    });
    rows_.erase(GUID);
}

}  // namespace vl::test
