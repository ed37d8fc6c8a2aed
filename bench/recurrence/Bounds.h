// What the recurrence engine promises never to exceed, measured once each.
#pragma once

#include <ostream>
#include <span>

#include "model/Recurrence.h"

namespace vl::bench {

/// Prints a line each: memory of a loaded rule, allocations of a window and of an instance, the
/// longest call of rules that never match, a window at the end of a large COUNT.
/// `sources` are the rules of the mix; `local` the zone they are loaded in.
void printBounds(std::span<const Recurrence::Source> sources, const TimeZone& local,
                 std::ostream& out);

}  // namespace vl::bench
