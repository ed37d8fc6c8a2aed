#include "Rewrite.h"

#include <optional>

#include "base/ErrorState.h"
#include "base/Text.h"
#include "db/jet/check/Check.h"

namespace vl::tools {

namespace {

std::string counted(std::uint64_t n, const char* what) {
    return std::to_string(n) + " " + what + (n == 1 ? "" : "s");
}

}  // namespace

Begun::Begun(const std::string& path) : path_(text::toUtf16(path)) {}

Begun::~Begun() {
    if (!kept_) {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
}

jet::CopyReport makeAnew(const std::string& target,
                         const std::function<jet::CopyReport(jet::Database&)>& fill) {
    auto made = std::make_optional(jet::Database::create(target));
    Begun begun(target);
    jet::CopyReport report;
    try {
        report = fill(*made);
        const std::vector<jet::Finding> findings = checkDatabase(*made);
        if (!findings.empty()) {
            throw Error(ErrNo::Unexpected, target + ": what was written is damaged: page " +
                                               std::to_string(findings[0].page) + ": " +
                                               findings[0].what);
        }
    } catch (const Error&) {
        made.reset();  // an open file cannot be removed everywhere
        throw;
    }
    begun.keep();
    return report;
}

std::string countText(const jet::CopyReport& report) {
    return counted(report.tables, "table") + ", " + counted(report.rows, "row");
}

}  // namespace vl::tools
