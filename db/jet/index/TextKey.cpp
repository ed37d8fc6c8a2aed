#include "TextKey.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <string>

#include "Collation.h"
#include "base/Text.h"

namespace vl::jet {

namespace {

using Class = CollationCode::Class;

constexpr unsigned kPlainAccent = 2;
constexpr unsigned kPlainScript = 3;

void put(KeyBytes& bytes, unsigned byte) { bytes.push_back(static_cast<std::byte>(byte)); }

/// The parts of a key while it is collected, unit by unit.
class Parts {
public:
    explicit Parts(KeyBytes& key) : key_(key) {}

    void add(const CollationCode& code) {
        switch (code.kind) {
            case Class::Ignored:
                break;
            case Class::Hidden:
                addHidden(code.single);
                break;
            case Class::Mark:
                addMark(code.single);
                break;
            case Class::Ext:
                scripts_.push_back(static_cast<char>(code.script));
                [[fallthrough]];
            case Class::Plain:
            case Class::Accent:
                addLetter(code);
        }
    }

    void finish() {
        put(key_, 1);
        while (!accents_.empty() && accents_.back() <= std::byte{kPlainAccent}) {
            accents_.pop_back();
        }
        key_.insert(key_.end(), accents_.begin(), accents_.end());
        if (!hidden_.empty() || !scripts_.empty()) {
            put(key_, 1);
            put(key_, 1);
            if (!scripts_.empty()) {
                putScripts();
            }
            if (!hidden_.empty()) {
                put(key_, 1);
                key_.insert(key_.end(), hidden_.begin(), hidden_.end());
            }
        }
        put(key_, 0);
    }

private:
    void addLetter(const CollationCode& code) {
        if (code.extraLength != 0) {
            reachLetter();
            for (std::size_t i = 0; i < code.extraLength; ++i) {
                put(accents_, code.extra[i]);
            }
            ++accentLetters_;
        }
        for (unsigned i = code.inlineLength; i-- > 0;) {
            put(key_, code.inlineCode >> (8 * i) & 0xFF);
        }
        letters_ += code.inlineLength != 0 ? 1 : 0;
    }

    void addMark(unsigned modifier) {
        reachLetter();
        if (accents_.empty()) {
            put(accents_, modifier);
            markFirst_ = true;
        } else {
            accents_.back() =
                static_cast<std::byte>(std::to_integer<unsigned>(accents_.back()) + modifier);
        }
    }

    void addHidden(unsigned code) {
        const std::size_t place =
            accents_.empty() ? letters_
                             : accents_.size() + letters_ - accentLetters_ - (markFirst_ ? 1 : 0);
        const std::size_t word = 0x8000 | (7 + 4 * place);
        put(hidden_, static_cast<unsigned>(word >> 8 & 0xFF));
        put(hidden_, static_cast<unsigned>(word & 0xFF));
        put(hidden_, 6);
        put(hidden_, code);
    }

    // The letters since the last accent have none.
    void reachLetter() {
        accents_.resize(accents_.size() + letters_ - accentLetters_, std::byte{kPlainAccent});
        accentLetters_ = letters_;
    }

    // Three codes a byte.
    void putScripts() {
        const std::size_t last = scripts_.find_last_not_of(static_cast<char>(kPlainScript));
        scripts_.resize(last == std::string::npos ? 0 : last + 1);
        for (std::size_t i = 0; i < scripts_.size(); i += 3) {
            unsigned byte = 0x80;
            for (std::size_t k = i; k < std::min(i + 3, scripts_.size()); ++k) {
                byte |= static_cast<unsigned>(scripts_[k]) << (4 - 2 * (k - i));
            }
            put(key_, byte);
        }
        for (const unsigned byte : {0xFFU, 0x02U, 0x80U, 0xFFU, 0x80U}) {
            put(key_, byte);
        }
        if (!hidden_.empty()) {
            put(key_, 0xFF);
        }
    }

    KeyBytes& key_;
    KeyBytes accents_;
    KeyBytes hidden_;
    std::string scripts_;
    std::size_t letters_ = 0;        // units with an inline code so far
    std::size_t accentLetters_ = 0;  // those of them that `accents_` speaks of
    bool markFirst_ = false;         // `accents_` begins with a mark that stands before any letter
};

std::string_view withoutBlanksAtEnd(std::string_view s) {
    s.remove_suffix(s.size() - (s.find_last_not_of(' ') + 1));
    return s;
}

constexpr unsigned kTopByte = 8 * (sizeof(CollationCode::inlineCode) - 1);
// Where a text ends its key has a 1, which no inline code begins with.
constexpr std::uint32_t kEnds = 1U << kTopByte;

// What a key has for each character of ASCII, first byte highest; 0 where that is not all.
std::array<std::uint32_t, 128> asciiLetters() noexcept {
    std::array<std::uint32_t, 128> letters{};
    for (std::size_t i = 0; i < letters.size(); ++i) {
        const CollationCode code = collationCode(static_cast<char16_t>(i));
        if (code.kind == Class::Plain) {
            letters[i] = code.inlineCode << (kTopByte + 8 - 8U * code.inlineLength);
        }
    }
    return letters;
}

// The order, where the first place that differs is plain ASCII in both; else nothing. What the
// texts begin with in common makes keys that begin alike, whatever it is, and no inline code begins
// another one.
std::optional<int> compareAscii(std::string_view a, std::string_view b) {
    static const std::array<std::uint32_t, 128> kLetters = asciiLetters();
    const auto letterAt = [](std::string_view s, std::size_t at) {
        if (at == s.size()) {
            return kEnds;
        }
        const auto c = static_cast<unsigned char>(s[at]);
        return c < kLetters.size() ? kLetters[c] : 0U;
    };
    const std::size_t shorter = std::min(a.size(), b.size());
    for (std::size_t i = 0; i <= shorter; ++i) {
        if (i < shorter && a[i] == b[i]) {
            continue;
        }
        const std::uint32_t left = letterAt(a, i);
        const std::uint32_t right = letterAt(b, i);
        if (left == 0 || right == 0) {
            return std::nullopt;
        }
        if (left != right) {
            return left < right ? -1 : 1;
        }
    }
    return 0;
}

}  // namespace

void appendTextKey(KeyBytes& key, std::string_view text, std::size_t units) {
    std::u16string wide = text::toUtf16(text);
    wide.resize(std::min(wide.size(), units));
    wide.resize(wide.find_last_not_of(u' ') + 1);
    Parts parts(key);
    for (const char16_t unit : wide) {
        parts.add(collationCode(unit));
    }
    parts.finish();
}

int compareText(std::string_view a, std::string_view b) {
    a = withoutBlanksAtEnd(a);
    b = withoutBlanksAtEnd(b);
    if (const std::optional<int> order = compareAscii(a, b)) {
        return *order;
    }
    KeyBytes left;
    KeyBytes right;
    appendTextKey(left, a, std::numeric_limits<std::size_t>::max());
    appendTextKey(right, b, std::numeric_limits<std::size_t>::max());
    return left < right ? -1 : left > right ? 1 : 0;
}

}  // namespace vl::jet
