// What a damaged table has lost of the events that were read from it.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_set>
#include <utility>

#include "base/ErrorState.h"

namespace vl {

struct Damage {
    std::size_t rows = 0;                    ///< read in part, or not at all; a lost page is one
    std::unordered_set<std::string> inPart;  ///< `GUID`s, folded, of events without some properties
};

/// Runs one step of reading. False: what it read is damaged. Every other error goes on: what cannot
/// be read now is not lost.
template <class Step>
bool isReadable(Step&& step, Place where = Place::here()) {
    try {
        std::forward<Step>(step)();
        return true;
    } catch (const Error& e) {
        if (e.number() != ErrNo::Corrupt) {
            throw;
        }
        absorb(std::current_exception(), where);
        return false;
    }
}

}  // namespace vl
