// The engine's front: a Jet 4 file, its tables, their rows.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "db/jet/File.h"
#include "db/jet/OpenOptions.h"
#include "db/jet/Table.h"
#include "db/jet/Types.h"
#include "db/jet/define/NewTable.h"

namespace vl::jet {

class TableCache;
struct Finding;
struct CopyReport;

struct TableInfo {
    std::string name;
    std::uint32_t definitionPage = 0;
    /// A table of the engine's or the desktop product's own.
    bool system = false;
};

/// An open Jet 4 file. Tables and cursors refer to it and must not outlive it; moving it leaves
/// them valid. All methods throw `Error`, whose text names the file and, for damage
/// (`ErrNo::Corrupt`), the page. Not for several threads at once.
class Database {
public:
    /// Reads the first page only. A change that was broken off by a crash is taken back first, or,
    /// where that cannot be done now, what it changed is read as it was before. Throws `Error`:
    /// `ErrNo::NotFound` when there is no such file, `ErrNo::Format` when it is no Jet 4 database
    /// (an older or later generation, encrypted, or anything else; the text says which),
    /// `ErrNo::Locked` when somebody writes for longer than we wait, `ErrNo::Io` when the system
    /// refuses.
    static Database open(const std::string& path, Access access, const OpenOptions& options = {});
    /// The same over a file of the caller's kind that nobody else has: without locks, and without a
    /// journal. `name` stands in the texts of errors.
    static Database open(std::unique_ptr<File> file, std::string name, Access access);

    /// Makes a new file, without any table of a user's but what `fill` makes in it, and opens it
    /// for writing. It is on the disk as a whole before this returns, or there is none: `fill`
    /// works on it in memory. Throws `Error`: `ErrNo::Exists` when there is something at `path`,
    /// `ErrNo::NotFound` when its folder is not there, `ErrNo::Unsupported` for a name that its
    /// lock file has (".ldb"), `ErrNo::Io`, and what `fill` throws.
    static Database create(const std::string& path,
                           const std::function<void(Database&)>& fill = {});

    Database(Database&&) noexcept;
    Database& operator=(Database&&) noexcept;
    ~Database();

    const std::string& name() const noexcept;

    /// Copies the file as it is at one moment to `target`, which is replaced when the copy is whole
    /// and on the disk; where that is a link, the file that it leads to. Throws `Error`:
    /// `ErrNo::Exists` when that is this file, or a change of it was broken off, `ErrNo::Locked`
    /// when others write all the time, `ErrNo::Io`, also when it is a folder or a device; `target`
    /// is then as it was.
    void backUp(const std::string& target, FileSystem& files = systemFiles()) const;

    /// Instead of the commit of an open transaction in which nothing was written: the file `made`,
    /// in the same folder, takes the place of this one, with its rights and its owner. Whoever
    /// waits to write learns that it was replaced. Throws `Error`: `ErrNo::Locked` when another
    /// engine has written meanwhile, `ErrNo::Io`; the file is then as it was, and this of no use
    /// any more.
    void replaceBy(const std::string& made);
    /// Opens what the name leads to now, as it was opened before; what refers to this is to be
    /// gone. False, and nothing was done, while there is a transaction, a guard or a cursor. Throws
    /// as `open`.
    bool openAnew();

    /// The longest waiting for others in one statement, from now on.
    void setPatience(std::chrono::milliseconds most) noexcept;

    /// All tables of this file, system tables too, as the catalog has them now. Costs one pass over
    /// the catalog, usually one or two pages; a look at the file when nobody wrote since the last
    /// time.
    std::vector<TableInfo> tables() const;

    /// The table of that name, without regard to case; as fresh as `tables()`. Throws `Error`
    /// (`ErrNo::NotFound`) when there is none.
    Table table(std::string_view name) const;

    // Changes of tables. Each is part of the open transaction, or one of its own where none is
    // open; `Table` objects of the changed table are to be asked for anew. Names are compared
    // without regard to case. Throws `Error` and has changed nothing: `ErrNo::ReadOnly`;
    // `ErrNo::Syntax` for a name that is none; `ErrNo::Exists` for one that is taken;
    // `ErrNo::NotFound` for a table, column or index that is not there; `ErrNo::Overflow` for too
    // many columns or indexes, a name, a column or a row that is too long; `ErrNo::Unsupported` for
    // what cannot be made or changed, tables of the engine's own among it. Throws `ErrNo::Corrupt`,
    // `ErrNo::Io`: the transaction is then to be taken back.

    /// A table without rows. A name that a query has is taken, too.
    void createTable(std::string_view name, std::span<const NewColumn> columns,
                     std::span<const NewIndex> indexes = {});

    /// One more column; the rows that are there hold null in it, or false. Costs no look at them.
    void addColumn(std::string_view table, const NewColumn& column);

    /// One more index, with the rows that are there. Throws `ErrNo::Exists` when it is to be unique
    /// and two rows have the same values, `ErrNo::TypeMismatch` for a null where it requires
    /// values. Costs one pass over the table, and memory for a key of each row.
    void createIndex(std::string_view table, const NewIndex& index);

    /// The index; its keys' pages are free then. One by which a relationship is kept is refused.
    void dropIndex(std::string_view table, std::string_view name);

    /// The table, its rows and indexes; their pages are free then. One that has relationships with
    /// other tables is refused.
    void dropTable(std::string_view name);

private:
    friend class ReadGuard;
    friend class Transaction;
    friend std::vector<Finding> checkDatabase(Database& db);
    friend CopyReport copyTables(Database& source, Database& target);
    friend CopyReport salvage(const std::string& path, Database& target,
                              const OpenOptions& options);
    friend CopyReport salvage(std::unique_ptr<File> source, const std::string& name,
                              Database& target);
    explicit Database(std::unique_ptr<PageFile> file, const OpenOptions& options = {});
    template <class Step>
    void change(Step&& step);

    std::unique_ptr<PageFile> file_;
    std::unique_ptr<TableCache> cache_;
    OpenOptions options_;
};

}  // namespace vl::jet
