// The icon in the notification area and its menu.
#pragma once

#include <cstdint>

#include <QIcon>
#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

#include "notify/ReminderState.h"
#include "ui/Balloon.h"

namespace vl {

/// What a click on the icon (any button but the right one) does to the window.
enum class TrayClick : std::uint8_t { Hide, BringForward, Show };

/// `hasFocus` is what the last look before the click found: the click itself takes the focus.
TrayClick trayClick(bool hasFocus, bool visible);

/// Owns icon and menu `mnuTray`. A menu entry that is chosen only says so; what it does is the
/// window's. Marks are brought up to date whenever the menu opens, not when it is asked for: some
/// panels show it by themselves.
class Tray final : public QObject {
    Q_OBJECT

public:
    /// `Pic1` is shown while nothing is new, else `Pic2`. `state` must outlive the tray.
    Tray(const QIcon& Pic1, const QIcon& Pic2, const ReminderState& state,
         QObject* parent = nullptr);
    ~Tray() override;

    void show() { icon_.show(); }
    /// Whether a desktop has taken the icon in; may become true later.
    static bool isThere() { return QSystemTrayIcon::isSystemTrayAvailable(); }
    /// Where the icon is. Not every desktop tells; then where it was clicked last, else empty.
    QRect geometry() const;

    void setNew(bool withDot);
    bool isNew() const { return withDot_; }
    /// Lines are parted by CR LF. Costs nothing where it says so already: each text is sent over
    /// the bus.
    void setToolTip(const QString& text);
    void balloon(const QString& title, const QString& text, int seconds) {
        balloon_.present(title, text, seconds);
    }
    QMenu& menu() { return mnuTray_; }

signals:
    void clicked();
    void balloonClicked();
    void menuOpening();
    void showHide();
    void mute();
    void silent();
    void notifType(const QString& letter);
    void onTop();
    void refresh();
    void about();
    void cleanUp();
    void deleteAll();
    void exit();

private:
    void fillMenu();
    void fillTypes();
    QAction* add(const char* name, const QString& text, void (Tray::*chosen)());
    void mark();
    void notePointer();
    void onActivated(QSystemTrayIcon::ActivationReason reason);

    const QIcon quiet_;
    const QIcon new_;
    const ReminderState& state_;
    QSystemTrayIcon icon_;
    QMenu mnuTray_;
    Balloon balloon_;
    QAction* mnuShowHide_ = nullptr;
    QAction* mnuMute_ = nullptr;
    QAction* mnuSilent_ = nullptr;
    QAction* mnuOnTop_ = nullptr;
    QList<QAction*> types_;  // data: the letter
    QString tip_;
    bool withDot_ = false;
    QRect clickedAt_;
};

}  // namespace vl
