#include "Header.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <string_view>
#include <utility>
#include <vector>

#include "Bytes.h"
#include "base/ErrorState.h"

namespace vl::jet {

namespace {

constexpr std::size_t kNameAt = 4;
constexpr std::size_t kVersionAt = 0x14;
constexpr std::size_t kEncryptionKeyAt = 0x3E;
// What the header's block of 128 bytes at 0x18 is masked with at the encryption key.
constexpr std::uint32_t kEncryptionMask = 0x4EBC8AFB;

// With the zero byte that ends them.
constexpr std::string_view kJet("Standard Jet DB\0", 16);
constexpr std::string_view kAce("Standard ACE DB\0", 16);

constexpr std::size_t kMaskedAt = 0x18;
constexpr std::size_t kMaskedSize = 128;
constexpr std::size_t kPasswordAt = 0x42;
constexpr std::size_t kPasswordEnd = 0x6A;
constexpr std::size_t kDateAt = 0x72;

// The beginning of the RC4 stream of a key that is the same for all files.
std::array<std::byte, kMaskedSize> headerMask() {
    constexpr std::array<unsigned, 4> kKey = {0xC7, 0xDA, 0x39, 0x6B};
    std::array<unsigned, 256> state{};
    std::iota(state.begin(), state.end(), 0U);
    for (unsigned i = 0, j = 0; i < 256; ++i) {
        j = (j + state[i] + kKey[i % kKey.size()]) % 256;
        std::swap(state[i], state[j]);
    }
    std::array<std::byte, kMaskedSize> mask{};
    unsigned i = 0;
    unsigned j = 0;
    for (std::byte& byte : mask) {
        i = (i + 1) % 256;
        j = (j + state[i]) % 256;
        std::swap(state[i], state[j]);
        byte = static_cast<std::byte>(state[(state[i] + state[j]) % 256]);
    }
    return mask;
}

// Of an unmasked page: what the password is hidden behind. A day that is no number hides nothing.
std::uint32_t dayOf(ByteView page) {
    constexpr double kMost = 1e9;
    const double day = f64(page, kDateAt);
    return day > -kMost && day < kMost ? static_cast<std::uint32_t>(static_cast<std::int32_t>(day))
                                       : 0;
}

std::string_view asText(ByteView bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

void maskHeader(std::span<std::byte> page) {
    const auto mask = headerMask();
    std::transform(mask.begin(), mask.end(), page.begin() + kMaskedAt, page.begin() + kMaskedAt,
                   [](std::byte a, std::byte b) { return a ^ b; });
}

void copyPassword(ByteView from, std::span<std::byte> to) {
    std::vector<std::byte> source(from.begin(), from.end());
    maskHeader(source);
    maskHeader(to);
    const std::uint32_t days = dayOf(source) ^ dayOf(to);
    for (std::size_t at = kPasswordAt; at < kPasswordEnd; at += 4) {
        store(to, at, u32(source, at) ^ days);
    }
    maskHeader(to);
}

void checkHeader(const std::string& fileName, ByteView start) {
    const auto refuse = [&](const std::string& what) {
        throw Error(ErrNo::Format, fileName + ": " + what);
    };
    if (start.empty()) {
        refuse("is empty, it is no Jet 4 database");
    }
    if (start.size() < kVersionAt + 4 || u32(start, 0) != 0x100) {
        refuse("is no Jet 4 database");
    }
    const std::string_view name = asText(start.subspan(kNameAt, kJet.size()));
    const std::uint32_t version = u32(start, kVersionAt);
    if (name == kAce || (name == kJet && version > 1)) {
        refuse("is a database of a later generation (version " + std::to_string(version) +
               "), not Jet 4");
    }
    if (name != kJet) {
        refuse("is no Jet 4 database");
    }
    if (version == 0) {
        refuse("is a Jet 3 database, not Jet 4");
    }
    if (start.size() < kPageSize) {
        refuse("is a Jet 4 database of which not even the first page is left");
    }
    if (u32(start, kEncryptionKeyAt) != kEncryptionMask) {
        refuse("is an encrypted database");
    }
}

}  // namespace vl::jet
