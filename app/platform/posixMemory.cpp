#include "Memory.h"

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

#ifdef __GLIBC__
#include <malloc.h>
#endif
#ifdef __linux__
#include <sys/mman.h>
#endif

namespace vl::platform {

namespace {

#ifdef __linux__
// Code that was run is a copy of what the files hold, so that dropping it loses nothing: what is
// run again is mapped again, a fault for sixteen pages. Only what can be run and not be written: a
// page that was written would be lost.
void dropCode() noexcept {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> maps(std::fopen("/proc/self/maps", "re"),
                                                               &std::fclose);
    if (!maps) {
        return;
    }
    char line[512];
    while (std::fgets(line, sizeof line, maps.get()) != nullptr) {
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        char path = 0;
        const int read = std::sscanf(line, "%" SCNxPTR "-%" SCNxPTR " r-xp %*x %*x:%*x %*u %c",
                                     &begin, &end, &path);
        if (read == 3 && path == '/') {
            // NOLINTNEXTLINE(performance-no-int-to-ptr): the system names places by numbers
            ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_DONTNEED);
        }
    }
}
#endif

}  // namespace

void giveBackMemory() noexcept {
#ifdef __GLIBC__
    ::malloc_trim(0);
#endif
    // Other libraries give back by themselves.
#ifdef __linux__
    dropCode();
#endif
}

}  // namespace vl::platform
