#include <algorithm>

#include "Bytes.h"
#include "CatalogWriter.h"
#include "Define.h"
#include "DefinitionEdit.h"
#include "DefinitionPages.h"
#include "MapRows.h"
#include "UsageMap.h"
#include "base/ErrorState.h"

namespace vl::jet {

namespace {

// Gives back what the map holds, and the map.
void giveBack(PageFile& file, Space& space, RowPointer map) {
    for (const PageNo page : readUsageMap(file, map)) {
        space.giveBack(page);
    }
    MapRows(file, space).remove(map);
}

// The pages of a map of pages with room are in the owner's other map, too.
void forget(PageFile& file, Space& space, RowPointer map) {
    if (map.page != 0) {
        MapRows(file, space).remove(map);
    }
}

}  // namespace

void dropTable(PageFile& file, std::string_view name) {
    const TableDefinition definition = userTable(file, name);
    if (std::any_of(definition.indexes.begin(), definition.indexes.end(),
                    [](const Index& index) { return index.foreign; })) {
        throw Error(ErrNo::Unsupported, file.name() + ": table \"" + definition.name +
                                            "\" has relationships with other tables");
    }
    const DefinitionBlocks blocks = readBlocks(file, definition.page);
    CatalogWriter(file).removeTable(definition.page);

    Space space(file);
    giveBack(file, space, blocks.ownedPages());
    forget(file, space, blocks.freePages());
    for (const auto& column : blocks.longColumns) {
        giveBack(file, space, column.ownedPages);
        forget(file, space, column.freePages);
    }
    for (const auto& tree : blocks.trees) {
        giveBack(file, space, RowPointer::read(tree.bytes, 0x22));
    }
    for (const PageNo page : definitionChain(file, definition.page)) {
        space.giveBack(page);
    }
}

}  // namespace vl::jet
