#include "ui/Tips.h"

#include <QStringList>
#include <QTextDocument>

#include "ui/Direction.h"

namespace vl {

namespace {

// A text takes its direction from its first word: "15 minutes" below a subject that is written from
// right to left would read "minutes 15".
QString linesApart(const QString& text) {
    constexpr QChar kLeftToRight(0x200e);
    QStringList lines = text.split(u'\n');
    bool turned = false;
    for (QString& line : lines) {
        turned = turned || line.isRightToLeft();
        line = apart(line);
    }
    return turned ? kLeftToRight + lines.join(u'\n') : text;
}

}  // namespace

QString plainTip(const QString& text) {
    const QString tip = linesApart(text);
    return Qt::mightBeRichText(tip) ? Qt::convertFromPlainText(tip, Qt::WhiteSpaceNormal) : tip;
}

}  // namespace vl
