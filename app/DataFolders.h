// Where the program's data lies, and how it gets there: the first steps of the start.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vl {

// Paths are composed with the folder's own separator (see `joinPath`). No function here throws.

inline constexpr std::string_view kSettingsName = "VLReminders.ini";
inline constexpr std::string_view kLedgerName = "VLReminders.ledger";
inline constexpr std::string_view kDatabaseName = "Velmora.RemindDB";

/// True when a file whose name ends in ".exe.Manifest" (in any case) lies in the program's folder.
bool isPortable(std::string_view programFolder);

/// The data folder, without a separator at its end. In a development run a folder beside the
/// current one; in the portable layout "AppData" beside the program, which nobody makes; else the
/// application-data folder of all users, which is made if it is not there.
std::string findAppDataFolder(std::string_view programFolder, bool developmentRun);

/// Copies `from` to `to` when there is nothing at `to` yet and its folder is there; as one change,
/// so that a full disk leaves no half file. Never replaces what has got the name, not even if that
/// came while this was copying, nor a link that points nowhere. True when there is something at
/// `to` afterwards.
bool copyIfMissing(const std::string& from, const std::string& to);

/// Puts the template database into the data folder from the first of `sharedFolders` that has one.
/// True when the data folder has one afterwards.
bool provideTemplate(const std::string& AppDataFolder,
                     const std::vector<std::string>& sharedFolders);

/// The folders in which the installation puts what all users share, the likeliest first.
std::vector<std::string> installedDataFolders();

/// The full name of the reminders database in `DBFolder`; where there is none yet, it is copied
/// from the data folder, if that can be done. Empty for an empty folder.
std::string provideDatabase(std::string_view DBFolder, std::string_view AppDataFolder);

/// What a help number is appended to: the address of the help page among what all users share, and
/// "#". Empty when the page is nowhere.
std::string findHelpBase(const std::vector<std::string>& sharedFolders);

}  // namespace vl
