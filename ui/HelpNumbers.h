// Anchors of the help page data/help/index.html.
#pragma once

namespace vl {

// The help numbers of the windows.
inline constexpr int kHelpMainWindow = 5565;
inline constexpr int kHelpSnooze = 5566;
inline constexpr int kHelpDismiss = 5567;

/// Every number that a window of the program uses.
inline constexpr int kHelpNumbers[] = {kHelpMainWindow, kHelpSnooze, kHelpDismiss};

// Places that are about one part of the main window: they follow its number.
inline constexpr const char* kHelpPeriods = ".periods";
inline constexpr const char* kHelpSearch = ".search";
inline constexpr const char* kHelpTabs = ".tabs";
inline constexpr const char* kHelpTray = ".tray";
inline constexpr const char* kHelpCleanUp = ".cleanup";
inline constexpr const char* kHelpTrouble = ".trouble";

inline constexpr const char* kHelpPlaces[] = {kHelpPeriods, kHelpSearch,  kHelpTabs,
                                              kHelpTray,    kHelpCleanUp, kHelpTrouble};

}  // namespace vl
