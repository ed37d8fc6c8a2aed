// Memory that the program holds and does not use.
#pragma once

namespace vl::platform {

/// Gives pages that lie free between what is in use back to the system, where the C library would
/// keep them for later, and on Linux pages of code and of fixed tables, which come back from the
/// files as they are needed. For who has just let go of much and is about to wait: costs a few
/// milliseconds at most, and who needs the pages again pays for them again.
void giveBackMemory() noexcept;

}  // namespace vl::platform
