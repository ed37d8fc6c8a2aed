#include "Allocations.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::int64_t> count{0};
std::atomic<std::int64_t> bytes{0};

}  // namespace

void* operator new(std::size_t size) {
    void* const memory = std::malloc(size != 0 ? size : 1);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    count.fetch_add(1, std::memory_order_relaxed);
    bytes.fetch_add(static_cast<std::int64_t>(malloc_usable_size(memory)),
                    std::memory_order_relaxed);
    return memory;
}

void operator delete(void* memory) noexcept {
    if (memory != nullptr) {
        bytes.fetch_sub(static_cast<std::int64_t>(malloc_usable_size(memory)),
                        std::memory_order_relaxed);
        std::free(memory);
    }
}

void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

namespace vl::bench {

Allocations allocations() noexcept {
    return {count.load(std::memory_order_relaxed), bytes.load(std::memory_order_relaxed)};
}

}  // namespace vl::bench
