#include "db/Connection.h"

#include <algorithm>

#include "base/ErrorState.h"
#include "base/Text.h"
#include "db/jet/FileReplaced.h"
#include "db/jet/ReadGuard.h"

namespace vl {

namespace {

constexpr std::string_view kSource = "Data Source=";
constexpr std::string_view kUser = "; User Id=";

// A path is not quoted in the text and may hold a semicolon: it goes on to the user, which stands
// behind it, or to the end.
std::string sourceOf(const std::string& text) {
    const auto source = text::findNoCase(text, kSource);
    if (!source) {
        return {};
    }
    const std::size_t start = source->at + source->length;
    std::size_t end = text.size();
    for (auto user = text::findNoCase(text, kUser, start); user;
         user = text::findNoCase(text, kUser, user->at + user->length)) {
        end = user->at;
    }
    return text.substr(start, end - start);
}

}  // namespace

void Connection::Open(std::string_view connectionString, std::string_view user,
                      std::string_view password) {
    if (db_) {
        throw Error(ErrNo::Exists, "connection: expected a closed one, it is open");
    }
    connectionString_ = connectionString;
    if (!user.empty() || !password.empty()) {
        throw Error(ErrNo::Unsupported, "connection: files have no user and password here");
    }
    file_ = sourceOf(connectionString_);
    if (file_.empty()) {
        throw Error(ErrNo::NotFound, "connection: expected a file behind " + std::string(kSource));
    }
    db_ = jet::Database::open(file_, jet::Access::Read, options());
    access_ = jet::Access::Read;
}

jet::OpenOptions Connection::options() const {
    jet::OpenOptions options;
    options.patience = Patience;
    options.digests = Digests;
    return options;
}

void Connection::requireOpen() const {
    if (!db_) {
        throw Error(ErrNo::NotFound, "connection: expected an open one, it is closed");
    }
}

void Connection::ForRows(std::string_view statement,
                         const std::function<void(sql::RowStream&)>& visit) {
    requireOpen();
    const auto show = [&] {
        jet::readWhole(*db_, [&] {
            sql::RowStream rows(*db_, statement);
            visit(rows);
            return true;
        });
    };
    try {
        show();
    } catch (const jet::FileReplaced&) {
        if (!db_->openAnew()) {
            throw;
        }
        show();
    }
}

sql::Result Connection::Execute(std::string_view statement,
                                std::span<const sql::Parameter> parameters) {
    requireOpen();
    if (access_ == jet::Access::Read && !sql::isQuery(statement)) {
        db_ = jet::Database::open(file_, jet::Access::ReadWrite, options());
        access_ = jet::Access::ReadWrite;
    }
    return sql::execute(*db_, statement, parameters);
}

sql::Result Connection::Execute(std::string_view statement, sql::ScanMemory& memory) {
    requireOpen();
    return sql::execute(*db_, statement, memory);
}

}  // namespace vl
