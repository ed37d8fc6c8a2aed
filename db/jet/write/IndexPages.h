// The pages that trees of keys are written to.
#pragma once

#include "Space.h"
#include "index/PageSpace.h"

namespace vl::jet {

/// Those of an open file, inside its transaction. `file` must outlive it.
class IndexPages final : public PageSpace {
public:
    explicit IndexPages(PageFile& file) : file_(file), space_(file) {}

    Page page(PageNo number) override { return file_.page(number); }
    PageNo pageCount() const override { return file_.pageCount(); }
    void write(PageNo number, const Page::Bytes& bytes) override { file_.writePage(number, bytes); }
    PageNo allocate(const IndexOwner& owner) override {
        const PageNo number = space_.take();
        space_.add(owner.ownedPages, number);
        return number;
    }
    void free(const IndexOwner& owner, PageNo number) override {
        if (!space_.remove(owner.ownedPages, number)) {
            file_.page(number).origin().corrupt("is in an index's tree, but not in its map");
        }
        space_.giveBack(number);
    }

private:
    PageFile& file_;
    Space space_;
};

}  // namespace vl::jet
