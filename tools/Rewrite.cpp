#include "Rewrite.h"

#include <algorithm>
#include <optional>
#include <ostream>
#include <string_view>

#include "base/ErrorState.h"
#include "db/jet/File.h"
#include "db/jet/check/Check.h"

namespace vl::tools {

namespace {

namespace fs = std::filesystem;

fs::path pathOf(const std::string& name) { return std::u8string(name.begin(), name.end()); }

std::string nameOf(const fs::path& path) {
    const std::u8string name = path.u8string();
    return {name.begin(), name.end()};
}

std::string counted(std::uint64_t n, const char* what) {
    return std::to_string(n) + " " + what + (n == 1 ? "" : "s");
}

// A link is something by itself, wherever it leads.
bool isThere(const std::string& name) {
    std::error_code unknown;  // whoever makes the file then says why
    const fs::file_type type = fs::symlink_status(pathOf(name), unknown).type();
    return type != fs::file_type::not_found && type != fs::file_type::none;
}

[[noreturn]] void refuseTaken(const std::string& target) {
    throw Error(ErrNo::Exists, target + ": cannot create: there is something of that name");
}

void checkTarget(const std::string& target) {
    if (isThere(target)) {
        refuseTaken(target);
    }
    if (pathOf(target).extension() == ".ldb") {
        throw Error(ErrNo::Unsupported,
                    target + ": a database of this name would be its own lock file");
    }
    // A journal belongs to a first page, and new databases begin alike.
    if (const std::string journal = target + ".journal"; isThere(journal)) {
        throw Error(ErrNo::Exists,
                    target + ": cannot create: " + journal +
                        " lies there and would be taken for its journal; remove it, unless a "
                        "database that was moved away belongs to it");
    }
}

// Renaming would replace what came there meanwhile; a second name does not.
void giveName(const std::string& made, const std::string& target) {
    jet::FileSystem& files = jet::systemFiles();
    std::error_code error;
    fs::create_hard_link(pathOf(made), pathOf(target), error);
    if (!error) {
        files.remove(made);
    } else if (isThere(target)) {
        refuseTaken(target);
    } else {
        files.rename(made, target);  // a file system without second names
    }
    files.flushFolderOf(target);
}

}  // namespace

Begun::Begun(const std::string& path) : path_(pathOf(path)) {}

Begun::~Begun() {
    if (!kept_) {
        std::error_code ignored;
        fs::remove(path_, ignored);
    }
}

jet::CopyReport makeBegun(const std::string& made, const Fill& fill) {
    auto database = std::make_optional(jet::Database::create(made));
    Begun begun(made);
    jet::CopyReport report;
    try {
        report = fill(*database);
        const std::vector<jet::Finding> findings = checkDatabase(*database);
        if (!findings.empty()) {
            throw Error(ErrNo::Unexpected, made + ": what was written is damaged: page " +
                                               std::to_string(findings[0].page) + ": " +
                                               findings[0].what);
        }
    } catch (const Error&) {
        database.reset();  // an open file cannot be removed everywhere
        throw;
    }
    database.reset();
    jet::openFile(made, jet::Access::ReadWrite)->flush();
    begun.keep();
    return report;
}

jet::CopyReport makeAnew(const std::string& target, const Fill& fill) {
    checkTarget(target);
    const std::string made = jet::nameBeside(target);
    jet::CopyReport report = makeBegun(made, fill);
    Begun begun(made);
    giveName(made, target);
    begun.keep();
    return report;
}

void nameLeftOvers(const std::string& target, std::ostream& out) {
    // All such names differ from each other in their marks alone.
    const fs::path like = pathOf(jet::nameBeside(target));
    const std::string name = nameOf(like.filename());
    const std::size_t markBegins = nameOf(pathOf(target).filename()).size() + 1;
    const std::size_t markEnds = name.rfind('.');
    const auto isOne = [&](const std::string& other) {
        return other.size() == name.size() && other.starts_with(name.substr(0, markBegins)) &&
               other.ends_with(name.substr(markEnds)) &&
               std::all_of(other.begin() + static_cast<std::ptrdiff_t>(markBegins),
                           other.begin() + static_cast<std::ptrdiff_t>(markEnds),
                           [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'v'); });
    };
    std::error_code unreadable;  // then there is nothing to name
    const fs::path folder = like.parent_path();
    for (fs::directory_iterator entry(folder.empty() ? fs::path(".") : folder, unreadable), end;
         !unreadable && entry != end; entry.increment(unreadable)) {
        if (isOne(nameOf(entry->path().filename()))) {
            out << nameOf(folder / entry->path().filename())
                << ": was begun by a remindb that was killed, or is still at work\n";
        }
    }
}

std::string countText(const jet::CopyReport& report) {
    return counted(report.tables, "table") + ", " + counted(report.rows, "row");
}

}  // namespace vl::tools
