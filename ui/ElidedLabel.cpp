#include "ui/ElidedLabel.h"

#include <QPainter>
#include <QStyle>

namespace vl {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

QSize ElidedLabel::sizeHint() const { return minimumSizeHint(); }

QSize ElidedLabel::minimumSizeHint() const { return {0, fontMetrics().height() + 2 * margin()}; }

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect area = contentsRect();
    style()->drawItemText(
        &painter, area, static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter), palette(), isEnabled(),
        fontMetrics().elidedText(text(), Qt::ElideRight, area.width()), foregroundRole());
}

}  // namespace vl
