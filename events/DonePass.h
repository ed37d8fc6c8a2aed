// What looking for finished events has found, so that the next look need not go through them all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "events/CalEvents.h"

namespace vl {

struct CalEvents::DonePass {
    // Of the set's own events, as of `version` of its index.
    std::uint64_t version = 0;      // 0: never
    DateTime nextLast;              // the first last reminder that was not past; 0: there is none
    std::vector<std::size_t> past;  // whose last reminder was, and which were not finished

    // What was taken out on another set's word.
    std::uint64_t otherVersion = 0;
    std::uint64_t ownStamp = 0;
};

}  // namespace vl
