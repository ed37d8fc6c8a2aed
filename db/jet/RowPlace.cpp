#include "RowPlace.h"

namespace vl::jet {

namespace {

constexpr int kMostMoves = 16;

RowPlace placeOf(const Page& page, ByteView bytes) {
    return {page, bytes, static_cast<std::size_t>(bytes.data() - page.bytes().data())};
}

}  // namespace

RowPlace findRow(PageFile& file, const TableDefinition& table, const Page& page,
                 const DataPage& data, std::uint16_t slot, std::vector<PageNo>* passed) {
    ByteView bytes = data.row(slot);
    if (data.slot(slot) == DataPage::Slot::Row) {
        return placeOf(page, bytes);
    }
    Page body = page;
    for (int moves = 0; moves < kMostMoves; ++moves) {
        if (bytes.size() < 4) {
            body.origin().corrupt("the pointer of a moved row is cut off");
        }
        const RowPointer to = RowPointer::read(bytes, 0);
        if (passed != nullptr) {
            passed->push_back(to.page);
        }
        const Page next = file.page(to.page);
        const DataPage nextData(next);
        if (nextData.owner() != table.page || to.row >= nextData.slotCount()) {
            next.origin().corrupt("a row of table \"" + table.name + "\" that moved here is gone");
        }
        body = next;
        bytes = nextData.row(to.row);
        switch (nextData.slot(to.row)) {
            case DataPage::Slot::Body:
                return placeOf(body, bytes);
            case DataPage::Slot::Moved:
                break;
            default:
                body.origin().corrupt("row " + std::to_string(to.row) +
                                      " is pointed to, but is no moved row");
        }
    }
    page.origin().corrupt("row " + std::to_string(slot) + " moves in a circle");
}

}  // namespace vl::jet
