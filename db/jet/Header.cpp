#include "Header.h"

#include <string_view>

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
constexpr std::string_view kJet("Standard Jet DB", 16);
constexpr std::string_view kAce("Standard ACE DB", 16);

std::string_view asText(ByteView bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

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
