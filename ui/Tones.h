// The few colours that are not the palette's own, derived from it.
#pragma once

#include <QColor>
#include <QPalette>

namespace vl {

/// Readable on the palette's ground (contrast 4.5 to 1 or better for `accent` and `warm`, 3 to 1
/// for `dimmed`), whether that is light or dark.
struct Tones {
    /// `ground`: `Base` for lists, `Window` for forms.
    explicit Tones(const QPalette& palette, QPalette::ColorRole ground = QPalette::Base);

    QColor accent;  ///< due now
    QColor warm;    ///< overdue; always beside the word
    QColor dimmed;  ///< second lines, dismissed rows, what an empty grid says
};

/// The contrast of two opaque colours, from 1 to 21 (WCAG 2, "contrast ratio").
double contrast(const QColor& a, const QColor& b);

/// What circles and boxes to be checked need to be seen, checked or not: colours to be set beside
/// those of `form`, which is light or dark.
QPalette choicePalette(const QPalette& form);

/// Part `share` (0 to 1) of `a` and the rest of `b`.
QColor mixed(const QColor& a, const QColor& b, double share);

}  // namespace vl
