// Lists of reminders that many events have alike.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "events/GenCollection.h"
#include "model/calEvent.h"

namespace vl {

/// Gives events whose reminders are written alike one and the same list: most calendars know a few,
/// and nobody changes a list in place.
class SharedReminders {
public:
    /// As `calEvent::SetRemindersCol`.
    void set(calEvent& event, std::string_view defaultReminders);

private:
    struct Known {
        std::shared_ptr<GenCollection> list;
        std::int32_t least = 0;
        std::int32_t most = 0;
    };
    std::unordered_map<std::string, Known> known_;  // by what the list is made from
};

}  // namespace vl
