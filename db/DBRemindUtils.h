// The way to the reminders database: the one class that talks to it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/DateTime.h"
#include "base/ErrorState.h"
#include "db/Connection.h"
#include "db/RecordSet.h"
#include "events/GenCollection.h"

namespace vl {

/// The host writes the same file: so a write opens the connection when it is not open and always
/// closes it, and a read leaves it open only until the next write or `CloseDB`. Nothing is cached.
///
/// No method throws and none changes the pending error; who must know why one failed asks
/// `LastError`.
class DBRemindUtils {
public:
    std::string DBFullName;        ///< UTF-8; empty: every open fails
    bool isOpen = false;           ///< true from a successful open to the next close
    std::string ADOConnectString;  ///< the text last built by `OpenDB`

    /// Drops the connection there was and opens a new one to `DBFullName`. Returns `isOpen`.
    bool OpenDB();
    /// `OpenDB` unless the connection is open.
    void ReConnect();
    void CloseDB();
    /// Closes and opens again, with the text the connection has, whatever `DBFullName` says now.
    void CloseAndOpenDB();

    /// The rows of a SELECT, opening the database when it is not open. Never null: on failure it
    /// is not opened and holds no rows. `CursorType` is accepted; all record sets are alike.
    std::shared_ptr<RecordSet> OpenRS(std::string_view recName, int CursorType = 0);

    /// Runs a statement that writes and closes the database, whatever happened. Returns the number
    /// of rows it changed, 0 when it failed.
    std::int64_t Execute(std::string_view statement);

    /// Why the last `OpenDB`, `ReConnect`, `CloseAndOpenDB`, `OpenRS`, `Execute`, `FieldExistsDB`
    /// or `GetDeletedCol` failed; `ErrNo::None` when it did not. `CloseDB` leaves it alone.
    ErrNo LastError() const noexcept { return lastError_; }

    const std::string& ConnectString() const noexcept { return connection_.ConnectionString(); }
    const vl::Connection& Connection() const noexcept { return connection_; }

    /// "yyyy-mm-dd", with " hh:mm:ss" unless the time is midnight; a literal of the dialect when
    /// enclosed.
    static std::string ToSQLDateTime(DateTime d, bool bHashTagEnclosed);

    /// Whether the table and in it the column exist, without regard to case. Looks into the file
    /// by itself: the connection stays as it is.
    bool FieldExistsDB(std::string_view TName, std::string_view FieldName);

    /// The GUIDs of the rows marked as deleted, in record order, each under itself. Never null.
    std::shared_ptr<GenCollection> GetDeletedCol();

private:
    template <class Step>
    bool step(Step&& s, Place where = Place::here());

    vl::Connection connection_;
    ErrNo lastError_ = ErrNo::None;
};

}  // namespace vl
