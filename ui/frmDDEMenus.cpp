// Menus of the window, and the entries that are commands of their own.
#include <QMenu>
#include <QPushButton>

#include "app/Files.h"
#include "base/ErrorState.h"
#include "notify/About.h"
#include "notify/OpenGUID.h"
#include "ui/ColumnMenu.h"
#include "ui/QtText.h"
#include "ui/frmDDE.h"

namespace vl {

MessageScreen& frmDDE::boxes() {
    return parts_.boxes != nullptr ? *parts_.boxes : static_cast<MessageScreen&>(boxes_);
}

void frmDDE::mnuAbout_Click() {
    const ErrScope scope;
    attempt([&] { boxes().ShowBox(aboutBox(parts_.Version, state_.DBVersion)); });
}

void frmDDE::butOpen_Click() {
    const ErrScope scope;
    const GridRow* row = selectedGrid().currentRow();
    if (!row) {
        return;
    }
    const std::string GUID = plainText(row->GUID);  // the box lets ticks refill the grid
    const HostHelper host{programFolder(), parts_.startProgram, parts_.DebugMode};
    const bool started = OpenGUID(parts_.period, GUID, host, boxes());
    parts_.db.CloseDB();
    if (!started) {
        sayOnce(tr("VelmoraClipper.exe could not be started; it belongs beside this program"));
    }
}

void frmDDE::gridMenu(const QPoint& at) {
    QMenu menu(this);
    menu.setObjectName("mnuGrid");
    fillGridMenu(menu);
    menu.exec(at);
}

// What the buttons do, and the columns for who has no mouse.
void frmDDE::fillGridMenu(QMenu& menu) {
    QAction* open = menu.addAction(tr("&Open"), this, &frmDDE::butOpen_Click);
    open->setObjectName("mnuOpen");
    open->setEnabled(butOpen->isEnabled());
    menu.setDefaultAction(open);
    menu.addSeparator();
    QMenu* columns = menu.addMenu(tr("&Columns"));
    columns->setObjectName("mnuColumns");
    fillColumnMenu(*columns, selectedGrid());
}

void frmDDE::updateButtons() { butOpen->setEnabled(selectedGrid().currentRow() != nullptr); }

}  // namespace vl
