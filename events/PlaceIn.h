// Finding again what a list held before.
#pragma once

#include <algorithm>
#include <cstddef>

#include "base/Variant.h"

namespace vl {

/// Where the object stands in `list` from `at` on, or the list's size: looked for a few places
/// ahead, since where one was taken out or put in the others follow. `objectOf` tells the object of
/// an entry.
template <class List, class ObjectOf>
std::size_t placeIn(const List& list, std::size_t at, const Object* wanted, ObjectOf objectOf) {
    constexpr std::size_t kAhead = 4;
    const std::size_t end = std::min(list.size(), at + kAhead);
    for (std::size_t i = at; wanted != nullptr && i < end; ++i) {
        if (objectOf(list[i]) == wanted) {
            return i;
        }
    }
    return list.size();
}

}  // namespace vl
