#include "Sharing.h"

#include <cassert>

#include "base/ErrorState.h"
#include "db/jet/FileReplaced.h"

namespace vl::jet {

namespace {

// Past the 2 GiB that a file of this format can have.
constexpr std::uint64_t kWaiting = 0xC0000001;
constexpr std::uint64_t kReading = 0xC0000002;
constexpr std::uint64_t kTurn = 0xC0000003;
constexpr std::uint64_t kWriting = 0xC0000004;

}  // namespace

bool DataLock::tryShared(File& database) {
    assert(state_ == State::None);
    if (!database.tryLock(kWaiting, 1, LockKind::Shared)) {
        return false;
    }
    const bool got = database.tryLock(kReading, 1, LockKind::Shared);
    database.unlock(kWaiting, 1);
    if (got) {
        state_ = State::Shared;
    }
    return got;
}

bool DataLock::tryExclusive(File& database) {
    if (state_ == State::Exclusive) {
        return true;
    }
    waiting_ = waiting_ || database.tryLock(kWaiting, 1, LockKind::Exclusive);
    if (!waiting_) {
        return false;
    }
    // A share of our own would be in our way. Nobody writes while it is gone: who could has the
    // right to, and that is us.
    if (state_ == State::Shared) {
        database.unlock(kReading, 1);
    }
    if (database.tryLock(kReading, 1, LockKind::Exclusive)) {
        state_ = State::Exclusive;
        return true;
    }
    if (state_ == State::Shared) {
        database.tryLock(kReading, 1, LockKind::Shared);
    }
    return false;
}

void DataLock::release(File& database, bool stillReading) noexcept {
    if (state_ == State::Exclusive || (state_ == State::Shared && !stillReading)) {
        database.unlock(kReading, 1);
        state_ = State::None;
    }
    if (stillReading && state_ == State::None) {
        const ErrScope scope;
        attempt([&] {
            if (database.tryLock(kReading, 1, LockKind::Shared)) {
                state_ = State::Shared;
            }
        });
    }
    if (waiting_) {
        database.unlock(kWaiting, 1);
        waiting_ = false;
    }
}

Sharing::Sharing(const std::string& path, const OpenOptions& options)
    : files_(options.files),
      waiter_(options.waiter),
      most_(options.patience),
      patience_(*waiter_, most_),
      path_(path),
      real_(files_->fileBehind(path)),
      takesBack_(options.takesBack),
      lockFile_(*files_, real_),
      journal_(*files_, real_) {}

std::optional<BrokenChange> Sharing::brokenChange(const File& database) const {
    return BrokenChange::find(*files_, real_, database);
}

// Whoever opened the old file would read what no longer is, and write what nobody finds.
void Sharing::checkName(const File& database) const {
    if (!files_->names(real_, database) || (path_ != real_ && !files_->names(path_, database))) {
        throw FileReplaced(path_);
    }
}

// Who comes by another name has another lock file and another journal, beside that name.
void Sharing::checkOnlyName(const File& database) const {
    if (const std::uint64_t names = files_->nameCount(database); names > 1) {
        throw Error(ErrNo::Io, path_ + ": cannot be written: the file has " +
                                   std::to_string(names) +
                                   " names (hard links); remove or copy the others");
    }
}

void Sharing::share(File& database) {
    bool shared = false;
    try {
        shared = patience_.until([&] { return dataLock_.tryShared(database); });
    } catch (const Error& e) {
        if (e.number() != ErrNo::Unsupported) {
            throw;
        }
        shared = true;  // where nothing can be locked, nobody of us can write
    }
    if (!shared) {
        throw Error(ErrNo::Locked, path_ + ": is being written by " + lockFile_.holder());
    }
    try {
        checkName(database);
    } catch (const Error&) {
        endReading(database);
        throw;
    }
}

std::optional<BrokenChange> Sharing::beginReading(File& database) {
    startWaiting();
    share(database);
    try {
        std::optional<BrokenChange> broken = brokenChange(database);
        if (broken && takesBack_) {
            broken.reset();
            endReading(database);
            takeBackIfPossible();
            share(database);
            broken = brokenChange(database);
        }
        return broken;
    } catch (const Error&) {
        endReading(database);
        throw;
    }
}

void Sharing::endReading(File& database) noexcept { dataLock_.release(database, false); }

// A reader's file may be open for reading only, and its lock is not one to write with: this opens
// the file anew. Where it fails the reader has the journal to read from, and the next one tries
// again.
void Sharing::takeBackIfPossible() {
    const ErrScope scope;
    attempt([&] {
        const auto database = files_->open(real_, Access::ReadWrite);
        checkOnlyName(*database);
        LockFile lockFile(*files_, real_);
        if (!database->tryLock(kWriting, 1, LockKind::Exclusive) || !lockFile.tryLock(*database)) {
            return;
        }
        checkName(*database);
        DataLock lock;
        if (patience_.until([&] { return lock.tryExclusive(*database); })) {
            if (const auto broken = brokenChange(*database)) {
                broken->takeBack(*files_, real_, *database);
            }
            Journal(*files_, real_).removeIdle();
        }
        lockFile.remove();
    });
}

bool Sharing::tryToWrite(File& database) {
    if (!database.tryLock(kWriting, 1, LockKind::Exclusive)) {
        return false;
    }
    try {
        if (lockFile_.tryLock(database)) {
            return true;
        }
    } catch (const Error&) {
        database.unlock(kWriting, 1);
        throw;
    }
    database.unlock(kWriting, 1);
    return false;
}

void Sharing::lockForWriting(File& database) {
    bool locked = patience_.until([&] { return database.tryLock(kTurn, 1, LockKind::Exclusive); });
    if (locked) {
        try {
            locked = patience_.until([&] { return tryToWrite(database); });
        } catch (const Error&) {
            database.unlock(kTurn, 1);
            throw;
        }
        database.unlock(kTurn, 1);
    }
    if (!locked) {
        throw Error(ErrNo::Locked, path_ + ": is in use by " + lockFile_.holder());
    }
}

void Sharing::beginWriting(File& database, bool reading) {
    startWaiting();
    checkName(database);
    checkOnlyName(database);
    lockForWriting(database);
    hasWritten_ = true;
    try {
        checkName(database);
    } catch (const Error&) {
        const ErrScope scope;
        attempt([&] { lockFile_.remove(); });  // nobody comes back to it
        endWriting(database, reading);
        throw;
    }
    try {
        if (const auto broken = brokenChange(database)) {
            keepReadersOut(database);
            broken->takeBack(*files_, real_, database);
            dataLock_.release(database, reading);
        }
    } catch (const Error&) {
        endWriting(database, reading);
        throw;
    }
}

void Sharing::keepReadersOut(File& database) {
    if (!patience_.until([&] { return dataLock_.tryExclusive(database); })) {
        const std::string who = database.holderOf(kReading);
        throw Error(ErrNo::Locked,
                    path_ + ": is being read by " +
                        (who.empty() ? "somebody whom the system does not tell" : who));
    }
}

void Sharing::takeBack(File& database) {
    journal_.abandon();
    if (const auto broken = brokenChange(database)) {
        broken->takeBack(*files_, real_, database);
    }
}

void Sharing::endWriting(File& database, bool stillReading) noexcept {
    dataLock_.release(database, stillReading);
    lockFile_.unlock();
    database.unlock(kWriting, 1);
}

void Sharing::replace(std::unique_ptr<File>& database, const std::string& by, Access access) {
    files_->shareRights(by, *database);
    // Not every system replaces a file that is open. The lock file keeps writers out meanwhile.
    database.reset();
    try {
        files_->rename(by, real_);
    } catch (const Error&) {
        database = files_->open(real_, access);
        throw;
    }
    database = files_->open(real_, access);
    files_->flushFolderOf(real_);
}

void Sharing::close(File& database) noexcept {
    if (!hasWritten_) {
        return;
    }
    const ErrScope scope;
    attempt([&] {
        if (files_->names(real_, database) && lockFile_.tryLock(database)) {
            journal_.removeIdle();
            lockFile_.remove();
        }
    });
}

}  // namespace vl::jet
