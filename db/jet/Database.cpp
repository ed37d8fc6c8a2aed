#include "db/jet/Database.h"

#include <algorithm>

#include "Header.h"
#include "PageFile.h"
#include "TableCache.h"
#include "base/ErrorState.h"
#include "db/jet/FileReplaced.h"
#include "db/jet/ReadGuard.h"

namespace vl::jet {

namespace {

void checkStart(const std::string& name, const File& file) {
    Page::Bytes first{};
    const std::size_t there = std::min<std::uint64_t>(file.size(), first.size());
    file.read(0, std::span(first).first(there));
    checkHeader(name, ByteView(first).first(there));
}

}  // namespace

Database Database::open(const std::string& path, Access access, const OpenOptions& options) {
    constexpr int kMostFiles = 3;
    for (int times = 1;; ++times) {
        auto file =
            std::make_unique<PageFile>(options.files->open(path, access), path, access, options);
        try {
            const ReadGuard guard(*file);
            checkStart(path, file->file());
        } catch (const FileReplaced&) {
            if (times == kMostFiles) {
                throw;
            }
            continue;
        }
        return Database(std::move(file), options);
    }
}

bool Database::openAnew() {
    if (file_->inUse()) {
        return false;
    }
    *this = open(file_->name(), file_->writable() ? Access::ReadWrite : Access::Read, options_);
    return true;
}

void Database::replaceBy(const std::string& made) { file_->replaceBy(made); }

Database Database::open(std::unique_ptr<File> file, std::string name, Access access) {
    checkStart(name, *file);
    return Database(std::make_unique<PageFile>(std::move(file), std::move(name), access));
}

Database::Database(std::unique_ptr<PageFile> file, const OpenOptions& options)
    : file_(std::move(file)), cache_(std::make_unique<TableCache>(*file_)), options_(options) {}
Database::Database(Database&&) noexcept = default;
Database& Database::operator=(Database&&) noexcept = default;
Database::~Database() = default;

const std::string& Database::name() const noexcept { return file_->name(); }

void Database::setPatience(std::chrono::milliseconds most) noexcept {
    options_.patience = most;
    file_->setPatience(most);
}

std::vector<TableInfo> Database::tables() const {
    return readWhole(*this, [&] { return cache_->tables(); });
}

Table Database::table(std::string_view name) const {
    if (const auto definition = readWhole(*this, [&] { return cache_->find(name); })) {
        return {*file_, definition};
    }
    throw Error(ErrNo::NotFound,
                file_->name() + ": there is no table \"" + std::string(name) + "\"");
}

}  // namespace vl::jet
