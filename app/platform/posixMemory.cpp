#include "Memory.h"

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
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
// run again is mapped again, a fault for sixteen pages. Not where a page has been written, by a
// loader or a debugger: that one would be lost.
void dropCode() noexcept {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> maps(std::fopen("/proc/self/smaps", "re"),
                                                               &std::fclose);
    if (!maps) {
        return;
    }
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
    bool isCode = false;
    char line[512];
    while (std::fgets(line, sizeof line, maps.get()) != nullptr) {
        std::uintptr_t from = 0;
        std::uintptr_t to = 0;
        char rights[5] = {};
        char path = 0;
        unsigned long written = 0;
        const int read = std::sscanf(line, "%" SCNxPTR "-%" SCNxPTR " %4s %*x %*x:%*x %*u %c",
                                     &from, &to, rights, &path);
        if (read >= 3) {
            begin = from;
            end = to;
            isCode = read == 4 && path == '/' && std::strcmp(rights, "r-xp") == 0;
        } else if (isCode && std::sscanf(line, "Private_Dirty: %lu", &written) == 1) {
            if (written == 0) {
                // NOLINTNEXTLINE(performance-no-int-to-ptr): the system names places by numbers
                ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_DONTNEED);
            }
            isCode = false;
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
