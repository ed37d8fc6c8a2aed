// Those who follow a history: one for each copy of the program that runs.
#pragma once

#include <optional>

#include "Oracle.h"

namespace vl::simulation {

struct Oracles {
    Oracle used;                  ///< of the copy that the user uses
    std::optional<Oracle> other;  ///< none while there is one copy

    explicit Oracles(Zone here) : used(here) {}

    template <class Tell>
    void tell(Tell&& tell) {
        tell(used);
        if (other) {
            tell(*other);
        }
    }
    /// An act of the user, by the copy that he uses.
    template <class Tell>
    void tellAct(const std::string& GUID, Tell&& tell) {
        tell(used);
        if (other) {
            tell(*other);
            other->wasActedByOther(GUID);
        }
    }
};

}  // namespace vl::simulation
