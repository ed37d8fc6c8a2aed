#include "ui/Balloon.h"

#include <QGuiApplication>
#include <QSystemTrayIcon>
#ifdef VL_DBUS
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#endif

#include "base/Text.h"

namespace vl {

namespace {

#ifdef VL_DBUS
constexpr auto kService = "org.freedesktop.Notifications";
constexpr auto kPath = "/org/freedesktop/Notifications";
constexpr int kAnswerWithin = 3000;  // milliseconds
#endif

}  // namespace

Balloon::Balloon(QSystemTrayIcon& tray, QObject* parent) : QObject(parent), tray_(tray) {
    connect(&tray_, &QSystemTrayIcon::messageClicked, this, &Balloon::clicked);
}

void Balloon::present(const QString& title, const QString& text, int seconds) {
    const QString lines = balloonText(text);
    if (!askService(title, lines, seconds)) {
        tray_.showMessage(title, lines, QSystemTrayIcon::Information, seconds * 1000);
    }
}

#ifdef VL_DBUS

bool Balloon::askService(const QString& title, const QString& text, int seconds) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {  // a call would never be answered
        return false;
    }
    if (!listening_) {
        listening_ = bus.connect(kService, kPath, kService, "ActionInvoked", this,
                                 SLOT(onAction(uint, QString)));
    }
    QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kService, "Notify");
    // The text is shown as markup where the service knows any.
    call << QStringLiteral("VL Reminders") << id_ << QStringLiteral("dialog-information") << title
         << text.toHtmlEscaped()
         << QStringList{"default", tr("Show")}
         // By its entry in the menu the desktop knows the program's name and picture.
         << QVariantMap{{"desktop-entry", QGuiApplication::desktopFileName()}} << seconds * 1000;
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(call, kAnswerWithin), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [=, this] {
        const QDBusPendingReply<uint> reply = *answer;
        answer->deleteLater();
        if (reply.isValid()) {
            id_ = reply.value();
        } else {
            tray_.showMessage(title, text, QSystemTrayIcon::Information, seconds * 1000);
        }
    });
    return true;
}

#else

bool Balloon::askService(const QString&, const QString&, int) { return false; }

#endif

// Other programs' notifications are told of as well.
void Balloon::onAction(uint id, const QString& action) {
    if (id == id_ && id_ != 0 && action == u"default") {
        emit clicked();
    }
}

QString balloonText(const QString& text) {
    QString lines = text;
    return lines.replace(QLatin1String("\r\n"), QLatin1String("\n")).trimmed();
}

int balloonSeconds(int milliseconds) {
    return static_cast<int>(text::roundHalfEven(milliseconds / 1000.0));
}

}  // namespace vl
