#include "app/Placement.h"

#include <algorithm>
#include <cmath>

#include "base/Text.h"

namespace vl {

namespace {

double common(double from, double extent, double otherFrom, double otherExtent) {
    return std::min(from + extent, otherFrom + otherExtent) - std::max(from, otherFrom);
}

double overlap(const ScreenArea& a, const ScreenArea& b) {
    const double x = common(a.left, a.width, b.left, b.width);
    const double y = common(a.top, a.height, b.top, b.height);
    return x > 0 && y > 0 ? x * y : 0;
}

// Of areas that do not meet, `common` is below 0: how far they are apart.
double distance(const ScreenArea& a, const ScreenArea& b) {
    const double x = std::max(-common(a.left, a.width, b.left, b.width), 0.0);
    const double y = std::max(-common(a.top, a.height, b.top, b.height), 0.0);
    return std::hypot(x, y);
}

const ScreenArea& screenOf(const ScreenArea& window, std::span<const ScreenArea> screens) {
    return *std::max_element(
        screens.begin(), screens.end(), [&](const ScreenArea& a, const ScreenArea& b) {
            const double inA = overlap(window, a);
            const double inB = overlap(window, b);
            return inA != inB ? inA < inB : distance(window, a) > distance(window, b);
        });
}

bool isInSight(const ScreenArea& window, std::span<const ScreenArea> screens) {
    double seen = 0;
    for (const ScreenArea& screen : screens) {
        seen += overlap(window, screen);
    }
    return seen >= window.width * window.height;
}

constexpr double kMost = 2147483647.0;

int wholeNumber(double edge) {
    return std::isnan(edge)
               ? 0
               : static_cast<int>(text::roundHalfEven(std::clamp(edge, -kMost, kMost)));
}

std::optional<int> savedExtent(const Settings& settings, const char* key) {
    constexpr double kLargest = 1e6;  // more than any screen has
    const double value = text::leadingNumber(settings.GetIni("Window", key, 0.0));
    return value > 0.0 ? std::optional(wholeNumber(std::min(value, kLargest))) : std::nullopt;
}

}  // namespace

int clampedEdge(double value, double screenExtent, double windowExtent, double start) {
    // The smaller first: a window larger than the screen begins at its edge.
    return wholeNumber(std::max(std::min(value, start + screenExtent - windowExtent), start));
}

WindowPlacement readPlacement(const Settings& settings, std::span<const ScreenArea> screens,
                              const ScreenArea& whole, Extent window, Extent frame) {
    const auto saved = [&](const char* key, double otherwise) {
        return text::leadingNumber(settings.GetIni("Window", key, otherwise));
    };
    WindowPlacement placement;
    placement.width = savedExtent(settings, "Width");
    placement.height = savedExtent(settings, "Height");
    const ScreenArea wanted{saved("Left", whole.left + whole.width / 2),
                            saved("Top", whole.top + whole.height / 2),
                            placement.width.value_or(wholeNumber(window.width)) + frame.width,
                            placement.height.value_or(wholeNumber(window.height)) + frame.height};
    if (screens.empty() || isInSight(wanted, screens)) {
        placement.left = wholeNumber(wanted.left);
        placement.top = wholeNumber(wanted.top);
        return placement;
    }
    const ScreenArea& screen = screenOf(wanted, screens);
    placement.left = clampedEdge(wanted.left, screen.width, wanted.width, screen.left);
    placement.top = clampedEdge(wanted.top, screen.height, wanted.height, screen.top);
    return placement;
}

}  // namespace vl
