#include <algorithm>
#include <vector>

#include "Journal.h"
#include "PageFile.h"
#include "base/ErrorState.h"
#include "db/jet/Database.h"
#include "db/jet/ReadGuard.h"

namespace vl::jet {

namespace {

constexpr std::size_t kPagesAtOnce = 64;

void copyPages(PageFile& from, File& to) {
    to.truncate(0);  // another round than the first
    std::vector<std::byte> piece;
    std::uint64_t at = 0;
    for (PageNo number = 0; number < from.pageCount(); ++number) {
        const Page page = from.page(number);
        piece.insert(piece.end(), page.bytes().begin(), page.bytes().end());
        if (piece.size() == kPagesAtOnce * kPageSize || number + 1 == from.pageCount()) {
            to.write(at, piece);
            at += piece.size();
            piece.clear();
        }
    }
}

void copyUndisturbed(const Database& db, PageFile& from, File& to) {
    constexpr int kMostCopies = 3;
    for (int times = 1; times <= kMostCopies; ++times) {
        const ReadGuard guard(db);
        copyPages(from, to);
        if (!guard.disturbed()) {
            return;
        }
    }
    throw Error(ErrNo::Locked, from.name() + ": another program writes to it without a pause");
}

}  // namespace

void Database::backUp(const std::string& target, FileSystem& files) const {
    const std::string real = files.fileBehind(target);
    if (files.names(real, file_->file())) {
        throw Error(ErrNo::Exists, target + ": is the database itself");
    }
    // It might be taken for the copy's, where that is of the same database.
    if (tellsOfAChange(files, real)) {
        throw Error(ErrNo::Exists, target +
                                       ": a change of it was broken off; open it once, or "
                                       "remove " +
                                       journalOf(real));
    }
    const std::string unfinished = nameBeside(real);
    auto copy = files.createNew(unfinished, file_->file());
    try {
        copyUndisturbed(*this, *file_, *copy);
        copy->flush();
        copy.reset();
        files.rename(unfinished, real);
    } catch (const Error&) {
        copy.reset();
        files.remove(unfinished);
        throw;
    }
    files.flushFolderOf(real);
}

}  // namespace vl::jet
