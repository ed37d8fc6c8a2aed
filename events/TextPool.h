// Texts that many events have alike.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "base/SharedText.h"

namespace vl {

/// Gives equal texts one and the same block: a calendar has few places, sets of reminders and
/// files. Only what came up again not long after is remembered, so equal texts may have several
/// blocks, and however many different ones there are, the pool keeps 1,024 of them (16 KiB, and the
/// texts).
class TextPool {
public:
    TextPool();

    /// The text; long ones in a block of their own.
    SharedText of(std::string_view text);

    /// For who makes several texts together: the text, if it is remembered, at a place that stays
    /// as long as the pool does, though another text may come to stand there. Else whether it is
    /// worth remembering: then it is, once it has been made and `keep` was told.
    struct Answer {
        const SharedText* known = nullptr;
        std::uint32_t place = 0;
        std::uint32_t mark = 0;
        bool keep = false;
    };
    Answer ask(std::string_view text);
    void keep(const Answer& answer, const SharedText& made) {
        recent_[answer.place] = {made, answer.mark, answer.mark};
    }

private:
    struct Entry {
        SharedText text;
        std::uint32_t mark = 0;  // more of its hash: other texts are told by it, and not looked at
        std::uint32_t seen = 0;  // of the last text that would stand here
    };
    std::vector<Entry> recent_;  // by hash
};

}  // namespace vl
