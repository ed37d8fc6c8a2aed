// What the user chooses or types to snooze a reminder.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/DateTime.h"

namespace vl {

/// What the list offers, in its order, as short texts of `clsReminder`.
std::span<const char* const> snoozeChoices() noexcept;

/// The minutes that a short text stands for; a mark for e-mail changes nothing. None where snoozing
/// would change nothing: an empty text, one without a number, 0 or less, or more than an offset
/// can hold. Never throws.
std::optional<std::int32_t> snoozeMinutes(std::string_view sSnooze) noexcept;

/// `now` plus that many minutes; none as above, or where no date lies that far ahead.
std::optional<DateTime> snoozeTime(std::string_view sSnooze, DateTime now) noexcept;

/// The caption of the dialog for an event of that summary.
std::string snoozeTitle(std::string_view summary);

}  // namespace vl
