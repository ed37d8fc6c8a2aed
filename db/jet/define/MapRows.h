// Rows that hold usage maps.
#pragma once

#include "write/Space.h"

namespace vl::jet {

/// Makes empty maps, one after the other: on the page it is told of as long as there is room, then
/// on new ones. Such pages belong to nobody and stand in no map. `file` and `space` must outlive
/// it.
class MapRows {
public:
    /// `page` has maps already; 0 none.
    MapRows(PageFile& file, Space& space, PageNo page = 0)
        : file_(file), space_(space), page_(page) {}

    RowPointer add();

    /// Of a map that holds no pages any more. Its page goes with the last of its maps.
    void remove(RowPointer map);

private:
    PageFile& file_;
    Space& space_;
    PageNo page_;
};

}  // namespace vl::jet
