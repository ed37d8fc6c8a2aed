// The list of a SELECT: its columns and what gives their values.
#pragma once

#include "Scope.h"

namespace vl::sql {

/// COUNT, MIN or MAX.
inline bool isAggregate(const SelectItem& item) noexcept {
    return item.kind != ItemKind::All && item.kind != ItemKind::Value;
}

/// What an item's column is called: as it says itself, or a made-up name; another one where a
/// column of `fields`, those before it, has that already. The item is bound to `shape`.
std::string nameOf(const SelectItem& item, const TableShape& shape,
                   const std::vector<Field>& fields);

/// Of `*` too, which stands for columns.
struct Output {
    std::vector<Field> fields;
    std::vector<const Expr*> values;  ///< of the statement, or of `own`
    std::vector<ExprPtr> own;
};

/// Binds the items. None is an aggregate. Throws as `Scope::bind`.
Output outputOf(const Select& statement, const Scope& scope);

}  // namespace vl::sql
