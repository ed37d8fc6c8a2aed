#include "PageDigests.h"

#include <cstring>

#include "base/Mix.h"

namespace vl::jet {

namespace {

constexpr std::uint64_t kOtherOdd = 0xD1B54A32D192ED03U;
// Sums that do not wait for each other keep the processor's multipliers busy.
constexpr std::size_t kLanes = 4;
constexpr std::array<std::uint64_t, kLanes> kBegin = {0x243F6A8885A308D3U, 0x13198A2E03707344U,
                                                      0xA4093822299F31D0U, 0x082EFA98EC4E6C89U};

// Both halves of the product of 128 bits in one: each of its bits depends on all of both factors.
std::uint64_t foldedProduct(std::uint64_t a, std::uint64_t b) noexcept {
#ifdef __SIZEOF_INT128__
    __extension__ using Wide = unsigned __int128;
    const Wide product = Wide{a} * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
#else
    constexpr std::uint64_t kLow = 0xFFFFFFFFU;
    const std::uint64_t low = (a & kLow) * (b & kLow);
    const std::uint64_t cross = (a >> 32) * (b & kLow) + (low >> 32);
    const std::uint64_t other = (a & kLow) * (b >> 32) + (cross & kLow);
    const std::uint64_t high = (a >> 32) * (b >> 32) + (cross >> 32) + (other >> 32);
    return (other << 32 | (low & kLow)) ^ high;
#endif
}

std::uint64_t wordAt(const std::byte* bytes) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
}

}  // namespace

std::uint64_t mixedWith(std::uint64_t hash, std::uint64_t number) noexcept {
    hash = (hash ^ number) * kGolden;
    hash = (hash ^ (hash >> 29)) * kOtherOdd;
    return hash ^ (hash >> 32);
}

std::uint64_t digestOf(std::span<const std::byte, kPageSize> page) noexcept {
    // Two words a lane: what one changes in a product depends on the other, and on all before.
    constexpr std::size_t kStep = 2 * sizeof(std::uint64_t);
    std::array<std::uint64_t, kLanes> sums = kBegin;
    for (std::size_t at = 0; at < page.size(); at += kLanes * kStep) {
        for (std::size_t i = 0; i < kLanes; ++i) {
            const std::byte* words = page.data() + at + i * kStep;
            // Added to what it was: a product of nothing would forget all before.
            sums[i] += foldedProduct(wordAt(words) ^ kGolden,
                                     wordAt(words + sizeof(std::uint64_t)) ^ sums[i]);
        }
    }
    std::uint64_t digest = 0;
    for (const std::uint64_t sum : sums) {
        digest = mixedWith(digest, sum);
    }
    return digest != 0 ? digest : 1;
}

void PageDigests::use(const void* user, const FileLook& look) {
    user_ = user;
    if (look_ != look) {
        known_.clear();
        look_ = look;
    }
}

void PageDigests::forget() noexcept {
    user_ = nullptr;
    look_ = FileLook();
    known_.clear();
}

std::uint64_t PageDigests::find(const void* user, PageNo page) const noexcept {
    return user == user_ && page < known_.size() ? known_[page] : 0;
}

void PageDigests::keep(const void* user, PageNo page, std::uint64_t digest) {
    if (user == user_) {
        if (page >= known_.size()) {
            known_.resize(page + std::size_t{1});
        }
        known_[page] = digest;
    }
}

}  // namespace vl::jet
