// The pages that a full read finds.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "FullRead.h"

namespace vl {

/// Mostly they are those that the last read found, and few hold anything else: as long as they come
/// one after the other only these are noted, and the list of the others is not copied.
class FullRead::FoundPages {
public:
    /// None yet. `known`, what the last read found, must outlive it and stay as it is.
    explicit FoundPages(const Pages& known) : known_(&known) {}
    /// These.
    explicit FoundPages(Pages&& pages) : pages_(std::move(pages)), count_(pages_.size()) {}

    std::size_t count() const noexcept { return count_; }

    /// Adds one of the known pages: it holds what it held.
    void keep(const Page& page);
    /// Adds another one.
    void put(Page page);

    /// Those that were added.
    const Pages& pages();
    /// Puts them in the place of the known ones, and is of no use afterwards.
    void moveTo(Pages& known);

private:
    struct Instead {
        std::size_t at;
        Page page;
    };
    bool isNext(const Page& page) const;
    void copyKnown();

    const Pages* known_ = nullptr;  // null: all of them stand in `pages_`
    std::vector<Instead> instead_;  // else so many of the known ones, but for these
    Pages pages_;
    std::size_t count_ = 0;
};

}  // namespace vl
