// A change of the file that is made whole or not at all.
#pragma once

namespace vl::jet {

class Database;
class PageFile;

/// One at a time on an open file, which must outlive it, and one at a time on the file among all
/// programs. What is written meanwhile is seen by those who read through the same `Database`; the
/// destructor takes it back unless `commit` was called. A crash or a loss of power, wherever it
/// comes, leaves all of the change or nothing for who opens the file next.
class Transaction {
public:
    /// Throws `Error`: `ErrNo::ReadOnly` unless the file was opened with `Access::ReadWrite`,
    /// `ErrNo::Locked` when another user has it and keeps it for longer than we wait (the text says
    /// who), `ErrNo::Unexpected` when one is open already, `ErrNo::Io` when the system refuses,
    /// also when the file was removed or replaced since it was opened.
    explicit Transaction(Database& db);
    explicit Transaction(PageFile& file);
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction();

    /// The change is on the disk when it returns. Throws `Error`: `ErrNo::Locked` when others read
    /// for longer than we wait, and may then be called again; `ErrNo::Io` when the system refuses a
    /// write: the destructor takes back what was written.
    void commit();

private:
    PageFile& file_;
};

}  // namespace vl::jet
