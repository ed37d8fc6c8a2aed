// Where the program's data lies, and how it gets there: the first steps of the start.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/Settings.h"

namespace vl {

// Paths are composed with the folder's own separator (see `joinPath`). No function here throws.

inline constexpr std::string_view kSettingsName = "VLReminders.ini";
inline constexpr std::string_view kDatabaseName = "Velmora.RemindDB";

/// True when a file whose name ends in ".exe.Manifest" (in any case) lies in the program's folder.
bool isPortable(std::string_view programFolder);

/// The data folder, without a separator at its end. In a development run a folder beside the
/// current one; in the portable layout "AppData" beside the program, which nobody makes; else the
/// application-data folder of all users, which is made if it is not there.
std::string findAppDataFolder(std::string_view programFolder, bool developmentRun);

/// Copies `from` to `to` when there is nothing at `to` yet and its folder is there; as one change,
/// so that a full disk leaves no half file. True when there is something at `to` afterwards.
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

/// Brings a saved edge back on the screen: the smaller of `value` and the space the window leaves,
/// but not below 0; as a whole number, halves to even.
int clampedEdge(double value, double screenExtent, double windowExtent);

/// Where the main window goes.
struct WindowPlacement {
    int left = 0;
    int top = 0;
    std::optional<int> width;  // only where one above 0 is saved
    std::optional<int> height;
};
struct Extent {
    double width = 0;
    double height = 0;
};
/// Out of the section "Window"; half the screen for an edge that is not saved. The edges are
/// clamped with the extent the window has now, not with the saved one.
WindowPlacement readPlacement(const Settings& settings, Extent screen, Extent window);

}  // namespace vl
