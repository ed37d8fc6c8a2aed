#include "db/jet/FileStamp.h"

#include "Header.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "db/jet/File.h"

namespace vl::jet {

FileStamp stampOf(const std::string& path) {
    const auto file = openFile(path, Access::Read);
    FileStamp stamp;
    stamp.size = file->size();
    if (stamp.size >= kPageSize) {
        file->read(kCommitWords, stamp.commitWords);
    }
    std::error_code error;
    stamp.time = std::filesystem::last_write_time(text::toUtf16(path), error);
    if (error) {
        throw Error(ErrNo::Io, path + ": cannot tell when it was written: " + error.message());
    }
    return stamp;
}

}  // namespace vl::jet
