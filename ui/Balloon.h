// The desktop's own notification, beside the tray.
#pragma once

#include <QObject>
#include <QString>

class QSystemTrayIcon;

namespace vl {

/// Asks the desktop's notification service where there is one, without waiting for it: nothing
/// here can make the window hang. Where there is none, or it refuses, the tray icon's own balloon
/// serves.
class Balloon final : public QObject {
    Q_OBJECT

public:
    /// `tray` must outlive the balloon.
    explicit Balloon(QSystemTrayIcon& tray, QObject* parent = nullptr);

    /// Shown for `seconds`. One that is still shown is replaced.
    void present(const QString& title, const QString& text, int seconds);

signals:
    /// The user has clicked it; not every desktop tells.
    void clicked();

private:
    Q_SLOT void onAction(uint id, const QString& action);
    bool askService(const QString& title, const QString& text, int seconds);

    QSystemTrayIcon& tray_;
    uint id_ = 0;  // of the last one shown by the service
    bool listening_ = false;
};

/// Lines as the desktop parts them, none of them empty at the end.
QString balloonText(const QString& text);

/// Milliseconds as whole seconds, halves to the even neighbour.
int balloonSeconds(int milliseconds);

}  // namespace vl
