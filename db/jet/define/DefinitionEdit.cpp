#include "DefinitionEdit.h"

#include "Catalog.h"
#include "DefinitionPages.h"
#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl::jet {

TableDefinition userTable(PageFile& file, std::string_view name) {
    for (const TableInfo& info : readCatalog(file)) {
        if (!text::equalsNoCase(info.name, name)) {
            continue;
        }
        if (info.system) {
            throw Error(ErrNo::Unsupported,
                        file.name() + ": table \"" + info.name + "\" belongs to the engine");
        }
        return readTableDefinition(file, info.definitionPage, info.name);
    }
    throw Error(ErrNo::NotFound, file.name() + ": there is no table \"" + std::string(name) + "\"");
}

DefinitionBlocks readBlocks(PageFile& file, PageNo page) {
    return takeApart(definitionBytes(file, page), Origin{file.name(), page});
}

void writeBlocks(PageFile& file, Space& space, PageNo page, const DefinitionBlocks& blocks) {
    const std::vector<std::byte> definition = putTogether(blocks);
    std::vector<PageNo> numbers = definitionChain(file, page);
    const std::size_t needed = definitionPageCount(definition.size());
    while (numbers.size() < needed) {
        numbers.push_back(space.take());
    }
    while (numbers.size() > needed) {
        space.giveBack(numbers.back());
        numbers.pop_back();
    }
    const std::vector<Page::Bytes> pages = definitionPages(definition, numbers);
    for (std::size_t i = pages.size(); i-- > 0;) {
        file.writePage(numbers[i], pages[i]);
    }
}

}  // namespace vl::jet
