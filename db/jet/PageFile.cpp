#include "PageFile.h"

#include <algorithm>
#include <cassert>
#include <limits>

#include "Header.h"
#include "Sharing.h"
#include "base/ErrorState.h"

namespace vl::jet {

PageFile::PageFile(std::unique_ptr<File> file, std::string name, Access access)
    : file_(std::move(file)),
      name_(std::move(name)),
      access_(access),
      frames_(kFrames),
      mostChanged_(std::numeric_limits<std::size_t>::max()) {
    refresh();
}

PageFile::PageFile(std::unique_ptr<File> file, std::string path, Access access,
                   const OpenOptions& options)
    : PageFile(std::move(file), std::move(path), access) {
    sharing_ = std::make_unique<Sharing>(name_, options);
    mostChanged_ = options.mostChangedPages;
    digests_ = options.digests;
}

PageFile::~PageFile() {
    rollback();
    if (sharing_ && file_) {
        sharing_->close(*file_);
    }
}

Page PageFile::page(PageNo number) {
    const Origin origin{name_, number};
    if (number >= pageCount_) {
        origin.corrupt("is pointed to, but the file has " + std::to_string(pageCount_) + " pages");
    }
    if (const auto changed = changed_.find(number); changed != changed_.end()) {
        return {changed->second, origin};
    }
    return {load(number), origin};
}

// In a transaction, and while a broken-off change stands in the way, pages are not what the file
// holds. Who asks for one page's digest mostly asks for those behind it next; only for that pages
// need no place among the frames.
std::uint64_t PageFile::digest(PageNo number) {
    if (!digests_ || changing_ || broken_ || number >= pageCount_) {
        return digestOf(page(number).bytes().first<kPageSize>());
    }
    if (const std::uint64_t known = digests_->find(this, number); known != 0) {
        return known;
    }
    const Frame& frame = frames_[number % kFrames];
    if (frame.bytes && frame.number == number) {
        const std::uint64_t digest = digestOf(*frame.bytes);
        digests_->keep(this, number, digest);
        return digest;
    }
    constexpr PageNo kAhead = 16;
    std::array<std::byte, kAhead * kPageSize> run;
    const auto bytes = std::span(run).first(std::min(kAhead, pageCount_ - number) * kPageSize);
    file_->read(std::uint64_t{number} * kPageSize, bytes);
    std::uint64_t digest = 0;
    for (std::size_t at = bytes.size(); at > 0; at -= kPageSize) {
        digest = digestOf(ByteView(bytes).subspan(at - kPageSize).first<kPageSize>());
        digests_->keep(this, number + static_cast<PageNo>(at / kPageSize) - 1, digest);
    }
    return digest;
}

std::shared_ptr<Page::Bytes> PageFile::load(PageNo number) {
    Frame& frame = frames_[number % kFrames];
    if (frame.bytes && frame.number == number) {
        return frame.bytes;
    }
    // Whoever still looks at the page that stood here keeps its bytes.
    std::shared_ptr<Page::Bytes> bytes = std::move(frame.bytes);
    if (!bytes || bytes.use_count() != 1) {
        bytes = std::make_shared<Page::Bytes>();
    }
    if (!broken_ || !broken_->read(number, *bytes)) {
        file_->read(std::uint64_t{number} * kPageSize, *bytes);
    }
    frame.number = number;
    frame.bytes = std::move(bytes);
    return frame.bytes;
}

void PageFile::forget(PageNo number) noexcept {
    Frame& frame = frames_[number % kFrames];
    if (frame.number == number) {
        frame.bytes.reset();
    }
}

FileLook PageFile::look() const {
    FileLook now{file_->identity(), file_->size(), file_->modified(), {}};
    if (now.size >= kPageSize) {
        file_->read(kCommitWords, now.commitWords);
    }
    return now;
}

void PageFile::refresh() {
    if (changing_) {
        return;  // nobody else writes, and the file has not all of it yet
    }
    frames_.assign(kFrames, Frame{});
    ++definitionsStamp_;
    if (readers_ == 0) {
        known_.reset();  // else it tells how the file was when the reading began
    }
    pageCount_ = broken_ ? broken_->pageCount()
                         : static_cast<PageNo>(std::min<std::uint64_t>(
                               file_->size() / kPageSize, std::numeric_limits<PageNo>::max()));
}

void PageFile::refreshIfChanged() {
    const FileLook now = look();
    if (known_ != now) {
        refresh();
        known_ = now;
    }
    if (digests_) {
        digests_->use(this, now);
    }
}

void PageFile::beginReading() {
    if (readers_ == 0 && !changing_) {
        if (sharing_) {
            if (auto broken = sharing_->beginReading(*file_)) {
                broken_ = std::make_unique<BrokenChange>(std::move(*broken));
                known_.reset();
            }
        }
        try {
            refreshIfChanged();
        } catch (const Error&) {
            ++readers_;
            endReading();
            throw;
        }
    }
    ++readers_;
}

void PageFile::endReading() noexcept {
    assert(readers_ > 0);
    if (--readers_ > 0 || changing_) {
        return;
    }
    if (broken_) {
        broken_.reset();
        known_.reset();
    }
    if (sharing_) {
        sharing_->endReading(*file_);
    }
}

bool PageFile::disturbed() const { return readers_ == 1 && !changing_ && known_ != look(); }

void PageFile::setPatience(std::chrono::milliseconds most) noexcept {
    if (sharing_) {
        sharing_->setPatience(most);
    }
}

}  // namespace vl::jet
