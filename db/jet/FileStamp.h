// How a file looks from outside: whether anybody has written it since.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace vl::jet {

/// Two equal stamps of a file mean that nobody has written it in between: each writer that keeps
/// to the format's rules changes a commit word with each change, the others at least the time.
struct FileStamp {
    std::uint64_t size = 0;
    std::filesystem::file_time_type time;
    std::array<std::byte, 512> commitWords{};
    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// Opens the file and reads 512 bytes of it; a file shorter than a page has no commit words.
/// Throws `Error` as `openFile` does.
FileStamp stampOf(const std::string& path);

}  // namespace vl::jet
