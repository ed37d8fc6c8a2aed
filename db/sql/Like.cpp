#include "Like.h"

#include <algorithm>

#include "base/Text.h"
#include "db/jet/index/Collation.h"

namespace vl::sql {

namespace {

std::u32string charactersOf(std::string_view s) {
    std::u32string out;
    for (std::size_t at = 0; at < s.size();) {
        out.push_back(text::nextCharacter(s, at));
    }
    return out;
}

}  // namespace

LikePattern::LikePattern(std::string_view pattern, Position at) {
    const std::u32string p = charactersOf(pattern);
    for (std::size_t i = 0; i < p.size(); ++i) {
        switch (p[i]) {
            case U'*':
                if (elements_.empty() || elements_.back().kind != Kind::Star) {
                    elements_.push_back({Kind::Star});
                }
                break;
            case U'?':
                elements_.push_back({Kind::AnyOne});
                break;
            case U'#':
                elements_.push_back({Kind::List});
                for (char32_t digit = U'0'; digit <= U'9'; ++digit) {
                    const Weight weight = jet::characterWeight(digit);
                    elements_.back().ranges.push_back({weight, weight});
                }
                break;
            case U'[':
                i = addList(p, i, at);
                break;
            default:
                elements_.push_back({Kind::Character, jet::characterWeight(p[i])});
        }
    }
}

// `from` is the opening bracket; returns where the closing one stands.
std::size_t LikePattern::addList(const std::u32string& pattern, std::size_t from, Position at) {
    const std::size_t close = pattern.find(U']', from);
    if (close == std::u32string::npos) {
        fail(ErrNo::Syntax, at, "expected \"]\" behind the list in the pattern");
    }
    std::u32string_view list(pattern);
    list = list.substr(from + 1, close - from - 1);
    if (list.empty()) {
        return close;
    }
    Element element{Kind::List};
    if (list.size() > 1 && list[0] == U'!') {  // [!] is an exclamation mark
        element.negated = true;
        list.remove_prefix(1);
    }
    for (std::size_t i = 0; i < list.size(); ++i) {
        Range range{jet::characterWeight(list[i]), jet::characterWeight(list[i])};
        if (i + 2 < list.size() && list[i + 1] == U'-') {
            range.to = jet::characterWeight(list[i + 2]);
            i += 2;
        }
        if (range.to < range.from) {
            fail(ErrNo::Syntax, at, "expected a range that runs forwards in the pattern");
        }
        element.ranges.push_back(range);
    }
    elements_.push_back(std::move(element));
    return close;
}

bool LikePattern::matchesOne(const Element& element, Weight c) noexcept {
    switch (element.kind) {
        case Kind::Character:
            return element.character == c;
        case Kind::AnyOne:
            return true;
        case Kind::List: {
            const bool listed =
                std::any_of(element.ranges.begin(), element.ranges.end(),
                            [c](const Range& r) { return r.from <= c && c <= r.to; });
            return listed != element.negated;
        }
        case Kind::Star:
            break;
    }
    return false;
}

bool LikePattern::matches(std::string_view text) const {
    std::vector<Weight> t;
    t.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        t.push_back(jet::characterWeight(text::nextCharacter(text, i)));
    }
    std::size_t at = 0;
    std::size_t element = 0;
    // Only the last star passed ever needs to take more: an earlier one that did so could only
    // leave less for what stands between the two.
    std::size_t star = elements_.size();
    std::size_t starAt = 0;
    while (at < t.size()) {
        if (element < elements_.size() && elements_[element].kind == Kind::Star) {
            star = element++;
            starAt = at;
        } else if (element < elements_.size() && matchesOne(elements_[element], t[at])) {
            ++element;
            ++at;
        } else if (star < elements_.size()) {
            element = star + 1;
            at = ++starAt;
        } else {
            return false;
        }
    }
    while (element < elements_.size() && elements_[element].kind == Kind::Star) {
        ++element;
    }
    return element == elements_.size();
}

}  // namespace vl::sql
