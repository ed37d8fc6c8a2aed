// The lock file that engines of this format keep beside a database while they have it open.
#pragma once

#include <memory>
#include <string>

#include "db/jet/File.h"

namespace vl::jet {

/// The name of a database's lock file: the extension is replaced by ".ldb".
std::string lockFileOf(const std::string& database);

/// The right to write: nobody else has the database open for writing, no other engine at all.
///
/// Each user of another engine holds one byte of the lock file, from 10000001 (hexadecimal) on, as
/// long as he has the database open; which one also tells his entry in the file, 32 bytes computer
/// and 32 bytes user. We take all 255 for the time of a change, so that neither gets in between.
/// Reading takes none: it disturbs nobody and leaves no file behind.
/// Source: docs/jet4.md, "Beside others".
class LockFile {
public:
    LockFile(FileSystem& files, const std::string& database)
        : files_(files), path_(lockFileOf(database)) {}
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;
    /// Leaves the file where it is.
    ~LockFile() = default;

    /// Makes the lock file when there is none; one that others may use who may use `database`.
    /// False: somebody has it. Throws `Error`: `ErrNo::Io` where no file can be made, and where
    /// one stands that is none of these, the database itself perhaps: it stays as it is;
    /// `ErrNo::Unsupported` where there are no locks.
    bool tryLock(const File& database);
    void unlock() noexcept;
    bool locked() const noexcept { return locked_; }

    /// While it is not locked: who has the database open, in words.
    std::string holder();

    /// Ends the lock by removing the file.
    void remove();

private:
    void checkKind(const File& database) const;

    FileSystem& files_;
    std::string path_;
    std::unique_ptr<File> file_;
    bool locked_ = false;
};

}  // namespace vl::jet
