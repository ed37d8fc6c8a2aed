// What one statement has found in a table, page by page.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "db/jet/RowCursor.h"

namespace vl::sql {

class PagedRows;

/// For a query that is asked again and again and goes through the whole table each time: of a page
/// that holds what it held last time it is known which rows the condition is true of, and none of
/// them is decoded. Gives the rows that the plain scan gives. Every row is judged, also where TOP
/// lets the plain scan stop early: a condition that cannot be computed of any is an error, each
/// time, since it leaves nothing behind. Some 60 bytes a page.
class ScanMemory {
public:
    /// Forgets what it knows of another statement. The text must say all: no parameters.
    void ask(std::string_view statement);
    void forget() noexcept;

    /// The rows for which `matches`, a question about the current row of `rows`, is true.
    std::vector<jet::RowId> find(PagedRows& rows, const std::function<bool()>& matches);

private:
    struct PageRows {
        jet::PageMark mark;
        std::vector<std::uint16_t> rows;  // that the condition is true of
    };
    std::string statement_;
    std::vector<PageRows> pages_;  // ascending
};

}  // namespace vl::sql
