// What a step throws, as a number.
#pragma once

#include <utility>

#include "base/ErrorState.h"

namespace vl::test {

/// The number of the `Error` that `step` throws, `ErrNo::None` when it throws nothing. Anything
/// else that is thrown goes on to the test.
template <class Step>
ErrNo errorOf(Step&& step) {
    try {
        std::forward<Step>(step)();
    } catch (const Error& e) {
        return e.number();
    }
    return ErrNo::None;
}

}  // namespace vl::test
