// What a tree of keys needs of the file that it lives in.
#pragma once

#include "IndexDefinition.h"
#include "PageFile.h"

namespace vl::jet {

/// Where pages are read.
class PageSource {
public:
    virtual ~PageSource() = default;

    /// The page as it is now, what was written to it included. Throws `Error`: `ErrNo::Corrupt`
    /// for a page that is not there, `ErrNo::Io`.
    virtual Page page(PageNo number) = 0;
    virtual PageNo pageCount() const = 0;

protected:
    PageSource() = default;
    PageSource(const PageSource&) = default;
    PageSource& operator=(const PageSource&) = default;
};

/// Who owns the pages of a tree.
struct IndexOwner {
    PageNo definitionPage = 0;
    RowPointer ownedPages;  ///< the map of the tree's pages
};

/// Where pages are written, too. Whether what is written is kept, all of it or nothing, is the
/// matter of who implements this.
class PageSpace : public PageSource {
public:
    virtual void write(PageNo number, const Page::Bytes& bytes) = 0;
    /// A page for the owner, already in its map; what it holds is not known.
    virtual PageNo allocate(const IndexOwner& owner) = 0;
    /// Takes the page out of the owner's map and gives it back.
    virtual void free(const IndexOwner& owner, PageNo number) = 0;
};

/// The pages of an open file, for reading. `file` must outlive it.
class FilePages final : public PageSource {
public:
    explicit FilePages(PageFile& file) : file_(file) {}
    Page page(PageNo number) override { return file_.page(number); }
    PageNo pageCount() const override { return file_.pageCount(); }

private:
    PageFile& file_;
};

}  // namespace vl::jet
