// A stored definition while it is changed.
#pragma once

#include "DefinitionBlocks.h"
#include "TableDefinition.h"
#include "write/Space.h"

namespace vl::jet {

/// The table of that name, without regard to case, as the file has it now. Throws `Error`:
/// `ErrNo::NotFound`; `ErrNo::Unsupported` for a table of the engine's own, which is not changed.
TableDefinition userTable(PageFile& file, std::string_view name);

/// The blocks of the definition that begins on `page`.
DefinitionBlocks readBlocks(PageFile& file, PageNo page);

/// Writes a definition to where it begins, which stays. The further pages are those that it had;
/// one more or less is taken or given back.
void writeBlocks(PageFile& file, Space& space, PageNo page, const DefinitionBlocks& blocks);

}  // namespace vl::jet
