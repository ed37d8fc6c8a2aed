#include "model/RemindersTable.h"

#include <algorithm>
#include <array>
#include <variant>

#include "model/calEvent.h"

namespace vl {

namespace {

constexpr std::string_view kTable = "Reminders";

// Texts that 255 characters are too few for.
constexpr std::array<std::string_view, 5> kLong = {"Body", "CustomPropertiesXMLData", "recurrence",
                                                   "JSON", "reminders"};

jet::ColumnType typeOf(const EventProperty& property) {
    using jet::ColumnType;
    if (std::holds_alternative<bool calEvent::*>(property.member)) {
        return ColumnType::Boolean;
    }
    if (std::holds_alternative<std::int32_t calEvent::*>(property.member)) {
        return ColumnType::Long;
    }
    if (std::holds_alternative<DateTime calEvent::*>(property.member)) {
        return ColumnType::Date;
    }
    const bool isLong = std::find(kLong.begin(), kLong.end(), property.name) != kLong.end();
    return isLong ? ColumnType::Memo : ColumnType::Text;
}

jet::NewIndex indexOn(const char* name, const char* column) {
    jet::NewIndex index;
    index.name = name;
    index.columns = {{column, false}};
    return index;
}

}  // namespace

std::vector<jet::NewColumn> remindersColumns() {
    std::vector<jet::NewColumn> columns;
    for (const EventProperty& property : calEvent::properties()) {
        if (property.isColumn()) {
            columns.push_back({std::string(property.name), typeOf(property)});
        }
    }
    return columns;
}

std::vector<jet::NewIndex> remindersIndexes() {
    std::vector<jet::NewIndex> indexes = {indexOn("PrimaryKey", "GUID"), indexOn("id", "id"),
                                          indexOn("VLBase", "VLBase"),
                                          indexOn("Modified", "Modified")};
    indexes[0].primary = true;
    return indexes;
}

void makeRemindersDatabase(const std::string& path) {
    jet::Database::create(path, [](jet::Database& db) {
        db.createTable(kTable, remindersColumns(), remindersIndexes());
    });
}

}  // namespace vl
