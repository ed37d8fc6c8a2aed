#include "CatalogWriter.h"
#include "Define.h"
#include "DefinitionDraft.h"
#include "DefinitionEdit.h"
#include "MapRows.h"
#include "Rules.h"
#include "base/ErrorState.h"

namespace vl::jet {

// Rows stay as they are: they are shorter than the definition says, and what they lack is null.
void addColumn(PageFile& file, std::string_view table, const NewColumn& column) {
    const TableDefinition definition = userTable(file, table);
    checkNewColumn(definition, column);
    if (column.autoNumber && definition.rowCount > 0) {
        throw Error(ErrNo::Unsupported, file.name() + ": the rows of table \"" + definition.name +
                                            "\" would need numbers in column \"" + column.name +
                                            "\"");
    }
    DefinitionBlocks blocks = readBlocks(file, definition.page);
    Space space(file);
    const std::uint16_t number = appendColumn(blocks, column);
    if (isLong(column.type)) {
        MapRows maps(file, space, blocks.ownedPages().page);
        const RowPointer owned = maps.add();
        const RowPointer free = maps.add();
        blocks.longColumns.push_back({number, owned, free});
    }
    writeBlocks(file, space, definition.page, blocks);

    CatalogWriter catalog(file);
    Properties properties = catalog.properties(definition.page);
    setProperties(properties, column);
    catalog.noteChange(definition.page, &properties);
}

}  // namespace vl::jet
