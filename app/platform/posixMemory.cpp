#include "Memory.h"

#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace vl::platform {

void giveBackMemory() noexcept {
#ifdef __GLIBC__
    ::malloc_trim(0);
#endif
    // Other libraries give back by themselves.
}

}  // namespace vl::platform
