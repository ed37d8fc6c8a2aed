#include <optional>

#include "Define.h"
#include "LockFile.h"
#include "NewDatabase.h"
#include "NewFile.h"
#include "PageFile.h"
#include "base/ErrorState.h"
#include "db/jet/Database.h"
#include "db/jet/Transaction.h"

namespace vl::jet {

Database Database::create(const std::string& path, const std::function<void(Database&)>& fill) {
    if (lockFileOf(path) == path) {
        throw Error(ErrNo::Unsupported, path +
                                            ": a database of this name would be its own lock "
                                            "file");
    }
    publishNewFile(path, newDatabase(fill));
    return open(path, Access::ReadWrite);
}

// As part of the open transaction, or as one of its own.
template <class Step>
void Database::change(Step&& step) {
    std::optional<Transaction> own;
    if (!file_->inTransaction()) {
        own.emplace(*this);
    }
    step(*file_);
    if (own) {
        own->commit();
    }
}

void Database::createTable(std::string_view name, std::span<const NewColumn> columns,
                           std::span<const NewIndex> indexes) {
    change([&](PageFile& file) { jet::createTable(file, name, columns, indexes); });
}

void Database::addColumn(std::string_view table, const NewColumn& column) {
    change([&](PageFile& file) { jet::addColumn(file, table, column); });
}

void Database::createIndex(std::string_view table, const NewIndex& index) {
    change([&](PageFile& file) { jet::createIndex(file, table, index); });
}

void Database::dropIndex(std::string_view table, std::string_view name) {
    change([&](PageFile& file) { jet::dropIndex(file, table, name); });
}

void Database::dropTable(std::string_view name) {
    change([&](PageFile& file) { jet::dropTable(file, name); });
}

}  // namespace vl::jet
