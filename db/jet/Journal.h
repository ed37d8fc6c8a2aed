// The rollback journal: what pages held before a change, in a file beside the database.
//
// Layout of NAME.journal, numbers little-endian:
//   0    8  "VLJRNL1" and a zero
//   8    8  salt, new for each change
//   16   8  size of the database before the change
//   24   8  sum of the database's first page, our commit word taken as 0
//   32   2  our commit word before the change
//   34   6  0
//   40   8  sum of the 40 bytes before
//   512     records of 4112 bytes: page number (4), 0 (4), sum (8), the page (4096)
//
// What it rests on:
//  1. A page of the database is overwritten only after its record is on the disk, and only by who
//     keeps all writers and readers out (`Sharing`). So whoever has a lock of his own and meets a
//     valid header meets a change that was broken off.
//  2. The commit point is the header's end: it is overwritten with zeros.
//  3. A record counts when its sum, which takes in the salt, is right; the first that does not
//     count ends the journal. What stands there was not waited for, so its page was not touched.
//  4. A journal belongs to the database only while that one's first page says so: all of it is as
//     it was, but our commit word may be one higher. It is raised before the first page is
//     written. So a journal is nobody's when another file was put in its place, or when somebody
//     who knows no journal has written since.
//  5. Taking a change back is repeated from the start when it is broken off.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "PageFile.h"
#include "db/jet/File.h"

namespace vl::jet {

/// The name of a database's journal.
std::string journalOf(const std::string& database);

/// Whether beside `database` a journal tells of a change that has not ended, of whatever file.
bool tellsOfAChange(FileSystem& files, const std::string& database);

/// The writing side; for who has the right to write. The file is kept open, and kept, from one
/// change to the next: making it anew costs a flush of the folder.
class Journal {
public:
    Journal(FileSystem& files, const std::string& database)
        : files_(files), path_(journalOf(database)) {}

    bool started() const noexcept { return started_; }
    /// Begins a change of `database`. Nothing is written yet. Throws `Error` (`ErrNo::Io`) when a
    /// file that is no journal has its name.
    void start(const File& database);
    /// Notes what the page holds.
    void add(PageNo number, const Page::Bytes& bytes);
    /// Returns when everything noted is on the disk.
    void flush();
    /// The commit point; on the disk when it returns.
    void end();
    /// After a failure: makes sure that the journal is valid again, also when `end` had failed in
    /// the middle, and leaves the file. What was noted but not flushed may be missing.
    void abandon();
    /// Removes the file unless a broken-off change stands in it, or it is no journal.
    void removeIdle();

private:
    void write(ByteView bytes);

    FileSystem& files_;
    std::string path_;
    std::unique_ptr<File> file_;
    bool nameFlushed_ = false;  // the folder's entry is on the disk
    bool started_ = false;
    std::vector<std::byte> head_;
    std::uint64_t salt_ = 0;
    std::uint64_t written_ = 0;  // bytes that are in the file
    std::vector<std::byte> waiting_;
};

/// A change that was broken off, found by its journal.
class BrokenChange {
public:
    /// None when there is no journal, or it says nothing, or is not this database's. Costs opening
    /// a file that is not there, as a rule; else reading all of it.
    static std::optional<BrokenChange> find(FileSystem& files, const std::string& path,
                                            const File& database);

    PageNo pageCount() const noexcept { return static_cast<PageNo>(size_ / kPageSize); }
    /// What the page held before; false when the change had not come to it.
    bool read(PageNo number, std::span<std::byte> bytes) const;

    /// Gives the database back what it held, then ends the journal. Throws `Error` (`ErrNo::Io`);
    /// it can then be tried again.
    void takeBack(FileSystem& files, const std::string& path, File& database) const;

private:
    explicit BrokenChange(std::unique_ptr<File> file) : journal_(std::move(file)) {}

    std::unique_ptr<File> journal_;
    std::uint64_t size_ = 0;
    std::uint16_t counter_ = 0;
    std::vector<std::pair<PageNo, std::uint64_t>> records_;  // ascending; where their bytes begin
};

}  // namespace vl::jet
