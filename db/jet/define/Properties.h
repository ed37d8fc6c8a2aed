// What a table's columns demand of their values, as the catalog keeps it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "NewTable.h"
#include "Origin.h"
#include "base/Variant.h"

namespace vl::jet {

/// A value as it is stored, named in the blob's list of names.
struct Property {
    std::uint8_t level = 1;  ///< 1: of the definition, 0: of the display
    ColumnType type = ColumnType::Boolean;
    std::vector<std::byte> data;
};

/// The properties of one owner, by name, in the order of the blob.
struct PropertyBlock {
    /// 0 the table, 1 one of its columns; others are kept as they are.
    std::uint16_t kind = 1;
    std::u16string owner;  ///< the column's name; empty for the table
    std::vector<std::pair<std::u16string, Property>> values;
};

/// The content of the column LvProp of MSysObjects: "MR2" and a zero, then chunks.
///
///   offset  size  of a chunk, little-endian
///   0       4     its length, these six bytes included
///   4       2     kind: 0x80 the list of names (first), 0 properties of the table, 1 of a column
///   6             names: 2 bytes length and UTF-16 each; else a block: 4 bytes its own length,
///                 name of the owner, and behind it values of
///                 2 length of all, 1 level, 1 type, 2 number of the name, 2 length of the data
///
/// Source: docs/jet4.md, "Properties".
class Properties {
public:
    Properties() = default;
    /// Throws `Error` (`ErrNo::Corrupt`) for a blob that ends too early or names what is not there.
    /// An empty one has no properties.
    static Properties decode(ByteView blob, const Origin& origin);
    std::vector<std::byte> encode() const;

    bool empty() const noexcept { return blocks_.empty(); }

    /// Whether a yes/no property of a column is set; `otherwise` where there is none. Names are
    /// compared without regard to case.
    bool flag(std::string_view column, std::string_view property, bool otherwise) const;
    void setFlag(std::string_view column, std::string_view property, bool value);

private:
    PropertyBlock* find(std::string_view column);

    std::vector<PropertyBlock> blocks_;
};

inline constexpr std::string_view kRequired = "Required";
inline constexpr std::string_view kAllowZeroLength = "AllowZeroLength";

/// Notes what a new column demands. What is left out of a blob, readers understand in different
/// ways, so that texts have both said.
void setProperties(Properties& properties, const NewColumn& column);

}  // namespace vl::jet
