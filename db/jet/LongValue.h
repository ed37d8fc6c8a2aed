// Memo and OLE values, which mostly stand outside their row.
#pragma once

#include <vector>

#include "DataPage.h"

namespace vl::jet {

/// A long value's bytes; `definition` is what its row holds. Those inside the row or on one page
/// are looked at in place, so that `definition` must outlive this.
///
///   offset  size  of the definition, little-endian
///   0       4     bits 0..29 length in bytes; bits 30, 31 the kind
///   4       4     pointer to the first piece, unless inline
///   8       4     a stamp, not verified
///   12            the value itself, kind inline (0x80000000)
///
/// Kind single (0x40000000): one row of a long-value page. Kind chain (0): rows that begin with
/// the pointer to the next one, 0 in the last. Source: docs/jet4.md, "Long value".
class LongValue {
public:
    /// Reads the pages it stands on: each piece's once. Throws `Error` (`ErrNo::Corrupt`) when
    /// pieces are missing or hold another number of bytes than the definition says; nothing is
    /// allocated for a length that the file cannot hold.
    LongValue(PageFile& file, ByteView definition, const Origin& origin);
    LongValue(const LongValue&) = delete;
    LongValue& operator=(const LongValue&) = delete;

    ByteView bytes() const noexcept { return bytes_; }

    /// The rows that hold the value's pieces, none of one inside its row. Throws `Error`
    /// (`ErrNo::Corrupt`) when pieces are missing or are not as long as the value.
    static std::vector<RowPointer> pieces(PageFile& file, ByteView definition,
                                          const Origin& origin);

private:
    ByteView piece(PageFile& file, RowPointer pointer);
    void readChain(PageFile& file, RowPointer first, std::size_t length);

    Page page_;
    std::vector<std::byte> joined_;
    ByteView bytes_;
};

}  // namespace vl::jet
