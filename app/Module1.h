// Start-up: where the data lies, and the objects that the whole program shares.
#pragma once

#include <string>

#include "app/CommandLine.h"
#include "app/Settings.h"
#include "app/Sound.h"
#include "base/Clock.h"
#include "db/DBRemindUtils.h"
#include "events/CalEvents.h"
#include "events/Ledger.h"
#include "notify/ReminderState.h"

namespace vl {

/// Application-wide values, set once by the entry procedure.
struct AppValues {
    std::string AppDataFolder;  // settings file and template database; no separator at its end
    std::string DBFolder;       // of the reminders database; empty when none was named
    bool IsPortable = false;    // a "*.exe.Manifest" file lies beside the program
    bool DebugMode = false;     // a Debug build started with VL_DEBUG=1
    std::string ShortTimeFormat;
    std::string HelpBase;  // a window's help number is appended; empty where no help is installed
};

/// The one object graph: made before the window, handed to it by reference, and outliving it.
class Module1 {
public:
    /// The entry procedure up to the window, in its order. Every step carries on after a failure
    /// of the one before: with nothing at all in place the program still starts, with all
    /// defaults and no reminders.
    explicit Module1(const CommandLine& commandLine);
    Module1(const Module1&) = delete;
    Module1& operator=(const Module1&) = delete;

    AppValues values;
    SystemClock clock;
    Settings settings;
    Ledger ledger;  // beside the settings
    DBRemindUtils db;
    CalEvents reminders;  // what the checks read and ask
    CalEvents period;     // behind the period views
    ReminderState state;
    SoundPlayer sound;

private:
    static AppValues findData();
    static Settings settingsIn(const std::string& AppDataFolder);
    void openDatabaseFolder(const std::string& DBFolder);
};

}  // namespace vl
