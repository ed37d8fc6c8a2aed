// The help numbers of windows: anchors of the page data/help/index.html.
#pragma once

namespace vl {

inline constexpr int kHelpMainWindow = 5565;

/// Every number that a window of the program uses.
inline constexpr int kHelpNumbers[] = {kHelpMainWindow};

}  // namespace vl
