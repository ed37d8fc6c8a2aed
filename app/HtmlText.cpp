#include "app/HtmlText.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "HtmlEntities.h"
#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl {

namespace {

constexpr bool isSpace(char c) noexcept {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}
constexpr bool isLetter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool isTagCharacter(char c) noexcept {
    return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == ':' || c == '_';
}

enum class Effect {
    LineBreak,  // one more line
    Line,       // stands on lines of its own
    Paragraph,  // with an empty line around it
    Cell,       // a tab from the cell before
    Preformatted,
    Hidden,  // with all its contents
};

struct Element {
    std::string_view name;
    Effect effect;
};

// All others only mark parts of a line.
constexpr Element kElements[] = {
    {"address", Effect::Line},    {"article", Effect::Line},
    {"aside", Effect::Line},      {"blockquote", Effect::Paragraph},
    {"br", Effect::LineBreak},    {"caption", Effect::Line},
    {"center", Effect::Line},     {"dd", Effect::Line},
    {"div", Effect::Line},        {"dl", Effect::Paragraph},
    {"dt", Effect::Line},         {"fieldset", Effect::Line},
    {"figcaption", Effect::Line}, {"figure", Effect::Line},
    {"footer", Effect::Line},     {"form", Effect::Line},
    {"h1", Effect::Paragraph},    {"h2", Effect::Paragraph},
    {"h3", Effect::Paragraph},    {"h4", Effect::Paragraph},
    {"h5", Effect::Paragraph},    {"h6", Effect::Paragraph},
    {"head", Effect::Hidden},     {"header", Effect::Line},
    {"hr", Effect::Line},         {"li", Effect::Line},
    {"main", Effect::Line},       {"nav", Effect::Line},
    {"ol", Effect::Line},         {"option", Effect::Line},
    {"p", Effect::Paragraph},     {"pre", Effect::Preformatted},
    {"script", Effect::Hidden},   {"section", Effect::Line},
    {"style", Effect::Hidden},    {"table", Effect::Line},
    {"td", Effect::Cell},         {"template", Effect::Hidden},
    {"th", Effect::Cell},         {"title", Effect::Hidden},
    {"tr", Effect::Line},         {"ul", Effect::Line},
};

const Element* elementNamed(std::string_view name) {
    const auto* found =
        std::find_if(std::begin(kElements), std::end(kElements),
                     [&](const Element& e) { return text::equalsNoCase(e.name, name); });
    return found != std::end(kElements) ? found : nullptr;
}

/// The text as it is written: breaks and blanks wait until something visible follows.
class Lines {
public:
    void character(std::string_view bytes) {
        if (!out_.empty()) {
            out_.append(breaks_, '\n');
            if (breaks_ == 0) {
                out_ += cell_ ? "\t" : blank_ ? " " : "";
            }
        }
        out_ += bytes;
        breaks_ = 0;
        blank_ = cell_ = false;
    }
    void blank() noexcept { blank_ = true; }
    void cell() noexcept { cell_ = breaks_ == 0; }
    void lineBreak() noexcept {
        ++breaks_;
        cell_ = false;
    }
    // At least so many: neighbouring blocks share the lines between them.
    void breaks(std::size_t n) noexcept {
        breaks_ = std::max(breaks_, n);
        cell_ = false;
    }
    std::string take() { return std::move(out_); }

private:
    std::string out_;
    std::size_t breaks_ = 0;
    bool blank_ = false;
    bool cell_ = false;
};

/// Reads once from left to right. Whatever is searched for ahead is either found, and then the
/// reading goes on behind it, or never searched for again.
class Reader {
public:
    explicit Reader(std::string_view html) : html_(html) {}

    std::string text() {
        while (at_ < html_.size()) {
            if (html_[at_] == '<' && readMarkup()) {
                continue;
            }
            readCharacter();
        }
        return sawTag_ ? lines_.take() : plain_;
    }

private:
    void readCharacter() {
        const std::size_t start = at_;
        std::string one;
        if (html_[at_] == '&') {
            appendReference(one, html_, at_);
        } else {
            text::nextCharacter(html_, at_);
            one = html_.substr(start, at_ - start);
        }
        const bool noBreak = one == "\xC2\xA0";  // a blank that neither breaks nor joins others
        one = noBreak ? " " : one;
        const bool space = !noBreak && one.size() == 1 && isSpace(one[0]);
        if (space && !preformatted_) {
            lines_.blank();
        } else if (space && one[0] == '\n') {
            lines_.lineBreak();
        } else if (!space || one[0] != '\r') {
            lines_.character(one);
        }
        if (!sawTag_) {
            plain_ += one;
        }
    }

