#include "app/Module1.h"

#include "app/DataFolders.h"
#include "app/Files.h"
#include "app/TimeText.h"
#include "base/ErrorState.h"

namespace vl {

Module1::Module1(const CommandLine& commandLine)
    : values(findData()),
      settings(settingsIn(values.AppDataFolder)),
      ledger(clock, joinPath(values.AppDataFolder, kLedgerName)),
      reminders(db, clock, settings.GetIni("Reminders", "DefaultReminders", "")),
      period(db, clock, settings.GetIni("Reminders", "DefaultReminders", "")) {
    openDatabaseFolder(commandLine.DBFolder);
    values.HelpBase = findHelpBase(installedDataFolders());
}

AppValues Module1::findData() {
    const ErrScope scope;
    AppValues values;
    values.DebugMode = isDevelopmentRun();
    const std::string own = programFolder();
    if (!values.DebugMode) {
        values.IsPortable = isPortable(own);
    }
    values.AppDataFolder = findAppDataFolder(own, values.DebugMode);
    values.ShortTimeFormat = shortTimeFormat();
    return values;
}

Settings Module1::settingsIn(const std::string& AppDataFolder) {
    Settings settings;
    settings.filename = joinPath(AppDataFolder, kSettingsName);
    return settings;
}

void Module1::openDatabaseFolder(const std::string& DBFolder) {
    const ErrScope scope;
    provideTemplate(values.AppDataFolder, installedDataFolders());
    if (!DBFolder.empty()) {
        values.DBFolder = DBFolder;
        db.DBFullName = provideDatabase(DBFolder, values.AppDataFolder);
    }
}

}  // namespace vl
