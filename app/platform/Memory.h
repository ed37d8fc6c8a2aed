// Memory that the program holds and does not use.
#pragma once

namespace vl::platform {

/// Gives pages that lie free between what is in use back to the system, where the C library would
/// keep them for later, and on Linux the pages of code, which come back from the files as they are
/// run. For who has just let go of much and is about to wait: costs a fraction of a
/// millisecond, and who needs the pages again pays for them again.
void giveBackMemory() noexcept;

}  // namespace vl::platform
