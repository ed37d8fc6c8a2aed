#include "db/jet/Database.h"

#include <algorithm>

#include "Catalog.h"
#include "Header.h"
#include "PageFile.h"
#include "TableDefinition.h"
#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl::jet {

Database Database::open(const std::string& path, Access access) {
    return open(openFile(path, access), path, access);
}

Database Database::open(std::unique_ptr<File> file, std::string name, Access access) {
    Page::Bytes first{};
    const std::size_t there = std::min<std::uint64_t>(file->size(), first.size());
    file->read(0, std::span(first).first(there));
    checkHeader(name, ByteView(first).first(there));
    return Database(std::make_unique<PageFile>(std::move(file), std::move(name), access));
}

Database::Database(std::unique_ptr<PageFile> file) : file_(std::move(file)) {}
Database::Database(Database&&) noexcept = default;
Database& Database::operator=(Database&&) noexcept = default;
Database::~Database() = default;

const std::string& Database::name() const noexcept { return file_->name(); }

std::vector<TableInfo> Database::tables() const {
    file_->refresh();
    return readCatalog(*file_);
}

Table Database::table(std::string_view name) const {
    for (const TableInfo& info : tables()) {
        if (text::equalsNoCase(info.name, name)) {
            return {*file_, std::make_shared<const TableDefinition>(
                                readTableDefinition(*file_, info.definitionPage, info.name))};
        }
    }
    throw Error(ErrNo::NotFound,
                file_->name() + ": there is no table \"" + std::string(name) + "\"");
}

}  // namespace vl::jet
