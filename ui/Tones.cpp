#include "ui/Tones.h"

#include <algorithm>
#include <cmath>

namespace vl {

namespace {

double linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& c) {
    return 0.2126 * linear(c.redF()) + 0.7152 * linear(c.greenF()) + 0.0722 * linear(c.blueF());
}

// Moves a colour towards the text's until it can be read on the base.
QColor readable(const QColor& wanted, const QColor& text, const QColor& base, double least) {
    QColor colour = wanted;
    for (double share = 0.95; contrast(colour, base) < least && share >= 0; share -= 0.05) {
        colour = mixed(wanted, text, share);
    }
    return colour;
}

}  // namespace

double contrast(const QColor& a, const QColor& b) {
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

// On a dark palette the style draws the rim of a circle or box darker than the window: what is not
// checked can only be seen when its field is lighter.
QPalette choicePalette(const QPalette& form) {
    const QColor window = form.color(QPalette::Active, QPalette::Window);
    const QColor base = form.color(QPalette::Active, QPalette::Base);
    QPalette own;
    if (contrast(base, Qt::black) < contrast(window, Qt::black)) {
        const QColor text = form.color(QPalette::Active, QPalette::WindowText);
        own.setColor(QPalette::Base, mixed(text, window, 0.25));
    }
    return own;
}

QColor mixed(const QColor& a, const QColor& b, double share) {
    const auto channel = [share](int x, int y) {
        return static_cast<int>(std::lround(x * share + y * (1 - share)));
    };
    return {channel(a.red(), b.red()), channel(a.green(), b.green()), channel(a.blue(), b.blue())};
}

Tones::Tones(const QPalette& palette, QPalette::ColorRole ground) {
    const bool form = ground == QPalette::Window;
    const QColor base = palette.color(QPalette::Active, ground);
    const QColor text =
        palette.color(QPalette::Active, form ? QPalette::WindowText : QPalette::Text);
    const bool dark = luminance(base) < luminance(text);
    const QColor highlight = palette.color(QPalette::Active, QPalette::Highlight);
    accent = readable(highlight, text, base, 4.5);
    warm = readable(dark ? QColor(0xff, 0x9d, 0x66) : QColor(0xb8, 0x45, 0x0e), text, base, 4.5);
    dimmed = readable(mixed(text, base, 0.6), text, base, 3.0);
}

}  // namespace vl
