#include "ui/FormFont.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QPushButton>
#include <QToolTip>

namespace vl {

namespace {

constexpr auto kFamily = "Arial";

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
    font.setFamily(kFamily);
    font.setBold(control.font().bold());
    return font;
}

void applyTipFont() {
    QFont font = QToolTip::font();
    font.setFamily(kFamily);
    QToolTip::setFont(font);
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
