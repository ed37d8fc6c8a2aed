// What kinds of columns a Jet 4 table has, and how the engine names pages and rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vl::jet {

/// On disk: never renumber.
enum class ColumnType : std::uint8_t {
    Boolean = 1,
    Byte = 2,
    Integer = 3,
    Long = 4,
    Money = 5,
    Single = 6,
    Double = 7,
    Date = 8,
    Binary = 9,
    Text = 10,
    Ole = 11,
    Memo = 12,
    Guid = 15,
    Numeric = 16,
    Block = 17,
    Complex = 18,
};

enum class Access { Read, ReadWrite };

using PageNo = std::uint32_t;
using ByteView = std::span<const std::byte>;
/// What an index stores of a row's values: compares as unsigned bytes.
using KeyBytes = std::vector<std::byte>;

inline constexpr std::size_t kPageSize = 4096;

/// The sort order of texts in all files of this generation: language 0409, version 0.
inline constexpr std::uint32_t kGeneralOrder = 0x0409;

/// A row's identity: where it was first stored. It stays when the row's bytes move elsewhere.
struct RowId {
    PageNo page = 0;
    std::uint16_t row = 0;
    friend bool operator==(const RowId&, const RowId&) = default;
};

struct Column {
    std::string name;
    ColumnType type = ColumnType::Long;
    /// Permanent, with holes where columns were deleted; the bit of the row's null mask.
    std::uint16_t number = 0;
    /// In bytes; 0 for memo and OLE, 1 for yes/no.
    std::uint16_t length = 0;
    /// Stored at a fixed place of the row; otherwise in a slot of its variable part.
    bool fixed = false;
    bool autoNumber = false;
    /// Of a numeric column.
    std::uint8_t precision = 0;
    std::uint8_t scale = 0;
    /// Of a text or memo column: language, and version in the highest byte.
    std::uint32_t sortOrder = kGeneralOrder;
    /// Slot of the variable part, for a column that is not `fixed`.
    std::uint16_t variableIndex = 0;
    /// Counted from the row's third byte, for a `fixed` column.
    std::uint16_t fixedOffset = 0;
    /// A key column of some index.
    bool indexed = false;
    /// Texts are stored compressed where that is shorter.
    bool compressed = false;
};

struct IndexColumn {
    std::string name;
    bool descending = false;
};

/// A logical index. Several may share one tree of keys.
struct Index {
    std::string name;
    bool primary = false;
    bool unique = false;
    bool ignoreNulls = false;
    bool required = false;
    /// One side of a relationship.
    bool foreign = false;
    std::vector<IndexColumn> columns;
    /// Unique in its table.
    std::uint32_t number = 0;
    /// Which of the table's trees holds its keys.
    std::size_t tree = 0;
    /// Of a `foreign` one: whether the other table's rows refer to this one's, and where that
    /// table's definition and index are.
    bool referenced = false;
    std::uint32_t otherDefinition = 0;
    std::uint32_t otherNumber = 0;
};

}  // namespace vl::jet
