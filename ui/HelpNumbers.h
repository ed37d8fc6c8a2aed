// The help numbers of windows: anchors of the page data/help/index.html.
#pragma once

namespace vl {

inline constexpr int kHelpMainWindow = 5565;
inline constexpr int kHelpSnooze = 5566;
inline constexpr int kHelpDismiss = 5567;

/// Every number that a window of the program uses.
inline constexpr int kHelpNumbers[] = {kHelpMainWindow, kHelpSnooze, kHelpDismiss};

}  // namespace vl
