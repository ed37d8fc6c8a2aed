// Texts that many events have alike.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "base/SharedText.h"

namespace vl {

/// Gives equal texts one and the same block: a calendar has few places, sets of reminders and
/// files. Only what came up not long ago is remembered, so equal texts may have several blocks, and
/// however many different ones there are, the pool keeps 1,024 of them (8 KiB, and the texts).
class TextPool {
public:
    TextPool();

    /// The text; long ones in a block of their own.
    SharedText of(std::string_view text);

private:
    std::vector<SharedText> recent_;  // by hash; a newcomer takes the place of who stands there
};

}  // namespace vl
