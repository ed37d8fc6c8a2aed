#include "ui/MenuLook.h"

#include <QApplication>
#include <QMenu>

#include "ui/FormFont.h"
#include "ui/Tones.h"

namespace vl {

void applyMenuLook(QMenu& menu) {
    menu.setFont(formFont(menu));
    menu.setPalette(choicePalette(QApplication::palette(&menu)));
    for (QMenu* inside : menu.findChildren<QMenu*>(Qt::FindDirectChildrenOnly)) {
        applyMenuLook(*inside);
    }
}

}  // namespace vl
