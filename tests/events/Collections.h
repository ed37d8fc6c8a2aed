// What the collection's tests share.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "events/GenCollection.h"

namespace vl::test {

struct Thing : Object {
    explicit Thing(int n) : number(n) {}
    int number;
};

inline std::string keysOf(const GenCollection& col) {
    std::string all;
    for (std::size_t i = 1; i <= col.Count(); ++i) {
        all += (i == 1 ? "" : ",") + col.Key(static_cast<std::int64_t>(i));
    }
    return all;
}

inline GenCollection filled(std::string_view list) {
    GenCollection col;
    col.LoadFromList(list, ",", {}, false, true);
    return col;
}

inline GenCollection numbered(int n) {
    GenCollection col;
    for (int i = 1; i <= n; ++i) {
        col.Add(i, "key" + std::to_string(i));
    }
    return col;
}

}  // namespace vl::test
