// The entries of a part of an index.
#pragma once

#include "IndexCursor.h"
#include "db/jet/RowCursor.h"

namespace vl::jet {

/// As `IndexCursor`, between the ends of a range.
class EntriesInRange {
public:
    EntriesInRange(PageFile& file, const IndexDefinition& index, PageNo definitionPage,
                   KeyRange range);
    EntriesInRange(const EntriesInRange&) = delete;
    EntriesInRange& operator=(const EntriesInRange&) = delete;
    ~EntriesInRange() = default;

    bool next();

    // Of the current entry, after `next` gave true.

    RowId row() const noexcept { return cursor_.row(); }
    PageNo page() const noexcept { return cursor_.page(); }

private:
    FilePages pages_;
    KeyRange range_;
    IndexCursor cursor_;
};

}  // namespace vl::jet
