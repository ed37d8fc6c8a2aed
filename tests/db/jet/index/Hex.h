// Bytes as a test shows them.
#pragma once

#include <string>

#include "db/jet/Types.h"

namespace vl::test {

/// "01 ff 3a".
inline std::string hex(jet::ByteView bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string out;
    for (const std::byte b : bytes) {
        out += out.empty() ? "" : " ";
        out += kDigits[std::to_integer<unsigned>(b) >> 4];
        out += kDigits[std::to_integer<unsigned>(b) & 15];
    }
    return out;
}

}  // namespace vl::test
