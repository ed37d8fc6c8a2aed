// The events of a collection, ready to be walked often.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "events/GenCollection.h"

namespace vl {

class calEvent;

/// Finds the events among a collection's items once, and again when the collection has changed.
class HeldEvents {
public:
    struct Held {
        calEvent* event;       ///< never null
        std::size_t position;  ///< in the collection, from 1
    };

    /// In the collection's order; good until the next call, and as long as the collection holds
    /// what it held.
    const std::vector<Held>& of(const GenCollection& collection);

private:
    std::uint64_t stamp_ = 0;
    std::vector<Held> held_;
};

}  // namespace vl
