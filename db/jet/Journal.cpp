#include "Journal.h"

#include <algorithm>
#include <array>
#include <random>

#include "Bytes.h"
#include "Header.h"
#include "base/ErrorState.h"

namespace vl::jet {

namespace {

constexpr std::uint64_t kMagic = 0x00'31'4C'4E'52'4A'4C'56;  // "VLJRNL1"
constexpr std::size_t kHead = 512;                           // a sector: written whole or not
constexpr std::size_t kHeadSumAt = 40;
constexpr std::size_t kPageAt = 16;  // within a record
constexpr std::size_t kRecord = kPageAt + kPageSize;
constexpr std::size_t kPiece = std::size_t{256} << 10U;  // bytes written at once

// Any change of any bit changes it; chance passes one in 2^64.
std::uint64_t sumOf(ByteView bytes, std::uint64_t seed) {
    std::uint64_t sum = seed ^ 0x9E37'79B9'7F4A'7C15;
    for (std::size_t at = 0; at < bytes.size(); at += 8) {
        sum = (sum ^ u64(bytes, at)) * 0xFF51'AFD7'ED55'8CCD;
        sum ^= sum >> 32U;
    }
    return sum;
}

std::uint64_t recordSum(ByteView page, std::uint64_t salt, PageNo number) {
    return sumOf(page, salt + number);
}

struct Identity {
    std::uint64_t sum = 0;
    std::uint16_t counter = 0;
};

Identity identityOf(const File& database) {
    Page::Bytes page{};
    database.read(0, page);
    const Identity identity{0, u16(page, kOwnCommitWord)};
    store(std::span<std::byte>(page), kOwnCommitWord, std::uint16_t{0});
    return {sumOf(page, 0), identity.counter};
}

std::unique_ptr<File> openIfThere(FileSystem& files, const std::string& path, Access access) {
    try {
        return files.open(path, access);
    } catch (const Error& e) {
        if (e.number() == ErrNo::NotFound) {
            return nullptr;
        }
        throw;
    }
}

bool validHead(const File& file, std::span<std::byte> head) {
    if (file.size() < head.size()) {
        return false;
    }
    file.read(0, head);
    return u64(head, 0) == kMagic &&
           u64(head, kHeadSumAt) == sumOf(ByteView(head).first(kHeadSumAt), 0);
}

// Ended, or begun and cut off anywhere: what was not written yet reads as zeros.
bool isJournal(const File& file) {
    std::vector<std::byte> head(std::min<std::uint64_t>(file.size(), kHead));
    file.read(0, head);
    std::array<std::byte, 8> magic{};
    store(std::span<std::byte>(magic), 0, kMagic);
    const std::size_t length = std::min(head.size(), magic.size());
    return std::equal(magic.begin(), magic.begin() + static_cast<std::ptrdiff_t>(length),
                      head.begin()) ||
           std::all_of(head.begin(), head.end(), [](std::byte b) { return b == std::byte{0}; });
}

// The records stay: flushing a file whose size is as it was costs less.
void endJournal(File& file) {
    file.write(0, std::vector<std::byte>(kHead));
    file.flush();
}

}  // namespace

std::string journalOf(const std::string& database) { return database + ".journal"; }

bool tellsOfAChange(FileSystem& files, const std::string& database) {
    const auto file = openIfThere(files, journalOf(database), Access::Read);
    std::vector<std::byte> head(kHead);
    return file && validHead(*file, head);
}

void Journal::start(const File& database) {
    if (!file_ || !files_.names(path_, *file_)) {
        auto file = files_.openOrCreate(path_, database);
        if (!isJournal(*file)) {
            throw Error(ErrNo::Io, path_ +
                                       ": is no journal; the database beside it is not written "
                                       "while it has this name");
        }
        file_ = std::move(file);
        // Also of one that was there: who made it may have died before he came to that.
        nameFlushed_ = false;
    }
    std::random_device random;
    salt_ = (std::uint64_t{random()} << 32U) | random();
    const Identity identity = identityOf(database);
    head_.assign(kHead, std::byte{});
    const std::span<std::byte> head(head_);
    store(head, 0, kMagic);
    store(head, 8, salt_);
    store(head, 16, database.size());
    store(head, 24, identity.sum);
    store(head, 32, identity.counter);
    store(head, kHeadSumAt, sumOf(ByteView(head_).first(kHeadSumAt), 0));
    written_ = 0;
    waiting_ = head_;
    started_ = true;
}

void Journal::add(PageNo number, const Page::Bytes& bytes) {
    const std::size_t at = waiting_.size();
    waiting_.resize(at + kRecord);
    const auto record = std::span(waiting_).subspan(at);
    store(record, 0, number);
    store(record, 8, recordSum(bytes, salt_, number));
    std::copy(bytes.begin(), bytes.end(), record.begin() + kPageAt);
    if (waiting_.size() >= kPiece) {
        write(waiting_);
        waiting_.clear();
    }
}

void Journal::write(ByteView bytes) {
    file_->write(written_, bytes);
    written_ += bytes.size();
}

void Journal::flush() {
    write(waiting_);
    waiting_.clear();
    file_->flush();
    if (!nameFlushed_) {
        files_.flushFolderOf(path_);
        nameFlushed_ = true;
    }
}

void Journal::end() {
    endJournal(*file_);
    started_ = false;
}

void Journal::abandon() {
    started_ = false;
    waiting_.clear();
    const std::unique_ptr<File> file = std::move(file_);
    if (written_ > 0) {
        file->write(0, head_);
        file->flush();
    }
}

void Journal::removeIdle() {
    file_.reset();
    const auto file = openIfThere(files_, path_, Access::Read);
    std::vector<std::byte> head(kHead);
    if (file && isJournal(*file) && !validHead(*file, head)) {
        files_.remove(path_);
    }
}

std::optional<BrokenChange> BrokenChange::find(FileSystem& files, const std::string& path,
                                               const File& database) {
    auto file = openIfThere(files, journalOf(path), Access::Read);
    std::vector<std::byte> head(kHead);
    if (!file || !validHead(*file, head) || database.size() < kPageSize) {
        return std::nullopt;
    }
    const Identity now = identityOf(database);
    const std::uint16_t before = u16(head, 32);
    const bool ours = now.sum == u64(head, 24) && database.size() >= u64(head, 16) &&
                      (now.counter == before || now.counter == std::uint16_t(before + 1));
    if (!ours) {
        return std::nullopt;
    }
    BrokenChange change(std::move(file));
    change.size_ = u64(head, 16);
    change.counter_ = before;
    const std::uint64_t salt = u64(head, 8);
    const std::uint64_t size = change.journal_->size();
    std::vector<std::byte> record(kRecord);
    for (std::uint64_t at = kHead; at + kRecord <= size; at += kRecord) {
        change.journal_->read(at, record);
        const PageNo number = u32(record, 0);
        if (number >= change.pageCount() ||
            u64(record, 8) != recordSum(ByteView(record).subspan(kPageAt), salt, number)) {
            break;
        }
        change.records_.emplace_back(number, at + kPageAt);
    }
    std::sort(change.records_.begin(), change.records_.end());
    return change;
}

bool BrokenChange::read(PageNo number, std::span<std::byte> bytes) const {
    const auto found = std::lower_bound(records_.begin(), records_.end(),
                                        std::pair<PageNo, std::uint64_t>(number, 0));
    if (found == records_.end() || found->first != number) {
        return false;
    }
    journal_->read(found->second, bytes);
    return true;
}

void BrokenChange::takeBack(FileSystem& files, const std::string& path, File& database) const {
    const auto ending = files.open(journalOf(path), Access::ReadWrite);
    Page::Bytes page{};
    for (const auto& [number, at] : records_) {
        journal_->read(at, page);
        database.write(std::uint64_t{number} * kPageSize, page);
    }
    if (database.size() > size_) {
        database.truncate(size_);
    }
    std::array<std::byte, 2> word{};
    store(std::span<std::byte>(word), 0, counter_);
    database.write(kOwnCommitWord, word);
    database.flush();
    endJournal(*ending);
}

}  // namespace vl::jet
