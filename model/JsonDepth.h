// Guards what reads JSON of others.
#pragma once

#include <string_view>

#include "base/ErrorState.h"

namespace vl {

/// Throws `Error` (`ErrNo::Overflow`) when arrays and objects stand in one another more than 500
/// deep: parsed values are copied and written by recursion, and nobody's event has so many. What is
/// no JSON is not this function's matter.
inline void refuseDeepJson(std::string_view text) {
    constexpr int kDeepest = 500;
    int depth = 0;
    bool inText = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inText) {
            i += c == '\\' ? 1U : 0U;
            inText = c != '"';
        } else if (c == '"') {
            inText = true;
        } else if (c == '[' || c == '{') {
            if (++depth > kDeepest) {
                throw Error(ErrNo::Overflow, "JSON is nested too deep");
            }
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
}

}  // namespace vl
