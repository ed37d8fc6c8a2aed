#include "FoundPages.h"

namespace vl {

// Whether the known ones come one after the other up to this one.
bool FullRead::FoundPages::isNext(const Page& page) const {
    return known_ != nullptr && count_ < known_->size() &&
           (*known_)[count_].mark.page == page.mark.page;
}

void FullRead::FoundPages::copyKnown() {
    if (known_ == nullptr) {
        return;
    }
    const auto begin = known_->begin();
    pages_.reserve(known_->size());
    pages_.assign(begin, begin + static_cast<Pages::difference_type>(count_));
    for (Instead& one : instead_) {
        pages_[one.at] = std::move(one.page);
    }
    instead_.clear();
    known_ = nullptr;
}

void FullRead::FoundPages::keep(const Page& page) {
    if (!isNext(page)) {
        copyKnown();
        pages_.push_back(page);
    }
    ++count_;
}

void FullRead::FoundPages::put(Page page) {
    if (isNext(page)) {
        instead_.push_back({count_, std::move(page)});
    } else {
        copyKnown();
        pages_.push_back(std::move(page));
    }
    ++count_;
}

const FullRead::Pages& FullRead::FoundPages::pages() {
    copyKnown();
    return pages_;
}

void FullRead::FoundPages::moveTo(Pages& known) {
    if (known_ == nullptr || count_ < known_->size()) {
        copyKnown();
        known = std::move(pages_);
        return;
    }
    for (Instead& one : instead_) {
        known[one.at] = std::move(one.page);
    }
}

}  // namespace vl
