// What the sources of `Acts` share.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "events/FileTrouble.h"
#include "events/GenCollection.h"
#include "model/calEvent.h"

namespace vl {

// The columns that acts write (`kStateColumns`), and the status of what is finished.
inline constexpr const char* kNextReminder = "NextReminder";
inline constexpr const char* kDismissed = "Dismissed";
inline constexpr const char* kHidden = "Hidden";
inline constexpr const char* kStatus = "status";
inline constexpr const char* kAllDone = "AllDone";

/// The event of a set; null when the set has none, or was never read.
inline std::shared_ptr<calEvent> heldBy(const std::shared_ptr<GenCollection>& set,
                                        const std::string& GUID) {
    return set && set->Exists(GUID) ? objectAt<calEvent>(*set, GUID) : nullptr;
}

}  // namespace vl
