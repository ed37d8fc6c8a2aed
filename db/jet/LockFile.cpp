#include "LockFile.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <string_view>

#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl::jet {

namespace {

constexpr std::uint64_t kFirstUser = 0x10000001;
constexpr std::uint64_t kUsers = 255;
constexpr std::size_t kName = 32;
constexpr std::size_t kEntry = 2 * kName;
// What an engine without accounts calls its user.
constexpr std::string_view kUserName = "Admin";

std::string nameAt(ByteView entry, std::size_t at) {
    std::string name;
    for (const std::byte b : entry.subspan(at, kName)) {
        if (b == std::byte{0}) {
            break;
        }
        name += static_cast<char>(b);
    }
    return name;
}

void putName(std::span<std::byte> entry, std::size_t at, std::string_view name) {
    name = name.substr(0, kName - 1);
    std::transform(name.begin(), name.end(), entry.begin() + static_cast<std::ptrdiff_t>(at),
                   [](char c) { return static_cast<std::byte>(c); });
}

// Entries, the last one perhaps cut off by a crash. Every name ends with a zero, which no text has.
bool holdsEntries(const File& file) {
    const std::uint64_t size = file.size();
    if (size > kUsers * kEntry || (size > kEntry && size % kEntry != 0)) {
        return false;
    }
    std::array<std::byte, kEntry> entry{};
    for (std::uint64_t at = 0; at < size; at += kEntry) {
        const auto there = std::span(entry).first(std::min<std::size_t>(size - at, kEntry));
        file.read(at, there);
        if (std::find(there.begin(), there.end(), std::byte{0}) == there.end()) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::string lockFileOf(const std::string& database) {
    const std::size_t name = database.find_last_of("/\\") + 1;
    const std::size_t dot = database.rfind('.');
    return (dot != std::string::npos && dot > name ? database.substr(0, dot) : database) + ".ldb";
}

// Somebody's notes, or another database, may have that name.
void LockFile::checkKind(const File& database) const {
    if (files_.names(path_, database)) {
        throw Error(ErrNo::Io, path_ +
                                   ": cannot be written: a database of this name would be its "
                                   "own lock file; rename it");
    }
    if (!holdsEntries(*file_)) {
        throw Error(ErrNo::Io, path_ +
                                   ": is no lock file; the database beside it is not written "
                                   "while it has this name");
    }
}

bool LockFile::tryLock(const File& database) {
    assert(!locked_);
    // The last one who leaves removes the file. A lock on a removed one keeps nobody out.
    for (int times = 0; times < 3; ++times) {
        if (!file_) {
            file_ = files_.openOrCreate(path_, database);
        }
        locked_ = file_->tryLock(kFirstUser, kUsers, LockKind::Exclusive);
        if (files_.names(path_, *file_)) {
            break;
        }
        unlock();
        file_.reset();
    }
    if (!locked_) {
        return false;
    }
    std::array<std::byte, kEntry> entry{};
    putName(entry, 0, computerName());
    putName(entry, kName, kUserName);
    try {
        checkKind(database);
        file_->write(0, entry);
    } catch (const Error&) {
        unlock();
        throw;
    }
    return true;
}

void LockFile::unlock() noexcept {
    if (locked_) {
        file_->unlock(kFirstUser, kUsers);
        locked_ = false;
    }
}

std::string LockFile::holder() {
    try {
        const auto file = files_.open(path_, Access::Read);
        for (std::uint64_t user = 0; user < kUsers; ++user) {
            if (!file->heldByOthers(kFirstUser + user)) {
                continue;
            }
            std::array<std::byte, kEntry> entry{};
            if (file->size() >= (user + 1) * kEntry) {
                file->read(user * kEntry, entry);
            }
            const std::string computer = nameAt(entry, 0);
            return computer.empty()
                       ? "user " + std::to_string(user + 1) + ", who gives no name"
                       : "user \"" + nameAt(entry, kName) + "\" on computer \"" + computer + "\"";
        }
    } catch (const Error& e) {
        return "somebody whom the lock file does not tell (" + std::string(e.what()) + ")";
    }
    return "somebody who is just leaving";
}

void LockFile::remove() {
    assert(locked_);
    locked_ = false;
    files_.closeAndRemove(std::move(file_), path_);
}

}  // namespace vl::jet
