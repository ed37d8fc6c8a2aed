#include "NewDatabase.h"

#include <algorithm>
#include <array>

#include "FirstPages.h"
#include "TableDefinition.h"
#include "base/Clock.h"
#include "base/ErrorState.h"
#include "db/jet/Database.h"
#include "db/jet/Transaction.h"

namespace vl::jet {

namespace {

/// The file while it is made.
class Draft final : public File {
public:
    explicit Draft(std::vector<std::byte>& bytes) : bytes_(bytes) {}

    std::uint64_t size() const override { return bytes_.size(); }
    void read(std::uint64_t offset, std::span<std::byte> bytes) const override {
        if (offset + bytes.size() > bytes_.size()) {
            throw Error(ErrNo::Io, "a new database: ends before " + std::to_string(offset));
        }
        std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(offset), bytes.size(),
                    bytes.begin());
    }
    void write(std::uint64_t offset, ByteView bytes) override {
        bytes_.resize(std::max<std::size_t>(bytes_.size(), offset + bytes.size()));
        std::copy(bytes.begin(), bytes.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(offset));
    }
    void truncate(std::uint64_t size) override { bytes_.resize(size); }
    void flush() override {}

    // Nobody else has it.
    std::int64_t modified() const override { return 0; }
    bool tryLock(std::uint64_t, std::uint64_t, LockKind) override { return true; }
    void unlock(std::uint64_t, std::uint64_t) noexcept override {}
    bool heldByOthers(std::uint64_t) override { return false; }

private:
    std::vector<std::byte>& bytes_;
};

// In the text of errors.
constexpr const char* kName = "a new database";

constexpr std::uint32_t kContainers = 0x0F000000;  // what the containers lie in; has no row
constexpr std::uint32_t kTables = 0x0F000001;
constexpr std::uint32_t kDatabases = 0x0F000002;
constexpr std::uint32_t kRelationships = 0x0F000003;
constexpr std::uint32_t kDatabase = 0x10000000;
constexpr std::uint32_t kSystemObject = 0x80000000;

enum class Who { Admin, Engine, Users, Creator };

struct Object {
    std::uint32_t id;
    std::uint32_t parent;
    const char* name;
    std::int32_t type;
    Who owner;
};

constexpr std::int32_t kTable = 1;
constexpr std::int32_t kDatabaseItself = 2;
constexpr std::int32_t kContainer = 3;

constexpr std::array kObjects = {
    Object{kTables, kContainers, "Tables", kContainer, Who::Engine},
    Object{kDatabases, kContainers, "Databases", kContainer, Who::Engine},
    Object{kRelationships, kContainers, "Relationships", kContainer, Who::Engine},
    Object{kDatabase, kDatabases, "MSysDb", kDatabaseItself, Who::Admin},
    Object{kObjectsPage, kTables, "MSysObjects", kTable, Who::Engine},
    Object{kPermissionsPage, kTables, "MSysACEs", kTable, Who::Engine},
    Object{kQueriesPage, kTables, "MSysQueries", kTable, Who::Engine},
    Object{kRelationshipsPage, kTables, "MSysRelationships", kTable, Who::Engine},
};

struct Permission {
    std::uint32_t object;
    std::uint32_t mask;
    bool inherited;
    Who account;
};

constexpr std::array kPermissions = {
    Permission{kObjectsPage, 0x60000, false, Who::Admin},
    Permission{kPermissionsPage, 0x60000, false, Who::Admin},
    Permission{kQueriesPage, 0x60000, false, Who::Admin},
    Permission{kRelationshipsPage, 0xE0000, false, Who::Admin},
    Permission{kTables, 0xF00FE, true, Who::Creator},
    Permission{kTables, 0x60001, false, Who::Admin},
    Permission{kRelationships, 0xF00FE, true, Who::Creator},
    Permission{kRelationships, 0x60001, false, Who::Admin},
    Permission{kDatabases, 0x60000, false, Who::Admin},
    Permission{kDatabase, 0x6000E, false, Who::Admin},
    Permission{kDatabase, 0x0000E, false, Who::Users},
    Permission{kQueriesPage, 0x00014, false, Who::Users},
    Permission{kRelationshipsPage, 0x00014, false, Who::Users},
    Permission{kObjectsPage, 0x00014, false, Who::Users},
    Permission{kTables, 0xFFEFF, true, Who::Users},
    Permission{kRelationships, 0xFFFFF, true, Who::Users},
};

Variant account(Who who) {
    const Accounts accounts = newFileAccounts();
    const std::array all = {accounts.admin, accounts.engine, accounts.users, accounts.creator};
    const auto& bytes = all.at(static_cast<std::size_t>(who));
    return Bytes(bytes.begin(), bytes.end());
}

Variant asLong(std::uint32_t value) { return static_cast<std::int32_t>(value); }

/// Puts rows into a table, columns by their names.
class Filler {
public:
    explicit Filler(Table table) : table_(std::move(table)) {}

    void add(std::span<const std::pair<const char*, Variant>> values) {
        std::vector<Table::Change> row;
        for (const auto& [name, value] : values) {
            const auto& columns = table_.columns();
            const auto column =
                std::find_if(columns.begin(), columns.end(),
                             [&, n = name](const Column& c) { return c.name == n; });
            row.emplace_back(static_cast<std::size_t>(column - columns.begin()), value);
        }
        table_.insert(row);
    }

private:
    Table table_;
};

Table systemTable(PageFile& file, PageNo page, const char* name) {
    return {file, std::make_shared<const TableDefinition>(readTableDefinition(file, page, name))};
}

void fillCatalog(PageFile& file) {
    using Value = std::pair<const char*, Variant>;
    const DateTime now = SystemClock().now();
    Filler objects(systemTable(file, kObjectsPage, "MSysObjects"));
    for (const Object& object : kObjects) {
        objects.add(std::array<Value, 8>{{{"Id", asLong(object.id)},
                                          {"ParentId", asLong(object.parent)},
                                          {"Name", object.name},
                                          {"Type", object.type},
                                          {"DateCreate", now},
                                          {"DateUpdate", now},
                                          {"Owner", account(object.owner)},
                                          {"Flags", asLong(kSystemObject)}}});
    }
    Filler permissions(systemTable(file, kPermissionsPage, "MSysACEs"));
    for (const Permission& permission : kPermissions) {
        permissions.add(std::array<Value, 4>{{{"ObjectId", asLong(permission.object)},
                                              {"SID", account(permission.account)},
                                              {"ACM", asLong(permission.mask)},
                                              {"FInheritable", permission.inherited}}});
    }
}

}  // namespace

std::vector<std::byte> newDatabase(const std::function<void(Database&)>& fill) {
    const std::vector<Page::Bytes> pages = firstPages();
    std::vector<std::byte> bytes;
    for (const Page::Bytes& page : pages) {
        bytes.insert(bytes.end(), page.begin(), page.end());
    }
    {
        PageFile file(std::make_unique<Draft>(bytes), kName, Access::ReadWrite);
        Transaction change(file);
        fillCatalog(file);
        change.commit();
    }
    if (fill) {
        Database db = Database::open(std::make_unique<Draft>(bytes), kName, Access::ReadWrite);
        fill(db);
    }
    // Nobody has changed it yet.
    std::copy(pages[0].begin(), pages[0].end(), bytes.begin());
    return bytes;
}

}  // namespace vl::jet
