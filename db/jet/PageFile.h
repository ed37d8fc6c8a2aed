// A file as numbered pages, with the pages read last kept in memory.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Origin.h"
#include "PageDigests.h"
#include "db/jet/OpenOptions.h"

namespace vl::jet {

class BrokenChange;
class Sharing;

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

/// Owns the file. Holds at most `kFrames` pages (1 MiB) beside those that callers keep, and in a
/// transaction those that were changed, up to a limit.
class PageFile {
public:
    /// A file that nobody else has: without locks, and a change that is broken off leaves it half
    /// written. Reads nothing but the file's size. `name` stands in the texts of errors.
    PageFile(std::unique_ptr<File> file, std::string name, Access access);
    /// A file among others, whose name is its path.
    PageFile(std::unique_ptr<File> file, std::string path, Access access,
             const OpenOptions& options);
    PageFile(const PageFile&) = delete;
    PageFile& operator=(const PageFile&) = delete;
    ~PageFile();

    const std::string& name() const noexcept { return name_; }
    bool writable() const noexcept { return access_ == Access::ReadWrite; }
    /// Whole pages. A cut-off last page is a crash while growing the file, not damage: it was
    /// never linked.
    PageNo pageCount() const noexcept { return pageCount_; }

    /// At most one read of the file. Throws `Error`: `ErrNo::Corrupt` for a page past the end
    /// (some page pointed to it), `ErrNo::Io` when the system refuses.
    Page page(PageNo number);
    /// `digestOf` the page as `page` gives it. Reads it only when its digest is not known from an
    /// earlier call since the file was last written. Throws as `page`.
    std::uint64_t digest(PageNo number);

    /// Between the two, which nest, no other copy of this program writes. The outermost one sees
    /// what others wrote before. In a transaction they cost nothing. `beginReading` throws `Error`:
    /// `ErrNo::Locked` when somebody writes for longer than we wait, `ErrNo::Io`.
    void beginReading();
    void endReading() noexcept;
    /// Whether somebody wrote since the only `beginReading` that is open: an engine that does not
    /// know our locks. False while others are open, or a transaction.
    bool disturbed() const;

    /// Forgets the pages read and asks for the size again. Does nothing inside a transaction.
    void refresh();

    /// Only inside a transaction, of which they are part. The header's page is not written this
    /// way. Throws `Error`: `ErrNo::Unexpected`, or as `commit`, when so much was changed that some
    /// of it has to go to the file already.
    void writePage(PageNo number, const Page::Bytes& bytes);
    /// One page more at the end of the file; what it holds until it is written is zero.
    PageNo appendPage();

    bool inTransaction() const noexcept { return changing_; }
    /// From here on nobody else can write, and what is written is seen by `page`, not by others.
    /// Throws `Error`: `ErrNo::ReadOnly`; `ErrNo::Locked`, naming who has the file;
    /// `ErrNo::Format` for a file that is no database any more; `ErrNo::Unexpected` when a
    /// transaction is open; `ErrNo::Io`.
    void begin();
    /// Makes what was changed the file's, on the disk when it returns, and raises the header's
    /// counter by which other readers learn of it. Throws `Error`, and the transaction is still
    /// open: `ErrNo::Locked` when others read for longer than we wait, then it may be called again;
    /// `ErrNo::Io`, then `rollback` is all that is left.
    void commit();
    /// Forgets what was changed and ends the transaction. When `commit` failed the file gets back
    /// what it held; if that fails too, the next one who opens the file finds the journal.
    void rollback() noexcept;

    /// Instead of a commit, where nothing was written: the file `made` takes the place of this one,
    /// with its rights and owner, and is what is open from here on; nobody has written in between.
    /// The transaction is ended. Throws `Error`: `ErrNo::Locked` when another engine wrote all the
    /// same, and the transaction is still open; `ErrNo::Io`, `ErrNo::Unexpected`, and nothing is to
    /// be read or written here any more.
    void replaceBy(const std::string& made);
    /// Whether there is a transaction, or anybody reads.
    bool inUse() const noexcept { return changing_ || readers_ > 0; }

    /// As long as it is the same, the catalog and the definitions of tables are those that were
    /// read when it was asked for; asked inside a reading or a transaction.
    std::uint64_t definitionsStamp() const noexcept { return definitionsStamp_; }

    /// The longest waiting for others in one statement, from now on.
    void setPatience(std::chrono::milliseconds most) noexcept;

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

    FileLook look() const;
    void refreshIfChanged();
    std::shared_ptr<Page::Bytes> load(PageNo number);
    void forget(PageNo number) noexcept;
    void putChanged(PageNo number, std::shared_ptr<const Page::Bytes> bytes);
    void writeChanged();
    void writeUnshared();

    std::unique_ptr<File> file_;
    std::string name_;
    Access access_;
    std::unique_ptr<Sharing> sharing_;  // none: nobody else has the file
    PageNo pageCount_ = 0;
    std::vector<Frame> frames_;
    std::optional<FileLook> known_;  // the file, when `frames_` were read
    std::shared_ptr<PageDigests> digests_;
    std::uint64_t definitionsStamp_ = 1;
    int readers_ = 0;
    std::unique_ptr<BrokenChange> broken_;  // read from it, it cannot be taken back now

    bool changing_ = false;
    bool failed_ = false;      // in the middle of writing
    bool written_ = false;     // some of the change is in the file
    std::size_t mostChanged_;  // pages in memory
    PageNo countBefore_ = 0;   // of the pages, when the transaction began
    std::map<PageNo, std::shared_ptr<const Page::Bytes>> changed_;
    std::vector<bool> saved_;  // whether what a page held is in the journal
};

}  // namespace vl::jet
