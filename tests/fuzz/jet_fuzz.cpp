#include <cstdint>

#include "Inputs.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vl::test::useDamaged(std::as_bytes(std::span(data, size)));
    return 0;
}
