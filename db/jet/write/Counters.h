// What a table's definition counts.
#pragma once

#include <span>

#include "PageFile.h"

namespace vl::jet {

/// The counts on the first page of a definition, read when this is made. `file` must outlive it.
///
///   offset  size  little-endian
///   10      4     rows
///   14      4     the last autonumber
///   18      4     from one autonumber to the next
///   3F      12*n  of each tree; at 4 the number of different keys it was ever given
///
/// Source: docs/jet4.md, "Table definition".
class Counters {
public:
    Counters(PageFile& file, PageNo definitionPage);

    /// The number that the next row gets. Throws `Error` (`ErrNo::Overflow`) when there is none.
    std::int32_t nextNumber() const;
    /// A row has this number: the next one's is higher.
    void noteNumber(std::int32_t number);
    void addRow();
    void removeRow();
    void addKey(std::size_t tree);
    /// Writes the page unless nothing has changed.
    void write();

private:
    std::uint32_t at(std::size_t offset) const;
    void set(std::size_t offset, std::uint32_t value);

    PageFile& file_;
    Page page_;
    Page::Bytes bytes_{};
};

}  // namespace vl::jet
