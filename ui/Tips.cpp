#include "ui/Tips.h"

#include <QStringList>
#include <QTextDocument>

namespace vl {

namespace {

// A text takes its direction from its first word: "15 minutes" below a subject that is written from
// right to left would read "minutes 15".
QString linesApart(const QString& text) {
    constexpr QChar kLeftToRight(0x200e);
    constexpr QChar kFirstStrongIsolate(0x2068);
    constexpr QChar kPopDirectionalIsolate(0x2069);
    QStringList lines = text.split(u'\n');
    bool turned = false;
    for (QString& line : lines) {
        if (line.isRightToLeft()) {
            line = kFirstStrongIsolate + line + kPopDirectionalIsolate;
            turned = true;
        }
    }
    return turned ? kLeftToRight + lines.join(u'\n') : text;
}

}  // namespace

QString plainTip(const QString& text) {
    const QString tip = linesApart(text);
    return Qt::mightBeRichText(tip) ? Qt::convertFromPlainText(tip, Qt::WhiteSpaceNormal) : tip;
}

}  // namespace vl
