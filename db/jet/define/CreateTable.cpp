#include "CatalogWriter.h"
#include "Define.h"
#include "DefinitionDraft.h"
#include "DefinitionEdit.h"
#include "DefinitionPages.h"
#include "IndexTree.h"
#include "MapRows.h"
#include "Rules.h"
#include "base/ErrorState.h"
#include "write/Space.h"

namespace vl::jet {

namespace {

/// What the table gets beside its definition: a map for all that has pages.
class Parts {
public:
    Parts(PageFile& file, PageNo definition)
        : file_(file), space_(file), maps_(file, space_), definition_(definition) {}

    DefinitionBlocks define(std::span<const NewColumn> columns, std::span<const NewIndex> indexes) {
        const RowPointer owned = maps_.add();
        const RowPointer free = maps_.add();
        DefinitionBlocks blocks = newDefinition(owned, free);
        for (const NewColumn& column : columns) {
            const std::uint16_t number = appendColumn(blocks, column);
            if (isLong(column.type)) {
                const RowPointer ownedLong = maps_.add();
                const RowPointer freeLong = maps_.add();
                blocks.longColumns.push_back({number, ownedLong, freeLong});
            }
        }
        for (const NewIndex& index : indexes) {
            const PageNo root = space_.take();
            file_.writePage(root, IndexTree::emptyRoot(definition_));
            const RowPointer map = maps_.add();
            space_.add(map, root);
            appendIndex(blocks, index, map, root);
        }
        return blocks;
    }

private:
    PageFile& file_;
    Space space_;
    MapRows maps_;
    PageNo definition_;
};

}  // namespace

void createTable(PageFile& file, std::string_view name, std::span<const NewColumn> columns,
                 std::span<const NewIndex> indexes) {
    checkNewTable(name, columns, indexes);
    CatalogWriter catalog(file);
    if (catalog.hasName(name)) {
        throw Error(ErrNo::Exists, file.name() + ": there is a table or query \"" +
                                       std::string(name) + "\" already");
    }
    Space space(file);
    const PageNo page = space.take();
    file.writePage(page, definitionPage(putTogether(newDefinition({}, {}))));
    writeBlocks(file, space, page, Parts(file, page).define(columns, indexes));
    Properties properties;
    for (const NewColumn& column : columns) {
        setProperties(properties, column);
    }
    catalog.addTable(page, name, properties);
}

}  // namespace vl::jet
