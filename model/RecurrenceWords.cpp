#include "Recurrence.h"

namespace vl {

std::string Recurrence::inWords() const { return repeats() ? "Repeats" : std::string(); }

}  // namespace vl
