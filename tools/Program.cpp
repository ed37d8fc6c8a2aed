#include "Program.h"

#include <string_view>

#include "app/DataFolders.h"
#include "app/Files.h"
#include "app/Settings.h"

namespace vl::tools {

namespace {

std::string fileOf(const Arguments& arguments, std::string_view option, std::string_view name) {
    const std::string named = arguments.option(option);
    return !named.empty() ? named
                          : joinPath(findAppDataFolder(programFolder(), isDevelopmentRun()), name);
}

}  // namespace

std::string ledgerPath(const Arguments& arguments) {
    return fileOf(arguments, "--ledger", kLedgerName);
}

std::string defaultReminders(const Arguments& arguments) {
    Settings settings;
    settings.filename = fileOf(arguments, "--settings", kSettingsName);
    return settings.GetIni("Reminders", "DefaultReminders", "");
}

}  // namespace vl::tools
