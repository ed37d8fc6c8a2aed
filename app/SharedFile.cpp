#include "app/SharedFile.h"

#include <fstream>
#include <iterator>

#include "base/ErrorState.h"
#include "platform/Platform.h"

namespace vl {

SharedFile::SharedFile(std::string path)
    : path_(std::move(path)), seen_(std::make_unique<platform::FileState>()) {}

SharedFile::~SharedFile() = default;

SharedFile::Lock SharedFile::lock(std::chrono::milliseconds atMost) const {
    return std::make_shared<platform::FileLock>(path_ + ".lock", atMost);
}

bool SharedFile::changed() const { return platform::fileState(path_) != *seen_; }

std::string SharedFile::read() {
    // Looked at first: what is added meanwhile is seen as a change.
    const platform::FileState before = platform::fileState(path_);
    std::string bytes;
    if (before != platform::FileState()) {
        std::ifstream in(platform::pathOf(path_), std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
        if (!in.is_open() || in.bad()) {
            throw Error(ErrNo::Io, "cannot read " + path_);
        }
    }
    *seen_ = before;
    return bytes;
}

void SharedFile::append(std::string_view bytes) {
    platform::appendFile(path_, bytes);
    *seen_ = platform::fileState(path_);
}

void SharedFile::replace(std::string_view bytes) {
    platform::replaceFile(path_, bytes);
    *seen_ = platform::fileState(path_);
}

}  // namespace vl
