// Every allocation of the program is counted.
#pragma once

#include <cstdint>

namespace vl::bench {

struct Allocations {
    std::int64_t count = 0;  ///< so far
    std::int64_t bytes = 0;  ///< in use now, with what the allocator rounds up to
};

Allocations allocations() noexcept;

}  // namespace vl::bench
