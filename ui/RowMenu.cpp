#include "ui/RowMenu.h"

#include <QMenu>
#include <QPushButton>

#include "base/ErrorState.h"
#include "ui/ColumnMenu.h"
#include "ui/RowActs.h"
#include "ui/SplitButton.h"
#include "ui/WindowControls.h"

namespace vl {

namespace {

QString tr(const char* text) { return QObject::tr(text); }

}  // namespace

void fillRowMenu(QMenu& menu, const WindowControls& controls, RowActs& acts) {
    const auto add = [&](const char* name, const QString& text, const QAbstractButton* as,
                         void (RowActs::*chosen)(const RowChoice&)) {
        QAction* action = menu.addAction(text, &acts, [&acts, chosen] {
            const ErrScope scope;
            attempt([&] { (acts.*chosen)(acts.menuChoice()); });
        });
        action->setObjectName(name);
        action->setEnabled(as->isEnabled());
        return action;
    };
    const SplitButton* dismiss = controls.butDismiss;
    menu.setDefaultAction(add("mnuOpen", tr("&Open"), controls.butOpen, &RowActs::open));
    menu.addSeparator();
    add("mnuSnooze", controls.butSnooze->text(), controls.butSnooze, &RowActs::snoozeOrHide);
    if (acts.offered().dismisses) {
        fillDismissMenu(menu, *controls.butDismiss);
    } else {
        add("mnuReactivate", dismiss->text(), dismiss, &RowActs::reactivate);
    }
    menu.addSeparator();
    QMenu* columns = menu.addMenu(tr("&Columns"));
    columns->setObjectName("mnuColumns");
    fillColumnMenu(*columns, controls.selectedGrid());
}

}  // namespace vl
