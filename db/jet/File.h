// The file layer: the only place of the engine with system calls. Tests put memory in its place.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "db/jet/Types.h"

namespace vl::jet {

enum class LockKind { Shared, Exclusive };

/// What tells a file from another that has, or had, its name. Zeros where nobody can tell.
struct FileIdentity {
    std::uint64_t volume = 0;
    std::uint64_t number = 0;
    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

/// An open file, closed by its destructor. Every method throws `Error` (`ErrNo::Io`, with the
/// system's reason) when the system refuses; what a failed write left behind is not known.
class File {
public:
    virtual ~File() = default;

    virtual FileIdentity identity() const { return {}; }
    virtual std::uint64_t size() const = 0;
    /// When it was last written, counted as the system does: two different numbers mean that
    /// somebody wrote, two equal ones nothing.
    virtual std::int64_t modified() const = 0;
    /// Fills `bytes` from `offset` on; a file that ends before is an error.
    virtual void read(std::uint64_t offset, std::span<std::byte> bytes) const = 0;
    virtual void write(std::uint64_t offset, ByteView bytes) = 0;
    virtual void truncate(std::uint64_t size) = 0;
    /// Returns when what was written is on the disk.
    virtual void flush() = 0;

    /// Locks `count` bytes, which may lie past the end, without waiting. Two open files exclude
    /// each other, in one process too; closing lets go. A range must not overlap one that this open
    /// file has locked, and is given back as it was taken. False: somebody else holds some of it.
    /// Throws `ErrNo::Unsupported` where the system has no such locks. An exclusive lock needs a
    /// file open for writing.
    virtual bool tryLock(std::uint64_t first, std::uint64_t count, LockKind kind) = 0;
    virtual void unlock(std::uint64_t first, std::uint64_t count) noexcept = 0;
    /// Whether another open file has locked the byte; asked only for what this one has not locked.
    virtual bool heldByOthers(std::uint64_t at) = 0;
    /// Who has locked it, in words ("process 4711 (remindb)"); empty when the system does not tell.
    virtual std::string holderOf(std::uint64_t /*at*/) { return {}; }

protected:
    File() = default;
    File(const File&) = default;
    File& operator=(const File&) = default;
};

/// Where files are found by name; names are UTF-8. Every method throws `Error` (`ErrNo::Io`) when
/// the system refuses.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    /// Opens an existing file. Throws at once for what is there and no file, as `fileBehind`;
    /// `ErrNo::NotFound` when there is none, `ErrNo::Locked` when
    /// another program keeps it to itself (on Windows).
    virtual std::unique_ptr<File> open(const std::string& path, Access access) = 0;
    /// Opens a file for both, and makes an empty one where there is none; those who may use `like`
    /// may use that, too.
    virtual std::unique_ptr<File> openOrCreate(const std::string& path, const File& like) = 0;
    /// Makes an empty file for both; those who may use `like` may use that, too. Throws
    /// `ErrNo::Exists` when there is something of that name, which stays as it is.
    virtual std::unique_ptr<File> createNew(const std::string& path, const File& like) = 0;
    /// The file that a name stands for: where it is a link, what that leads to, though it may not
    /// be there yet; else the name as it is. Throws `ErrNo::Io` for what is there and no file: a
    /// folder, a device, a pipe.
    virtual std::string fileBehind(const std::string& path) = 0;
    /// How many names the file has itself, links to names not counted.
    virtual std::uint64_t nameCount(const File& file) = 0;
    /// Gives the file of that name the rights and the owner of `like`, as far as the system lets.
    virtual void shareRights(const std::string& path, const File& like) = 0;
    /// Whether the name still leads to that open file: it may have been removed, or another put
    /// into its place.
    virtual bool names(const std::string& path, const File& file) = 0;
    /// What is not there is removed already.
    virtual void remove(const std::string& path) = 0;
    /// Removes the file of that name, which is `file`, unless others have it open and the system
    /// minds. Where the system can, its locks hold until it is gone.
    virtual void closeAndRemove(std::unique_ptr<File> file, const std::string& path) = 0;
    /// `from` gets the name `to`; what had that name is replaced. After a crash one of both is
    /// there under it.
    virtual void rename(const std::string& from, const std::string& to) = 0;
    /// Returns when the names of files made, renamed or removed in the folder that `path` lies in
    /// are on the disk.
    virtual void flushFolderOf(const std::string& path) = 0;

protected:
    FileSystem() = default;
    FileSystem(const FileSystem&) = default;
    FileSystem& operator=(const FileSystem&) = default;
};

/// The machine's own.
FileSystem& systemFiles();

/// A name for a file that is to be made beside `path`: its own, a mark that is another one each
/// time, and ".new".
std::string nameBeside(const std::string& path);

/// What others know this machine by; empty when it has no name.
std::string computerName();

/// `systemFiles().open`.
std::unique_ptr<File> openFile(const std::string& path, Access access);

}  // namespace vl::jet
