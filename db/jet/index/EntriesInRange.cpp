#include "EntriesInRange.h"

#include <algorithm>

namespace vl::jet {

namespace {

bool beginsWith(ByteView key, ByteView with) {
    return key.size() >= with.size() && std::equal(with.begin(), with.end(), key.begin());
}

}  // namespace

EntriesInRange::EntriesInRange(PageFile& file, const IndexDefinition& index, PageNo definitionPage,
                               KeyRange range)
    : pages_(file), range_(std::move(range)), cursor_(pages_, index, definitionPage, range_.from) {}

bool EntriesInRange::next() {
    while (cursor_.next()) {
        const ByteView key = cursor_.key();
        if (!range_.withFrom && !range_.from.empty() && beginsWith(key, range_.from)) {
            continue;
        }
        if (range_.to.empty()) {
            return true;
        }
        if (beginsWith(key, range_.to)) {
            return range_.withTo;
        }
        return std::lexicographical_compare(key.begin(), key.end(), range_.to.begin(),
                                            range_.to.end());
    }
    return false;
}

}  // namespace vl::jet
