// Databases that are written anew.
#pragma once

#include <filesystem>
#include <functional>
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

/// Makes a database at `target` and lets `fill` write into it; then everything in it is checked.
/// When anything of this fails, nothing is left there. Throws `Error`: `ErrNo::Exists` when there
/// is something at `target`, which stays as it is; what `fill` throws; `ErrNo::Unexpected` when the
/// new file is not whole.
jet::CopyReport makeAnew(const std::string& target,
                         const std::function<jet::CopyReport(jet::Database&)>& fill);

/// "3 tables, 1 row".
std::string countText(const jet::CopyReport& report);

}  // namespace vl::tools
