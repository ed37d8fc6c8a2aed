#include "db/jet/Table.h"

#include <cassert>

#include "TableDefinition.h"
#include "index/EntriesInRange.h"
#include "index/IndexKey.h"
#include "write/RowWriter.h"

namespace vl::jet {

Table::Table(PageFile& file, std::shared_ptr<const TableDefinition> definition)
    : file_(&file), definition_(std::move(definition)) {}

const std::string& Table::name() const noexcept { return definition_->name; }
const std::vector<Column>& Table::columns() const noexcept { return definition_->columns; }
const std::vector<Index>& Table::indexes() const noexcept { return definition_->indexes; }
std::uint32_t Table::rowCount() const noexcept { return definition_->rowCount; }

RowCursor Table::scan() const { return {*file_, definition_}; }

RowCursor Table::indexScan(std::size_t index, KeyRange range) const {
    assert(index < definition_->indexes.size());
    return {*file_, definition_, definition_->indexes[index].tree, std::move(range)};
}

std::vector<RowId> Table::indexRows(std::size_t index, KeyRange range) const {
    assert(index < definition_->indexes.size());
    EntriesInRange entries(*file_, definition_->trees[definition_->indexes[index].tree],
                           definition_->page, std::move(range));
    std::vector<RowId> rows;
    while (entries.next()) {
        rows.push_back(entries.row());
    }
    return rows;
}

RowCursor Table::rows(std::vector<RowId> ids) const {
    return {*file_, definition_, std::move(ids)};
}

KeyBytes Table::indexKey(std::size_t index, std::span<const Variant> values) const {
    assert(index < definition_->indexes.size());
    return jet::indexKey(definition_->trees[definition_->indexes[index].tree], values).bytes;
}

RowId Table::insert(std::span<const Change> changes) {
    return RowWriter(*file_, *definition_).insert(changes, rules());
}

RowId Table::insertCopy(std::span<const Change> changes) {
    return RowWriter(*file_, *definition_).insert(changes, rules(), Dates::AsTheyAre);
}

void Table::update(RowId id, std::span<const Change> changes) {
    RowWriter(*file_, *definition_).update(id, changes, rules());
}

void Table::remove(RowId id) { RowWriter(*file_, *definition_).remove(id); }

const ColumnRules& Table::rules() {
    if (!rules_) {
        rules_ = std::make_shared<const ColumnRules>(ColumnRules::load(*file_, *definition_));
    }
    return *rules_;
}

}  // namespace vl::jet
