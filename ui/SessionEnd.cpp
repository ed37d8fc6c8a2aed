#include "ui/SessionEnd.h"

#include <QEvent>
#include <QGuiApplication>
#include <QSessionManager>
#include <QSocketNotifier>

#include "ui/frmDDE.h"

namespace vl {

SessionEnd::SessionEnd(frmDDE& window) : window_(window) {
    qApp->installEventFilter(this);
    connect(
        qGuiApp, &QGuiApplication::commitDataRequest, this, [this] { window_.SaveSettings(); },
        Qt::DirectConnection);
    connect(qApp, &QCoreApplication::aboutToQuit, this, [this] { window_.Unload(); });
    if (signals_.descriptor() >= 0) {
        auto* notifier = new QSocketNotifier(signals_.descriptor(), QSocketNotifier::Read, this);
        connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
            notifier->setEnabled(false);
            window_.Exit();
        });
    }
}

bool SessionEnd::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Quit && watched == qApp) {
        window_.Unload();
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace vl
