// The engine's front: a Jet 4 file, its tables, their rows.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "db/jet/File.h"
#include "db/jet/Table.h"
#include "db/jet/Types.h"

namespace vl::jet {

struct Finding;

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
    /// Reads the first page only. Throws `Error`: `ErrNo::NotFound` when there is no such file,
    /// `ErrNo::Format` when it is no Jet 4 database (an older or later generation, encrypted, or
    /// anything else; the text says which), `ErrNo::Io` when the system refuses.
    static Database open(const std::string& path, Access access);
    /// The same over a file of the caller's kind; `name` stands in the texts of errors.
    static Database open(std::unique_ptr<File> file, std::string name, Access access);

    Database(Database&&) noexcept;
    Database& operator=(Database&&) noexcept;
    ~Database();

    const std::string& name() const noexcept;

    /// All tables of this file, system tables too, as the catalog has them now: pages read before
    /// are forgotten, so that what other programs wrote since is seen. Costs one pass over the
    /// catalog, usually one or two pages.
    std::vector<TableInfo> tables() const;

    /// The table of that name, without regard to case; as fresh as `tables()`. Throws `Error`
    /// (`ErrNo::NotFound`) when there is none.
    Table table(std::string_view name) const;

private:
    friend class Transaction;
    friend std::vector<Finding> checkDatabase(Database& db);
    explicit Database(std::unique_ptr<PageFile> file);

    std::unique_ptr<PageFile> file_;
};

}  // namespace vl::jet
