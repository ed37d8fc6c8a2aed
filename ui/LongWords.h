// Words that are longer than a line.
#pragma once

#include <QString>

class QFontMetrics;

namespace vl {

/// `text` with a place to break, which nobody sees, wherever a word that is wider than `width`
/// pixels would leave the line: a label breaks lines between words only, and cuts off what is left.
/// A word that fits stays as it is; no character is parted.
QString withLongWordsParted(const QString& text, const QFontMetrics& metrics, int width);

}  // namespace vl
