// The columns of its row that an event writes back.
#include "db/DBRemindUtils.h"
#include "model/calEvent.h"

namespace vl {

namespace {

std::string update(std::string_view column, const std::string& value, const std::string& GUID) {
    if (GUID.empty()) {
        return {};
    }
    return "UPDATE Reminders SET " + std::string(column) + " = " + value + " WHERE (GUID=\"" +
           GUID + "\");";
}

std::int64_t write(DBRemindUtils& db, const std::string& statement) {
    return statement.empty() ? 0 : db.Execute(statement);
}

}  // namespace

std::string calEvent::StatusStatement() const {
    return update("status", "\"" + status + "\"", GUID);
}

std::string calEvent::NextReminderStatement() const {
    return update("NextReminder", DBRemindUtils::ToSQLDateTime(NextReminder, true), GUID);
}

std::string calEvent::HiddenStatement() const {
    return update("Hidden", Variant(Variant(Hidden).toInt32()).toText(), GUID);
}

std::string calEvent::DismissedStatement() const {
    return update("Dismissed", DBRemindUtils::ToSQLDateTime(Dismissed, true), GUID);
}

std::int64_t calEvent::SaveStatusDB(DBRemindUtils& db) const {
    return write(db, StatusStatement());
}

std::int64_t calEvent::SaveNextReminderDB(DBRemindUtils& db) const {
    return write(db, NextReminderStatement());
}

std::int64_t calEvent::SaveHiddenDB(DBRemindUtils& db) const {
    return write(db, HiddenStatement());
}

std::int64_t calEvent::SaveDismissedDB(DBRemindUtils& db) const {
    return write(db, DismissedStatement());
}

}  // namespace vl
