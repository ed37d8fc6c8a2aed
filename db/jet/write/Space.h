// Which pages are free, and whose the others are: usage maps, while they are changed.
#pragma once

#include <map>
#include <optional>

#include "DataPage.h"

namespace vl::jet {

/// The pages of an open file, handed out and taken back. Keeps nothing between calls: each reads
/// the maps it needs, a page or two, as they are in the open transaction, and writes what it
/// changes. `file` must outlive it. Every method throws `Error`: `ErrNo::Corrupt` for a map that
/// contradicts itself or the file, `ErrNo::Overflow` when the file would grow beyond what the
/// format can hold. Source: docs/jet4.md, "Usage map".
class Space {
public:
    explicit Space(PageFile& file) : file_(file) {}

    /// A page for whoever asks: the lowest free one, else one more at the end of the file. What it
    /// holds is not known, and no map has it until the owner's is told.
    PageNo take();
    /// The page has left its owner's maps and is free. Its content stays.
    void giveBack(PageNo page);

    // The maps of owners. A pointer to page 0 is a map that is not there: always empty.

    bool contains(RowPointer map, PageNo page);
    /// Whether the page was not in the map before. A map that grows beyond its row is written as
    /// one that refers to bitmap pages, which are taken for it.
    bool add(RowPointer map, PageNo page);
    /// Whether it was in the map.
    bool remove(RowPointer map, PageNo page);
    /// The highest page of the map that is below `below`.
    std::optional<PageNo> highestBelow(RowPointer map, PageNo below);
    /// Gives back the bitmap pages that the map refers to: it is then empty.
    void clear(RowPointer map);

private:
    struct Map;
    Map read(RowPointer map);
    Page bitmap(const Map& map, std::size_t range);
    void patch(const Page& page, std::size_t at, ByteView bytes);
    void setBit(const Page& page, std::size_t bitmapAt, std::size_t bit, bool value);
    void moveRange(const Map& map, PageNo page);
    void refer(RowPointer pointer, PageNo page);
    std::optional<PageNo> lowestFree();
    void expressFree(PageNo page);
    static Page::Bytes freeBits(const Map& map, std::size_t range,
                                const std::map<std::size_t, PageNo>& used);
    void refuseOwned(PageNo page);
    bool isMap(RowPointer pointer);

    PageFile& file_;
};

}  // namespace vl::jet
