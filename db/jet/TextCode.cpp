#include "TextCode.h"

#include <algorithm>
#include <cstring>

#include "Bytes.h"
#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl::jet {

namespace {

constexpr std::byte kAsciiEnd{0x80};
constexpr char16_t kMarker = 0xFEFF;
constexpr std::size_t kMostCompressed = 1024;

bool isCompressed(ByteView bytes) noexcept { return bytes.size() >= 2 && u16(bytes, 0) == 0xFEFF; }

// One byte a character: all of it below U+0100.
std::string fromNarrow(ByteView bytes) {
    const auto beyondAscii = static_cast<std::size_t>(
        std::count_if(bytes.begin(), bytes.end(), [](std::byte b) { return b >= kAsciiEnd; }));
    const char* chars = reinterpret_cast<const char*>(bytes.data());
    if (beyondAscii == 0) {
        return {chars, bytes.size()};
    }
    std::string out;
    out.reserve(bytes.size() + beyondAscii);
    for (const std::byte b : bytes) {
        text::appendCharacter(out, std::to_integer<char32_t>(b));
    }
    return out;
}

// Narrow and wide runs; a 00 where a character begins switches from one to the other.
std::string fromMixed(ByteView bytes) {
    std::u16string units;
    bool wide = false;
    for (std::size_t at = 0; at < bytes.size();) {
        if (u8(bytes, at) == 0) {
            wide = !wide;
            ++at;
        } else if (!wide) {
            units.push_back(u8(bytes, at));
            ++at;
        } else if (at + 2 <= bytes.size()) {
            units.push_back(static_cast<char16_t>(u16(bytes, at)));
            at += 2;
        } else {
            break;  // half a character at the end says nothing
        }
    }
    return text::fromUtf16(units);
}

std::string fromWide(ByteView bytes) {
    std::string out(bytes.size() / 2, '\0');
    std::size_t ascii = 0;
    while (ascii < out.size() && u16(bytes, 2 * ascii) < 0x80) {
        out[ascii] = static_cast<char>(u8(bytes, 2 * ascii));
        ++ascii;
    }
    if (ascii == out.size()) {
        return out;
    }
    std::u16string units;
    units.reserve(out.size() - ascii);
    for (std::size_t at = 2 * ascii; at < bytes.size(); at += 2) {
        units.push_back(static_cast<char16_t>(u16(bytes, at)));
    }
    out.resize(ascii);
    return out + text::fromUtf16(units);
}

}  // namespace

std::string decodeText(ByteView bytes, const Origin& origin) {
    if (isCompressed(bytes)) {
        const ByteView rest = bytes.subspan(2);
        const bool mixed = !rest.empty() && std::memchr(rest.data(), 0, rest.size()) != nullptr;
        return mixed ? fromMixed(rest) : fromNarrow(rest);
    }
    if (bytes.size() % 2 != 0) {
        origin.corrupt("a text of " + std::to_string(bytes.size()) + " bytes");
    }
    return fromWide(bytes);
}

std::optional<std::string_view> plainTextIn(ByteView bytes) noexcept {
    if (!isCompressed(bytes)) {
        return std::nullopt;
    }
    const ByteView text = bytes.subspan(2);
    // Looks at all: without a way out in its middle the loop goes through many bytes at a time.
    const auto others = std::count_if(
        text.begin(), text.end(), [](std::byte b) { return b == std::byte{0} || b >= kAsciiEnd; });
    if (others != 0) {
        return std::nullopt;
    }
    return std::string_view(reinterpret_cast<const char*>(text.data()), text.size());
}

std::vector<std::byte> encodeText(std::u16string_view units, bool compress) {
    const auto narrow = [](char16_t c) { return c != 0 && c < 0x100; };
    std::vector<std::byte> bytes;
    if (compress && units.size() > 2 && units.size() <= kMostCompressed &&
        std::all_of(units.begin(), units.end(), narrow)) {
        bytes = {std::byte{0xFF}, std::byte{0xFE}};
        for (const char16_t c : units) {
            bytes.push_back(static_cast<std::byte>(c));
        }
        return bytes;
    }
    if (!units.empty() && units[0] == kMarker) {
        // Only as one long run of two-byte characters in a compressed text is it read back.
        if (std::any_of(units.begin(), units.end(), [](char16_t c) { return c % 0x100 == 0; })) {
            throw Error(ErrNo::Unsupported, "a text that begins with U+FEFF cannot be stored");
        }
        bytes = {std::byte{0xFF}, std::byte{0xFE}, std::byte{0}};
    }
    const std::size_t at = bytes.size();
    bytes.resize(at + 2 * units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
        store(std::span(bytes), at + 2 * i, static_cast<std::uint16_t>(units[i]));
    }
    return bytes;
}

}  // namespace vl::jet
