#include "ui/ColumnMenu.h"

#include <QMenu>

#include "ui/Grid.h"

namespace vl {

void fillColumnMenu(QMenu& menu, Grid& grid) {
    const auto columns = grid.rows().columns();
    for (int i = 0; i < static_cast<int>(columns.size()); ++i) {
        const char* id = columns[static_cast<std::size_t>(i)].id;
        QAction* entry = menu.addAction(grid.model()->headerData(i, Qt::Horizontal).toString());
        entry->setObjectName(QString("mnuColumn") + id);
        entry->setCheckable(true);
        entry->setChecked(!grid.isColumnHidden(i));
        entry->setEnabled(i != columnIndex(columns, CIDSubject));
        QObject::connect(entry, &QAction::toggled, &grid,
                         [&grid, i](bool shown) { grid.showColumn(i, shown); });
    }
    menu.addSeparator();
    QAction* reset = menu.addAction(QObject::tr("&Reset columns"));
    reset->setObjectName("mnuColumnsReset");
    QObject::connect(reset, &QAction::triggered, &grid, [&grid] { grid.InitGrid(); });
}

}  // namespace vl
