// Whether a file is whole.
#pragma once

#include <vector>

#include "db/jet/check/Findings.h"

namespace vl::jet {

class Database;
class PageFile;

/// Looks at everything in the file: that each page belongs to one owner or is free, that the
/// definitions of all tables can be read, their rows decoded, their long values put together, that
/// their indexes have an entry of each row and no others, and that the catalog names every
/// definition that is there. Nothing is found in a file that is
/// whole; page 0 stands where no page is to blame. Costs reading every page that is in use, about
/// twice, and memory for the keys of one table at a time. Throws `Error` only where the system
/// refuses (`ErrNo::Io`).
std::vector<Finding> checkDatabase(Database& db);
std::vector<Finding> checkDatabase(PageFile& file);

}  // namespace vl::jet
