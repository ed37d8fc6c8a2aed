#include "db/sql/ScanMemory.h"

#include "RowSource.h"

namespace vl::sql {

void ScanMemory::ask(std::string_view statement) {
    if (statement != statement_) {
        forget();
        statement_ = statement;
    }
}

void ScanMemory::forget() noexcept { pages_.clear(); }

// Pages come in ascending order, and so they are kept.
std::vector<jet::RowId> ScanMemory::find(PagedRows& rows, const std::function<bool()>& matches) {
    std::vector<PageRows> before = std::move(pages_);
    std::vector<PageRows> now;
    std::vector<jet::RowId> found;
    now.reserve(before.size());
    auto known = before.begin();
    while (rows.nextPage()) {
        const jet::PageNo page = rows.page();
        while (known != before.end() && known->mark.page < page) {
            ++known;
        }
        if (known != before.end() && rows.holds(known->mark)) {
            now.push_back(std::move(*known));
        } else {
            PageRows seen;
            while (rows.nextOnPage()) {
                if (matches()) {
                    seen.rows.push_back(rows.id().row);
                }
            }
            seen.mark = rows.mark();
            now.push_back(std::move(seen));
        }
        for (const std::uint16_t row : now.back().rows) {
            found.push_back({page, row});
        }
    }
    pages_ = std::move(now);
    return found;
}

}  // namespace vl::sql
