#include <filesystem>
#include <ostream>

#include "Command.h"
#include "Rewrite.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "db/jet/FileStamp.h"
#include "db/jet/Transaction.h"
#include "db/jet/check/Check.h"

namespace vl::tools {

namespace {

namespace fs = std::filesystem;

fs::path pathOf(const std::string& name) { return text::toUtf16(name); }

jet::CopyReport copyWhole(jet::Database& source, const std::string& target) {
    const std::size_t findings = checkDatabase(source).size();
    if (findings != 0) {
        throw Error(ErrNo::Corrupt,
                    source.name() +
                        ": is damaged (see remindb check); remindb repair saves what "
                        "can be read of it");
    }
    return makeAnew(target, [&](jet::Database& made) { return copyTables(source, made); });
}

// Nobody writes meanwhile, and whoever did all the same keeps what he wrote.
jet::CopyReport compactInPlace(const std::string& file) {
    const std::string made = file + ".compact";
    jet::CopyReport report;
    jet::FileStamp before;
    {
        auto source = jet::Database::open(file, jet::Access::ReadWrite);
        const jet::Transaction keepsOthersOut(source);
        before = jet::stampOf(file);
        report = copyWhole(source, made);
    }
    std::error_code error;
    const fs::path real = fs::canonical(pathOf(file), error);
    if (!error && jet::stampOf(file) != before) {
        error = std::make_error_code(std::errc::text_file_busy);
    }
    if (!error) {
        fs::permissions(pathOf(made), fs::status(real).permissions(), error);
    }
    if (!error) {
        fs::rename(pathOf(made), real, error);
    }
    if (error) {
        std::error_code ignored;
        fs::remove(pathOf(made), ignored);
        throw Error(ErrNo::Io, file + ": cannot be replaced: " + error.message());
    }
    return report;
}

int run(const Arguments& arguments, const Streams& streams) {
    const std::string& file = arguments.words[0];
    const std::uintmax_t before = fs::file_size(pathOf(file));
    const bool inPlace = arguments.words.size() == 1;
    const std::string& target = arguments.words.back();
    jet::CopyReport report;
    if (inPlace) {
        report = compactInPlace(file);
    } else {
        auto source = jet::Database::open(file, jet::Access::Read);
        report = copyWhole(source, target);
    }
    for (const jet::Finding& left : report.lost) {
        streams.out << "page " << left.page << ": " << left.what << '\n';
    }
    streams.out << target << ": " << countText(report) << ", " << before << " bytes before, "
                << fs::file_size(pathOf(target)) << " now\n";
    return kDone;
}

}  // namespace

Command compactCommand() {
    return {.name = "compact",
            .synopsis = "FILE [TARGET]",
            .description =
                "writes the tables of FILE anew, without what is no longer used, in\n"
                "its place or into a new file TARGET; programs that have FILE open\n"
                "are to be closed before",
            .fewestWords = 1,
            .mostWords = 2,
            .words = "a file, and perhaps one to make",
            .flags = {},
            .options = {},
            .run = run};
}

}  // namespace vl::tools
