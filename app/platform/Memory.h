// Memory that the program holds and does not use.
#pragma once

namespace vl::platform {

/// Gives pages that lie free between what is in use back to the system, where the C library would
/// keep them for later, and on Linux pages of code and of fixed tables, which come back from the
/// files as they are needed. For who has just let go of much and is about to wait: costs a few
/// milliseconds at most, and who needs the pages again pays for them again.
void giveBackMemory() noexcept;

/// From now on what is freed is joined at once with what lies free beside it. The C library on
/// Linux would put small blocks by, and join all of them whenever a larger one is freed: who lets
/// go of a hundred thousand events pays more for that than for everything else. For the start.
void joinWhatIsFreed() noexcept;

}  // namespace vl::platform
