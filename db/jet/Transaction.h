// A change of the file that is made whole or not at all.
#pragma once

namespace vl::jet {

class Database;
class PageFile;

/// One at a time on an open file, which must outlive it. What is written meanwhile is seen by those
/// who read through the same `Database`; the destructor takes it back unless `commit` was called.
class Transaction {
public:
    /// Throws `Error`: `ErrNo::ReadOnly` unless the file was opened with `Access::ReadWrite`,
    /// `ErrNo::Unexpected` when one is open already.
    explicit Transaction(Database& db);
    explicit Transaction(PageFile& file);
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction();

    /// Throws `Error` (`ErrNo::Io`) when the system refuses a write.
    void commit();

private:
    PageFile& file_;
};

}  // namespace vl::jet
