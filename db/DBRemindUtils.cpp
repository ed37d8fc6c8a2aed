#include "db/DBRemindUtils.h"

#include <algorithm>
#include <utility>

#include "base/Text.h"

namespace vl {

namespace {

constexpr int kTimeoutSeconds = 60;

jet::ColumnType columnType(int FType) {
    constexpr int kDecimal = 20;
    constexpr int kGuid = 15;
    if ((FType >= 1 && FType <= 12) || FType == kGuid) {
        return static_cast<jet::ColumnType>(FType);
    }
    if (FType == kDecimal) {
        return jet::ColumnType::Numeric;
    }
    throw Error(ErrNo::Unsupported,
                "there is no type of columns with the number " + std::to_string(FType));
}

/// A statement that saves a row, and the values for its question marks.
struct Saving {
    std::string statement;
    std::vector<sql::Parameter> values;
};

Saving insertion(const RecordSet& records, std::string_view table) {
    Saving saving;
    std::string names;
    std::string marks;
    for (const std::size_t field : records.changed()) {
        names += (names.empty() ? "[" : ", [") + records.fields()[field].name + "]";
        marks += marks.empty() ? "?" : ", ?";
        saving.values.push_back({"", records.value(field)});
    }
    saving.statement =
        "INSERT INTO [" + std::string(table) + "] (" + names + ") VALUES (" + marks + ");";
    return saving;
}

Saving change(const RecordSet& records, std::string_view table) {
    Saving saving;
    std::string sets;
    for (const std::size_t field : records.changed()) {
        sets += (sets.empty() ? "[" : ", [") + records.fields()[field].name + "] = ?";
        saving.values.push_back({"", records.value(field)});
    }
    saving.values.push_back({"", records.valueBefore(records.placeOf("GUID"))});
    saving.statement = "UPDATE [" + std::string(table) + "] SET " + sets + " WHERE ([GUID] = ?);";
    return saving;
}

}  // namespace

template <class Step>
bool DBRemindUtils::step(Step&& s, Place where) {
    const bool done = attempt(
        [&] {
            try {
                std::forward<Step>(s)();
            } catch (const Error& e) {
                lastErrorText_ = e.what();
                throw;
            }
        },
        where);
    if (!done) {
        lastError_ = ErrorState::number();
    }
    return done;
}

void DBRemindUtils::clearError() {
    lastError_ = ErrNo::None;
    lastErrorText_.clear();
}

bool DBRemindUtils::OpenDB() {
    const ErrScope scope;
    clearError();
    isOpen = false;
    connection_ = vl::Connection();
    connection_.ConnectionTimeout = kTimeoutSeconds;
    connection_.CommandTimeout = kTimeoutSeconds;
    connection_.Patience = Patience;
    connection_.Digests = digests_;
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
    clearError();
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
    clearError();
    const std::string text = connection_.ConnectionString();
    connection_.Close();
    step([&] { connection_.Open(text, "", ""); });
    isOpen = connection_.State() == vl::Connection::kStateOpen;
}

std::shared_ptr<RecordSet> DBRemindUtils::OpenRS(std::string_view recName, int /*CursorType*/) {
    return openRS(recName, nullptr);
}

std::shared_ptr<RecordSet> DBRemindUtils::OpenRSAgain(const std::string& statement) {
    return openRS(statement, &memories_[statement]);
}

std::shared_ptr<RecordSet> DBRemindUtils::openRS(std::string_view recName,
                                                 sql::ScanMemory* memory) {
    const ErrScope scope;
    clearError();
    auto records = std::make_shared<RecordSet>();
    if (!isOpen) {
        OpenDB();
    }
    if (isOpen) {
        step([&] {
            if (!sql::isQuery(recName)) {
                throw Error(ErrNo::Syntax, "record set: expected a SELECT statement");
            }
            *records = RecordSet(memory != nullptr ? connection_.Execute(recName, *memory)
                                                   : connection_.Execute(recName));
        });
    }
    if (lastError_ != ErrNo::Syntax) {
        readTrouble_ = {lastError_, lastErrorText_};
    }
    return records;
}

bool DBRemindUtils::ForRows(std::string_view statement,
                            const std::function<void(sql::RowStream&)>& visit) {
    const ErrScope scope;
    clearError();
    if (!isOpen) {
        OpenDB();
    }
    const bool done = isOpen && step([&] { connection_.ForRows(statement, visit); });
    readTrouble_ = {lastError_, lastErrorText_};
    return done;
}

std::int64_t DBRemindUtils::Execute(std::string_view statement) { return execute(statement, {}); }

std::int64_t DBRemindUtils::execute(std::string_view statement,
                                    std::span<const sql::Parameter> parameters) {
    const ErrScope scope;
    clearError();
    std::int64_t affected = 0;
    ++writes_;
    if (!isOpen) {
        OpenDB();
    }
    if (isOpen) {
        step([&] { affected = connection_.Execute(statement, parameters).affected; });
    }
    CloseDB();
    return affected;
}

std::int64_t DBRemindUtils::UpdateRS(RecordSet& records, std::string_view table) {
    const ErrScope scope;
    clearError();
    std::int64_t written = 0;
    if (records.changed().empty()) {
        return written;
    }
    step([&] {
        const Saving saving = records.isNew() ? insertion(records, table) : change(records, table);
        written = execute(saving.statement, saving.values);
    });
    if (written > 0) {
        records.markSaved();
    }
    return written;
}

bool DBRemindUtils::Look::same(const Look& other) const noexcept {
    return stamp_ && stamp_ == other.stamp_ && writes_ == other.writes_ && file_ == other.file_;
}

DBRemindUtils::Look DBRemindUtils::TakeLook() const {
    const ErrScope scope;
    Look look;
    attempt([&] { look.stamp_ = jet::stampOf(DBFullName); });
    look.file_ = DBFullName;
    look.writes_ = writes_;
    return look;
}

std::string DBRemindUtils::ToSQLDateTime(DateTime d, bool bHashTagEnclosed) {
    const std::string text = formatDateTime(d);
    return bHashTagEnclosed ? "#" + text + "#" : text;
}

std::string DBRemindUtils::ToSQLText(std::string_view value) {
    return "\"" + text::replaceAll(value, "\"", "\"\"") + "\"";
}

bool DBRemindUtils::FieldExistsDB(std::string_view TName, std::string_view FieldName) {
    const ErrScope scope;
    clearError();
    bool exists = false;
    step([&] {
        const auto db = jet::Database::open(DBFullName, jet::Access::Read, {.patience = Patience});
        const jet::Table table = db.table(TName);
        exists = std::any_of(
            table.columns().begin(), table.columns().end(),
            [&](const jet::Column& c) { return text::equalsNoCase(c.name, FieldName); });
    });
    return exists;
}

ErrNo DBRemindUtils::AddField(std::string_view TName2, std::string_view FieldName, int FType,
                              int /*fsize*/, const Variant& /*DefaultValue*/, bool /*isID*/) {
    const ErrScope scope;
    if (FieldExistsDB(TName2, FieldName)) {
        return ErrNo::None;
    }
    clearError();
    ++writes_;
    step([&] {
        jet::NewColumn column{std::string(FieldName), columnType(FType)};
        column.allowZeroLength = true;
        jet::Database::open(DBFullName, jet::Access::ReadWrite, {.patience = Patience})
            .addColumn(TName2, column);
    });
    return lastError_;
}

std::shared_ptr<GenCollection> DBRemindUtils::GetDeletedCol() {
    const ErrScope scope;
    auto guids = std::make_shared<GenCollection>();
    const auto rows = OpenRSAgain("SELECT GUID FROM Reminders WHERE (Deleted=True);");
    for (; !rows->EOF_(); rows->MoveNext()) {
        step([&] {
            const std::string guid = rows->value("GUID").toText();
            guids->Add(guid, guid);
        });
    }
    return guids;
}

}  // namespace vl
