#include "notify/SnoozeText.h"

#include <array>

#include "base/ErrorState.h"
#include "model/clsReminder.h"

namespace vl {

namespace {

constexpr std::array<const char*, 16> kChoices{"1m", "2m",  "5m", "15m", "30m", "1h", "2h", "4h",
                                               "8h", "12h", "1d", "2d",  "3d",  "4d", "1w", "2w"};

}  // namespace

std::span<const char* const> snoozeChoices() noexcept { return kChoices; }

std::optional<std::int32_t> snoozeMinutes(std::string_view sSnooze) noexcept {
    const ErrScope scope;
    clsReminder offset;
    attempt([&] { offset.FromText(sSnooze); });
    return offset.Minutes > 0 ? std::optional(offset.Minutes) : std::nullopt;
}

std::optional<DateTime> snoozeTime(std::string_view sSnooze, DateTime now) noexcept {
    // The last day that the database can hold.
    static const DateTime kLast = DateTime::fromCivil(9999, 12, 31, 23, 59, 59);
    const auto minutes = snoozeMinutes(sSnooze);
    if (!minutes) {
        return std::nullopt;
    }
    const DateTime time = now.addMinutes(*minutes);
    return time <= kLast ? std::optional(time) : std::nullopt;
}

std::string snoozeTitle(std::string_view summary) {
    // Two blanks on purpose: what follows is a name, not a word of the sentence.
    return "Snooze reminder for:  " + std::string(summary) + "...";
}

}  // namespace vl
