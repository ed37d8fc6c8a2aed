// The columns of its row that an event writes back.
#include <algorithm>
#include <array>

#include "base/Text.h"
#include "db/DBRemindUtils.h"
#include "model/calEvent.h"

namespace vl {

namespace {

std::string oneOf(std::span<const std::string> GUIDs) {
    std::string list;
    for (const std::string& GUID : GUIDs) {
        list += (list.empty() ? "" : ", ") + DBRemindUtils::ToSQLText(GUID);
    }
    return " IN (" + list + ")";
}

std::string update(std::string_view column, const std::string& value, const std::string& GUID,
                   std::span<const std::string> GUIDs) {
    if (GUID.empty() && GUIDs.empty()) {
        return {};
    }
    return "UPDATE Reminders SET " + std::string(column) + " = " + value + " WHERE (GUID" +
           (GUIDs.empty() ? "=\"" + GUID + "\"" : oneOf(GUIDs)) + ");";
}

std::int64_t write(DBRemindUtils& db, const std::string& statement) {
    return statement.empty() ? 0 : db.Execute(statement);
}

// These hold text whatever the property holds: nothing and "no" are the empty text.
bool isTextField(std::string_view name) {
    static constexpr std::array<std::string_view, 9> kNames = {
        "id",         "color", "iCalUID", "recurrence",      "reminders",
        "CalendarID", "JSON",  "status",  "recurringEventId"};
    return std::any_of(kNames.begin(), kNames.end(),
                       [name](std::string_view n) { return text::equalsNoCase(n, name); });
}

bool isNothing(const Variant& value) {
    const auto* flag = value.get<bool>();
    return value.isEmpty() || value.isNull() || (flag != nullptr && !*flag);
}

}  // namespace

std::string calEvent::StatusStatement(std::span<const std::string> GUIDs) const {
    return update("status", "\"" + status + "\"", GUID, GUIDs);
}

std::string calEvent::NextReminderStatement(std::span<const std::string> GUIDs) const {
    return update("NextReminder", DBRemindUtils::ToSQLDateTime(NextReminder, true), GUID, GUIDs);
}

std::string calEvent::HiddenStatement(std::span<const std::string> GUIDs) const {
    return update("Hidden", Variant(Variant(Hidden).toInt32()).toText(), GUID, GUIDs);
}

std::string calEvent::DismissedStatement(std::span<const std::string> GUIDs) const {
    return update("Dismissed", DBRemindUtils::ToSQLDateTime(Dismissed, true), GUID, GUIDs);
}

std::int64_t calEvent::SaveStatusDB(DBRemindUtils& db, std::span<const std::string> GUIDs) const {
    return write(db, StatusStatement(GUIDs));
}

std::int64_t calEvent::SaveNextReminderDB(DBRemindUtils& db,
                                          std::span<const std::string> GUIDs) const {
    return write(db, NextReminderStatement(GUIDs));
}

std::int64_t calEvent::SaveHiddenDB(DBRemindUtils& db, std::span<const std::string> GUIDs) const {
    return write(db, HiddenStatement(GUIDs));
}

std::int64_t calEvent::SaveDismissedDB(DBRemindUtils& db,
                                       std::span<const std::string> GUIDs) const {
    return write(db, DismissedStatement(GUIDs));
}

bool calEvent::FillRS(RecordSet& R, const calEvent* E) {
    const ErrScope scope;
    constexpr std::int64_t kHour = 3600;
    if (EndDateTime <= StartDateTime) {
        EndDateTime = StartDateTime.addSeconds(kHour);
    }
    const calEvent& source = E != nullptr ? *E : *this;
    for (std::size_t i = 0; i < R.fields().size(); ++i) {
        const std::string& name = R.fields()[i].name;
        if (text::equalsNoCase(name, "EventID")) {
            continue;
        }
        attempt([&] {
            const Variant value = source.property(name);
            R.setValue(i, isTextField(name) && isNothing(value) ? Variant("") : value);
        });
    }
    return false;
}

}  // namespace vl
