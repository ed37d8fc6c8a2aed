// Numbers that tell whether pages hold what they held.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "db/jet/File.h"

namespace vl::jet {

/// How a file looks from outside. Two equal looks at it: nobody has written it in between, since
/// each writer that keeps to the format's rules changes a commit word with each change, the others
/// at least the time.
struct FileLook {
    FileIdentity identity;
    std::uint64_t size = 0;
    std::int64_t modified = 0;
    std::array<std::byte, 512> commitWords{};
    friend bool operator==(const FileLook&, const FileLook&) = default;
};

/// A number that depends on every byte of a page, never 0. It is made for telling a page from what
/// stood there before, not against who looks for two with the same: of two different pages, one
/// pair in some 10^19 has it. Some 20 bytes a nanosecond.
std::uint64_t digestOf(std::span<const std::byte, kPageSize> page) noexcept;

/// `hash` with `number` in it; depends on the order in which numbers come.
std::uint64_t mixedWith(std::uint64_t hash, std::uint64_t number) noexcept;

/// The digests of a file's pages as far as somebody has asked for them. May outlive the open file
/// and serve the next opening: what it knows it knows of one look at one file, and forgets as soon
/// as another is told. 8 bytes a page.
class PageDigests {
public:
    /// What `user`, an open file, asks and tells from now on is about the file as it looks now;
    /// nobody else is answered any more.
    void use(const void* user, const FileLook& look);
    /// Forgets all, until the next `use`.
    void forget() noexcept;

    /// 0: not known, or asked by somebody else.
    std::uint64_t find(const void* user, PageNo page) const noexcept;
    void keep(const void* user, PageNo page, std::uint64_t digest);

private:
    const void* user_ = nullptr;
    FileLook look_;
    std::vector<std::uint64_t> known_;  // by page, 0: not known
};

}  // namespace vl::jet
