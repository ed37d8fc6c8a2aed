// The way to the reminders database: the one class that talks to it.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/DateTime.h"
#include "base/ErrorState.h"
#include "db/Connection.h"
#include "db/RecordSet.h"
#include "db/jet/FileStamp.h"
#include "events/GenCollection.h"

namespace vl {

/// The host writes the same file: so a write opens the connection when it is not open and always
/// closes it, and a read leaves it open only until the next write or `CloseDB`. No row is cached;
/// what is remembered are digests of pages, by which those are known that nobody has written.
///
/// No method throws and none changes the pending error; who must know why one failed asks
/// `LastError`.
class DBRemindUtils {
public:
    std::string DBFullName;  ///< UTF-8; empty: every open fails
    /// The longest waiting for others who have the file, in one statement: so short that a timer's
    /// tick is not felt. Who has asked for something waits longer.
    std::chrono::milliseconds Patience{200};
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

    /// As `OpenRS`, for a statement that is asked again and again and that no index serves: of
    /// pages of the table that are as they were nothing is decoded.
    std::shared_ptr<RecordSet> OpenRSAgain(const std::string& statement);

    /// Shows the rows of "SELECT * FROM ..." one after the other without keeping them, opening the
    /// database when it is not open: `visit` moves the stream through all of them, and begins
    /// anew when it is called again. False when that failed, also in the middle, or when `visit`
    /// threw.
    bool ForRows(std::string_view statement, const std::function<void(sql::RowStream&)>& visit);

    /// Runs a statement that writes and closes the database, whatever happened. Returns the number
    /// of rows it changed, 0 when it failed.
    std::int64_t Execute(std::string_view statement);

    /// Saves the changed fields of the current row in the row of `table` with the same `GUID` (as
    /// it was before), or a new row, and closes the database. Returns the number of rows written:
    /// 0 when it failed, when nothing was changed, and when the row is gone.
    std::int64_t UpdateRS(RecordSet& records, std::string_view table);

    /// Why the last `OpenDB`, `ReConnect`, `CloseAndOpenDB`, `OpenRS`, `Execute`, `UpdateRS`,
    /// `FieldExistsDB`, `AddField` or `GetDeletedCol` failed; `ErrNo::None` when it did not.
    /// `CloseDB` leaves it alone.
    ErrNo LastError() const noexcept { return lastError_; }
    /// The same in the engine's words, which name the file; empty when it did not fail.
    const std::string& LastErrorText() const noexcept { return lastErrorText_; }

    /// Why the rows cannot be read at the moment: what the last `OpenRS` met, and nothing when it
    /// gave its rows. (A statement that is no SQL says nothing about the file.)
    struct Trouble {
        ErrNo number = ErrNo::None;
        std::string text;  ///< as `LastErrorText`
    };
    const Trouble& ReadTrouble() const noexcept { return readTrouble_; }

    /// How the database looked at one moment, to be compared with a later one.
    class Look {
    public:
        /// Nothing has been written since, by others or by ourselves. A look at a file that could
        /// not be read, or one that was never taken, equals none.
        bool same(const Look& other) const noexcept;

    private:
        friend class DBRemindUtils;
        std::optional<jet::FileStamp> stamp_;
        std::string file_;
        std::uint64_t writes_ = 0;
    };
    /// Reads the file's size, its time stamp and half a kilobyte of it, whatever is open.
    Look TakeLook() const;

    const std::string& ConnectString() const noexcept { return connection_.ConnectionString(); }
    const vl::Connection& Connection() const noexcept { return connection_; }

    /// "yyyy-mm-dd", with " hh:mm:ss" unless the time is midnight; a literal of the dialect when
    /// enclosed.
    static std::string ToSQLDateTime(DateTime d, bool bHashTagEnclosed);
    /// So many keys in one statement are looked up; more of them make a scan.
    static constexpr std::size_t kKeysAtOnce = 500;
    /// In double quotes, those within doubled: a literal of the dialect, whatever stands in
    /// `value`.
    static std::string ToSQLText(std::string_view value);

    /// Whether the table and in it the column exist, without regard to case. Looks into the file
    /// by itself: the connection stays as it is.
    bool FieldExistsDB(std::string_view TName, std::string_view FieldName);

    // Types of columns as the host's data-access library counts them.
    static constexpr int kYesNo = 1;
    static constexpr int kDateTime = 8;
    static constexpr int kText = 10;

    /// Adds a column to a table that lacks it; texts may be empty there, and 255 characters long.
    /// Returns `ErrNo::None` when the column is there afterwards, else why not. The last three are
    /// accepted and not applied. Works on the file by itself: the connection stays as it is.
    ErrNo AddField(std::string_view TName2, std::string_view FieldName, int FType, int fsize = 0,
                   const Variant& DefaultValue = {}, bool isID = false);

    /// The GUIDs of the rows marked as deleted, in record order, each under itself. Never null.
    std::shared_ptr<GenCollection> GetDeletedCol();

    // ---- maintenance (DBMaintenance.cpp). What fails removes nothing.

    /// Removes the rows marked as deleted; returns how many there were.
    std::int64_t DeleteAllDeleted();
    /// Removes the event's row; nothing without a GUID.
    void DeleteDB(std::string_view sGUID);
    /// Empties the table.
    void DeleteAll();

    /// The host databases that events come from, each once, under its path; a missing one is the
    /// empty text. Never null.
    std::shared_ptr<GenCollection> VLBasesCol();
    /// Those of them whose path names no file. Never null.
    std::shared_ptr<GenCollection> DeletedVLBasesCol();
    /// The number of events of the host databases that are gone; `bDoDelete` removes them.
    std::int64_t DelDeletedVLBases(bool bDoDelete);

    /// The database is never compacted from here, and never backed up: both do nothing, and
    /// `Compact` is always false.
    static bool Compact(std::string_view fileName, bool AutoBackup = false) noexcept;
    static void Backup(std::string_view fileName) noexcept;

private:
    void clearError();
    std::shared_ptr<RecordSet> openRS(std::string_view statement, sql::ScanMemory* memory);
    std::int64_t execute(std::string_view statement, std::span<const sql::Parameter> parameters);
    template <class Step>
    bool step(Step&& s, Place where = Place::here());

    vl::Connection connection_;
    std::shared_ptr<jet::PageDigests> digests_ = std::make_shared<jet::PageDigests>();
    std::map<std::string, sql::ScanMemory> memories_;  // by statement
    ErrNo lastError_ = ErrNo::None;
    std::string lastErrorText_;
    Trouble readTrouble_;
    std::uint64_t writes_ = 0;  // statements that were to write, done or not
};

}  // namespace vl
