#include "ui/LongWords.h"

#include <QFontMetrics>
#include <QTextBoundaryFinder>

namespace vl {

namespace {

constexpr QChar kMayBreak(0x200b);  // zero width space

void append(QString& parted, const QString& word, const QFontMetrics& metrics, int width) {
    if (metrics.horizontalAdvance(word) <= width) {
        parted += word;
        return;
    }
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, word);
    QString line;
    qsizetype from = 0;
    for (qsizetype to = characters.toNextBoundary(); to >= 0; to = characters.toNextBoundary()) {
        const QString character = word.mid(from, to - from);
        if (!line.isEmpty() && metrics.horizontalAdvance(line + character) > width) {
            parted += line + kMayBreak;
            line.clear();
        }
        line += character;
        from = to;
    }
    parted += line;
}

}  // namespace

QString withLongWordsParted(const QString& text, const QFontMetrics& metrics, int width) {
    QString parted;
    QString word;
    for (const QChar c : text) {
        if (!c.isSpace()) {
            word += c;
            continue;
        }
        append(parted, word, metrics, width);
        word.clear();
        parted += c;
    }
    append(parted, word, metrics, width);
    return parted;
}

}  // namespace vl
