#include "TableCache.h"

#include "Catalog.h"
#include "base/Text.h"

namespace vl::jet {

const std::vector<TableInfo>& TableCache::tables() {
    if (stamp_ != file_.definitionsStamp()) {
        tables_.reset();
        definitions_.clear();
        stamp_ = file_.definitionsStamp();
    }
    if (!tables_) {
        tables_ = readCatalog(file_);
    }
    return *tables_;
}

std::shared_ptr<const TableDefinition> TableCache::find(std::string_view name) {
    for (const TableInfo& info : tables()) {
        if (!text::equalsNoCase(info.name, name)) {
            continue;
        }
        auto& definition = definitions_[info.definitionPage];
        if (!definition || definition->name != info.name) {
            definition = std::make_shared<const TableDefinition>(
                readTableDefinition(file_, info.definitionPage, info.name));
        }
        return definition;
    }
    return nullptr;
}

}  // namespace vl::jet
