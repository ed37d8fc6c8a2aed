#include "PageFile.h"

#include <algorithm>
#include <limits>

namespace vl::jet {

PageFile::PageFile(std::unique_ptr<File> file, std::string name, Access access)
    : file_(std::move(file)), name_(std::move(name)), access_(access), frames_(kFrames) {
    refresh();
}

Page PageFile::page(PageNo number) {
    const Origin origin{name_, number};
    if (number >= pageCount_) {
        origin.corrupt("is pointed to, but the file has " + std::to_string(pageCount_) + " pages");
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
    frames_.assign(kFrames, Frame{});
    pageCount_ = static_cast<PageNo>(
        std::min<std::uint64_t>(file_->size() / kPageSize, std::numeric_limits<PageNo>::max()));
}

void PageFile::writePage(PageNo number, const Page::Bytes& bytes) {
    Frame& frame = frames_[number % kFrames];
    frame.bytes.reset();  // after a failed write nobody knows what the page holds
    file_->write(std::uint64_t{number} * kPageSize, bytes);
    frame.bytes = std::make_shared<Page::Bytes>(bytes);
    frame.number = number;
}

}  // namespace vl::jet
