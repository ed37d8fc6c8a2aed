// A file as numbered pages, with the pages read last kept in memory.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Origin.h"
#include "db/jet/File.h"

namespace vl::jet {

/// A page as it was when it was read: later writes make a new one and leave this as it is.
/// Copying is cheap and keeps the bytes alive; the `PageFile` must outlive it.
class Page {
public:
    using Bytes = std::array<std::byte, kPageSize>;

    Page() = default;
    Page(std::shared_ptr<const Bytes> bytes, Origin origin)
        : bytes_(std::move(bytes)), origin_(origin) {}

    explicit operator bool() const noexcept { return bytes_ != nullptr; }
    ByteView bytes() const noexcept { return *bytes_; }
    PageNo number() const noexcept { return origin_.page; }
    const Origin& origin() const noexcept { return origin_; }

private:
    std::shared_ptr<const Bytes> bytes_;
    Origin origin_;
};

/// Owns the file. Holds at most `kFrames` pages (1 MiB) beside those that callers keep.
class PageFile {
public:
    /// Reads nothing but the file's size. `name` stands in the texts of errors.
    PageFile(std::unique_ptr<File> file, std::string name, Access access);

    const std::string& name() const noexcept { return name_; }
    bool writable() const noexcept { return access_ == Access::ReadWrite; }
    /// Whole pages. A cut-off last page is a crash while growing the file, not damage: it was
    /// never linked.
    PageNo pageCount() const noexcept { return pageCount_; }

    /// At most one read of the file. Throws `Error`: `ErrNo::Corrupt` for a page past the end
    /// (some page pointed to it), `ErrNo::Io` when the system refuses.
    Page page(PageNo number);

    /// Forgets the pages read and asks for the size again, so that what other programs have
    /// written since is seen. Does nothing inside a transaction.
    void refresh();

    /// Writes a page of the file and puts the new bytes in the place of the remembered ones. Inside
    /// a transaction the file itself is written by `commit`. Throws `Error` (`ErrNo::Io`); the page
    /// on the disk is then either of both, or torn.
    void writePage(PageNo number, const Page::Bytes& bytes);

    /// Only inside a transaction: one page more at the end of the file; what it holds until it is
    /// written is zero.
    PageNo appendPage();

    bool inTransaction() const noexcept { return changing_; }
    /// From here on writes are kept in memory and seen by `page`. Throws `Error`:
    /// `ErrNo::ReadOnly`, or `ErrNo::Unexpected` when a transaction is open.
    void begin();
    /// Writes and flushes what was changed, then raises the header's counter by which other readers
    /// learn of it, and ends the transaction. Throws `Error` (`ErrNo::Io`).
    void commit();
    /// Forgets what was changed and ends the transaction.
    void rollback() noexcept;

    /// The file itself, for what is not read or written by pages.
    File& file() noexcept { return *file_; }

private:
    // A page's frame is its number modulo this: no bookkeeping, and a table's pages, which lie
    // close together, do not drive each other out.
    static constexpr std::size_t kFrames = 256;
    struct Frame {
        PageNo number = 0;
        std::shared_ptr<Page::Bytes> bytes;
    };

    std::unique_ptr<File> file_;
    std::string name_;
    Access access_;
    PageNo pageCount_ = 0;
    std::vector<Frame> frames_;

    bool changing_ = false;
    PageNo countBefore_ = 0;  // of the pages, when the transaction began
    std::map<PageNo, std::shared_ptr<const Page::Bytes>> changed_;
};

}  // namespace vl::jet
