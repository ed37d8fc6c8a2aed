#include "PageFile.h"

#include <algorithm>
#include <limits>

#include "Bytes.h"
#include "Header.h"
#include "base/ErrorState.h"

namespace vl::jet {

namespace {

// The word of the first user who shares the file. Only its two bytes are written: the others
// belong to others.
void raiseCounter(File& file) {
    constexpr std::uint64_t kWord = kCommitWords + 2;
    std::array<std::byte, 2> word{};
    file.read(kWord, word);
    store(std::span<std::byte>(word), 0, static_cast<std::uint16_t>(u16(word, 0) + 1));
    file.write(kWord, word);
}

}  // namespace

PageFile::PageFile(std::unique_ptr<File> file, std::string name, Access access)
    : file_(std::move(file)), name_(std::move(name)), access_(access), frames_(kFrames) {
    refresh();
}

Page PageFile::page(PageNo number) {
    const Origin origin{name_, number};
    if (number >= pageCount_) {
        origin.corrupt("is pointed to, but the file has " + std::to_string(pageCount_) + " pages");
    }
    if (const auto changed = changed_.find(number); changed != changed_.end()) {
        return {changed->second, origin};
    }
    Frame& frame = frames_[number % kFrames];
    if (frame.bytes && frame.number == number) {
        return {frame.bytes, origin};
    }
    // Whoever still looks at the page that stood here keeps its bytes.
    std::shared_ptr<Page::Bytes> bytes = std::move(frame.bytes);
    if (!bytes || bytes.use_count() != 1) {
        bytes = std::make_shared<Page::Bytes>();
    }
    file_->read(std::uint64_t{number} * kPageSize, *bytes);
    frame.number = number;
    frame.bytes = std::move(bytes);
    return {frame.bytes, origin};
}

void PageFile::refresh() {
    if (changing_) {
        return;  // nobody else writes, and the file has not all of it yet
    }
    frames_.assign(kFrames, Frame{});
    pageCount_ = static_cast<PageNo>(
        std::min<std::uint64_t>(file_->size() / kPageSize, std::numeric_limits<PageNo>::max()));
}

void PageFile::writePage(PageNo number, const Page::Bytes& bytes) {
    if (changing_) {
        changed_[number] = std::make_shared<const Page::Bytes>(bytes);
        return;
    }
    Frame& frame = frames_[number % kFrames];
    frame.bytes.reset();  // after a failed write nobody knows what the page holds
    file_->write(std::uint64_t{number} * kPageSize, bytes);
    frame.bytes = std::make_shared<Page::Bytes>(bytes);
    frame.number = number;
}

PageNo PageFile::appendPage() {
    if (!changing_) {
        throw Error(ErrNo::Unexpected, name_ + ": grows outside a transaction");
    }
    changed_[pageCount_] = std::make_shared<const Page::Bytes>();
    return pageCount_++;
}

void PageFile::begin() {
    if (access_ != Access::ReadWrite) {
        throw Error(ErrNo::ReadOnly, name_ + ": is open for reading only");
    }
    if (changing_) {
        throw Error(ErrNo::Unexpected, name_ + ": a transaction is open already");
    }
    refresh();  // what others wrote to the same pages since must not be undone
    changing_ = true;
    countBefore_ = pageCount_;
}

void PageFile::commit() {
    if (!changed_.empty()) {
        frames_.assign(kFrames, Frame{});
        for (const auto& [number, bytes] : changed_) {
            file_->write(std::uint64_t{number} * kPageSize, *bytes);
        }
        file_->flush();
        raiseCounter(*file_);
    }
    changed_.clear();
    changing_ = false;
}

void PageFile::rollback() noexcept {
    if (changing_) {
        pageCount_ = countBefore_;
        changed_.clear();
        changing_ = false;
    }
}

}  // namespace vl::jet
