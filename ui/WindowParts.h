// What the main window works with.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "app/Files.h"
#include "base/Clock.h"
#include "events/CalEvents.h"
#include "events/Ledger.h"
#include "notify/Maintenance.h"
#include "notify/ReminderState.h"
#include "ui/GridUtils.h"
#include "ui/Tray.h"

namespace vl {

class Settings;
class SoundPlayer;

/// All of it must outlive the window.
struct WindowParts {
    CalEvents& reminders;  ///< the set that the checks read and ask
    CalEvents& period;     ///< the set behind the views
    DBRemindUtils& db;
    Settings& settings;
    const Clock& clock;
    ReminderState& state;
    Ledger& ledger;
    SoundPlayer& sound;
    GridUtils& gridUtils;
    bool DebugMode = false;
    std::string HelpBase;  ///< a help number is appended; empty where there is no help
    /// Whether the desktop shows tray icons. Without one the window is never hidden beyond reach.
    std::function<bool()> hasTray = &Tray::isThere;
    /// So long after the window has come by itself it takes no key that acts on a row: it was meant
    /// for what the user was at.
    std::chrono::milliseconds keysRest{500};
    std::function<bool(std::string_view)> openDocument = &vl::openDocument;
    std::function<bool(const std::vector<std::string>&)> startProgram = &vl::startProgram;
    std::string Version;             ///< major.minor.revision
    MessageScreen* boxes = nullptr;  ///< who shows message boxes; null: the window itself
};

}  // namespace vl
