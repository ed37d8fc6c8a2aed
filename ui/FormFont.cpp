#include "ui/FormFont.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QPushButton>

namespace vl {

namespace {

// A grid is left alone; it follows the tab it stands on.
bool isOfAGrid(const QWidget* control) {
    for (; control; control = control->parentWidget()) {
        if (qobject_cast<const QAbstractItemView*>(control)) {
            return true;
        }
    }
    return false;
}

}  // namespace

QFont formFont(const QWidget& control) {
    QFont font = QApplication::font();
    font.setFamily("Arial");
    font.setBold(control.font().bold());
    return font;
}

void applyFormFont(QWidget& form) {
    for (QWidget* control : form.findChildren<QWidget*>()) {
        if (isOfAGrid(control)) {
            continue;
        }
        control->setFont(formFont(*control));
        if (auto* button = qobject_cast<QPushButton*>(control); button && button->text() == "&OK") {
            button->setDefault(true);
        }
    }
}

}  // namespace vl
