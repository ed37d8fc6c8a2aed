// An open or closed way to a database file.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "db/jet/Database.h"
#include "db/jet/PageDigests.h"
#include "db/sql/RowStream.h"
#include "db/sql/ScanMemory.h"
#include "db/sql/Sql.h"

namespace vl {

/// Takes its options before it is opened, under the names and with the values that data access
/// libraries give them. The file is opened for reading; the first statement that writes opens it
/// anew for both, and so it stays until `Close`.
/// `Open` and `Execute` throw `Error`, and leave the connection as it was.
class Connection {
public:
    static constexpr int kStateClosed = 0;
    static constexpr int kStateOpen = 1;
    static constexpr int kIsolated = 1'048'576;
    static constexpr int kServerSide = 2;

    int ConnectionTimeout = 15;  ///< seconds
    int CommandTimeout = 30;     ///< seconds
    int IsolationLevel = 4096;
    int CursorLocation = kServerSide;
    /// The longest waiting for others who have the file, in one statement.
    std::chrono::milliseconds Patience = jet::OpenOptions().patience;
    /// What is known of the file's pages beyond its closing; null: nothing.
    std::shared_ptr<jet::PageDigests> Digests;

    /// What it was last opened with, also when that failed; kept when it is closed.
    const std::string& ConnectionString() const noexcept { return connectionString_; }

    int State() const noexcept { return db_ ? kStateOpen : kStateClosed; }

    /// Opens the file that "Data Source=" names. User and password are those of a file without
    /// accounts: empty, or "admin" in the text. Throws `ErrNo::Exists` when it is open already,
    /// `ErrNo::NotFound` for an empty name, `ErrNo::Unsupported` for a user or a password, and
    /// whatever `jet::Database::open` throws.
    void Open(std::string_view connectionString, std::string_view user = {},
              std::string_view password = {});

    void Close() noexcept { db_.reset(); }

    /// One statement, as `sql::execute`. Throws `ErrNo::NotFound` on a closed connection.
    sql::Result Execute(std::string_view statement,
                        std::span<const sql::Parameter> parameters = {});
    /// The same for a query that is asked again and again.
    sql::Result Execute(std::string_view statement, sql::ScanMemory& memory);

    /// Shows the rows of a statement of which `sql::RowStream` is capable, as they are at one time:
    /// where somebody else wrote meanwhile, `visit` is called once more with a new stream.
    void ForRows(std::string_view statement, const std::function<void(sql::RowStream&)>& visit);

private:
    jet::OpenOptions options() const;
    void requireOpen() const;

    std::string connectionString_;
    std::string file_;
    std::optional<jet::Database> db_;
    jet::Access access_ = jet::Access::Read;
};

}  // namespace vl
