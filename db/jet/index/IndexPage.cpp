#include "IndexPage.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "Bytes.h"

namespace vl::jet {

namespace {

constexpr std::size_t kMaskSize = kIndexEntriesAt - kIndexMaskAt;

// Negative, 0 or positive: of the bytes that both have.
int compareBytes(ByteView a, ByteView b) noexcept {
    const std::size_t n = std::min(a.size(), b.size());
    return n == 0 ? 0 : std::memcmp(a.data(), b.data(), n);
}

}  // namespace

void appendRow(KeyBytes& entry, RowId row) {
    for (const unsigned shift : {16U, 8U, 0U}) {
        entry.push_back(static_cast<std::byte>(row.page >> shift));
    }
    entry.push_back(static_cast<std::byte>(row.row));
}

void appendChild(KeyBytes& entry, PageNo child) {
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        entry.push_back(static_cast<std::byte>(child >> shift));
    }
}

PageNo childAtEnd(ByteView entry) noexcept {
    PageNo number = 0;
    for (const std::byte b : entry.last(kEntryChild)) {
        number = number << 8 | std::to_integer<PageNo>(b);
    }
    return number;
}

RowId rowAtEnd(ByteView entry) noexcept {
    const PageNo pointer = childAtEnd(entry);
    return {pointer >> 8, static_cast<std::uint16_t>(pointer & 0xFF)};
}

IndexPage::IndexPage(Page page, PageNo definitionPage) : page_(std::move(page)) {
    const ByteView bytes = page_.bytes();
    const std::uint8_t kind = u8(bytes, 0);
    if (kind != kIndexLeaf && kind != kIndexNode) {
        origin().corrupt("is no page of an index");
    }
    if (u32(bytes, kIndexOwnerAt) != definitionPage) {
        origin().corrupt("is of an index of the table on page " +
                         std::to_string(u32(bytes, kIndexOwnerAt)) + ", not " +
                         std::to_string(definitionPage));
    }
    leaf_ = kind == kIndexLeaf;
    prefix_ = u16(bytes, kIndexPrefixAt);
    readMask();
    checkEntries();
}

void IndexPage::readMask() {
    const ByteView mask = page_.bytes().subspan(kIndexMaskAt, kMaskSize);
    for (std::size_t i = 0; i < kMaskSize; ++i) {
        for (auto bits = std::to_integer<unsigned>(mask[i]); bits != 0; bits &= bits - 1) {
            ends_.push_back(
                static_cast<std::uint16_t>(8 * i + static_cast<unsigned>(std::countr_zero(bits))));
        }
    }
    if (used() > kIndexRoom) {
        origin().corrupt("entries end behind the page");
    }
}

void IndexPage::checkEntries() const {
    const std::size_t least = 1 + kEntryRow + (leaf_ ? 0 : kEntryChild);
    for (std::size_t i = 0; i < count(); ++i) {
        const std::size_t size = stored(i).size();
        if (size == 0 || size + (i == 0 ? 0 : prefix_) < least) {
            origin().corrupt("entry " + std::to_string(i) + " is too short");
        }
    }
    if (count() > 1) {
        if (prefix_ >= stored(0).size()) {
            origin().corrupt("the entries have more bytes in common than the first one has");
        }
        KeyBytes first;
        entry(0, first);
        if (less(count() - 1, ByteView(first).first(first.size() - (leaf_ ? 0 : kEntryChild)))) {
            origin().corrupt("the last entry is before the first");
        }
    }
}

std::uint8_t IndexPage::level() const noexcept { return u8(page_.bytes(), kIndexLevelAt); }
PageNo IndexPage::previous() const noexcept { return u32(page_.bytes(), kIndexPreviousAt); }
PageNo IndexPage::next() const noexcept { return u32(page_.bytes(), kIndexNextAt); }
PageNo IndexPage::tailChild() const noexcept {
    return leaf_ ? 0 : u32(page_.bytes(), kIndexTailAt);
}
std::size_t IndexPage::freeBytes() const noexcept { return u16(page_.bytes(), kIndexFreeAt); }

ByteView IndexPage::stored(std::size_t index) const noexcept {
    const std::size_t start = index == 0 ? 0 : ends_[index - 1];
    return page_.bytes().subspan(kIndexEntriesAt + start, ends_[index] - start);
}

void IndexPage::entry(std::size_t index, KeyBytes& entry) const {
    entry.clear();
    if (index > 0) {
        const ByteView common = stored(0).first(prefix_);
        entry.insert(entry.end(), common.begin(), common.end());
    }
    const ByteView own = stored(index);
    entry.insert(entry.end(), own.begin(), own.end());
}

PageNo IndexPage::child(std::size_t index) const noexcept {
    if (index == count()) {
        return tailChild();
    }
    // The page number may reach into what the entries have in common.
    const ByteView own = stored(index);
    if (own.size() >= kEntryChild) {
        return childAtEnd(own);
    }
    KeyBytes whole;
    entry(index, whole);
    return childAtEnd(whole);
}

bool IndexPage::less(std::size_t index, ByteView key) const noexcept {
    ByteView own = stored(index);
    ByteView common = index == 0 ? ByteView() : stored(0).first(prefix_);
    if (!leaf_) {
        const std::size_t cut = std::min(own.size(), kEntryChild);
        own = own.first(own.size() - cut);
        common = common.first(common.size() - std::min(common.size(), kEntryChild - cut));
    }
    if (const int order = compareBytes(common, key); order != 0) {
        return order < 0;
    }
    if (key.size() <= common.size()) {
        return false;
    }
    key = key.subspan(common.size());
    const int order = compareBytes(own, key);
    return order < 0 || (order == 0 && own.size() < key.size());
}

std::size_t IndexPage::lowerBound(ByteView key) const noexcept {
    std::size_t low = 0;
    std::size_t high = count();
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        if (less(middle, key)) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

}  // namespace vl::jet
