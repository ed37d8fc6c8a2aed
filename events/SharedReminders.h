// Lists of reminders that many events have alike.
#pragma once

#include <array>
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
    // Events that say it with the same block of text, and the same minutes, are known without
    // looking at the text.
    struct Recent {
        SharedText reminders;
        std::int32_t minutes = 0;
        Known known;
    };
    const Known& find(calEvent& event, std::string_view defaultReminders);

    std::unordered_map<std::string, Known> known_;  // by what the list is made from
    std::array<Recent, 256> recent_;                // by where the text stands
};

}  // namespace vl
