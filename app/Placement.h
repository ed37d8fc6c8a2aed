// Where the main window goes.
#pragma once

#include <optional>
#include <span>

#include "app/Settings.h"

namespace vl {

/// A screen, or the part of it that windows may cover, in the units of the desktop: screens to the
/// left of the first one, or above it, have negative edges.
struct ScreenArea {
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;
};
struct Extent {
    double width = 0;
    double height = 0;
};
struct WindowPlacement {
    int left = 0;
    int top = 0;
    std::optional<int> width;  // only where one above 0 is saved
    std::optional<int> height;
};

/// Brings an edge back on a screen that begins at `start`: the smaller of `value` and what the
/// window leaves of the screen, but not below `start`; as a whole number, halves to even.
int clampedEdge(double value, double screenExtent, double windowExtent, double start = 0);

/// Out of the section "Window". An edge that is not saved is half of `whole`, the first screen with
/// its panels. The window (of its saved extent, else `window`; `frame` is added to either) stays
/// where it was when all of it is in sight; otherwise it is clamped to the screen that it covers
/// most of, or lies nearest to when its screen is gone. `screens` has the primary one first;
/// without any nothing is clamped. Never throws.
WindowPlacement readPlacement(const Settings& settings, std::span<const ScreenArea> screens,
                              const ScreenArea& whole, Extent window, Extent frame = {});

}  // namespace vl
