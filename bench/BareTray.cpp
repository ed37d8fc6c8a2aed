// The least that a program with a tray icon is: what Qt and the desktop cost by themselves, for
// footprint.py to compare with.
#include <QApplication>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QPixmap square(22, 22);
    square.fill(Qt::darkGreen);
    QSystemTrayIcon icon{QIcon(square)};
    icon.show();
    return QApplication::exec();
}
