// What other readers found in a table, one JSON object a line, compared with what ours finds.
#pragma once

#include <filesystem>

#include "db/jet/Database.h"

namespace vl::test {

struct Compared {
    int files = 0;
    int tables = 0;
    int rows = 0;
    int values = 0;
};

/// The two readers' habits: the first tells indexes too, and returns a moved row in its original
/// place; the second tells columns as triples and dates with milliseconds.
enum class DumpKind { A, B };

/// Compares the header line, then every row in scan order, value for value, and adds to
/// `compared`. A dump named "....firstN..." or "....lastN..." holds that end of the table only.
/// `anyOrder` compares the rows as a set. Differences are test failures.
void compareWithDump(const jet::Table& table, const std::filesystem::path& dump, DumpKind kind,
                     bool anyOrder, Compared& compared);

/// Compares every table of which `folder` has a dump.
void compareWithDumps(const std::filesystem::path& file, const std::filesystem::path& folder,
                      Compared& compared);

}  // namespace vl::test
