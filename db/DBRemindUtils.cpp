#include "db/DBRemindUtils.h"

#include <algorithm>
#include <utility>

#include "base/Text.h"

namespace vl {

namespace {

constexpr int kTimeoutSeconds = 60;

}  // namespace

template <class Step>
bool DBRemindUtils::step(Step&& s, Place where) {
    const bool done = attempt(std::forward<Step>(s), where);
    if (!done) {
        lastError_ = ErrorState::number();
    }
    return done;
}

bool DBRemindUtils::OpenDB() {
    const ErrScope scope;
    lastError_ = ErrNo::None;
    isOpen = false;
    connection_ = vl::Connection();
    connection_.ConnectionTimeout = kTimeoutSeconds;
    connection_.CommandTimeout = kTimeoutSeconds;
    connection_.IsolationLevel = vl::Connection::kIsolated;
    connection_.CursorLocation = vl::Connection::kServerSide;
    ADOConnectString =
        "Provider=Microsoft.Jet.OLEDB.4.0; Data Source=" + DBFullName + "; User Id=admin;";
    step([&] { connection_.Open(ADOConnectString, "", ""); });
    isOpen = connection_.State() == vl::Connection::kStateOpen;
    return isOpen;
}

void DBRemindUtils::ReConnect() {
    const ErrScope scope;
    lastError_ = ErrNo::None;
    if (connection_.State() != vl::Connection::kStateOpen) {
        OpenDB();
    }
}

void DBRemindUtils::CloseDB() {
    const ErrScope scope;
    connection_.Close();
    isOpen = false;
}

void DBRemindUtils::CloseAndOpenDB() {
    const ErrScope scope;
    lastError_ = ErrNo::None;
    const std::string text = connection_.ConnectionString();
    connection_.Close();
    step([&] { connection_.Open(text, "", ""); });
    isOpen = connection_.State() == vl::Connection::kStateOpen;
}

std::shared_ptr<RecordSet> DBRemindUtils::OpenRS(std::string_view recName, int /*CursorType*/) {
    const ErrScope scope;
    lastError_ = ErrNo::None;
    auto records = std::make_shared<RecordSet>();
    if (!isOpen) {
        OpenDB();
    }
    if (isOpen) {
        step([&] {
            if (!sql::isQuery(recName)) {
                throw Error(ErrNo::Syntax, "record set: expected a SELECT statement");
            }
            *records = RecordSet(connection_.Execute(recName));
        });
    }
    return records;
}

std::int64_t DBRemindUtils::Execute(std::string_view statement) {
    const ErrScope scope;
    lastError_ = ErrNo::None;
    std::int64_t affected = 0;
    if (!isOpen) {
        OpenDB();
    }
    if (isOpen) {
        step([&] { affected = connection_.Execute(statement).affected; });
    }
    CloseDB();
    return affected;
}

std::string DBRemindUtils::ToSQLDateTime(DateTime d, bool bHashTagEnclosed) {
    const std::string text = formatDateTime(d);
    return bHashTagEnclosed ? "#" + text + "#" : text;
}

bool DBRemindUtils::FieldExistsDB(std::string_view TName, std::string_view FieldName) {
    const ErrScope scope;
    lastError_ = ErrNo::None;
    bool exists = false;
    step([&] {
        const auto db = jet::Database::open(DBFullName, jet::Access::Read);
        const jet::Table table = db.table(TName);
        exists = std::any_of(
            table.columns().begin(), table.columns().end(),
            [&](const jet::Column& c) { return text::equalsNoCase(c.name, FieldName); });
    });
    return exists;
}

std::shared_ptr<GenCollection> DBRemindUtils::GetDeletedCol() {
    const ErrScope scope;
    auto guids = std::make_shared<GenCollection>();
    const auto rows = OpenRS("SELECT GUID FROM Reminders WHERE (Deleted=True);");
    for (; !rows->EOF_(); rows->MoveNext()) {
        step([&] {
            const std::string guid = rows->value("GUID").toText();
            guids->Add(guid, guid);
        });
    }
    return guids;
}

}  // namespace vl
