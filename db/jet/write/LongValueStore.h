// Memo and OLE values, while they are written.
#pragma once

#include "RowPages.h"
#include "TableDefinition.h"

namespace vl::jet {

/// The longest value that is kept inside its row.
inline constexpr std::size_t kLongestInline = 64;

/// What a row holds of a value that stands in it.
std::vector<std::byte> inlineLongValue(ByteView value);
/// The value that a definition with more than 12 bytes holds.
std::vector<std::byte> inlineValue(ByteView definition);
/// Whether a definition holds its value; nothing at all is the empty value.
bool isInline(ByteView definition) noexcept;

/// The values of one column outside their rows. `file` must outlive it. Throws what `RowPages`
/// throws. Source: docs/jet4.md, "Long value".
class LongValueStore {
public:
    /// Throws `Error` (`ErrNo::Corrupt`) when the definition does not say where the pages of
    /// `column` are.
    LongValueStore(PageFile& file, const TableDefinition& table, const Column& column);

    /// Writes the value and gives what its row is to hold: 12 bytes. Throws `Error`
    /// (`ErrNo::Overflow`) for one of a gigabyte and more.
    std::vector<std::byte> put(ByteView value);
    /// Deletes the value's pieces; `definition` is what its row held, which has been read before.
    void erase(ByteView definition, const Origin& origin);

private:
    PageFile& file_;
    RowPages pages_;
};

}  // namespace vl::jet
