// Rows that nobody needs any more.
#include "app/Files.h"
#include "db/DBRemindUtils.h"

namespace vl {

namespace {

std::string whereText(std::string_view column, std::string_view value) {
    return " FROM Reminders WHERE (" + std::string(column) + "=" + DBRemindUtils::ToSQLText(value) +
           ");";
}

}  // namespace

std::int64_t DBRemindUtils::DeleteAllDeleted() {
    return Execute("DELETE * FROM Reminders WHERE (Deleted=True);");
}

void DBRemindUtils::DeleteDB(std::string_view sGUID) {
    if (!sGUID.empty()) {
        Execute("DELETE *" + whereText("GUID", sGUID));
    }
}

void DBRemindUtils::DeleteAll() { Execute("DELETE * FROM Reminders;"); }

std::shared_ptr<GenCollection> DBRemindUtils::VLBasesCol() {
    const ErrScope scope;
    auto paths = std::make_shared<GenCollection>();
    const auto rows = OpenRS("SELECT DISTINCT Reminders.VLBase FROM Reminders;");
    bool withoutPath = false;
    for (; !rows->EOF_(); rows->MoveNext()) {
        attempt([&] {
            const Variant& value = rows->value("VLBase");
            const std::string path = value.isNull() ? std::string() : value.toText();
            // Without a key the collection would take a null and an empty text as two.
            if (!path.empty() || !withoutPath) {
                paths->Add(path, path);
            }
            withoutPath = withoutPath || path.empty();
        });
    }
    return paths;
}

std::shared_ptr<GenCollection> DBRemindUtils::DeletedVLBasesCol() {
    const ErrScope scope;
    auto missing = std::make_shared<GenCollection>();
    const auto paths = VLBasesCol();
    for (const Variant& path : *paths) {
        const std::string text = path.toText();
        if (!fileExists(text)) {
            missing->Add(text, text);
        }
    }
    return missing;
}

std::int64_t DBRemindUtils::DelDeletedVLBases(bool bDoDelete) {
    const ErrScope scope;
    const auto missing = DeletedVLBasesCol();
    if (missing->Count() == 0) {
        return 0;
    }
    ReConnect();
    std::int64_t events = 0;
    for (const Variant& path : *missing) {
        const std::string rows = whereText("VLBase", path.toText());
        events += bDoDelete ? Execute("DELETE *" + rows)
                            : static_cast<std::int64_t>(OpenRS("SELECT *" + rows)->RecordCount());
    }
    CloseDB();
    return events;
}

bool DBRemindUtils::Compact(std::string_view /*fileName*/, bool /*AutoBackup*/) noexcept {
    return false;
}

void DBRemindUtils::Backup(std::string_view /*fileName*/) noexcept {}

}  // namespace vl
