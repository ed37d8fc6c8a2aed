#include "Collation.h"

#include <algorithm>
#include <vector>

namespace vl::jet {

namespace {

constexpr std::uint8_t kPacked[] = {
#include "Collation.inc"
};

constexpr std::size_t kNarrow = 256;

/// Characters from `first` up to the next run's.
struct Run {
    CollationCode code;  // of the first
    std::uint16_t first = 0;
    bool grows = false;  // the inline code, by one a character
};

CollationCode codeOf(const Run& run, char16_t unit) noexcept {
    CollationCode code = run.code;
    if (run.grows) {
        code.inlineCode += static_cast<std::uint32_t>(unit - run.first);
    }
    return code;
}

/// The packed list, taken number by number (scripts/make-collation.py).
class Unpacker {
public:
    std::uint32_t byte() { return kPacked[at_++]; }
    std::uint32_t number() {
        std::uint32_t value = 0;
        for (unsigned shift = 0;; shift += 7) {
            const std::uint32_t group = byte();
            value |= (group & 0x7F) << shift;
            if (group < 0x80) {
                return value;
            }
        }
    }

private:
    std::size_t at_ = 0;
};

class Table {
public:
    Table() {
        Unpacker in;
        std::vector<Run> kinds(in.number());
        for (Run& kind : kinds) {
            kind.code.kind = static_cast<CollationCode::Class>(in.byte());
            kind.code.script = static_cast<std::uint8_t>(in.byte());
            kind.code.inlineLength = static_cast<std::uint8_t>(in.byte());
            kind.grows = in.byte() != 0;
            kind.code.extraLength = static_cast<std::uint8_t>(in.byte());
            kind.code.extra[0] = static_cast<std::uint8_t>(in.byte());
            kind.code.extra[1] = static_cast<std::uint8_t>(in.byte());
            kind.code.single = static_cast<std::uint8_t>(in.byte());
        }
        std::uint32_t before = 0;
        for (std::uint32_t first = 0; first <= 0xFFFF;) {
            Run& run = runs_.emplace_back(kinds[in.number()]);
            run.first = static_cast<std::uint16_t>(first);
            first += in.number() + 1;
            if (run.code.inlineLength != 0) {
                const std::uint32_t difference = in.number();
                before += (difference & 1) != 0 ? ~(difference / 2) : difference / 2;
                run.code.inlineCode = before;
            }
        }
        for (std::size_t i = 0; i < kNarrow; ++i) {
            narrow_[i] = find(static_cast<char16_t>(i));
        }
    }

    CollationCode operator[](char16_t unit) const noexcept {
        return unit < kNarrow ? narrow_[unit] : find(unit);
    }

private:
    CollationCode find(char16_t unit) const noexcept {
        const auto behind =
            std::upper_bound(runs_.begin(), runs_.end(), unit,
                             [](char16_t u, const Run& run) { return u < run.first; });
        return codeOf(*(behind - 1), unit);
    }

    std::vector<Run> runs_;
    std::array<CollationCode, kNarrow> narrow_{};
};

CollationCode surrogate(std::uint32_t code) noexcept {
    CollationCode out;
    out.kind = CollationCode::Class::Accent;
    out.inlineLength = 2;
    out.inlineCode = code;
    out.extraLength = 1;
    out.extra[0] = 0x3F;
    return out;
}

// Second halves leave out, every 254 units, the two codes that would look like a key's ends.
std::uint32_t secondHalf(std::uint32_t unit) noexcept {
    const std::uint32_t k = unit - 0xDC00;
    const std::uint32_t skipped = k < 8 ? 0 : k < 262 ? 1 : k < 516 ? 2 : k < 770 ? 3 : 4;
    return unit - 9992 + 2 * skipped;
}

}  // namespace

CollationCode collationCode(char16_t unit) noexcept {
    static const Table kTable;
    if (unit >= 0xD800 && unit < 0xDC00) {
        return surrogate(unit - 10238U);
    }
    if (unit >= 0xDC00 && unit < 0xE000) {
        return surrogate(secondHalf(unit));
    }
    return kTable[unit];
}

std::uint64_t characterWeight(char32_t c) noexcept {
    constexpr std::uint64_t kOthers = std::uint64_t{1} << 63;
    if (c > 0xFFFF) {
        return kOthers | c;
    }
    const CollationCode code = collationCode(static_cast<char16_t>(c));
    if (code.inlineLength == 0) {
        return kOthers | c;
    }
    // The same order as in a key: letter, accent, script.
    const std::uint32_t letter = code.inlineCode << (8 * (4U - code.inlineLength));
    std::uint64_t weight = letter;
    weight = weight << 8 | (code.extraLength > 0 ? code.extra[0] : 0U);
    weight = weight << 8 | (code.extraLength > 1 ? code.extra[1] : 0U);
    return weight << 8 | code.script;
}

}  // namespace vl::jet
