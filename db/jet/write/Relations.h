// What relationships demand of the rows on their two sides.
#pragma once

#include "Field.h"
#include "index/IndexKey.h"

namespace vl::jet {

/// The relationships of one table, whose rows refer to rows of others or are referred to. `file`
/// and `table` must outlive it. Costs reading the definition of the other table; nothing where
/// there are no relationships. Throws `Error` (`ErrNo::Corrupt`) when the other table or its index
/// is not there. Source: docs/jet4.md, "Relationships".
class Relations {
public:
    Relations(PageFile& file, const TableDefinition& table) : file_(file), table_(table) {}

    /// Of the tree `tree`: whether a row may have this key. Throws `Error` (`ErrNo::NotFound`) when
    /// no row of the other table has the key that it refers to. With a null in it, it refers to
    /// none.
    void checkNew(std::size_t tree, std::span<const Variant> values);
    /// Whether the row that has the key may lose it. Throws `Error` (`ErrNo::Exists`) when rows of
    /// the other table refer to it, also where they are to be changed with it: that is not done
    /// here.
    void checkOld(std::size_t tree, std::span<const Variant> values);

private:
    bool otherHas(const Index& index, std::span<const Variant> values);

    PageFile& file_;
    const TableDefinition& table_;
};

}  // namespace vl::jet
