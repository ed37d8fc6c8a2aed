#include "TextKey.h"

#include <algorithm>
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

// The order as far as letters of plain ASCII decide it; nothing when more is to be looked at.
std::optional<int> compareAscii(std::string_view a, std::string_view b) {
    for (std::size_t i = 0;; ++i) {
        if (i == a.size() && i == b.size()) {
            return 0;
        }
        const auto codeAt = [i](std::string_view s) {
            const unsigned char c = i < s.size() ? static_cast<unsigned char>(s[i]) : 0xFF;
            return c < 0x80 ? collationCode(c) : CollationCode{};
        };
        const CollationCode left = codeAt(a);
        const CollationCode right = codeAt(b);
        // A text that ends here is less: its key has a 1 where the other's next letter stands.
        if ((left.kind != Class::Plain && i < a.size()) ||
            (right.kind != Class::Plain && i < b.size()) || left.inlineLength > 1 ||
            right.inlineLength > 1) {
            return std::nullopt;
        }
        if (left.inlineCode != right.inlineCode) {
            return left.inlineCode < right.inlineCode ? -1 : 1;
        }
    }
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
