#include "ui/Tips.h"

#include <QTextDocument>

namespace vl {

QString plainTip(const QString& text) {
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}

}  // namespace vl
