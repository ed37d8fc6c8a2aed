#include <ostream>

#include "Command.h"
#include "Rewrite.h"
#include "base/ErrorState.h"
#include "db/jet/File.h"
#include "db/jet/FileReplaced.h"
#include "db/jet/Transaction.h"
#include "db/jet/check/Check.h"

namespace vl::tools {

namespace {

std::uint64_t sizeOf(const std::string& file) {
    return jet::openFile(file, jet::Access::Read)->size();
}

void writeLeft(const jet::CopyReport& report, std::ostream& out) {
    for (const jet::Finding& left : report.lost) {
        out << "page " << left.page << ": " << left.what << '\n';
    }
}

void needWhole(jet::Database& source) {
    const std::size_t findings = checkDatabase(source).size();
    if (findings != 0) {
        throw Error(ErrNo::Corrupt,
                    source.name() +
                        ": is damaged (see remindb check); remindb repair saves what "
                        "can be read of it");
    }
}

Fill tablesOf(jet::Database& source) {
    return [&source](jet::Database& made) { return copyTables(source, made); };
}

// Nobody writes from the first look at the file until the new one has its name.
jet::CopyReport compactInPlace(const std::string& file, const Streams& streams) {
    auto source = jet::Database::open(file, jet::Access::ReadWrite);
    const jet::Transaction keepsOthersOut(source);
    needWhole(source);
    const std::string real = jet::systemFiles().fileBehind(file);
    nameLeftOvers(real, streams.err);
    const std::string made = jet::nameBeside(real);
    jet::CopyReport report = makeBegun(made, tablesOf(source));
    Begun begun(made);
    if (!report.lost.empty()) {
        writeLeft(report, streams.err);
        throw Error(ErrNo::Unsupported, file +
                                            ": stays as it is, since this would be left out; "
                                            "remindb compact FILE TARGET writes the rest anew");
    }
    source.replaceBy(made);
    begun.keep();
    return report;
}

jet::CopyReport compactAlone(const std::string& file, const Streams& streams) {
    try {
        return compactInPlace(file, streams);
    } catch (const jet::FileReplaced&) {
        return compactInPlace(file, streams);  // somebody else did so while this one waited
    }
}

int run(const Arguments& arguments, const Streams& streams) {
    const std::string& file = arguments.words[0];
    const std::string& target = arguments.words.back();
    const std::uint64_t before = sizeOf(file);
    jet::CopyReport report;
    if (arguments.words.size() == 1) {
        report = compactAlone(file, streams);
    } else {
        auto source = jet::Database::open(file, jet::Access::Read);
        needWhole(source);
        nameLeftOvers(target, streams.err);
        report = makeAnew(target, tablesOf(source));
    }
    writeLeft(report, streams.out);
    streams.out << target << ": " << countText(report) << ", " << before << " bytes before, "
                << sizeOf(target) << " now\n";
    return kDone;
}

}  // namespace

Command compactCommand() {
    return {.name = "compact",
            .synopsis = "FILE [TARGET]",
            .description =
                "writes the tables of FILE anew, without what is no longer used, in\n"
                "its place, unless something would be left out, or into a new file\n"
                "TARGET",
            .fewestWords = 1,
            .mostWords = 2,
            .words = "a file, and perhaps one to make",
            .flags = {},
            .options = {},
            .run = run};
}

}  // namespace vl::tools
