#include <malloc.h>

#include "Memory.h"

namespace vl::platform {

void giveBackMemory() noexcept { ::_heapmin(); }

}  // namespace vl::platform
