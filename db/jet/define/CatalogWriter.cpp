#include "CatalogWriter.h"

#include <algorithm>
#include <array>

#include "FirstPages.h"
#include "TableDefinition.h"
#include "base/Clock.h"
#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl::jet {

namespace {

constexpr std::int32_t kTable = 1;
constexpr std::int32_t kDatabase = 2;
constexpr std::int32_t kTables = 0x0F000001;  // the container of all tables and queries

Table systemTable(PageFile& file, PageNo page, const char* name) {
    return {file, std::make_shared<const TableDefinition>(readTableDefinition(file, page, name))};
}

std::size_t position(const Table& table, std::string_view name) {
    const auto& columns = table.columns();
    const auto column = std::find_if(columns.begin(), columns.end(), [&](const Column& c) {
        return text::equalsNoCase(c.name, name);
    });
    if (column == columns.end()) {
        throw Error(ErrNo::Corrupt,
                    "table \"" + table.name() + "\" has no column \"" + std::string(name) + "\"");
    }
    return static_cast<std::size_t>(column - columns.begin());
}

/// The index of that name, on so many columns or more.
std::size_t index(const Table& table, std::string_view name, std::size_t columns) {
    const auto& indexes = table.indexes();
    const auto found = std::find_if(indexes.begin(), indexes.end(), [&](const Index& i) {
        return text::equalsNoCase(i.name, name) && i.columns.size() >= columns;
    });
    if (found == indexes.end()) {
        throw Error(ErrNo::Corrupt,
                    "table \"" + table.name() + "\" has no index \"" + std::string(name) + "\"");
    }
    return static_cast<std::size_t>(found - indexes.begin());
}

/// Rows whose key in that index is made of these values.
RowCursor rowsWith(const Table& table, std::string_view name, std::span<const Variant> values) {
    const std::size_t i = index(table, name, values.size());
    const KeyBytes key = table.indexKey(i, values);
    return table.indexScan(i, {key, key});
}

std::int32_t asLong(PageNo page) { return static_cast<std::int32_t>(page); }

// The account that stands for whoever owns an object differs from the one of the owner by these.
Bytes creatorFor(Bytes owner) {
    if (owner.size() == 2) {
        owner[0] ^= std::byte{0x01};
        owner[1] ^= std::byte{0x05};
    }
    return owner;
}

}  // namespace

CatalogWriter::CatalogWriter(PageFile& file)
    : file_(file),
      objects_(systemTable(file, kObjectsPage, "MSysObjects")),
      permissions_(systemTable(file, kPermissionsPage, "MSysACEs")) {}

bool CatalogWriter::hasName(std::string_view name) const {
    const std::array<Variant, 2> key = {kTables, name};
    return rowsWith(objects_, "ParentIdName", key).next();
}

void CatalogWriter::addTable(PageNo definition, std::string_view name,
                             const Properties& properties) {
    const DateTime now = SystemClock().now();
    const Bytes admin = owner();
    const auto at = [&](const char* column) { return position(objects_, column); };
    std::vector<Table::Change> row = {
        {at("Id"), asLong(definition)}, {at("ParentId"), kTables}, {at("Name"), name},
        {at("Type"), kTable},           {at("DateCreate"), now},   {at("DateUpdate"), now},
        {at("Owner"), admin},           {at("Flags"), 0}};
    if (!properties.empty()) {
        row.emplace_back(at("LvProp"), properties.encode());
    }
    objects_.insert(row);
    addPermissions(asLong(definition), kTables, admin);
}

void CatalogWriter::addObject(std::span<const std::pair<std::string, Variant>> values) {
    const Bytes admin = owner();
    std::int32_t object = 0;
    std::int32_t container = 0;
    std::vector<Table::Change> row;
    for (const auto& [name, value] : values) {
        const bool isOwner = text::equalsNoCase(name, "Owner");
        row.emplace_back(position(objects_, name), isOwner ? Variant(admin) : value);
        if (text::equalsNoCase(name, "Id")) {
            object = value.toInt32();
        } else if (text::equalsNoCase(name, "ParentId")) {
            container = value.toInt32();
        }
    }
    objects_.insertCopy(row);
    addPermissions(object, container, admin);
}

void CatalogWriter::removeTable(PageNo definition) {
    objects_.remove(rowOf(definition));
    const std::array<Variant, 1> key = {asLong(definition)};
    std::vector<RowId> rows;
    for (RowCursor row = rowsWith(permissions_, "ObjectId", key); row.next();) {
        rows.push_back(row.id());
    }
    for (const RowId row : rows) {
        permissions_.remove(row);
    }
}

Properties CatalogWriter::properties(PageNo definition) const {
    const std::array<Variant, 1> key = {asLong(definition)};
    RowCursor row = rowsWith(objects_, "Id", key);
    if (!row.next()) {
        return {};
    }
    const Variant blob = row.value(position(objects_, "LvProp"));
    const auto* bytes = blob.get<Bytes>();
    return bytes ? Properties::decode(*bytes, Origin{file_.name(), row.id().page}) : Properties();
}

void CatalogWriter::noteChange(PageNo definition, const Properties* properties) {
    std::vector<Table::Change> changes = {{position(objects_, "DateUpdate"), SystemClock().now()}};
    if (properties != nullptr && !properties->empty()) {
        changes.emplace_back(position(objects_, "LvProp"), properties->encode());
    }
    objects_.update(rowOf(definition), changes);
}

RowId CatalogWriter::rowOf(PageNo definition) const {
    const std::array<Variant, 1> key = {asLong(definition)};
    RowCursor row = rowsWith(objects_, "Id", key);
    if (!row.next()) {
        Origin{file_.name(), definition}.corrupt("is a table that the catalog does not know");
    }
    return row.id();
}

// Files tell it nowhere else than in the row of the database itself.
Bytes CatalogWriter::owner() const {
    const std::size_t type = position(objects_, "Type");
    const std::size_t owner = position(objects_, "Owner");
    for (RowCursor row = objects_.scan(); row.next();) {
        if (row.value(type) == Variant(kDatabase)) {
            const Variant account = row.value(owner);
            if (const auto* bytes = account.get<Bytes>()) {
                return *bytes;
            }
        }
    }
    Origin{file_.name(), kObjectsPage}.corrupt("the catalog does not say who owns the database");
}

void CatalogWriter::addPermissions(std::int32_t object, std::int32_t container,
                                   const Bytes& owner) {
    struct Permission {
        Bytes account;
        Variant mask;
    };
    const std::size_t whose = position(permissions_, "ObjectId");
    const std::size_t account = position(permissions_, "SID");
    const std::size_t mask = position(permissions_, "ACM");
    const std::size_t inherited = position(permissions_, "FInheritable");

    std::vector<Permission> inherits;
    const std::array<Variant, 1> key = {container};
    for (RowCursor row = rowsWith(permissions_, "ObjectId", key); row.next();) {
        const Variant who = row.value(account);
        if (const auto* bytes = who.get<Bytes>(); bytes && row.value(inherited) == Variant(true)) {
            inherits.push_back({*bytes, row.value(mask)});
        }
    }
    const bool ownerNamed = std::any_of(inherits.begin(), inherits.end(),
                                        [&](const auto& p) { return p.account == owner; });
    for (Permission& permission : inherits) {
        if (permission.account == creatorFor(owner)) {
            if (ownerNamed) {
                continue;
            }
            permission.account = owner;
        }
        const std::array<Table::Change, 4> row = {{{whose, object},
                                                   {account, permission.account},
                                                   {mask, permission.mask},
                                                   {inherited, false}}};
        permissions_.insert(row);
    }
}

}  // namespace vl::jet
