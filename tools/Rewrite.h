// Databases that are written anew.
#pragma once

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <string>

#include "db/jet/Database.h"
#include "db/jet/copy/Copy.h"

namespace vl::tools {

/// Removes a file that was begun, unless it is kept.
class Begun {
public:
    explicit Begun(const std::string& path);
    Begun(const Begun&) = delete;
    Begun& operator=(const Begun&) = delete;
    ~Begun();
    void keep() { kept_ = true; }

private:
    std::filesystem::path path_;
    bool kept_ = false;
};

using Fill = std::function<jet::CopyReport(jet::Database&)>;

/// Makes a database named `made`, which nobody else knows, and lets `fill` write into it; then
/// everything in it is checked. It is on the disk when this returns; when anything of this fails,
/// nothing is left there. Throws `Error`: what `fill` throws; `ErrNo::Unexpected` when the new file
/// is not whole.
jet::CopyReport makeBegun(const std::string& made, const Fill& fill);

/// The same at `target`, which has the name when it is whole and on the disk; until then it is made
/// under another one beside it (`jet::nameBeside`). So a program that is killed leaves a whole
/// `target` or none. Throws `Error` besides: `ErrNo::Exists` when there is something at `target`,
/// which stays as it is, whoever put it there meanwhile, or a journal that would be taken for its;
/// `ErrNo::Unsupported` for a name that its lock file has (".ldb").
jet::CopyReport makeAnew(const std::string& target, const Fill& fill);

/// Names to `out`, one a line, the files that were begun beside `target` and are still there: of a
/// program that was killed, or of one that is at work. Nobody can tell which.
void nameLeftOvers(const std::string& target, std::ostream& out);

/// "3 tables, 1 row".
std::string countText(const jet::CopyReport& report);

}  // namespace vl::tools
