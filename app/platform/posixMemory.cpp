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
// Code that was run and tables that were read are copies of what the files hold, so that dropping
// them loses nothing: what is needed again is mapped again, a fault for sixteen pages. Not where
// somebody has written, the loader or a debugger: those pages are the only ones of their kind, in
// memory or swapped out.
void dropWhatFilesHold() noexcept {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> maps(std::fopen("/proc/self/smaps", "re"),
                                                               &std::fclose);
    if (!maps) {
        return;
    }
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
    bool isOfFile = false;
    bool isWritten = false;
    char line[512];
    while (std::fgets(line, sizeof line, maps.get()) != nullptr) {
        std::uintptr_t from = 0;
        std::uintptr_t to = 0;
        char rights[5] = {};
        char path = 0;
        unsigned long size = 0;
        const int read = std::sscanf(line, "%" SCNxPTR "-%" SCNxPTR " %4s %*x %*x:%*x %*u %c",
                                     &from, &to, rights, &path);
        if (read >= 3) {
            begin = from;
            end = to;
            isOfFile = read == 4 && path == '/' &&
                       (std::strcmp(rights, "r-xp") == 0 || std::strcmp(rights, "r--p") == 0);
            isWritten = false;
        } else if (std::sscanf(line, "Anonymous: %lu", &size) == 1 ||
                   std::sscanf(line, "Swap: %lu", &size) == 1) {
            isWritten = isWritten || size > 0;
        } else if (isOfFile && !isWritten && std::strncmp(line, "VmFlags:", 8) == 0) {
            // NOLINTNEXTLINE(performance-no-int-to-ptr): the system names places by numbers
            ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_DONTNEED);
        }
    }
}
#endif

}  // namespace

void joinWhatIsFreed() noexcept {
#ifdef __GLIBC__
    ::mallopt(M_MXFAST, 0);
#endif
}

void giveBackMemory() noexcept {
#ifdef __GLIBC__
    ::malloc_trim(0);
#endif
    // Other libraries give back by themselves.
#ifdef __linux__
    dropWhatFilesHold();
#endif
}

}  // namespace vl::platform
