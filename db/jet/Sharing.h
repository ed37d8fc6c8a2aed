// How copies of this program and other engines get along on one file.
//
// What it rests on:
//  1. Who writes holds the lock file's user bytes from the beginning of a change to its end
//     (`LockFile`): one writer at a time, and no other engine.
//  2. Before the first page of the file is overwritten the writer holds the byte "reading"
//     exclusively, until the journal is ended. Readers share it for as long as what they read must
//     be one state. So a reader never sees half a change, and a journal that is valid while one
//     holds that byte is of a writer who died.
//  3. Who wants "reading" passes "waiting" before, which a writer keeps: readers that follow each
//     other closely cannot keep him out for ever.
//  4. Who waits for the right to write holds the byte "turn": one who writes without a pause cannot
//     keep him out either.
//  5. These bytes lie in the database itself, where no file of this format ends: reading needs no
//     lock file and no right to write. Another engine takes no notice of them, and none of its
//     locks is in their way.
//  6. Who writes also holds the byte "writing" of the database: one writer at a time also where
//     folders give one file several lock files. A file with several names of its own is not
//     written at all, since a journal lies beside one of them only.
//  7. Who puts another file in the place of one keeps the right to write until that has the name.
//     So the name is asked for again by who has got the right.
//  8. A broken-off change is taken back by who has the right to write and keeps readers out; one
//     who has not reads the old pages out of the journal.
#pragma once

#include <optional>
#include <string>

#include "Journal.h"
#include "LockFile.h"
#include "db/jet/File.h"
#include "db/jet/OpenOptions.h"

namespace vl::jet {

/// The bytes that keep readers and writers apart, of one open database.
class DataLock {
public:
    /// False: a writer is at it, or waits.
    bool tryShared(File& database);
    /// From nothing or shared. False: others read, or write; the lock is as it was, but who asks
    /// next waits until `release`.
    bool tryExclusive(File& database);
    /// Keeps the share of it when `stillReading`; only for who has the right to write.
    void release(File& database, bool stillReading) noexcept;

private:
    enum class State { None, Shared, Exclusive };
    State state_ = State::None;
    bool waiting_ = false;
};

/// One open database among others. Every waiting is bounded by the options' patience, counted over
/// a change or the beginning of a reading; then comes `ErrNo::Locked`.
class Sharing {
public:
    /// Throws `Error` (`ErrNo::Io`) as `FileSystem::fileBehind`.
    Sharing(const std::string& path, const OpenOptions& options);
    Sharing(const Sharing&) = delete;
    Sharing& operator=(const Sharing&) = delete;
    ~Sharing() = default;

    /// Keeps writers out. Takes a broken-off change back; gives it when that cannot be done now.
    /// Throws `FileReplaced`, as `beginWriting` does.
    std::optional<BrokenChange> beginReading(File& database);
    void endReading(File& database) noexcept;

    /// The right to write, with all broken-off changes taken back; `reading`: this open file reads
    /// already. Throws `ErrNo::Locked`, saying who has the file; `ErrNo::Io` also for one that has
    /// several names.
    void beginWriting(File& database, bool reading);
    /// Before the first page is written; again costs nothing.
    void keepReadersOut(File& database);
    Journal& journal() noexcept { return journal_; }
    /// After a failed commit: gives the database back what it held.
    void takeBack(File& database);
    void endWriting(File& database, bool stillReading) noexcept;
    /// With the right to write, which stays: the file `by` gets this one's name, rights and owner,
    /// and is open then. Throws `ErrNo::Io`; `database` is none then when it cannot even be opened.
    void replace(std::unique_ptr<File>& database, const std::string& by, Access access);
    /// Called last: removes journal and lock file, if there may be any, unless somebody needs them.
    void close(File& database) noexcept;

    void setPatience(std::chrono::milliseconds most) noexcept { most_ = most; }

private:
    std::optional<BrokenChange> brokenChange(const File& database) const;
    void checkName(const File& database) const;
    void checkOnlyName(const File& database) const;
    void share(File& database);
    void lockForWriting(File& database);
    bool tryToWrite(File& database);
    void takeBackIfPossible();
    void startWaiting() { patience_ = Patience(*waiter_, most_); }

    FileSystem* files_;
    Waiter* waiter_;
    std::chrono::milliseconds most_;
    Patience patience_;
    std::string path_;  // as it was given
    std::string real_;  // where it leads, when it is a link
    bool takesBack_;
    LockFile lockFile_;
    Journal journal_;
    DataLock dataLock_;
    bool hasWritten_ = false;
};

}  // namespace vl::jet
