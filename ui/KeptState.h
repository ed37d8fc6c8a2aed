// What the settings keep of the window's state.
//
// A setting that is missing or says nothing has its default. None of these throws.
#pragma once

#include "base/DateTime.h"
#include "notify/ReminderState.h"

namespace vl {

class Settings;

/// How the user is told: muted, silent, the type of notification, on top. Of two older flags for
/// the type each wins over it, and the later one over both.
void readNotifying(const Settings& settings, ReminderState& state);

/// The period that is shown, when the pop-up was last closed (`now` where that was never), the
/// version of the database.
void readPeriod(const Settings& settings, DateTime now, ReminderState& state);

/// All that the two read. The older flags are 0 from then on: the type holds what they said.
void writeState(Settings& settings, const ReminderState& state);

}  // namespace vl
