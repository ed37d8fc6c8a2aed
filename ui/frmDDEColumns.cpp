// The columns of the grids: as the user left them, over restarts.
#include <QMenu>

#include "base/ErrorState.h"
#include "ui/ColumnMenu.h"
#include "ui/MenuLook.h"
#include "ui/frmDDE.h"

namespace vl {

// An edge that is dragged moves by every pixel; it is written when it has come to rest.
void frmDDE::columnsChanged() {
    if (!loading_) {
        saveColumns_.start();
    }
    wantFields();
}

void frmDDE::saveColumns() {
    const ErrScope scope;
    saveColumns_.stop();
    for (int i = 0; i < kGridCount; ++i) {
        keptColumns_.write(i, grid(i).columnLayout());
    }
}

void frmDDE::saveColumnsThatWait() {
    if (saveColumns_.isActive()) {
        saveColumns();
    }
}

void frmDDE::headingMenu(Grid& of, const QPoint& at) {
    QMenu menu(&of);
    menu.setObjectName("mnuColumns");
    fillColumnMenu(menu, of);
    applyMenuLook(menu);
    menu.exec(at);
}

}  // namespace vl
