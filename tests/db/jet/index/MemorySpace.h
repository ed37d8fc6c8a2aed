// Pages in memory, for trees without a file.
#pragma once

#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "IndexCheck.h"
#include "IndexTree.h"
#include "PageSpace.h"
#include "base/ErrorState.h"

namespace vl::test {

inline constexpr jet::PageNo kDefinition = 2;
inline constexpr jet::PageNo kRoot = 7;

/// One tree's pages. What a new page holds is noise, and a page that was given back cannot be read.
class MemorySpace final : public jet::PageSpace {
public:
    MemorySpace() {
        pages_.resize(kRoot + 1);
        owned_.insert(kRoot);
        write(kRoot, jet::IndexTree::emptyRoot(kDefinition));
        writes = 0;
    }

    jet::Page page(jet::PageNo number) override {
        const jet::Origin origin{"memory", number};
        if (!owned_.contains(number)) {
            origin.corrupt("is not there");
        }
        return {pages_[number], origin};
    }
    jet::PageNo pageCount() const override { return static_cast<jet::PageNo>(pages_.size()); }

    void write(jet::PageNo number, const jet::Page::Bytes& bytes) override {
        if (!owned_.contains(number)) {
            throw Error(ErrNo::Unexpected, "memory: a page is written that is not there");
        }
        pages_[number] = std::make_shared<const jet::Page::Bytes>(bytes);
        ++writes;
    }
    jet::PageNo allocate(const jet::IndexOwner& owner) override {
        EXPECT_EQ(owner.definitionPage, kDefinition);
        jet::PageNo number = pageCount();
        if (!free_.empty()) {
            number = *free_.begin();
            free_.erase(free_.begin());
        } else {
            pages_.emplace_back();
        }
        jet::Page::Bytes noise;
        noise.fill(std::byte{0xA5});
        owned_.insert(number);
        pages_[number] = std::make_shared<const jet::Page::Bytes>(noise);
        return number;
    }
    void free(const jet::IndexOwner& owner, jet::PageNo number) override {
        EXPECT_EQ(owner.definitionPage, kDefinition);
        EXPECT_NE(number, kRoot);
        if (owned_.erase(number) == 0) {
            jet::Origin{"memory", number}.corrupt("is given back, but is not there");
        }
        free_.insert(number);
    }

    std::vector<jet::PageNo> owned() const { return {owned_.begin(), owned_.end()}; }

    int writes = 0;

private:
    std::vector<std::shared_ptr<const jet::Page::Bytes>> pages_;
    std::set<jet::PageNo> owned_;
    std::set<jet::PageNo> free_;
};

inline jet::IndexDefinition memoryIndex() {
    jet::IndexDefinition index;
    index.root = kRoot;
    return index;
}

inline std::string textOf(const jet::IndexReport& report) {
    std::string text;
    for (const jet::IndexFinding& finding : report.findings) {
        text += "page " + std::to_string(finding.page) + ": " + finding.what + "\n";
    }
    return text;
}

}  // namespace vl::test