    // False: what stands here is text after all.
    bool readMarkup() {
        const std::string_view rest = html_.substr(at_);
        if (rest.substr(0, 4) == "<!--") {
            return skipPast("-->", 2, noComment_);  // "<!-->" is one as well
        }
        const char second = rest.size() > 1 ? rest[1] : '\0';
        if (second == '!' || second == '?') {
            return skipPast(">", 2, noEnd_);
        }
        const bool closing = second == '/';
        const std::size_t start = at_ + (closing ? 2 : 1);
        std::size_t end = start;
        while (end < html_.size() && isTagCharacter(html_[end])) {
            ++end;
        }
        const std::string_view name = html_.substr(start, end - start);
        // "<john@example.com>" and "<https://example.com>" are no tags, and "1 < 2" is none.
        const bool named = !name.empty() && isLetter(name[0]) && name.back() != ':' &&
                           end < html_.size() &&
                           (isSpace(html_[end]) || html_[end] == '/' || html_[end] == '>');
        if (!named || !findTagEnd(end)) {
            return false;
        }
        sawTag_ = true;
        const bool empty = html_[end - 1] == '/';
        at_ = end + 1;
        apply(name, closing, empty);
        return true;
    }

    // Goes behind the next `mark`; false, with nothing changed, when there is none.
    bool skipPast(std::string_view mark, std::size_t offset, bool& none) {
        const std::size_t found = none ? std::string_view::npos : html_.find(mark, at_ + offset);
        none = found == std::string_view::npos;
        if (!none) {
            at_ = found + mark.size();
            sawTag_ = true;
        }
        return !none;
    }

    // Moves `end` to the ">" of the tag, over quoted attributes. Where quotes do not pair up, the
    // next ">" is taken, and for the rest of the text quotes mean nothing.
    bool findTagEnd(std::size_t& end) {
        std::size_t i = end;
        bool value = false;  // behind a "=" and blanks
        while (i < html_.size() && html_[i] != '>' && quotesPair_) {
            const char c = html_[i];
            if (value && (c == '"' || c == '\'')) {
                i = html_.find(c, i + 1);
                quotesPair_ = i != std::string_view::npos;
            }
            value = c == '=' || (value && isSpace(c));
            ++i;
        }
        if (!quotesPair_ || i >= html_.size()) {
            quotesPair_ = false;
            i = noEnd_ ? std::string_view::npos : html_.find('>', end);
            noEnd_ = i == std::string_view::npos;
        }
        end = noEnd_ ? end : i;
        return !noEnd_;
    }

    void apply(std::string_view name, bool closing, bool empty) {
        const Element* element = elementNamed(name);
        if (element == nullptr) {
            return;
        }
        switch (element->effect) {
            case Effect::LineBreak:
                lines_.lineBreak();
                break;
            case Effect::Line:
                lines_.breaks(1);
                break;
            case Effect::Paragraph:
                lines_.breaks(2);
                break;
            case Effect::Cell:
                lines_.cell();
                break;
            case Effect::Preformatted:
                lines_.breaks(1);
                preformatted_ = !closing;
                if (preformatted_) {
                    skipLineEnd();
                }
                break;
            case Effect::Hidden:
                if (!closing && !empty) {
                    skipContents(name);
                }
                break;
        }
    }

    // To the end tag. Without one a head ends where the body begins, or is no head at all; any
    // other element hides the rest of the text.
    void skipContents(std::string_view name) {
        if (!text::equalsNoCase(name, "head")) {
            at_ = findTag("</" + std::string(name));
            return;
        }
        const std::size_t end = std::min(findNext(headEnd_), findNext(body_));
        at_ = end == html_.size() ? at_ : end;
    }

    // A tag that is asked for more often than it is gone to.
    struct Ahead {
        const char* beginning;
        std::size_t found = 0;
    };
    std::size_t findNext(Ahead& tag) const {
        if (tag.found < at_) {
            tag.found = findTag(tag.beginning);
        }
        return tag.found;
    }

    // Where the tag of exactly this name begins ("</head" is not "</header>"); the end of the text
    // when there is none.
    std::size_t findTag(const std::string& beginning) const {
        for (std::size_t from = at_;;) {
            const auto found = text::findNoCase(html_, beginning, from);
            if (!found) {
                return html_.size();
            }
            from = found->at + found->length;
            const std::string_view behind = html_.substr(from, 1);
            if (behind.empty() ||
                std::string_view(" \t\r\n/>").find(behind) != std::string_view::npos) {
                return found->at;
            }
        }
    }

    // The line end right behind "<pre>" is no line of the text.
    void skipLineEnd() {
        for (const std::string_view part : {"\r", "\n"}) {
            if (html_.substr(at_, 1) == part) {
                ++at_;
            }
        }
    }

    std::string_view html_;
    std::size_t at_ = 0;
    Lines lines_;
    std::string plain_;  // the text as long as there was no tag
    bool sawTag_ = false;
    bool preformatted_ = false;
    bool quotesPair_ = true;
    bool noComment_ = false;  // no such mark lies ahead
    bool noEnd_ = false;
    Ahead headEnd_{"</head"};
    Ahead body_{"<body"};
};

}  // namespace

std::string htmlToText(std::string_view html) {
    const ErrScope scope;
    std::string text;
    if (!attempt([&] { text = Reader(html).text(); })) {
        return std::string(html);
    }
    return text;
}

}  // namespace vl
