#include "ui/UpDown.h"

#include <QLineEdit>
#include <QStyleOptionSpinBox>

namespace vl {

UpDown::UpDown(QWidget* parent) : QAbstractSpinBox(parent) {
    lineEdit()->setReadOnly(true);
    lineEdit()->hide();
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void UpDown::stepBy(int steps) {
    value_ += steps;
    emit stepped(steps);
}

QSize UpDown::sizeHint() const {
    QStyleOptionSpinBox option;
    initStyleOption(&option);
    option.rect = QRect(0, 0, 100, QAbstractSpinBox::sizeHint().height());
    const QRect arrow =
        style()->subControlRect(QStyle::CC_SpinBox, &option, QStyle::SC_SpinBoxUp, this);
    // No field: its frame is the arrows'.
    return {arrow.width() + 2, option.rect.height()};
}

int wrapped(int position, int count) {
    if (position < 1) {
        return count;
    }
    return position > count ? 1 : position;
}

}  // namespace vl
