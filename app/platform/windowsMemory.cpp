#include <malloc.h>

#include "Memory.h"

namespace vl::platform {

void giveBackMemory() noexcept { ::_heapmin(); }

void joinWhatIsFreed() noexcept {}  // the system's heap puts nothing by

}  // namespace vl::platform
